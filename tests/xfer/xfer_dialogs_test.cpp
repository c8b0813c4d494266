/*
** tests/xfer/xfer_dialogs_test.cpp: the Transfer Function and Zeros and Poles dialogs as
** timeToFrequency shows them: gain, coefficient rows and their padding, root lists in
** the eigenvalue routine's order, help topics, the templates themselves, and the PI loop
** example through the command line.
*/
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/driver.h"
#include "resources/prxdlg.h"
#include "shell/praxa.h"
#include "support.h"
#include "tests/xfer/model.h"
#include "xfer/xfer.h"

using namespace xfertest;
using platform::ActionKind;
using platform::DialogAction;

namespace {

const std::vector<std::string> &lines() { return platform::transcript(); }

/* Index of the transcript line "[dialog] title" (the n-th one), or -1. */
int dialogLine(const std::string &title, int occurrence = 0)
{
    for (size_t i = 0; i < lines().size(); i++)
        if (lines()[i] == "[dialog] " + title && occurrence-- == 0)
            return (int)i;
    return -1;
}

/* The snapshot line of control `id` of kind `kind` in the dialog shown at line `start`. */
std::string controlLine(int start, const std::string &kind, int id)
{
    std::string prefix = "  " + kind + " " + std::to_string(id);
    for (size_t i = start + 1; i < lines().size() && lines()[i].rfind("  ", 0) == 0; i++)
        if (lines()[i].rfind(prefix + " ", 0) == 0 || lines()[i].rfind(prefix + ":", 0) == 0)
            return lines()[i];
    return "";
}

/* The entries of list box `id` as the snapshot of the dialog titled `title` shows them. */
std::vector<std::string> listEntries(const std::string &title, int id)
{
    int start = dialogLine(title);
    EXPECT_GE(start, 0) << title;
    if (start < 0)
        return {};
    std::string line = controlLine(start, "listbox", id);
    std::string prefix = "  listbox " + std::to_string(id) + ":";
    EXPECT_EQ(line.rfind(prefix, 0), 0u) << line;
    std::string rest = line.substr(prefix.size());
    std::vector<std::string> entries;
    if (rest.empty())
        return entries;
    EXPECT_EQ(rest.substr(0, 2), " \"");
    rest = rest.substr(2, rest.size() - 3);     /* between the outer quotes */
    size_t from = 0, bar;
    while ((bar = rest.find("\" | \"", from)) != std::string::npos) {
        entries.push_back(rest.substr(from, bar - from));
        from = bar + 5;
    }
    entries.push_back(rest.substr(from));
    return entries;
}

int lineOf(const std::string &text)
{
    for (size_t i = 0; i < lines().size(); i++)
        if (lines()[i] == text)
            return (int)i;
    return -1;
}

class XferDialogs : public ::testing::Test {
protected:
    testing_support::TempDir dir;
    void SetUp() override { testing_support::startHostWithPlugin(dir.file("praxa.ini"), dir.path); }

    void showInfo(Model &m)
    {
        platform::clearTranscript();
        timeToFrequency(m.A, m.B, m.C, m.D, nullptr, nullptr, nullptr, XFER_SHOW_INFO);
    }
};

}

TEST_F(XferDialogs, TwoOverSPlusOneShowsGainRowsAndItsPole)
{
    Model m(1, {-1}, {1}, {2}, 0.0);
    platform::clearTranscript();
    double gain = 0.0;
    EXPECT_EQ(timeToFrequency(m.A, m.B, m.C, m.D, nullptr, nullptr, &gain, XFER_SHOW_INFO), 0);
    EXPECT_EQ(gain, 2.0);

    int info = dialogLine("Transfer Function"), poleZero = dialogLine("Zeros and Poles");
    ASSERT_GE(info, 0) << platform::transcriptText();
    ASSERT_GT(poleZero, info);
    EXPECT_LT(lineOf("[end] Transfer Function: 1"), poleZero);
    EXPECT_GT(lineOf("[end] Zeros and Poles: 1"), poleZero);

    EXPECT_EQ(controlLine(info, "static", IDC_XFERINFO_GAIN), "  static 109 \"2\"");
    EXPECT_EQ(controlLine(info, "static", IDC_XFERINFO_HEADING),
              "  static 105 \"s^n           Numerator\t\t             Denominator\"");
    EXPECT_EQ(listEntries("Transfer Function", IDC_XFERINFO_ROWS),
              (std::vector<std::string>{"s^0\t1\t    \t1", "s^1\t0\t    \t1"}));

    EXPECT_EQ(controlLine(poleZero, "static", IDC_POLEZERO_HEADING),
              "  static 109 \"Zeros\t\t                                            Poles\"");
    EXPECT_TRUE(listEntries("Zeros and Poles", IDC_POLEZERO_ZEROS).empty());
    EXPECT_EQ(listEntries("Zeros and Poles", IDC_POLEZERO_POLES), (std::vector<std::string>{"(-1,0)"}));
    EXPECT_EQ(platform::refusedDialogCount(), 0);
    EXPECT_EQ(currentXfer.gain, 2.0);
}

