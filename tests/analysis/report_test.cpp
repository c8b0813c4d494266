/*
** tests/analysis/report_test.cpp: the report's figures against closed forms: margins,
** crossovers and delay margins of classic loops and a sampled one (located to 1e-9
** relative), closed-loop poles and damping, bandwidth, step figures, the models that have
** no margin, no stable closed loop or no usable numbers, and the whole plain text.
*/
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>

#include <gtest/gtest.h>

#include "analysis/report.h"
#include "canonical_model.h"

using analysis::Model;
using analysis::Report;

namespace {

const double PI = std::numbers::pi;
const double DEG = 180.0 / PI;

/* got within a relative tolerance of want, or both none. */
void expectRelative(const std::optional<double> &got, const std::optional<double> &want, double tolerance,
                    const char *what)
{
    ASSERT_EQ(got.has_value(), want.has_value()) << what;
    if (want) {
        EXPECT_NEAR(*got, *want, tolerance * std::fabs(*want)) << what;
    }
}

}

TEST(Report, MarginsOfClassicLoops)
{
    /* K/(s+1)^3: phase crossover sqrt 3 with |L| = K/8; gain crossover where (w^2+1)^3 = K^2. */
    double wgc4 = std::sqrt(std::cbrt(16.0) - 1);
    /* wn^2/(s(s + 2 zeta wn)), zeta 0.5, wn 2: crossover wn sqrt(sqrt(1 + 4 zeta^4) - 2 zeta^2). */
    double x = std::sqrt(std::sqrt(1.25) - 0.5);
    /* 20 (1-s)^2/(s+1)^5: phase -7 atan w, so -180 deg at tan(pi/7) and tan(3 pi/7), where the
    ** margins (1 + w^2)^(3/2)/20 are 0.068 (-23 dB) and 4.54 (+13 dB): the critical one is the
    ** one nearer to 0 dB.  The closed loop s^5 + 5s^4 + 10s^3 + 30s^2 - 35s + 21 is unstable. */
    double wgc20 = std::sqrt(std::cbrt(400.0) - 1);
    /* 0.5/(z-1), T = 0.1 s: phase -(pi + theta)/2 meets -180 deg at Nyquist, |L| = K/2 there;
    ** |L| = 1 at theta = 2 asin(K/2), phase margin 90 - theta/2. */
    double theta = 2 * std::asin(0.25);
    struct Row {
        const char *name;
        Model model;
        size_t phaseCrossings;
        std::optional<double> phaseCrossover, gainMargin, gainCrossover, phaseMargin, delayMargin;
    } rows[] = {
        {"4/(s+1)^3", canonical({4}, {1, 3, 3}), 1, std::sqrt(3.0), 2.0, wgc4, 180 - 3 * std::atan(wgc4) * DEG,
         (PI - 3 * std::atan(wgc4)) / wgc4},
        {"10/(s+1)^3", canonical({10}, {1, 3, 3}), 1, std::sqrt(3.0), 0.8, std::sqrt(std::cbrt(100.0) - 1),
         180 - 3 * std::atan(std::sqrt(std::cbrt(100.0) - 1)) * DEG, std::nullopt},
        {"(1-s)/((s+1)(s+2))", canonical({1, -1}, {2, 3}), 1, std::sqrt(5.0), 3.0, std::nullopt, std::nullopt,
         std::nullopt},
        {"4/(s(s+2))", canonical({4}, {0, 2}), 0, std::nullopt, std::nullopt, 2 * x, std::atan(1 / x) * DEG,
         std::atan(1 / x) / (2 * x)},
        {"20(1-s)^2/(s+1)^5", canonical({20, -40, 20}, {1, 5, 10, 10, 5}), 2, std::tan(3 * PI / 7),
         1 / (20 * std::pow(std::cos(3 * PI / 7), 3)), wgc20, 540 - 7 * std::atan(wgc20) * DEG, std::nullopt},
        {"0.5/(z-1)", canonical({0.5}, {-1}, 0.1), 1, PI / 0.1, 4.0, theta / 0.1, 90 - theta / 2 * DEG,
         (PI / 2 - theta / 2) / (theta / 0.1)},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        Report r = analysis::analyzeModel(row.model);
        ASSERT_EQ(r.problem, "");
        ASSERT_EQ(r.margins.phaseCrossovers.size(), row.phaseCrossings);
        ASSERT_EQ(r.margins.gainCrossovers.size(), row.gainCrossover ? 1u : 0u);
        expectRelative(r.margins.phaseCrossoverFrequency, row.phaseCrossover, 1e-9, "phase crossover");
        expectRelative(r.margins.gainMargin, row.gainMargin, 1e-9, "gain margin");
        auto db = row.gainMargin ? std::optional(20 * std::log10(*row.gainMargin)) : std::nullopt;
        expectRelative(r.margins.gainMarginDb, db, 1e-9, "gain margin dB");
        expectRelative(r.margins.gainCrossoverFrequency, row.gainCrossover, 1e-9, "gain crossover");
        expectRelative(r.margins.phaseMargin, row.phaseMargin, 1e-9, "phase margin");
        expectRelative(r.margins.delayMargin, row.delayMargin, 1e-9, "delay margin");
    }
}

