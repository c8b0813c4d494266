/*
** Menu commands on a loaded diagram: each analysis linearizes first, plots are reused
** or created as the settings say, Nyquist limits the range of a sampled model in memory
** only, and the root locus bounds are clamped to the radius the sweep reached.
*/
#include <gtest/gtest.h>

#include "hostapp/diagram.h"
#include "hostapp/host_state.h"
#include "linearize/linearize.h"
#include "platform/driver.h"
#include "shell/plot_output.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "shell/text.h"
#include "support.h"
#include "support/plugin_plot.h"

using namespace testing_support;

namespace {

class Commands : public PluginTest {
protected:
    std::string settings = dir.file("tervan.ini");

    /* The example loaded on the host started again on `settingsText`. */
    void start(const std::string &example, const std::string &settingsText = "")
    {
        writeFile(settings, settingsText);
        startHostWithPlugin(settings, dir.path);
        ASSERT_TRUE(loadExample(example));
        platform::clearTranscript();
    }
};

TEST_F(Commands, AnalysesStopQuietlyWhenLinearizationFails)
{
    start("servo.json");
    std::string error;
    ASSERT_TRUE(hostapp::selectBlocks({"ref"}, error)) << error;
    platform::clearTranscript();
    EXPECT_EQ(praxaCmd(243), 1);
    EXPECT_EQ(platform::transcriptText(), "[Tervan] No blocks with state in selection\n");
    EXPECT_EQ(praxaCmd(242), 1);
    EXPECT_EQ(bodePhasePlot, nullptr);
}

TEST_F(Commands, FrequencyResponseReusesBothPlotsOnlyWhenAskedAndWhileTheyExist)
{
    start("servo.json", "[tervan]\nprxReusePlots=1\n");
    EXPECT_EQ(praxaCmd(242), 1);
    /* Before each further run: nothing (both plots are reused), the magnitude or the phase
    ** plot deleted, or reuse turned off (both are made anew). */
    for (int before = 0; before < 4; ++before) {
        HostBlock *phase = bodePhasePlot, *magnitude = bodeMagnitudePlot;
        ASSERT_TRUE(phase && magnitude && phase != magnitude) << before;
        if (before == 1 || before == 2)
            praxaEvent(253, (intptr_t)(before == 1 ? magnitude : phase));
        if (before == 3)
            praxaCmd(296);
        EXPECT_EQ(praxaCmd(242), 1);
        EXPECT_EQ(bodePhasePlot == phase, before == 0) << before;
        EXPECT_EQ(bodeMagnitudePlot == magnitude, before == 0) << before;
    }
}

TEST_F(Commands, NyquistOfASampledModelInHertzStopsAtOneHertzInMemoryOnly)
{
    start("sampled_loop.json", "[tervan]\nfreqUnits=210\nfreqStop=100\n");
    EXPECT_EQ(praxaCmd(250), 1);
    EXPECT_NE(nyquistPlot, nullptr);
    EXPECT_EQ(frequencyRange.stop, 1.0);
    EXPECT_NE(readFile(settings).find("freqStop=100\n"), std::string::npos);
    HostBlock *first = nyquistPlot;
    EXPECT_EQ(praxaCmd(250), 1);
    EXPECT_NE(nyquistPlot, first) << "a Nyquist plot is never reused";
}

TEST(RootLocusBounds, RadiusTwoPointThreeClampsEveryBoundBeyondThree)
{
    PlotRecord plot{};
    std::tie(plot.xMin, plot.xMax, plot.yMin, plot.yMax) = std::tuple(-7.5, 2.9, -3.2, 3.01);
    clampPlotToRadius(&plot, 2.3);
    EXPECT_EQ(boundsOf(&plot), (std::vector<double>{-3.0, 2.9, -3.0, 3.0}));
    plot.xMax = 12;
    clampPlotToRadius(&plot, -4.0);
    EXPECT_EQ(plot.xMax, 4.0);
}

}
