/*
** tests/nyquist/nyquist_fixture.h: a fresh host with the plug-in for each Nyquist test,
** and a plot block prepared the way the frequency response prepares a Nyquist plot.
*/
#ifndef TESTS_NYQUIST_FIXTURE_H
#define TESTS_NYQUIST_FIXTURE_H

#include <gtest/gtest.h>

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

class NyquistTest : public ::testing::Test {
protected:
    testing_support::TempDir dir;
    HostBlock *block = nullptr;
    PlotRecord *plot = nullptr;
    Roots zeros, poles;
    double *W = nullptr;

    void SetUp() override
    {
        testing_support::startHostWithPlugin(dir.file("tervan.ini"), dir.path);
        platform::clearTranscript();
        frequencyRange = {50, 0.1, 100.0};
        frequencyUnit.selected = FREQUENCY_UNIT_RADIANS;
        negativeFrequencies = 0;
        block = testing_support::nyquistPlotBlock(frequencyRange);
        plot = plotRecordOf(block);
    }

    void TearDown() override
    {
        gfree(W);
        platform::clearDialogActions();
    }

    /* Runs the continuous curve on the plot; W stays the test's to free. */
    void run(double unitFactor, double K)
    {
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

    std::string transcript() const { return platform::transcriptText(); }
};

#endif
