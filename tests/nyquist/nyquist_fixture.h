/*
** tests/nyquist/nyquist_fixture.h: a fresh host with the plug-in for each Nyquist test,
** a plot block prepared the way the frequency response prepares a Nyquist plot, and the
** checks of every point of a detoured or a sampled curve against the response.
*/
#ifndef TESTS_NYQUIST_FIXTURE_H
#define TESTS_NYQUIST_FIXTURE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <string>
#include <vector>

#include "freq/nyquist.h"
#include "host/host.h"
#include "platform/driver.h"
#include "shell/plot_output.h"
#include "shell/settings.h"
#include "support.h"
#include "support/plugin_plot.h"

using Roots = std::vector<Complex>;

using testing_support::poleZeroResponse;

class NyquistTest : public testing_support::PluginTest {
protected:
    PlotRecord *plot = nullptr;
    Roots zeros, poles;
    double *W = nullptr;

    void SetUp() override
    {
        PluginTest::SetUp();
        negativeFrequencies = 0;
        plot = plotRecordOf(testing_support::nyquistPlotBlock(frequencyRange));
    }

    void TearDown() override
    {
        gfree(W);
        platform::clearDialogActions();
        PluginTest::TearDown();
    }

    /* Runs the continuous curve on the plot, freeing the last run's W. */
    void run(double unitFactor, double K)
    {
        gfree(W);
        W = nyquistResponse((int32_t)zeros.size(), (int32_t)poles.size(), poles.data(), zeros.data(), plot,
                            unitFactor, K);
        ASSERT_NE(W, nullptr);
    }

    uint32_t count() const { return plot->traces[0].points.count; }
    /* Point p, counted from 1. */
    double X(int p) const { return ((const double *)plot->traces[0].points.items)[p - 1]; }
    double Y(int p) const { return ((const double *)plot->traces[1].points.items)[p - 1]; }

    /* Point p against the reference at s, to a relative 1e-9. */
    void expectPointAt(int p, std::complex<double> s, double K)
    {
        std::complex<double> h = poleZeroResponse(s, zeros, poles, K);
        double tolerance = 1e-9 * std::max(1.0, std::abs(h));
        EXPECT_NEAR(X(p), h.real(), tolerance) << "point " << p << " at s = " << s;
        EXPECT_NEAR(Y(p), h.imag(), tolerance) << "point " << p << " at s = " << s;
    }

    /* Every point of a detoured curve against the response on the path: on the half circle
    ** of radius r around the pole at +-j omega0 where |W| lies within r of omega0 (to 1e-6:
    ** near the axis its real part is rebuilt here with cancellation), on the axis elsewhere.
    ** Returns how many points lie on a half circle. */
    int expectOnDetouredPath(double omega0, double r, double K)
    {
        int onArc = 0;
        for (int p = 1; p <= (int)count(); p++) {
            double offset = std::fabs(W[p]) - omega0;
            if (std::fabs(offset) >= r) {
                expectPointAt(p, {0.0, W[p]}, K);
                continue;
            }
            onArc++;
            std::complex<double> h = poleZeroResponse({std::sqrt(r * r - offset * offset), W[p]}, zeros, poles, K);
            EXPECT_LT(std::abs(std::complex<double>(X(p), Y(p)) - h), 1e-6 * std::abs(h)) << "point " << p;
        }
        return onArc;
    }

    /* Every point of a sampled curve over frequencyRange (θ = f unitFactor on its logarithmic
    ** grid) against the response at e^(jθ); with a pole on the unit circle, beyond R∞ it lies
    ** on that circle with the response's phase (but at the pole itself).  Returns how many
    ** points are held so. */
    int expectSampledCurve(double unitFactor, double K)
    {
        bool onCircle =
            std::any_of(poles.begin(), poles.end(), [](Complex p) { return std::hypot(p.re, p.im) == 1.0; });
        int held = 0, steps = frequencyRange.steps;
        double logStart = std::log10(frequencyRange.start);
        double step = (std::log10(frequencyRange.stop) - logStart) / (steps - 1);
        for (int p = 1; p <= steps; p++) {
            std::complex<double> z = std::polar(1.0, std::pow(10.0, logStart + (p - 1) * step) * unitFactor);
            std::complex<double> h = poleZeroResponse(z, zeros, poles, K);
            if (!onCircle || std::abs(h) <= nyquistInfinity) {
                expectPointAt(p, z, K);
                continue;
            }
            held++;
            EXPECT_NEAR(std::hypot(X(p), Y(p)), nyquistInfinity, 1e-9) << "point " << p;
            if (p < steps) {
                EXPECT_NEAR(std::atan2(Y(p), X(p)), std::arg(h), 1e-9) << "point " << p;
            }
        }
        return held;
    }
};

#endif
