/*
** tests/plots/plot_fixture.h: a fresh host with its own output folder per test,
** the plug-in's plot settings at their defaults, and helpers that fill plots the
** way the analyses do.
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
#include "support/plugin_plot.h"
#include "hostapp/host_state.h"
#include "hostapp/plots.h"
#include "platform/driver.h"
#include "shell/plot_output.h"
#include "shell/settings.h"

/* The texts of the elements of an SVG class, in document order. */
inline std::vector<std::string> texts(const pugi::xml_document &doc, const char *cls)
{
    std::vector<std::string> all;
    std::string query = std::string("//*[@class='") + cls + "']";
    for (const auto &n : doc.select_nodes(query.c_str()))
        all.push_back(n.node().child_value());
    return all;
}

class PlotTest : public ::testing::Test {
protected:
    std::filesystem::path outputDir;

    void SetUp() override
    {
        hostapp::resetHost();
        platform::clearTranscript();
        outputDir = testing_support::useTestOutputDir();
        frequencyPlotCount = 0;
        rootLocusPlotCount = 0;
        frequencyRange = {50, 0.1, 100.0};
        gainRange = {50, 0.0, 100.0};
        frequencyUnit.selected = FREQUENCY_UNIT_RADIANS;
        phaseUnit.selected = PHASE_UNIT_DEGREES;
        magnitudeUnit.selected = MAGNITUDE_UNIT_LOG10;
    }

    void TearDown() override { hostapp::resetHost(); }

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

    /* Stores branch points through request 75, as the root locus sweep does. */
    static void storeBranch(PlotRecord *plot, int branch, const std::vector<double> &re, const std::vector<double> &im)
    {
        for (int c = 0; c < 2; ++c) {
            auto *buffer = (PlotPointBuffer *)tervanRequest(TERVAN_REQ_PLOT_BUFFER, (intptr_t)plot, branch * 256 + c);
            ASSERT_NE(buffer, nullptr);
            const std::vector<double> &v = c == 0 ? re : im;
            for (size_t s = 0; s < v.size(); ++s) {
                if (s >= buffer->capacity) {
                    buffer->capacity += 128;
                    buffer->values = (double *)grealloc(buffer->values, buffer->capacity * sizeof(double));
                }
                buffer->values[s] = v[s];
                if (buffer->highestIndex < s)
                    buffer->highestIndex = (uint32_t)s;
            }
        }
    }
};

#endif
