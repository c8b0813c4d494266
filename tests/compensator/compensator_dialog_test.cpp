/*
** tests/compensator/compensator_dialog_test.cpp: the Compensator Design dialog: what it
** shows at first use, editing the lists (Add, Del, Change, the current list), reading
** them and the root texts, OK with the hand-over to the host, Cancel, and the reset event.
*/
#include <cmath>

#include "tests/compensator/compensator_fixture.h"

using namespace comptest;

namespace {

using Entries = std::vector<std::string>;

DialogAction zeroText(const std::string &text) { return typed(IDC_COMP_ZERO_EDIT, text, DIALOG); }
DialogAction poleText(const std::string &text) { return typed(IDC_COMP_POLE_EDIT, text, DIALOG); }
DialogAction pick(int list, int index) { return {DIALOG, platform::ActionKind::Select, list, "", index}; }
const DialogAction ADD = press(IDC_COMP_ADD, DIALOG), CHANGE = press(IDC_COMP_CHANGE, DIALOG),
                   DEL = press(IDC_COMP_DEL, DIALOG);

}

TEST_F(CompensatorTest, FirstUseOkAndTheResetEvent)
{
    design();
    const std::string firstUse = "  edit 1023 \"1\"\n  listbox 107:\n  listbox 108:\n";
    EXPECT_EQ(shownDesign(), firstUse);
    EXPECT_EQ(shownControl("Compensator Design", "listbox", IDC_COMP_PLANT),
              "  listbox 1022: \"\t(0,0)\" | \"\t(-1,0)\"");
    /* Unscripted, Enter presses Replot, which does not end the dialog: it is cancelled. */
    EXPECT_EQ(transcriptLine("[end] Compensator Design: 2"), (int)platform::transcript().size() - 1)
        << platform::transcriptText();
    EXPECT_TRUE(hostCommands.empty());
    EXPECT_EQ(currentCompensator.gain, 1.0);

    /* OK reads the dialog, hands the record over (request 4) and sends command 255 to the
    ** main window; the loop lists hold the compensator's roots first, then the plant's. */
    platform::clearTranscript();
    queueLead("2.5");
    queueRoots(IDC_COMP_POLE_EDIT, {"-20,3"});
    click(IDOK);
    design();
    EXPECT_EQ(currentCompensator.gain, 2.5);
    ASSERT_EQ(currentCompensator.poleCount, 2);
    EXPECT_EQ(currentCompensator.poles[1], (Complex{-20, 3}));
    int request = transcriptLine("[compensator] gain 2.5 zeros (-1,0) poles (-10,0) (-20,3)");
    EXPECT_GT(request, transcriptLine("[end] Compensator Design: 1")) << platform::transcriptText();
    EXPECT_EQ(hostCommands, (std::vector<std::pair<WPARAM, LPARAM>>{{255, 0}}));
    ASSERT_EQ(loopZeroCount, 1);
    EXPECT_EQ(std::vector<Complex>(loopPoles, loopPoles + loopPoleCount),
              (std::vector<Complex>{{-10, 0}, {-20, 3}, {0, 0}, {-1, 0}}));

    /* The reset event between invocations: gain one and empty lists again, arrays kept. */
    Complex *poles = currentCompensator.poles;
    EXPECT_EQ(praxaEvent(EVENT_RESET_COMPENSATOR, 0), 0);
    EXPECT_EQ(currentCompensator.poles, poles);
    platform::clearTranscript();
    design();
    EXPECT_EQ(shownDesign(), firstUse);
}

