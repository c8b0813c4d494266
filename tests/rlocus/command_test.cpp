/*
** The Root Locus command on the servo example, in-process: an automatic run (plot bounds
** limited to the returned extreme), then a manual one into the reused plot.
*/
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <utility>
#include <vector>

#include "host/host.h"
#include "hostapp/plots.h"
#include "platform/driver.h"
#include "shell/plot_output.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "support.h"
#include "support/plugin_plot.h"

using namespace testing_support;

namespace {

class RootLocusCommand : public PluginTest {
protected:
    void SetUp() override
    {
        PluginTest::SetUp();
        ASSERT_TRUE(loadExample("servo.json"));
        platform::clearTranscript();
    }

    PlotRecord *lastPlot() const
    {
        std::vector<HostBlock *> plots = hostapp::plotBlocks();
        return plots.empty() ? nullptr : plotRecordOf(plots.back());
    }

    /* The extreme the sweep measures (over every step, or from step 20 on when automatic),
    ** after checking that the plot's bounds lie within it, rounded up. */
    static double extremeWithinBounds(PlotRecord *plot, int steps, int from)
    {
        double re = 0.0, im = 0.0;
        for (int j = 0; j < 3; ++j)
            for (int s = from; s < steps; ++s) {
                Complex p = branchPoints(plot, j).at(s);
                im = std::max(im, std::fabs(p.im));
                if (std::fabs(p.re) > std::fabs(re))
                    re = p.re;
            }
        double extreme = im > std::fabs(re) ? im : re, m = std::ceil(std::fabs(extreme));
        EXPECT_GE(plot->xMin, -m);
        EXPECT_LE(plot->xMax, m);
        EXPECT_GE(plot->yMin, -m);
        EXPECT_LE(plot->yMax, m);
        return extreme;
    }
};

TEST_F(RootLocusCommand, AutomaticRunThenManualRunIntoTheReusedPlot)
{
    EXPECT_EQ(praxaCmd(296), 1);        /* reuse plots on */
    optionsMemory.autoRange = 1;
    EXPECT_EQ(praxaCmd(240), 1);
    PlotRecord *plot = lastPlot();
    ASSERT_NE(plot, nullptr);
    EXPECT_STREQ(plot->title, "Root Locus-1");
    ASSERT_NE(plot->paramInfo, nullptr);
    EXPECT_EQ(plot->paramInfo->poleCount, 3);
    EXPECT_EQ(plot->paramInfo->zeroCount, 0);
    /* 20/(s(s+1)(s+10)): the real branch runs out to the left beyond the box of 20. */
    double extreme = extremeWithinBounds(plot, 50, 19);
    EXPECT_LT(extreme, -40.0);
    EXPECT_EQ(plot->xMin, -std::ceil(-extreme)) << "the host's rounded bound is beyond the extreme and is limited";
    EXPECT_TRUE(std::filesystem::exists(dir.file("Root-Locus.svg")));

    PlotParamInfo *first = plot->paramInfo;
    optionsMemory.autoRange = 0;
    gainRange = {20, 0.0, 50.0};
    ASSERT_EQ(praxaCmd(240), 1);
    ASSERT_EQ(hostapp::plotBlocks().size(), 1u) << "the second run draws into the same plot";
    plot = lastPlot();
    /* The second run hangs a new record on the plot, which has freed the first. */
    ASSERT_NE(plot->paramInfo, first);
    EXPECT_EQ(plot->pointCount, 20u);
    EXPECT_EQ(plot->paramInfo->parameters[19], 50.0);
    /* 20 K = 1000: s^3 + 11 s^2 + 10 s + 1000 has its real root below -11. */
    EXPECT_LT(extremeWithinBounds(plot, 20, 0), -11.0);
}

}
