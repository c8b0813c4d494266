/*
** Settings and their dialogs: the range options, the preferences and the root locus
** options, driven as a user would, with the transcript and the settings file checked.
*/
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "platform/driver.h"
#include "shell/option_dialogs.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "support.h"

using namespace testing_support;

namespace {

/* Sessions of the praxa executable on a settings file: what the dialogs show and what the
** file holds afterwards (keys are rewritten in place, new ones appended in writing order). */
TEST(SettingsSessions, DialogsShowAndWriteTheSettings)
{
    const char *const ini = "tervan.ini", *const script = "--script {dir}/session.txt";
    /* Files that the sessions leave as they were. */
    const char *const ranges = "[tervan]\nfreqStart=0.5\nfreqStop=50\nfreqSteps=40\n",
                      *const handEdited = "[tervan]\nfreqStart=2\nfreqStop=2000\nfreqSteps=300\nrlocStart=1.5\n"
                                          "rlocStop=7\nrlocSteps=9\nrlocAutoRange=0\n",
                      *const units = "[tervan]\nprxReusePlots=1\nuseNegativeFrequenciesInNyquistPlot=1\n"
                                     "freqUnits=210\nphaseUnits=213\nmagUnits=215\n";
    const Session rows[] = {
        /* The first range dialog shows its initial memory; OK writes both ranges, at the
        ** display precision. */
        {"first range dialog: step count one refused, two accepted", {},
         "frequency-range --type 102=0.123456789 --type 103=2 --type 104=1 --click 1 --type 104=2", 0,
         {"[dialog] Bode Frequency Range", "  edit 102 \"103\"", "  edit 103 \"104\"", "  edit 104 \"102\"",
          "  checkbox 1029 \"Auto Range\" [ ] (hidden)", "[Tervan] step count too low", "  > type 104 \"2\"",
          "[end] Bode Frequency Range: 1"},
         nullptr,
         {{ini, "[tervan]\nrlocSteps=2\nrlocAutoRange=0\nrlocStart=.123457\nrlocStop=2\n"
                "freqSteps=2\nfreqStart=.123457\nfreqStop=2\n"}}},
        /* The gain range dialog shows the memory the frequency range left, and writes the
        ** frequency keys from the frequency range, not from what it edits. */
        {"gain range dialog after the frequency range",
         {{"session.txt", "frequency-range --start 1 --stop 10 --steps 20\n"
                          "rlocus-options --start 2 --stop 30 --steps 25\n  check 1029\n"}},
         script, 0,
         {"[dialog] Root Locus Gain Range", "  edit 102 \"1\"", "  edit 103 \"10\"", "  edit 104 \"20\"",
          "  checkbox 1029 \"Auto Range\" [ ]", "[end] Root Locus Gain Range: 1"},
         nullptr,
         {{ini, "[tervan]\nrlocSteps=25\nrlocAutoRange=1\nrlocStart=2\nrlocStop=30\n"
                "freqSteps=20\nfreqStart=1\nfreqStop=10\n"}}},
        /* A refused entry is stored before the check: the next dialog shows it, the file
        ** does not get it. */
        {"start must be less than stop",
         {{ini, ranges}, {"session.txt", "frequency-range --start 5 --stop 5\nfrequency-range --cancel\n"}},
         script, 1,
         {"[Tervan] Start must be less than Stop", "[refused] Bode Frequency Range", "[end] Bode Frequency Range: 2",
          "[dialog] Bode Frequency Range", "  edit 102 \"5\"", "  edit 103 \"5\"", "  edit 104 \"102\""},
         nullptr, {{ini, ranges}}},
        /* Every range key is read at the start (the auto range against its default, on): the
        ** gain range dialog shows the root locus keys and writes back the frequency keys it read. */
        {"hand-edited range keys", {{ini, handEdited}}, "rlocus-options", 0,
         {"  edit 102 \"1.5\"", "  edit 103 \"7\"", "  edit 104 \"9\"", "  checkbox 1029 \"Auto Range\" [ ]"}, nullptr,
         {{ini, handEdited}}},
        {"empty and missing keys leave the values alone", {{ini, "[tervan]\nfreqStart=\nfreqStop=900\n"}},
         "rlocus-options", 0, {"  edit 102 \"103\"", "  checkbox 1029 \"Auto Range\" [x]"}, nullptr,
         {{ini, "[tervan]\nfreqStart=.1\nfreqStop=900\nrlocSteps=102\nrlocAutoRange=1\nrlocStart=103\nrlocStop=104\n"
                "freqSteps=50\n"}}},
        {"preferences show the defaults; Cancel writes nothing", {}, "preferences --cancel", 0,
         {"[dialog] Praxa Preferences", "  edit 203 \"6\"", "  checkbox 1035 \"Negative Frequencies in Nyquist Plot\" [ ]",
          "  radio 211 \"Radians/Second\" [x]", "  radio 210 \"Hertz\" [ ]", "  radio 213 \"Radians\" [ ]",
          "  radio 212 \"Degrees\" [x]", "  radio 216 \"Log 10\" [x]", "  radio 215 \"Decibels\" [ ]",
          "  edit 200 \"1e-055\"", "  edit 201 \"1e-060\"", "[end] Praxa Preferences: 2"},
         nullptr, {{ini, nullptr}}},
        /* OK writes back what was read, the reuse flag too: the file stays as it was. */
        {"unit keys and flags are read at the start", {{ini, units}}, "preferences", 0,
         {"  checkbox 1035 \"Negative Frequencies in Nyquist Plot\" [x]", "  radio 211 \"Radians/Second\" [ ]",
          "  radio 210 \"Hertz\" [x]", "  radio 213 \"Radians\" [x]", "  radio 212 \"Degrees\" [ ]",
          "  radio 216 \"Log 10\" [ ]", "  radio 215 \"Decibels\" [x]"},
         nullptr, {{ini, units}}},
        /* Precision and thresholds live in memory only: the second look shows them. */
        {"preferences OK writes the unit keys",
         {{"session.txt", "preferences\n  check 210\n  check 213\n  check 215\n  check 1035\n  type 203 3\n"
                          "  type 200 1e-20\n  type 201 2.5e-30\npreferences --cancel\n"}},
         script, 0,
         {"[end] Praxa Preferences: 1", "[dialog] Praxa Preferences", "  edit 203 \"3\"",
          "  checkbox 1035 \"Negative Frequencies in Nyquist Plot\" [x]", "  radio 210 \"Hertz\" [x]",
          "  radio 213 \"Radians\" [x]", "  radio 215 \"Decibels\" [x]", "  edit 200 \"1e-020\"",
          "  edit 201 \"2.5e-030\""},
         nullptr,
         {{ini, "[tervan]\nphaseUnits=213\nmagUnits=215\nfreqUnits=210\nprxReusePlots=0\n"
                "useNegativeFrequenciesInNyquistPlot=1\n"}}},
    };
    for (const Session &row : rows)
        expectSession(row);
}

/* The root locus options dialog, which the host opens itself: the gain edits follow the
** auto range box, a negative gain is refused when its edit loses the focus, and OK checks
** the step count and the range. It writes no key. */
using RootLocusOptions = PluginTest;

TEST_F(RootLocusOptions, GainEditsFollowTheAutoRangeAndBadEntriesAreRefused)
{
    using platform::ActionKind;
    struct Row {
        const char *name;
        int autoRangeAtOpen;
        std::vector<platform::DialogAction> actions;
        INT_PTR end;
        std::vector<std::string> shown;
        int messages;                   /* message boxes in all */
        RangeSettings gainRangeAfter;
        int autoRangeAfter;
    } rows[] = {
        {"unchecking the auto range enables the gains", 1,
         {{"", ActionKind::Uncheck, OPTION_AUTO_RANGE, "", 0}, typed(OPTION_START, "2"), typed(OPTION_STOP, "40"),
          typed(OPTION_STEPS, "25")},
         1,
         {"[dialog] Root Locus Options", "  edit 104 \"50\"", "  checkbox 1029 \"Auto Range\" [x]",
          "  edit 102 \"\" (disabled)", "  edit 103 \"\" (disabled)", "  > uncheck 1029", "  > type 102 \"2\"",
          "[end] Root Locus Options: 1"},
         0, {25, 2.0, 40.0}, 0},
        /* Zero is a gain; -3 is refused as it loses the focus; 4 to 4 and one step are refused
        ** by OK; Help does nothing here. */
        {"negative gain, empty range and one step refused", 0,
         {typed(OPTION_START, "0"), typed(OPTION_START, "-3"), typed(OPTION_START, "4"), typed(OPTION_STOP, "4"),
          press(IDOK), typed(OPTION_STEPS, "1"), press(IDOK), press(HELP_BUTTON), press(IDCANCEL)},
         2,
         {"  edit 102 \"0\"", "  edit 103 \"100\"", "  > type 102 \"-3\"", "[Tervan] Gain value must be >= 0",
          "  > type 102 \"4\"", "  > click 1", "[Tervan] Start must be less than Stop", "  > click 1",
          "[Tervan] step count too low", "  > click 9", "  > click 2", "[end] Root Locus Options: 2"},
         3, {1, 4.0, 4.0}, 0},
    };
    for (const Row &row : rows) {
        SetUp();
        optionsMemory.autoRange = row.autoRangeAtOpen;
        editedRange = &gainRange;
        queueActions(row.actions);
        EXPECT_EQ(DialogBoxParamA(moduleInstance, "ROOT_LOC_OPTIONS", GetFocus(), rootLocOptionDlg, 0), row.end)
            << row.name;
        std::string transcript = platform::transcriptText();
        EXPECT_TRUE(hasLinesInOrder(transcript, row.shown)) << row.name;
        int messages = 0;
        for (size_t at = transcript.find("[Tervan]"); at != std::string::npos; at = transcript.find("[Tervan]", at + 1))
            ++messages;
        EXPECT_EQ(messages, row.messages) << row.name;
        EXPECT_EQ(transcript.find("[help]"), std::string::npos) << row.name;
        EXPECT_EQ(transcript.find("[error]"), std::string::npos) << row.name << transcript;
        const RangeSettings &after = row.gainRangeAfter;
        EXPECT_EQ(std::tie(gainRange.steps, gainRange.start, gainRange.stop, optionsMemory.autoRange),
                  std::tie(after.steps, after.start, after.stop, row.autoRangeAfter)) << row.name;
        EXPECT_EQ(readFile(dir.file("tervan.ini")), "") << row.name;
    }
}

}