/* Editing the lists, as the dialog holds them when OK is pressed, and as the record reads them. */
TEST_F(CompensatorTest, ListEditingAsTheDialogHoldsItAtOk)
{
    /* The long root's imaginary part, 4092 ones, overflows to infinity. */
    const std::string longRoot = "-3," + std::string(5000, '1');
    struct Row {
        const char *name;
        std::vector<DialogAction> actions;
        Entries zeros, poles;
        int zeroSelected, poleSelected;
        std::vector<Complex> recordZeros;
        double gain;
        int list, edit;                 /* the current list and its edit afterwards */
    } rows[] = {
        /* Add appends the normalized root and selects it; unreadable text reads as 0. */
        {"add",
         {zeroText("(-2"), ADD, zeroText("3"), ADD, poleText("-1, 2"), ADD, poleText("(-1, -2)"), ADD, poleText("x"),
          ADD},
         {"(-2,0)", "(3,0)"}, {"(-1,2)", "(-1,-2)", "(0,0)"}, 1, 2, {{-2, 0}, {3, 0}}, 1.0,
         IDC_COMP_POLES, IDC_COMP_POLE_EDIT},
        /* Change keeps the typed text, which is still read as a root. */
        {"change",
         {zeroText("-5"), ADD, zeroText("-7"), ADD, pick(IDC_COMP_ZEROS, 0), zeroText("-2, 1"), CHANGE},
         {"-2, 1", "(-7,0)"}, {}, 0, -1, {{-2, 1}, {-7, 0}}, 1.0, IDC_COMP_ZEROS, IDC_COMP_ZERO_EDIT},
        /* Del removes the selected entry; the one after it takes its place and the selection. */
        {"delete",
         {zeroText("-5"), ADD, zeroText("-7"), ADD, zeroText("-9"), ADD, pick(IDC_COMP_ZEROS, 1), DEL},
         {"(-5,0)", "(-9,0)"}, {}, 1, -1, {{-5, 0}, {-9, 0}}, 1.0, IDC_COMP_ZEROS, IDC_COMP_ZERO_EDIT},
        /* Selecting an entry copies it into the paired edit and makes its list current; an
        ** empty text reads as 0. */
        {"select",
         {poleText("-3"), ADD, zeroText("-4"), pick(IDC_COMP_POLES, 0), poleText(""), pick(IDC_COMP_POLES, 0), ADD},
         {}, {"(-3,0)", "(-3,0)"}, -1, 1, {}, 1.0, IDC_COMP_POLES, IDC_COMP_POLE_EDIT},
        /* Long texts are cut to the work buffers: 2e100 to 63 characters, 2e62. */
        {"long texts",
         {typed(IDC_COMP_GAIN, "2" + std::string(100, '0'), DIALOG), zeroText("-1"), ADD,
          pick(IDC_COMP_ZEROS, 0), zeroText(longRoot), CHANGE},
         {longRoot.substr(0, 4095)}, {}, 0, -1, {{-3, INFINITY}}, 2e62, IDC_COMP_ZEROS, IDC_COMP_ZERO_EDIT},
    };
    for (const Row &row : rows) {
        queueActions(row.actions);
        click(IDOK);
        EXPECT_EQ(designSpied(), IDOK) << row.name;
        EXPECT_EQ(platform::scriptErrorCount(), 0) << row.name;
        EXPECT_EQ(zerosAtEnd.entries, row.zeros) << row.name;
        EXPECT_EQ(polesAtEnd.entries, row.poles) << row.name;
        EXPECT_EQ(zerosAtEnd.selected, row.zeroSelected) << row.name;
        EXPECT_EQ(polesAtEnd.selected, row.poleSelected) << row.name;
        EXPECT_EQ(currentCompensator.gain, row.gain) << row.name;
        const Compensator &record = currentCompensator;
        EXPECT_EQ(std::vector<Complex>(record.zeros, record.zeros + record.zeroCount), row.recordZeros) << row.name;
        EXPECT_EQ(currentList, row.list) << row.name;
        EXPECT_EQ(currentEdit, row.edit) << row.name;
        /* the dialog opens with the focus on OK, set by the procedure itself */
        EXPECT_TRUE(focusOnOkAfterInit) << row.name;
        EXPECT_EQ(initDialogResult, 0) << row.name;
        resetCompensator();
        currentList = currentEdit = 0;
    }
}

TEST_F(CompensatorTest, RootTextsParseAsTheUserTypesThem)
{
    const struct {
        const char *text;
        Complex root;
    } cases[] = {
        {"3", {3, 0}}, {"(3", {3, 0}}, {"-1,2", {-1, 2}}, {"(-1,2)", {-1, 2}}, {"(-1, 2)", {-1, 2}},
        {"((( -4.5e1 ,-0.25)", {-45, -0.25}}, {"", {0, 0}}, {"abc,7", {0, 7}}, {"1,abc", {1, 0}}, {"2,3,4", {2, 3}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(parseRootText(c.text), c.root) << c.text;
}