TEST_F(XferDialogs, NumeratorTextsArePaddedTowardsThirteenCharacters)
{
    /* d = 1, A = -2: one zero at -(2 + c), so N(s) = s + v exactly for c = v - 2 */
    struct Case {
        double v;
        const char *row;
    } cases[] = {
        {2.5, "s^0\t2.5\t  \t2"},                   /* 3 characters: a tab, two blanks */
        {2.125, "s^0\t2.125\t\t2"},                 /* 5: one tab alone */
        {2.0625, "s^0\t2.0625       \t2"},          /* 6: seven blanks */
        {2.5000000001, "s^0\t2.5000000001 \t2"},    /* 12: one blank */
        {2.50000000001, "s^0\t2.50000000001\t2"},   /* 13: nothing */
        {2.500000000001, "s^0\t2.500000000001\t2"}, /* 14: nothing */
    };
    for (const Case &c : cases) {
        Model m(1, {-2}, {1}, {c.v - 2.0}, 1.0);
        showInfo(m);
        EXPECT_EQ(listEntries("Transfer Function", IDC_XFERINFO_ROWS),
                  (std::vector<std::string>{c.row, "s^1\t1\t    \t1"}));
    }
}

namespace {

DLGPROC spiedProcedure;
INT_PTR initResult;
bool focusOnOkAfterInit;

/* Runs spiedProcedure, noting what WM_INITDIALOG returned and where it left the focus. */
INT_PTR initSpy(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    INT_PTR result = spiedProcedure(dialog, message, wParam, lParam);
    if (message == WM_INITDIALOG) {
        initResult = result;
        focusOnOkAfterInit = GetFocus() == GetDlgItem(dialog, IDOK);
    }
    return result;
}

}

TEST_F(XferDialogs, RootsAreListedUnsortedInTheRootListsOrderWithTheFocusOnOk)
{
    /* 0.5 (s + 0.5)/(s^2 + 2s + 5): gain at the display precision, zero -0.5, and the
    ** eigenvalue routine's pair -1 -+ 2i with the negative imaginary part first */
    std::unique_ptr<Model> m(controllableForm({0.25, 0.5}, {5.0, 2.0}));
    showInfo(*m);
    EXPECT_EQ(controlLine(dialogLine("Transfer Function"), "static", IDC_XFERINFO_GAIN), "  static 109 \".5\"");
    EXPECT_EQ(listEntries("Zeros and Poles", IDC_POLEZERO_ZEROS), (std::vector<std::string>{"(-.5,0)"}));
    EXPECT_EQ(listEntries("Zeros and Poles", IDC_POLEZERO_POLES),
              (std::vector<std::string>{"(-1,-2)", "(-1,2)"}));

    Complex zeros[] = {{3, 0}, {-0.5, 0}};
    Complex poles[] = {{0, 0}, {-1, -2}, {-1, 2}, {-7.25, 0}};
    currentXfer.zeros = zeros;
    currentXfer.poles = poles;
    currentXfer.zeroCount = 2;
    currentXfer.poleCount = 4;
    platform::clearTranscript();
    spiedProcedure = poleZeroDlg;
    focusOnOkAfterInit = false;
    EXPECT_EQ(runDialog("POLEZERO_BOX", initSpy), 1);
    currentXfer.zeros = currentXfer.poles = nullptr;
    EXPECT_EQ(initResult, 0);
    EXPECT_TRUE(focusOnOkAfterInit);
    EXPECT_EQ(listEntries("Zeros and Poles", IDC_POLEZERO_ZEROS), (std::vector<std::string>{"(3,0)", "(-.5,0)"}));
    EXPECT_EQ(listEntries("Zeros and Poles", IDC_POLEZERO_POLES),
              (std::vector<std::string>{"(0,0)", "(-1,-2)", "(-1,2)", "(-7.25,0)"}));
}

/* Help opens each dialog's topic and the dialog stays; Esc then ends it with Cancel and
** the second dialog still follows. */
TEST_F(XferDialogs, HelpOpensEachDialogsTopicAndEscapeEndsItWithCancel)
{
    Model m(1, {-1}, {1}, {2}, 0.0);
    for (const char *name : {"TRANSFERINFO_BOX", "POLEZERO_BOX"}) {
        platform::queueDialogAction(DialogAction{name, ActionKind::Click, 9, "", 0});
        platform::queueDialogAction(DialogAction{name, ActionKind::Cancel, 0, "", 0});
    }
    showInfo(m);
    int infoHelp = lineOf("[help] file 43528 topic 1180");
    int poleZeroHelp = lineOf("[help] file 43528 topic 1185");
    ASSERT_GE(infoHelp, 0) << platform::transcriptText();
    ASSERT_GE(poleZeroHelp, 0) << platform::transcriptText();
    EXPECT_GT(infoHelp, dialogLine("Transfer Function"));
    EXPECT_LT(infoHelp, lineOf("[end] Transfer Function: 2"));
    EXPECT_GT(poleZeroHelp, dialogLine("Zeros and Poles"));
    EXPECT_LT(poleZeroHelp, lineOf("[end] Zeros and Poles: 2"));
    EXPECT_EQ(platform::pendingDialogActions(), 0u);
}

TEST_F(XferDialogs, NoDialogWithoutTheInfoFlag)
{
    Model m(1, {-1}, {1}, {2}, 0.0);
    platform::clearTranscript();
    timeToFrequency(m.A, m.B, m.C, m.D, nullptr, nullptr, nullptr, 0);
    timeToFrequency(m.A, m.B, m.C, m.D, nullptr, nullptr, nullptr, XFER_SHOW_COMPENSATOR);
    EXPECT_EQ(dialogLine("Transfer Function"), -1);
    EXPECT_EQ(dialogLine("Zeros and Poles"), -1);
}
