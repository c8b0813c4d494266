/*
** The host's plot blocks (creation, point buffers, deletion with the plug-in told, nice
** bounds) and the plug-in's plot set-up, root locus plots and finish through them.
*/
#include <cmath>
#include <cstring>

#include "plot_fixture.h"

namespace {

std::vector<std::pair<int32_t, intptr_t>> events;

int recordEvent(int32_t code, intptr_t arg)
{
    events.push_back({code, arg});
    return 0;
}

/* Deleting a block frees what hangs on its plot (seen by the sanitizer build). */
TEST_F(PlotTest, DeletingAPlotTellsThePlugInAndFreesItsParts)
{
    events.clear();
    hostapp::host().plugin.event = recordEvent;
    HostBlock *a = makePlotNode(0, 0);
    HostBlock *b = makeRootLocusPlot(2);
    ASSERT_NE(a->window, nullptr);
    EXPECT_NE(a->window, b->window);
    EXPECT_EQ(a->kind, hostapp::PLOT_BLOCK_KIND);
    EXPECT_EQ(hostapp::plotBlocks(), (std::vector<HostBlock *>{a, b}));
    hostapp::deletePlotBlock(a);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].first, 253);
    EXPECT_EQ(events[0].second, (intptr_t)a);
    EXPECT_EQ(hostapp::plotBlocks(), std::vector<HostBlock *>{b});
    EXPECT_FALSE(hostapp::isPlotBlock(a));
    hostapp::deletePlotBlock(a);               /* already gone: nothing happens */
    EXPECT_EQ(events.size(), 1u);

    PlotRecord *plot = plotRecordOf(b);
    plot->paramInfo = (PlotParamInfo *)galloc(sizeof(PlotParamInfo));
    *plot->paramInfo = PlotParamInfo{};
    plot->paramInfo->parameters = (double *)galloc(50 * sizeof(double));
    plot->paramInfo->zeroBranches = (int32_t *)galloc(2 * sizeof(int32_t));
    preallocDList(&plot->traces[0].points, &plot->pointIndex);
    storeBranch(plot, 1, std::vector<double>(300, -1.0), std::vector<double>(300, 0.0));
    hostapp::deletePlotBlock(b);
    EXPECT_EQ(events.size(), 2u);
    EXPECT_TRUE(hostapp::plotBlocks().empty());
}

/* Without flag A 0x02 the fixed sweep is left alone. */
TEST_F(PlotTest, FrequencyPlotTitleLabelAndSweep)
{
    const struct {
        int32_t count, unit;
        uint8_t flagsA;
        RangeSettings range;
        const char *titleBase, *title, *xLabel;
        double step, fixedStart, fixedStop;
    } cases[] = {
        {3, FREQUENCY_UNIT_RADIANS, 0, {50, 0.1, 100.0}, "Bode-Magnitude", "Bode-Magnitude3", "Frequency, (Rad/sec)",
         99.9 / 49, 0, 0},
        {0, FREQUENCY_UNIT_HERTZ, PLOT_A_FIXED_SWEEP, {11, 1.0, 6.0}, "Nyquist", "Nyquist0", "Frequency, (Hz)", 0.5,
         1.0, 6.0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.title);
        frequencyPlotCount = c.count;
        frequencyUnit.selected = c.unit;
        PlotRecord *plot = plotRecordOf(makePlotNode(0, 0));
        plot->flagsA |= c.flagsA;
        setupFrequencyPlot(plot, c.titleBase, &c.range);
        EXPECT_STREQ(plot->title, c.title);
        EXPECT_STREQ(plot->xLabel, c.xLabel);
        EXPECT_EQ(plot->pointIndex, 0u);
        EXPECT_EQ(plot->pointCount, (uint32_t)c.range.steps);
        EXPECT_EQ(plot->sweepStart, c.range.start);
        EXPECT_EQ(plot->sweepStop, c.range.stop);
        EXPECT_EQ(plot->xMin, c.range.start);
        EXPECT_EQ(plot->xMax, c.range.stop);
        EXPECT_EQ(plot->sweepStep, c.step);
        EXPECT_EQ(plot->flagsB & 0x15, 0x15);
        EXPECT_EQ(plot->flagsA & 0x20, 0x20);
        EXPECT_EQ(plot->fixedSweepStart, c.fixedStart);
        EXPECT_EQ(plot->fixedSweepStop, c.fixedStop);
    }
}

