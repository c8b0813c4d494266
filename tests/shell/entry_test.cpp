/*
** Entry points: the menu praxaInit builds, the command prologue (version check,
** settings reload, wait cursor), Reuse Plots and host events (the about box is the
** command line's to check).
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

class EntryPoints : public PluginTest {
protected:
    std::string menuText(HMENU menu, UINT position)
    {
        char text[64] = "";
        GetMenuStringA(menu, position, text, sizeof text, MF_BYPOSITION);
        return text;
    }
};

/* Reuse Plots is checked as the file says and each toggle moves the check mark; the file's
** text after each toggle is the command line's to check. */
TEST_F(EntryPoints, MenuHasTwelveItemsInOrderAtPositionFourAndReusePlotsAsTheFileSays)
{
    const std::pair<UINT, const char *> expected[] = {
        {206, "&Linearize..."}, {234, "&Select Input/Output Points"}, {243, "&Transfer Function Info"},
        {249, "Compensator &Design"}, {254, "Select &Compensator Block"}, {240, "&Root Locus"},
        {241, "Root Locus &Options"}, {250, "&Nyquist Response"}, {242, "&Frequency Response"},
        {235, "Fre&quency Range"}, {246, "&Preferences"}, {296, "Re&use Plots"},
    };
    for (int reuse : {0, 1}) {
        writeFile(dir.file("tervan.ini"), "[tervan]\nprxReusePlots=" + std::to_string(reuse) + "\n");
        startHostWithPlugin(dir.file("tervan.ini"), dir.path);
        HMENU bar = GetMenu(hostapp::host().mainWindow);
        ASSERT_EQ(GetSubMenu(bar, 4), praxaMenu);
        EXPECT_EQ(menuText(bar, 4), "&Praxa");
        ASSERT_EQ(GetMenuItemCount(praxaMenu), 12);
        for (int i = 0; i < 12; ++i) {
            EXPECT_EQ(GetMenuItemID(praxaMenu, i), expected[i].first) << "item " << i;
            EXPECT_EQ(menuText(praxaMenu, (UINT)i), expected[i].second) << "item " << i;
        }
        for (int checked : {reuse, 1 - reuse, reuse}) {
            EXPECT_EQ(reusePlots, checked);
            EXPECT_EQ(GetMenuState(praxaMenu, 296, MF_BYCOMMAND) & MF_CHECKED, checked ? (UINT)MF_CHECKED : 0u);
            EXPECT_EQ(praxaCmd(296), 1);
        }
    }
}

/* The prologue of every command: a newer host (an older one is the command line's), or a
** negative revision, gets the message and nothing else; an id that is no command of the plug-in is left alone;
** 234 and 254 are the host's to carry out once the settings are reloaded. */
TEST_F(EntryPoints, CommandPrologueChecksTheHostThenReloadsTheSettings)
{
    const std::string wrong = "[Tervan] Praxa requires version 23.0.00 of Tervan but you've got version ";
    const struct {
        int version, revision, command, handled;
        std::string message;
        bool reloads;   /* the settings, with the wait cursor on */
    } rows[] = {
        {231, 0, 242, 1, wrong + "23.1.00\n", false},
        {230, -1, 296, 1, wrong + "23.0.-1\n", false},
        {230, 0, 207, 0, "", false},
        {230, 0, 234, 0, "", true},
        {230, 0, 254, 0, "", true},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.command);
        SetUp();    /* a fresh host on the default settings */
        int steps = frequencyRange.steps;
        writeFile(dir.file("tervan.ini"), "[tervan]\nfreqSteps=7\n");
        hostapp::host().version = row.version;
        hostapp::host().revision = row.revision;
        EXPECT_EQ(praxaCmd(row.command), row.handled);
        EXPECT_EQ(platform::transcriptText(), row.message);
        EXPECT_EQ(reusePlots, 0);
        EXPECT_EQ(hostapp::host().waitCursor, row.reloads);
        EXPECT_EQ(frequencyRange.steps, row.reloads ? 7 : steps);
    }
}

/* A deleted block that is a remembered plot is forgotten, and only that one. */
TEST_F(EntryPoints, DeletingARememberedPlotForgetsOnlyThatOne)
{
    HostBlock blocks[4]{}, other{};
    HostBlock **plots[] = {&bodePhasePlot, &bodeMagnitudePlot, &nyquistPlot, &rootLocusPlot};
    for (int deleted = 0; deleted < 4; ++deleted) {
        for (int i = 0; i < 4; ++i)
            *plots[i] = &blocks[i];
        EXPECT_EQ(praxaEvent(253, (intptr_t)&other), 0);
        EXPECT_EQ(praxaEvent(254, (intptr_t)&blocks[deleted]), 0);
        EXPECT_EQ(praxaEvent(253, (intptr_t)&blocks[deleted]), 0);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(*plots[i], i == deleted ? nullptr : &blocks[i]) << "deleted " << deleted << ", plot " << i;
    }
}

/* Only 256 with a null argument resets the compensator; what the reset leaves is the
** compensator dialog's to check. */
TEST_F(EntryPoints, ResetEventRestoresTheCompensatorOnlyWithANullArgument)
{
    const struct {
        int code, arg;
        double gain;
    } rows[] = {{256, 1, 7.5}, {255, 0, 7.5}, {256, 0, 1.0}};
    for (const auto &row : rows) {
        currentCompensator.gain = 7.5;
        EXPECT_EQ(praxaEvent(row.code, row.arg), 0);
        EXPECT_EQ(currentCompensator.gain, row.gain) << row.code << " " << row.arg;
    }
}

}
