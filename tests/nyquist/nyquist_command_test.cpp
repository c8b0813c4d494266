/*
** tests/nyquist/nyquist_command_test.cpp: the Nyquist command end to end: the servo
** (a pole at the origin) through praxaCmd against its transfer function.
*/
#include <cmath>
#include <complex>

#include "hostapp/diagram.h"
#include "shell/praxa.h"
#include "tests/nyquist/nyquist_fixture.h"

using testing_support::examplePath;

namespace {

/* The servo's open loop: gain 2, amplifier 10/(s + 10), motor 1/(s (s + 1)). */
std::complex<double> servo(std::complex<double> s)
{
    return 20.0 / (s * (s + 1.0) * (s + 10.0));
}

}

class NyquistCommand : public ::testing::Test {
protected:
    testing_support::TempDir dir;

    void SetUp() override { testing_support::startHostWithPlugin(dir.file("tervan.ini"), dir.path); }

    void load(const std::string &example)
    {
        std::string error;
        ASSERT_TRUE(hostapp::loadDiagramFile(examplePath(example), error)) << error;
        ASSERT_TRUE(hostapp::applyDiagramReferencePoints(error)) << error;
        platform::clearTranscript();
    }
};

TEST_F(NyquistCommand, ServoCurveFollowsItsTransferFunctionAroundThePoleAtTheOrigin)
{
    load("servo.json");
    ASSERT_EQ(praxaCmd(250), 1);
    EXPECT_EQ(platform::transcriptText().rfind(
                  "[ JW-Poles]  Poles detected on the imaginary axis, There will be circles at infinity\n"
                  "[dialog] Nyquist\n",
                  0),
              0u);
    PlotRecord *plot = plotRecordOf(nyquistPlot);
    /* Roots 0, −1, −10: stop 100, start from the clamp; one detour, M = 500, N′ = 1000. */
    EXPECT_EQ(frequencyRange.steps, 1000);
    EXPECT_EQ(frequencyRange.start, 1e-6);
    EXPECT_NEAR(frequencyRange.stop, 100.0, 1e-9);
    EXPECT_EQ(arcPointCount, 500);
    ASSERT_EQ(plot->pointCount, 1000u);
    ASSERT_EQ(plot->traces[0].points.count, 1000u);
    ASSERT_NE(plot->paramInfo, nullptr);
    const double *W = plot->paramInfo->parameters;
    const double *X = (const double *)plot->traces[0].points.items;
    const double *Y = (const double *)plot->traces[1].points.items;

    /* From ωmid = 50 the crossing search halves down to 0.1953125, where |Y| ≈ 9.82. */
    double rho = -W[251];
    EXPECT_NEAR(rho, 0.1953125, 1e-9);
    EXPECT_NEAR(W[1], -100.0, 1e-6);
    EXPECT_NEAR(W[1000], 100.0, 1e-6);
    for (int p = 1; p <= 1000; p++) {
        double re = std::fabs(W[p]) < rho ? std::sqrt(rho * rho - W[p] * W[p]) : 0.0;
        std::complex<double> g = servo({re, W[p]});
        ASSERT_NEAR(X[p - 1], g.real(), 1e-6 * std::max(1.0, std::abs(g))) << p;
        ASSERT_NEAR(Y[p - 1], g.imag(), 1e-6 * std::max(1.0, std::abs(g))) << p;
    }
    /* Half way round the detour (s ≈ ρ) the curve crosses the positive real axis at
    ** 20/(ρ (1 + ρ)(10 + ρ)) ≈ 8.40. */
    EXPECT_NEAR(X[500], 20.0 / (rho * (1 + rho) * (10 + rho)), 0.01);
    EXPECT_NEAR(Y[499], 0.0, 0.1);
    /* Low positive frequencies: the real part tends to −20·11/100 = −2.2. */
    EXPECT_NEAR(X[751], -2.2, 0.1);
}