TEST_F(PlotTest, RootLocusPlotsAreNumberedSetUpAndBoundedByTheirBuffers)
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
    /* The bounds come from the points the buffers hold. */
    storeBranch(plot, 0, {-1.0, -2.0, -3.7}, {0.0, 0.0, 0.0});
    storeBranch(plot, 1, {-1.0, -0.5, -0.5}, {0.0, 1.2, 2.9});
    storeBranch(plot, 2, {-2.0, -2.0, -2.0}, {0.0, 0.0, 0.0});
    setXYPlotBounds(block, 0, 1);
    EXPECT_EQ(boundsOf(plot), (std::vector<double>{-3.7, -0.5, 0.0, 2.9}));
    finishPlot(block, 0, 0, 0);
    EXPECT_EQ(boundsOf(plot), (std::vector<double>{-4.0, -0.5, 0.0, 3.0}));    /* steps of 0.5 */
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

TEST_F(PlotTest, PointBufferRequests)
{
    HostBlock *block = makeRootLocusPlot(2);
    PlotRecord *plot = plotRecordOf(block);
    PlotRecord stranger{};
    EXPECT_EQ(tervanRequest(75, (intptr_t)&stranger, 0), 0);
    EXPECT_EQ(tervanRequest(75, 0, 0), 0);
    EXPECT_EQ(tervanRequest(75, (intptr_t)plot, 2), 0);        /* coordinate 2 */
    /* A branch past the allocated ones gets an empty buffer pair. */
    auto *late = (PlotPointBuffer *)tervanRequest(75, (intptr_t)plot, 5 * 256 + 1);
    ASSERT_NE(late, nullptr);
    EXPECT_EQ(late->capacity, 0u);
    storeBranch(plot, 5, {1, 2}, {3, 4});
    EXPECT_EQ(late->values[1], 4.0);
    EXPECT_EQ(late->highestIndex, 1u);
    /* Reallocating the buffers starts them afresh. */
    allocOverPlotBuffers(block, 1);
    auto *first = (PlotPointBuffer *)tervanRequest(75, (intptr_t)plot, 0);
    EXPECT_EQ(first->highestIndex, 0u);
    EXPECT_EQ(first->capacity, 50u);
}

TEST_F(PlotTest, RescaleBounds)
{
    struct Case {
        double lo, hi;
        uint8_t logarithmic;
        double niceLo, niceHi;
    };
    const Case cases[] = {
        {0.15, 70.0, 1, 0.1, 100.0},
        {0.1, 100.0, 1, 0.1, 100.0},
        {3.0, 3.0, 1, 1.0, 10.0},
        {-1.0, 1.0, 1, 0.001, 1.0},            /* non-positive minimum: three decades down */
        {-2.0, -1.0, 1, 0.1, 10.0},            /* nothing positive */
        {0.3, 9.7, 0, 0.0, 10.0},
        {-5.5, -4.5, 0, -5.5, -4.5},
        {0.3, 0.7, 0, 0.3, 0.7},               /* on the step of 0.05, though 0.3 / 0.05 < 6 */
        {7.0, 2.0, 0, 2.0, 7.0},               /* reversed */
        {2.0, 2.0, 0, 1.8, 2.2},
        {0.0, 0.0, 0, -1.0, 1.0},
        {NAN, NAN, 0, -1.0, 1.0},
        {-INFINITY, 4.0, 0, 3.6, 4.4},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.lo << " " << c.hi << " log " << (int)c.logarithmic);
        double pair[2] = {c.lo, c.hi};
        rescaleBounds(pair, c.logarithmic);
        EXPECT_NEAR(pair[0], c.niceLo, 1e-12);
        EXPECT_NEAR(pair[1], c.niceHi, 1e-12);
    }
}

}
