/*
** The host's plot blocks: creation, buffers, deletion with the plug-in told.
*/
#include "plot_fixture.h"

namespace {

std::vector<std::pair<int32_t, intptr_t>> events;

int recordEvent(int32_t code, intptr_t arg)
{
    events.push_back({code, arg});
    return 0;
}

TEST_F(PlotTest, DeletingAPlotTellsThePlugIn)
{
    events.clear();
    hostapp::host().plugin.event = recordEvent;
    HostBlock *a = makePlotNode(0, 0);
    HostBlock *b = makePlotNode(20, 20);
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
}

TEST_F(PlotTest, DeletingFreesWhatHangsOnThePlot)
{
    HostBlock *block = makeRootLocusPlot(2);
    PlotRecord *plot = plotRecordOf(block);
    plot->paramInfo = (PlotParamInfo *)galloc(sizeof(PlotParamInfo));
    *plot->paramInfo = PlotParamInfo{};
    plot->paramInfo->parameters = (double *)galloc(50 * sizeof(double));
    plot->paramInfo->zeroBranches = (int32_t *)galloc(2 * sizeof(int32_t));
    preallocDList(&plot->traces[0].points, &plot->pointIndex);
    storeBranch(plot, 1, std::vector<double>(300, -1.0), std::vector<double>(300, 0.0));
    hostapp::deletePlotBlock(block);
    EXPECT_TRUE(hostapp::plotBlocks().empty());
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
