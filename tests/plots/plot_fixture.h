/*
** tests/plots/plot_fixture.h: a fresh host with the plug-in and an output folder of the
** test's own, and helpers that fill plots the way the analyses do.
*/
#ifndef TESTS_PLOT_FIXTURE_H
#define TESTS_PLOT_FIXTURE_H

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "host/host.h"
#include "hostapp/host_state.h"
#include "hostapp/plots.h"
#include "platform/driver.h"
#include "rlocus/locus_state.h"
#include "shell/plot_output.h"
#include "shell/settings.h"
#include "support.h"
#include "support/plugin_plot.h"

using testing_support::boundsOf;
using testing_support::texts;
using testing_support::tickRange;

class PlotTest : public testing_support::PluginTest {
protected:
    std::filesystem::path outputDir = dir.path;

    /* A Bode-style plot whose first trace holds `values` over the frequency range,
    ** filled as the frequency response fills it. */
    HostBlock *frequencyPlot(const char *title, const std::vector<double> &values)
    {
        HostBlock *block = makePlotNode(0, 0);
        PlotRecord *plot = plotRecordOf(block);
        RangeSettings range = frequencyRange;
        range.steps = (int32_t)values.size();
        setupFrequencyPlot(plot, title, &range);
        preallocDList(&plot->traces[0].points, &plot->pointIndex);
        plot->traces[0].points.count = (uint32_t)values.size();
        std::copy(values.begin(), values.end(), (double *)plot->traces[0].points.items);
        return block;
    }

    /* A Nyquist plot with trace 0 = real parts and trace 1 = imaginary parts. */
    HostBlock *nyquistPlot(const std::vector<double> &re, const std::vector<double> &im)
    {
        RangeSettings range = frequencyRange;
        range.steps = (int32_t)re.size();
        HostBlock *block = testing_support::nyquistPlotBlock(range);
        std::copy(re.begin(), re.end(), (double *)plotRecordOf(block)->traces[0].points.items);
        std::copy(im.begin(), im.end(), (double *)plotRecordOf(block)->traces[1].points.items);
        return block;
    }

    /* Stores branch points as the root locus sweep does. */
    static void storeBranch(PlotRecord *plot, int branch, const std::vector<double> &re, const std::vector<double> &im)
    {
        for (size_t s = 0; s < re.size(); ++s)
            storeLocusPoint(plot, branch, (int32_t)s, {re[s], im[s]});
    }
};

#endif
