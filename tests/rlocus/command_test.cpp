/*
** The Root Locus command on the servo example: in-process (plot bounds limited to the
** returned extreme, gains recorded, plot reused) and through the praxa executable.
*/
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <utility>
#include <vector>

#include "host/host.h"
#include "hostapp/diagram.h"
#include "hostapp/plots.h"
#include "platform/driver.h"
#include "shell/plot_output.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "support.h"

using namespace testing_support;

namespace {

class RootLocusCommand : public ::testing::Test {
protected:
    TempDir dir;

    void SetUp() override
    {
        hostapp::clearDiagram();
        startHostWithPlugin(dir.file("tervan.ini"), dir.path);
        std::string error;
        ASSERT_TRUE(hostapp::loadDiagramFile(examplePath("servo.json"), error)) << error;
        ASSERT_TRUE(hostapp::applyDiagramReferencePoints(error)) << error;
        platform::clearTranscript();
        rootLocusPlot = nullptr;        /* the host of an earlier test is gone */
        reusePlots = 0;
        rootLocusPlotCount = 0;
        gainRange = {50, 0.0, 100.0};
    }
    void TearDown() override { hostapp::clearDiagram(); }

    PlotRecord *lastPlot() const
    {
        std::vector<HostBlock *> plots = hostapp::plotBlocks();
        return plots.empty() ? nullptr : plotRecordOf(plots.back());
    }

    /* The extreme the sweep measures: over every step, or from step 20 on (automatic). */
    static double extremeOf(PlotRecord *plot, int traces, int steps, int from)
    {
        double re = 0.0, im = 0.0;
        for (int j = 0; j < traces; ++j)
            for (int c = 0; c < 2; ++c) {
                auto *b = (PlotPointBuffer *)tervanRequest(TERVAN_REQ_PLOT_BUFFER, (intptr_t)plot, j * 256 + c);
                for (int s = from; s < steps; ++s) {
                    double v = b->values[s];
                    if (c == 1)
                        im = std::max(im, std::fabs(v));
                    else if (std::fabs(v) > std::fabs(re))
                        re = v;
                }
            }
        return im > std::fabs(re) ? im : re;
    }
};

TEST_F(RootLocusCommand, AutomaticRunLimitsTheBoundsToTheExtreme)
{
    optionsMemory.autoRange = 1;
    EXPECT_EQ(praxaCmd(240), 1);
    PlotRecord *plot = lastPlot();
    ASSERT_NE(plot, nullptr);
    EXPECT_STREQ(plot->title, "Root Locus-1");
    ASSERT_NE(plot->paramInfo, nullptr);
    EXPECT_EQ(plot->paramInfo->poleCount, 3);
    EXPECT_EQ(plot->paramInfo->zeroCount, 0);
    /* 20/(s(s+1)(s+10)): the real branch runs out to the left beyond the box of 20. */
    double extreme = extremeOf(plot, 3, 50, 19);
    EXPECT_LT(extreme, -40.0);
    double m = std::ceil(std::fabs(extreme));
    EXPECT_EQ(plot->xMin, -m) << "the host's rounded bound is beyond the extreme and is limited";
    EXPECT_LE(plot->xMax, m);
    EXPECT_GE(plot->yMin, -m);
    EXPECT_LE(plot->yMax, m);
    EXPECT_TRUE(std::filesystem::exists(dir.file("Root-Locus.svg")));
}

TEST_F(RootLocusCommand, ManualRunRecordsItsGainsAndReusesThePlot)
{
    optionsMemory.autoRange = 0;
    EXPECT_EQ(praxaCmd(296), 1);        /* reuse plots on */
    ASSERT_EQ(praxaCmd(240), 1);
    PlotParamInfo *first = lastPlot()->paramInfo;
    ASSERT_NE(first, nullptr);
    gainRange = {20, 0.0, 50.0};
    ASSERT_EQ(praxaCmd(240), 1);
    ASSERT_EQ(hostapp::plotBlocks().size(), 1u) << "the second run draws into the same plot";
    PlotRecord *plot = lastPlot();
    /* The second run hangs a new record on the plot, which has freed the first. */
    ASSERT_NE(plot->paramInfo, first);
    EXPECT_EQ(plot->pointCount, 20u);
    EXPECT_EQ(plot->paramInfo->parameters[19], 50.0);
    double extreme = extremeOf(plot, 3, 20, 0);
    double m = std::ceil(std::fabs(extreme));
    EXPECT_GE(plot->xMin, -m);
    EXPECT_LE(plot->xMax, m);
    EXPECT_GE(plot->yMin, -m);
    EXPECT_LE(plot->yMax, m);
    /* 20 K = 1000: s^3 + 11 s^2 + 10 s + 1000 has its real root below -11. */
    EXPECT_LT(extreme, -11.0);
}

}