TEST(Report, ClosedLoopAndStepOfClassicLoops)
{
    /* 4/(s(s+2)) closes to wn 2, zeta 0.5: overshoot e^(-pi zeta/sqrt(1-zeta^2)), peak at pi/wd. */
    Report second = analysis::analyzeModel(canonical({4}, {0, 2}));
    ASSERT_TRUE(second.step);
    for (size_t i = 0; i < 2; i++) {
        expectRelative(second.closedLoop.damping[i], 0.5, 1e-12, "damping");
        expectRelative(second.closedLoop.naturalFrequency[i], 2.0, 1e-12, "natural frequency");
    }
    expectRelative(second.step->overshootPercent, 100 * std::exp(-PI / std::sqrt(3.0)), 1e-6, "overshoot");
    expectRelative(second.step->peakTime, PI / std::sqrt(3.0), 1e-6, "peak time");
    /* |T(jw)|^2 = 16/((4 - w^2)^2 + 4 w^2) = 1/2: w^2 = 2 + sqrt 20. */
    expectRelative(second.closedLoop.bandwidth, std::sqrt(2 + std::sqrt(20.0)), 1e-9, "bandwidth");

    /* 0.5/(z-1), T = 0.1 s: T(z) = 0.5/(z - 0.5), a pole at 0.5; the step settles at 1 without
    ** overshoot.  (2/s, the first-order loop, is the plain text's.) */
    Report sampled = analysis::analyzeModel(canonical({0.5}, {-1}, 0.1));
    ASSERT_EQ(sampled.closedLoop.poles.size(), 1u);
    EXPECT_NEAR(sampled.closedLoop.poles[0].real(), 0.5, 1e-15);
    ASSERT_TRUE(sampled.step);
    EXPECT_NEAR(sampled.step->finalValue, 1.0, 1e-12);
    EXPECT_EQ(*sampled.step->overshootPercent, 0.0);
}

TEST(Report, ModelsWithoutMarginsOrStableLoop)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    Model withNan = canonical({1}, {1});
    withNan.a[0] = nan;
    EXPECT_EQ(analysis::analyzeModel(withNan).problem, "the model holds NaN or infinite entries");

    Model gainOnly;
    gainOnly.d = 2.0;
    Report pure = analysis::analyzeModel(gainOnly);
    EXPECT_TRUE(pure.margins.gainCrossovers.empty());
    EXPECT_TRUE(pure.margins.phaseCrossovers.empty());
    ASSERT_TRUE(pure.step);
    EXPECT_NEAR(pure.step->finalValue, 2.0 / 3.0, 1e-15);

    Model algebraic;
    algebraic.d = -1.0;
    Report illPosed = analysis::analyzeModel(algebraic);
    EXPECT_FALSE(illPosed.closedLoop.wellPosed);
    EXPECT_FALSE(illPosed.step);

    /* 1/(s^2+1): poles on the axis at +-j; |L| = 1 at sqrt 2 with the phase at -180 deg, so
    ** T = 1/(s^2+2) oscillates for ever. */
    Report oscillator = analysis::analyzeModel(canonical({1}, {1, 0}));
    ASSERT_EQ(oscillator.margins.gainCrossovers.size(), 1u);
    EXPECT_NEAR(oscillator.margins.gainCrossovers[0].frequency, std::sqrt(2.0), 1e-9);
    EXPECT_NEAR(oscillator.margins.gainCrossovers[0].margin, 0.0, 1e-9);
    EXPECT_FALSE(oscillator.closedLoop.stable);
    EXPECT_FALSE(oscillator.closedLoop.peakSensitivity);
    EXPECT_FALSE(oscillator.margins.delayMargin);
    EXPECT_FALSE(oscillator.step);
}

TEST(Report, PlainText)
{
    /* 2/s: crossover 2 rad/s with 90 deg, delay margin pi/4 s, T = 2/(s+2) over a horizon of 5 s. */
    EXPECT_EQ(analysis::modelReportText(canonical({2}, {0})),
              "Model (1 state, continuous)\n"
              "  A                     0\n"
              "  B (column)            1\n"
              "  C                     2\n"
              "  D                     0\n"
              "Transfer function L(s) = K N(s)/D(s)\n"
              "  gain K                2\n"
              "  numerator N           1  (descending powers of s)\n"
              "  denominator D         1  0\n"
              "  zeros                 none\n"
              "  poles                 0\n"
              "Stability margins (exact, over the whole frequency axis)\n"
              "  gain margin           none\n"
              "  phase margin          90 deg at 2 rad/s (critical)\n"
              "  delay margin          0.7853981634 s\n"
              "  gain crossovers       2 rad/s: phase margin 90 deg\n"
              "  phase crossovers      none\n"
              "Closed loop T = L/(1+L)\n"
              "  stable                yes\n"
              "  poles                 -2  (damping 1, natural frequency 2 rad/s)\n"
              "  bandwidth (-3 dB)     2 rad/s\n"
              "  peak sensitivity Ms   1\n"
              "Step response of T\n"
              "  final value           1\n"
              "  overshoot             0 %\n"
              "  peak time             5 s\n"
              "  rise time (10-90 %)   1.09861 s\n"
              "  settling time (2 %)   1.95601 s\n");
}
