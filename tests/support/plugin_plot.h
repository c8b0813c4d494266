/*
** tests/support/plugin_plot.h: what the plot tests share: a fresh output folder named for
** the running test, a Nyquist plot block prepared as the frequency response prepares
** one, the points of a trace read back, and the response they are checked against.
*/
#ifndef PRAXA_TESTS_PLUGIN_PLOT_H
#define PRAXA_TESTS_PLUGIN_PLOT_H

#include <gtest/gtest.h>

#include <complex>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "host/host.h"
#include "hostapp/host_state.h"
#include "shell/plot_output.h"

namespace testing_support {

/* An empty folder named for the running test, made the host's output folder. */
inline std::filesystem::path useTestOutputDir()
{
    const auto *info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::filesystem::path dir = std::filesystem::temp_directory_path() / "praxa-test-output" /
                                (std::string(info->test_suite_name()) + "." + info->name());
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    hostapp::host().outputDir = dir.string();
    return dir;
}

/* A new Nyquist plot block over range: both traces named and reserved for its steps. */
inline HostBlock *nyquistPlotBlock(RangeSettings range)
{
    HostBlock *block = makePlotNode(0, 0);
    PlotRecord *plot = plotRecordOf(block);
    plot->flagsA |= PLOT_A_FIXED_SWEEP;
    setupFrequencyPlot(plot, "Nyquist", &range);
    plot->flagsD |= PLOT_D_NYQUIST;
    plot->yLabel[0] = '\0';
    std::snprintf(plot->traces[1].label, sizeof plot->traces[1].label, "Imaginary");
    std::snprintf(plot->traces[0].label, sizeof plot->traces[0].label, "Real");
    for (int k = 0; k < 2; k++) {
        preallocDList(&plot->traces[k].points, &plot->pointIndex);
        plot->traces[k].points.count = (uint32_t)range.steps;
    }
    return block;
}

/* The response K prod(s - z) / prod(s - p), evaluated in complex arithmetic. */
inline std::complex<double> poleZeroResponse(std::complex<double> s, const std::vector<Complex> &zeros,
                                             const std::vector<Complex> &poles, double K)
{
    std::complex<double> h = K;
    for (const Complex &z : zeros)
        h *= s - std::complex<double>(z.re, z.im);
    for (const Complex &p : poles)
        h /= s - std::complex<double>(p.re, p.im);
    return h;
}

/* The points trace k of a plot holds. */
inline std::vector<double> tracePoints(const PlotRecord *plot, int k = 0)
{
    const PlotTrace &t = plot->traces[k];
    const double *values = (const double *)t.points.items;
    return values ? std::vector<double>(values, values + t.points.count) : std::vector<double>();
}

}

#endif
