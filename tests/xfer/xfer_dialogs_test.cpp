/*
** tests/xfer/xfer_dialogs_test.cpp: the Transfer Function and Zeros and Poles dialogs as
** timeToFrequency shows them: gain, coefficient rows and their padding, root lists in
** the root lists' own order, help topics and Esc.
*/
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/driver.h"
#include "shell/praxa.h"
#include "support.h"
#include "support/model.h"
#include "xfer/xfer.h"

using namespace testing_support;
using namespace xfertest;
using platform::DialogAction;

namespace {

using XferDialogs = PluginTest;

/* d = 1, A = -2: one zero at -(2 + c), so N(s) = s + v exactly for c = v - 2. */
Model *numeratorConstant(double v) { return new Model(1, {-2}, {1}, {v - 2.0}, 1.0); }

TEST_F(XferDialogs, ModelsShowTheirGainRowsAndRoots)
{
    struct Row {
        const char *name;
        Model *model;
        int flags;
        std::vector<DialogAction> actions;
        std::vector<std::string> shown;
        const char *absent;
    } rows[] = {
        {"2/(s + 1), both dialogs in full", new Model(1, {-1}, {1}, {2}, 0.0), XFER_SHOW_INFO, {},
         {"[dialog] Transfer Function", "  static -1 \"Gain\"", "  static 109 \"2\"",
          "  static 105 \"s^n           Numerator\t\t             Denominator\"",
          "  listbox 106: \"s^0\t1\t    \t1\" | \"s^1\t0\t    \t1\"", "  default-button 1 \"OK\"",
          "  button 9 \"Help\"", "  > default 1", "[end] Transfer Function: 1", "[dialog] Zeros and Poles",
          "  static 109 \"Zeros\t\t                                            Poles\"", "  listbox 107:",
          "  listbox 108: \"(-1,0)\"", "  button 1 \"&OK\"", "  button 9 \"Help\"", "  > default 1",
          "[end] Zeros and Poles: 1"},
         nullptr},
        /* 0.5 (s + 0.5)/(s^2 + 2s + 5): the gain at the display precision, and the eigenvalue
        ** routine's pair -1 -+ 2i with the negative imaginary part first. */
        {"roots unsorted, negative imaginary part first", controllableForm({0.25, 0.5}, {5.0, 2.0}), XFER_SHOW_INFO,
         {}, {"  static 109 \".5\"", "  listbox 107: \"(-.5,0)\"", "  listbox 108: \"(-1,-2)\" | \"(-1,2)\""},
         nullptr},
        /* The numerator text is padded with blanks towards 13 characters, a tab taking 5. */
        {"3 characters: a tab, two blanks", numeratorConstant(2.5), XFER_SHOW_INFO, {},
         {"  listbox 106: \"s^0\t2.5\t  \t2\" | \"s^1\t1\t    \t1\""}, nullptr},
        {"5: one tab alone", numeratorConstant(2.125), XFER_SHOW_INFO, {},
         {"  listbox 106: \"s^0\t2.125\t\t2\" | \"s^1\t1\t    \t1\""}, nullptr},
        {"6: seven blanks", numeratorConstant(2.0625), XFER_SHOW_INFO, {},
         {"  listbox 106: \"s^0\t2.0625       \t2\" | \"s^1\t1\t    \t1\""}, nullptr},
        {"12: one blank", numeratorConstant(2.5000000001), XFER_SHOW_INFO, {},
         {"  listbox 106: \"s^0\t2.5000000001 \t2\" | \"s^1\t1\t    \t1\""}, nullptr},
        {"13: nothing", numeratorConstant(2.50000000001), XFER_SHOW_INFO, {},
         {"  listbox 106: \"s^0\t2.50000000001\t2\" | \"s^1\t1\t    \t1\""}, nullptr},
        {"14: nothing", numeratorConstant(2.500000000001), XFER_SHOW_INFO, {},
         {"  listbox 106: \"s^0\t2.500000000001\t2\" | \"s^1\t1\t    \t1\""}, nullptr},
        /* Help opens each dialog's topic and the dialog stays; Esc ends it with Cancel and
        ** the second dialog still follows. */
        {"help and Esc", new Model(1, {-1}, {1}, {2}, 0.0), XFER_SHOW_INFO,
         {press(9, "TRANSFERINFO_BOX"), escape("TRANSFERINFO_BOX"), press(9, "POLEZERO_BOX"), escape("POLEZERO_BOX")},
         {"[dialog] Transfer Function", "[help] file 43528 topic 1180", "[end] Transfer Function: 2",
          "[dialog] Zeros and Poles", "[help] file 43528 topic 1185", "[end] Zeros and Poles: 2"},
         nullptr},
        {"no dialog without the info flag", new Model(1, {-1}, {1}, {2}, 0.0), 0, {}, {}, "[dialog]"},
        {"nor with the compensator's", new Model(1, {-1}, {1}, {2}, 0.0), XFER_SHOW_COMPENSATOR, {}, {},
         "[dialog] Transfer Function"},
    };
    for (const Row &row : rows) {
        std::unique_ptr<Model> m(row.model);
        platform::clearTranscript();
        queueActions(row.actions);
        double gain = 0.0;
        timeToFrequency(m->A, m->B, m->C, m->D, nullptr, nullptr, &gain, row.flags);
        std::string transcript = platform::transcriptText();
        EXPECT_TRUE(hasLinesInOrder(transcript, row.shown)) << row.name;
        if (row.absent) {
            EXPECT_EQ(transcript.find(row.absent), std::string::npos) << row.name << "\n" << transcript;
        }
        EXPECT_EQ(platform::pendingDialogActions(), 0u) << row.name;
        releasePluginRecords();
    }
}

/* The lists as the root lists hold them, whatever their order. */
TEST_F(XferDialogs, ZerosAndPolesKeepTheRootListsOrder)
{
    Complex zeros[] = {{3, 0}, {-0.5, 0}};
    Complex poles[] = {{0, 0}, {-1, -2}, {-1, 2}, {-7.25, 0}};
    currentXfer.zeros = zeros;
    currentXfer.poles = poles;
    currentXfer.zeroCount = 2;
    currentXfer.poleCount = 4;
    EXPECT_EQ(runDialog("POLEZERO_BOX", poleZeroDlg), 1);
    currentXfer.zeros = currentXfer.poles = nullptr;
    EXPECT_TRUE(hasLinesInOrder(platform::transcriptText(),
                                                 {"  listbox 107: \"(3,0)\" | \"(-.5,0)\"",
                                                  "  listbox 108: \"(0,0)\" | \"(-1,-2)\" | \"(-1,2)\" | \"(-7.25,0)\""}));
}

}
