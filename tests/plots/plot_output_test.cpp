/*
** The plug-in's plot set-up, root locus plots and finish, through the host's plot blocks.
*/
#include <cmath>
#include <cstring>

#include "plot_fixture.h"

namespace {

TEST_F(PlotTest, FrequencyPlotTitleLabelAndSweep)
{
    frequencyPlotCount = 3;
    HostBlock *block = makePlotNode(0, 0);
    PlotRecord *plot = plotRecordOf(block);
    setupFrequencyPlot(plot, "Bode-Magnitude", &frequencyRange);
    EXPECT_STREQ(plot->title, "Bode-Magnitude3");
    EXPECT_STREQ(plot->xLabel, "Frequency, (Rad/sec)");
    EXPECT_EQ(plot->pointIndex, 0u);
    EXPECT_EQ(plot->pointCount, 50u);
    EXPECT_EQ(plot->sweepStart, 0.1);
    EXPECT_EQ(plot->sweepStop, 100.0);
    EXPECT_EQ(plot->xMin, 0.1);
    EXPECT_EQ(plot->xMax, 100.0);
    EXPECT_EQ(plot->sweepStep, 99.9 / 49);
    EXPECT_EQ(plot->flagsB & 0x15, 0x15);
    EXPECT_EQ(plot->flagsA & 0x20, 0x20);
    /* Without flag A 0x02 the fixed sweep is left alone. */
    EXPECT_EQ(plot->fixedSweepStart, 0.0);
    EXPECT_EQ(plot->fixedSweepStop, 0.0);
}

TEST_F(PlotTest, FrequencyPlotInHertzAndFixedSweep)
{
    frequencyUnit.selected = FREQUENCY_UNIT_HERTZ;
    PlotRecord *plot = plotRecordOf(makePlotNode(0, 0));
    plot->flagsA |= PLOT_A_FIXED_SWEEP;
    RangeSettings range = {11, 1.0, 6.0};
    setupFrequencyPlot(plot, "Nyquist", &range);
    EXPECT_STREQ(plot->title, "Nyquist0");
    EXPECT_STREQ(plot->xLabel, "Frequency, (Hz)");
    EXPECT_EQ(plot->sweepStep, 0.5);
    EXPECT_EQ(plot->fixedSweepStart, 1.0);
    EXPECT_EQ(plot->fixedSweepStop, 6.0);
}

TEST_F(PlotTest, RootLocusPlotsAreNumberedAndSetUp)
{
    gainRange = {40, 2.0, 80.0};
    makeRootLocusPlot(2);
    makeRootLocusPlot(2);
    HostBlock *block = makeRootLocusPlot(3);
    PlotRecord *plot = plotRecordOf(block);
    EXPECT_STREQ(plot->title, "Root Locus-3");
    EXPECT_EQ(rootLocusPlotCount, 3);
    EXPECT_STREQ(plot->xLabel, "Real");
    EXPECT_STREQ(plot->yLabel, "Imaginary");
    EXPECT_STREQ(plot->traces[0].label, "real");
    EXPECT_STREQ(plot->traces[1].label, "Closed loop poles");
    EXPECT_EQ(plot->plotKind, 75u);
    EXPECT_EQ(plot->flagsA, 0x26);             /* (0x04 AND 0x5D) OR 0x22 */
    EXPECT_EQ(plot->flagsB, 0x14);
    EXPECT_EQ(plot->lastTraceIndex, 2);
    EXPECT_EQ(plot->pointCount, 40u);
    EXPECT_EQ(plot->fixedSweepStart, 2.0);
    EXPECT_EQ(plot->fixedSweepStop, 80.0);
    /* One x and one y buffer per branch, room for the step count. */
    for (int branch = 0; branch < 3; ++branch)
        for (int c = 0; c < 2; ++c) {
            auto *buffer = (PlotPointBuffer *)tervanRequest(75, (intptr_t)plot, branch * 256 + c);
            ASSERT_NE(buffer, nullptr);
            EXPECT_EQ(buffer->capacity, 40u);
            EXPECT_EQ(buffer->highestIndex, 0u);
        }
}

/* Every pair the plug-in hands to the host's rescaling, as handed over: the host widens
** a flat pair by itself, so only these show the plug-in's own band. (test_plots links
** with --wrap=rescaleBounds.) */
std::vector<std::pair<double, double>> handedToRescale;

extern "C" void __real_rescaleBounds(double *minMax, uint8_t logarithmic);
extern "C" void __wrap_rescaleBounds(double *minMax, uint8_t logarithmic)
{
    handedToRescale.push_back({minMax[0], minMax[1]});
    __real_rescaleBounds(minMax, logarithmic);
}

TEST_F(PlotTest, FlatCurvesGetABandOfTenPercentBeforeTheHostRescales)
{
    const struct {
        std::vector<double> values;
        uint8_t magnitude;
        double handedMin, handedMax, shownMin, shownMax;
    } cases[] = {
        {{0.0, 0.0}, 0, -1.0, 1.0, -1.0, 1.0},
        {{5.0, 5.0, 5.0}, 0, 4.5, 5.5, 4.5, 5.5},
        {{-5.0, -5.0}, 0, -5.5, -4.5, -5.5, -4.5},
        {{2e-3, 2e-3}, 0, 1.8e-3, 2.2e-3, 1.8e-3, 2.2e-3},
        {{1.0, 3.0}, 0, 1.0, 3.0, 1.0, 3.0},            /* not flat: left to the host */
        /* 9 ... 11 spans two decades; the host alone would show 10 ... 100 */
        {{10.0, 10.0}, 1, 9.0, 11.0, 1.0, 100.0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.values[0]);
        HostBlock *block = frequencyPlot("Bode-Phase", c.values);
        handedToRescale.clear();
        finishPlot(block, 1, c.magnitude, 0xFF);
        ASSERT_EQ(handedToRescale.size(), 2u);          /* x, then y */
        EXPECT_DOUBLE_EQ(handedToRescale[1].first, c.handedMin);
        EXPECT_DOUBLE_EQ(handedToRescale[1].second, c.handedMax);
        PlotRecord *plot = plotRecordOf(block);
        EXPECT_NEAR(plot->yMin, c.shownMin, 1e-12);
        EXPECT_NEAR(plot->yMax, c.shownMax, 1e-12);
        EXPECT_EQ(plot->xMin, 0.1);
        EXPECT_EQ(plot->xMax, 100.0);
        if (c.magnitude) {
            EXPECT_STREQ(plot->yLabel, "Magnitude");
            EXPECT_EQ(plot->flagsB & 0x03, 0x03) << "logarithmic axes";
        }
    }
}

TEST_F(PlotTest, NyquistBoundsComeFromTheTraces)
{
    HostBlock *block = nyquistPlot({1.0, 0.5, NAN, -0.2, 0.0}, {0.0, -0.5, 7.0, -0.3, INFINITY});
    finishPlot(block, 0, 0, 0);
    PlotRecord *plot = plotRecordOf(block);
    /* Data x -0.2 ... 1 and y -0.5 ... 0 (the non-finite points do not count). */
    EXPECT_NEAR(plot->xMin, -0.2, 1e-12);
    EXPECT_NEAR(plot->xMax, 1.0, 1e-12);
    EXPECT_NEAR(plot->yMin, -0.5, 1e-12);
    EXPECT_NEAR(plot->yMax, 0.0, 1e-12);
}

TEST_F(PlotTest, RootLocusBoundsComeFromTheBuffers)
{
    gainRange.steps = 3;
    HostBlock *block = makeRootLocusPlot(2);
    PlotRecord *plot = plotRecordOf(block);
    storeBranch(plot, 0, {-1.0, -2.0, -3.7}, {0.0, 0.0, 0.0});
    storeBranch(plot, 1, {-1.0, -0.5, -0.5}, {0.0, 1.2, 2.9});
    setXYPlotBounds(block, 0, 1);
    EXPECT_EQ(plot->xMin, -3.7);
    EXPECT_EQ(plot->xMax, -0.5);
    EXPECT_EQ(plot->yMin, 0.0);
    EXPECT_EQ(plot->yMax, 2.9);
    finishPlot(block, 0, 0, 0);
    EXPECT_NEAR(plot->xMin, -4.0, 1e-12);   /* steps of 0.5 */
    EXPECT_NEAR(plot->xMax, -0.5, 1e-12);
    EXPECT_NEAR(plot->yMin, 0.0, 1e-12);
    EXPECT_NEAR(plot->yMax, 3.0, 1e-12);
}

}
