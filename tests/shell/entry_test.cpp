/*
** Entry points: the menu praxaInit builds, the command prologue (version check,
** settings reload, wait cursor), the about box, Reuse Plots and host events.
*/
#include <gtest/gtest.h>

#include "compensator/compensator.h"
#include "hostapp/host_state.h"
#include "platform/driver.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "support.h"

using namespace testing_support;

namespace {

class EntryPoints : public ::testing::Test {
protected:
    TempDir dir;
    void SetUp() override
    {
        reusePlots = 0;
        startHostWithPlugin(dir.file("tervan.ini"), dir.path);
        platform::clearTranscript();
    }
    std::string menuText(HMENU menu, UINT position)
    {
        char text[64] = "";
        GetMenuStringA(menu, position, text, sizeof text, MF_BYPOSITION);
        return text;
    }
};

TEST_F(EntryPoints, MenuHasTwelveItemsInOrderAtPositionFour)
{
    HMENU bar = GetMenu(hostapp::host().mainWindow);
    ASSERT_EQ(GetSubMenu(bar, 4), praxaMenu);
    EXPECT_EQ(menuText(bar, 4), "&Praxa");
    const std::pair<UINT, const char *> expected[] = {
        {206, "&Linearize..."}, {234, "&Select Input/Output Points"}, {243, "&Transfer Function Info"},
        {249, "Compensator &Design"}, {254, "Select &Compensator Block"}, {240, "&Root Locus"},
        {241, "Root Locus &Options"}, {250, "&Nyquist Response"}, {242, "&Frequency Response"},
        {235, "Fre&quency Range"}, {246, "&Preferences"}, {296, "Re&use Plots"},
    };
    ASSERT_EQ(GetMenuItemCount(praxaMenu), 12);
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(GetMenuItemID(praxaMenu, i), expected[i].first) << "item " << i;
        EXPECT_EQ(menuText(praxaMenu, (UINT)i), expected[i].second) << "item " << i;
    }
    EXPECT_EQ(GetMenuState(praxaMenu, 296, MF_BYCOMMAND) & MF_CHECKED, 0u);
}

/* The file's text after each toggle is the command line's to check. */
TEST_F(EntryPoints, ReusePlotsFromTheFileChecksTheMenuItemAndTogglesIt)
{
    writeFile(dir.file("tervan.ini"), "[tervan]\nprxReusePlots=1\n");
    startHostWithPlugin(dir.file("tervan.ini"), dir.path);
    EXPECT_EQ(negativeFrequencies, 0);
    for (int expected : {1, 0, 1}) {
        EXPECT_EQ(reusePlots, expected);
        EXPECT_EQ(GetMenuState(praxaMenu, 296, MF_BYCOMMAND) & MF_CHECKED, expected ? (UINT)MF_CHECKED : 0u);
        EXPECT_EQ(praxaCmd(296), 1);
    }
}

/* An older or a newer host: the message, and nothing else happens. */
TEST_F(EntryPoints, WrongHostVersionGetsTheMessageAndChangesNothing)
{
    struct Row {
        int version, revision, command;
        const char *message;
    } rows[] = {
        {220, 3, 296, "[Tervan] Praxa requires version 23.0.00 of Tervan but you've got version 22.0.03\n"},
        {231, 0, 242, "[Tervan] Praxa requires version 23.0.00 of Tervan but you've got version 23.1.00\n"},
    };
    for (const Row &row : rows) {
        platform::clearTranscript();
        hostapp::host().version = row.version;
        hostapp::host().revision = row.revision;
        EXPECT_EQ(praxaCmd(row.command), 1);
        EXPECT_EQ(reusePlots, 0);
        EXPECT_FALSE(hostapp::host().waitCursor);
        EXPECT_EQ(platform::transcriptText(), row.message);
    }
}

TEST_F(EntryPoints, HostCommandsReturnZeroAfterThePrologue)
{
    writeFile(dir.file("tervan.ini"), "[tervan]\nfreqStart=2\nfreqStop=20\nfreqSteps=7\n");
    EXPECT_EQ(praxaCmd(234), 0);
    EXPECT_TRUE(hostapp::host().waitCursor);
    EXPECT_EQ(frequencyRange.start, 2.0);
    EXPECT_EQ(frequencyRange.stop, 20.0);
    EXPECT_EQ(frequencyRange.steps, 7);
    EXPECT_EQ(praxaCmd(254), 0);
}

TEST_F(EntryPoints, DeletingARememberedPlotForgetsOnlyThatOne)
{
    HostBlock phase{}, magnitude{}, nyquist{}, locus{}, other{};
    bodePhasePlot = &phase;
    bodeMagnitudePlot = &magnitude;
    nyquistPlot = &nyquist;
    rootLocusPlot = &locus;
    EXPECT_EQ(praxaEvent(253, (intptr_t)&other), 0);
    EXPECT_EQ(bodePhasePlot, &phase);
    EXPECT_EQ(praxaEvent(253, (intptr_t)&magnitude), 0);
    EXPECT_EQ(bodeMagnitudePlot, nullptr);
    EXPECT_EQ(bodePhasePlot, &phase);
    EXPECT_EQ(praxaEvent(253, (intptr_t)&locus), 0);
    EXPECT_EQ(rootLocusPlot, nullptr);
    EXPECT_EQ(nyquistPlot, &nyquist);
    EXPECT_EQ(praxaEvent(254, (intptr_t)&nyquist), 0);
    EXPECT_EQ(nyquistPlot, &nyquist);
    bodePhasePlot = nyquistPlot = nullptr;
}

TEST_F(EntryPoints, ResetEventRestoresTheCompensatorOnlyWithANullArgument)
{
    Complex zero = {-1, 0};
    currentCompensator.gain = 7.5;
    currentCompensator.zeroCount = 1;
    currentCompensator.zeros = &zero;
    currentCompensator.poleCount = 2;
    EXPECT_EQ(praxaEvent(256, 1), 0);
    EXPECT_EQ(currentCompensator.gain, 7.5);
    EXPECT_EQ(praxaEvent(255, 0), 0);
    EXPECT_EQ(currentCompensator.zeroCount, 1);
    EXPECT_EQ(praxaEvent(256, 0), 0);
    EXPECT_EQ(currentCompensator.gain, 1.0);
    EXPECT_EQ(currentCompensator.zeroCount, 0);
    EXPECT_EQ(currentCompensator.poleCount, 0);
    EXPECT_EQ(currentCompensator.zeros, &zero);
    currentCompensator = Compensator{};
}

}
