/*
** Settings and their dialogs: the range options, the preferences and the root locus
** options, driven as a user would, with the settings file checked afterwards.
*/
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>

#include "hostapp/host_state.h"
#include "platform/driver.h"
#include "shell/option_dialogs.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "support.h"

using namespace testing_support;
using platform::ActionKind;

namespace {

/* The settings as the library starts with them (constant-initialised globals). */
const RangeSettings frequencyRangeAtLoad = frequencyRange;
const RangeSettings gainRangeAtLoad = gainRange;
const OptionsDialogMemory optionsMemoryAtLoad = optionsMemory;
const RadioGroup frequencyUnitAtLoad = frequencyUnit;
const RadioGroup phaseUnitAtLoad = phaseUnit;
const RadioGroup magnitudeUnitAtLoad = magnitudeUnit;
const int displayPrecisionAtLoad = displayPrecision;
const double numeratorThresholdAtLoad = numeratorZeroThreshold;
const double denominatorThresholdAtLoad = denominatorZeroThreshold;

/* What a dialog showed: control texts, check states, enabled and visible states,
** captured by a spy around the real procedure. */
struct DialogView {
    std::string title;
    std::map<int, std::string> text;
    std::map<int, bool> checked, enabled, visible;
    bool focusOn(int id) const { return focus == id; }
    int focus = 0;
};

DLGPROC spiedProcedure;
std::vector<int> spiedControls;
std::vector<DialogView> views;                  /* after WM_INITDIALOG, then after each command */
int spyDepth;                                   /* messages sent from inside a message are not captured */

DialogView capture(HWND dialog)
{
    DialogView v;
    char text[128] = "";
    GetWindowTextA(dialog, text, sizeof text);
    v.title = text;
    for (int id : spiedControls) {
        HWND control = GetDlgItem(dialog, id);
        GetDlgItemTextA(dialog, id, text, sizeof text);
        v.text[id] = text;
        v.checked[id] = IsDlgButtonChecked(dialog, id) == BST_CHECKED;
        v.enabled[id] = control && IsWindowEnabled(control);
        v.visible[id] = control && IsWindowVisible(control);
        if (control && GetFocus() == control)
            v.focus = id;
    }
    return v;
}

INT_PTR spy(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    ++spyDepth;
    INT_PTR result = spiedProcedure(dialog, message, wParam, lParam);
    --spyDepth;
    if (spyDepth == 0 && (message == WM_INITDIALOG || message == WM_COMMAND))
        views.push_back(capture(dialog));
    return result;
}

class Settings : public ::testing::Test {
protected:
    TempDir dir;

    void SetUp() override
    {
        frequencyRange = frequencyRangeAtLoad;
        gainRange = gainRangeAtLoad;
        optionsMemory = optionsMemoryAtLoad;
        frequencyUnit = frequencyUnitAtLoad;
        phaseUnit = phaseUnitAtLoad;
        magnitudeUnit = magnitudeUnitAtLoad;
        reusePlots = 0;
        negativeFrequencies = 0;
        displayPrecision = displayPrecisionAtLoad;
        numeratorZeroThreshold = numeratorThresholdAtLoad;
        denominatorZeroThreshold = denominatorThresholdAtLoad;
        views.clear();
        spyDepth = 0;
        startHostWithPlugin(settingsFile(), dir.path);
        platform::clearTranscript();
        platform::clearDialogActions();
    }

    std::string settingsFile() const { return dir.file("tervan.ini"); }

    static void act(ActionKind kind, int control, const std::string &text = "")
    {
        platform::DialogAction action;
        action.kind = kind;
        action.control = control;
        action.text = text;
        platform::queueDialogAction(action);
    }

    /* The value of a key of section "tervan" of the settings file, "<none>" if missing. */
    std::string setting(const char *key) const
    {
        char text[64];
        DWORD length = GetPrivateProfileStringA("tervan", key, "<none>", text, sizeof text, settingsFile().c_str());
        return std::string(text, length);
    }

    /* Runs a template with a spy around its procedure, as the commands do. */
    INT_PTR runSpied(const char *templateName, DLGPROC procedure, std::vector<int> controls)
    {
        spiedProcedure = procedure;
        spiedControls = std::move(controls);
        return DialogBoxParamA(moduleInstance, templateName, GetFocus(), spy, 0);
    }

    static int messageCount(const std::string &text)
    {
        int count = 0;
        for (const std::string &line : platform::transcript())
            count += line.find(text) != std::string::npos;
        return count;
    }
};

const std::vector<int> RANGE_CONTROLS = {OPTION_START, OPTION_STOP, OPTION_STEPS, OPTION_AUTO_RANGE};

TEST_F(Settings, FirstRangeDialogShowsItsInitialMemoryAndOkKeepsIt)
{
    ASSERT_FALSE(std::filesystem::exists(settingsFile()));
    editedRange = &frequencyRange;
    EXPECT_EQ(runSpied("PRX_OPTIONS", freqOptionDlg, RANGE_CONTROLS), 1);
    ASSERT_FALSE(views.empty());
    const DialogView &shown = views.front();
    EXPECT_EQ(shown.title, "Bode Frequency Range");
    EXPECT_EQ(shown.text.at(OPTION_START), "103");
    EXPECT_EQ(shown.text.at(OPTION_STOP), "104");
    EXPECT_EQ(shown.text.at(OPTION_STEPS), "102");
    EXPECT_FALSE(shown.visible.at(OPTION_AUTO_RANGE));
    EXPECT_TRUE(shown.focusOn(OPTION_START));

    EXPECT_EQ(frequencyRange.start, 103.0);
    EXPECT_EQ(frequencyRange.stop, 104.0);
    EXPECT_EQ(frequencyRange.steps, 102);
    EXPECT_EQ(setting("freqStart"), "103");
    EXPECT_EQ(setting("freqStop"), "104");
    EXPECT_EQ(setting("freqSteps"), "102");
    EXPECT_EQ(setting("rlocStart"), "103");
    EXPECT_EQ(setting("rlocStop"), "104");
    EXPECT_EQ(setting("rlocSteps"), "102");
    /* The hidden, unchecked box turns the auto range off. */
    EXPECT_EQ(setting("rlocAutoRange"), "0");
    EXPECT_EQ(optionsMemory.autoRange, 0);
}

TEST_F(Settings, FrequencyRangeCommandThroughTheMenu)
{
    act(ActionKind::Type, OPTION_START, "1");
    act(ActionKind::Type, OPTION_STOP, "10");
    act(ActionKind::Type, OPTION_STEPS, "20");
    act(ActionKind::Click, IDOK);
    EXPECT_EQ(praxaCmd(235), 1);
    EXPECT_EQ(frequencyRange.start, 1.0);
    EXPECT_EQ(frequencyRange.stop, 10.0);
    EXPECT_EQ(frequencyRange.steps, 20);
    std::string transcript = platform::transcriptText();
    EXPECT_EQ(transcript.find("[dialog] Bode Frequency Range\n"), 0u) << transcript;
    for (const char *shown : {"edit 102 \"103\"", "edit 103 \"104\"", "edit 104 \"102\""})
        EXPECT_NE(transcript.find(shown), std::string::npos) << shown;
    EXPECT_EQ(platform::pendingDialogActions(), 0u);

    /* Root Locus Options then shows what was entered for the frequency range. */
    editedRange = &gainRange;
    EXPECT_EQ(runSpied("PRX_OPTIONS", freqOptionDlg, RANGE_CONTROLS), 1);
    ASSERT_FALSE(views.empty());
    const DialogView &shown = views.front();
    EXPECT_EQ(shown.title, "Root Locus Gain Range");
    EXPECT_EQ(shown.text.at(OPTION_START), "1");
    EXPECT_EQ(shown.text.at(OPTION_STOP), "10");
    EXPECT_EQ(shown.text.at(OPTION_STEPS), "20");
    EXPECT_TRUE(shown.visible.at(OPTION_AUTO_RANGE));
    EXPECT_FALSE(shown.checked.at(OPTION_AUTO_RANGE));
    /* OK there set the gain range to the same values. */
    EXPECT_EQ(gainRange.start, 1.0);
    EXPECT_EQ(gainRange.stop, 10.0);
    EXPECT_EQ(gainRange.steps, 20);
}

TEST_F(Settings, GainRangeDialogShowsTheAutoRangeFlagAndKeepsIt)
{
    act(ActionKind::Check, OPTION_AUTO_RANGE);
    act(ActionKind::Click, IDOK);
    optionsMemory.autoRange = 0;
    EXPECT_EQ(praxaCmd(241), 1);
    EXPECT_NE(optionsMemory.autoRange, 0);
    EXPECT_EQ(setting("rlocAutoRange"), "1");
    /* The frequency keys are written too, from the frequency range. */
    EXPECT_EQ(setting("freqSteps"), "50");
    EXPECT_EQ(setting("freqStart"), ".1");
    EXPECT_EQ(setting("freqStop"), "100");
}

TEST_F(Settings, StartMustBeLessThanStopAndValuesStayInMemory)
{
    std::ofstream(settingsFile()) << "[tervan]\nfreqStart=0.5\nfreqStop=50\nfreqSteps=40\n";
    act(ActionKind::Type, OPTION_START, "5");
    act(ActionKind::Type, OPTION_STOP, "5");
    act(ActionKind::Click, IDOK);
    act(ActionKind::Click, IDCANCEL);
    EXPECT_EQ(praxaCmd(235), 1);
    EXPECT_EQ(messageCount("Start must be less than Stop"), 1) << platform::transcriptText();
    /* Stored before the check; Cancel does not undo it, and nothing was written. */
    EXPECT_EQ(frequencyRange.start, 5.0);
    EXPECT_EQ(frequencyRange.stop, 5.0);
    EXPECT_EQ(optionsMemory.start, 5.0);
    EXPECT_EQ(setting("freqStart"), "0.5");
    EXPECT_EQ(setting("rlocStart"), "<none>");
    /* The next command reloads the frequency range from the file. */
    EXPECT_EQ(praxaCmd(234), 0);
    EXPECT_EQ(frequencyRange.start, 0.5);
    EXPECT_EQ(frequencyRange.stop, 50.0);

    /* The gain range is never reloaded: a refused entry stays. */
    act(ActionKind::Type, OPTION_START, "30");
    act(ActionKind::Type, OPTION_STOP, "20");
    act(ActionKind::Click, IDOK);
    act(ActionKind::Click, IDCANCEL);
    EXPECT_EQ(praxaCmd(241), 1);
    EXPECT_EQ(praxaCmd(234), 0);
    EXPECT_EQ(gainRange.start, 30.0);
    EXPECT_EQ(gainRange.stop, 20.0);
}

TEST_F(Settings, StepCountOneIsRefusedAndTwoAccepted)
{
    editedRange = &frequencyRange;
    act(ActionKind::Type, OPTION_START, "1");
    act(ActionKind::Type, OPTION_STOP, "2");
    act(ActionKind::Type, OPTION_STEPS, "1");
    act(ActionKind::Click, IDOK);
    act(ActionKind::Type, OPTION_STEPS, "2");
    act(ActionKind::Click, IDOK);
    EXPECT_EQ(runSpied("PRX_OPTIONS", freqOptionDlg, RANGE_CONTROLS), 1);
    EXPECT_EQ(messageCount("step count too low"), 1) << platform::transcriptText();
    EXPECT_EQ(frequencyRange.steps, 2);
    EXPECT_EQ(setting("freqSteps"), "2");
}

TEST_F(Settings, StartIsStoredAtDisplayPrecision)
{
    editedRange = &frequencyRange;
    act(ActionKind::Type, OPTION_START, "0.123456789");
    act(ActionKind::Type, OPTION_STOP, "10");
    act(ActionKind::Type, OPTION_STEPS, "50");
    act(ActionKind::Click, IDOK);
    EXPECT_EQ(runSpied("PRX_OPTIONS", freqOptionDlg, RANGE_CONTROLS), 1);
    EXPECT_EQ(frequencyRange.start, 0.123456789);
    EXPECT_EQ(setting("freqStart"), ".123457");
    EXPECT_EQ(setting("rlocStart"), ".123457");
    /* Read back at the next command, at the stored precision. */
    EXPECT_EQ(praxaCmd(234), 0);
    EXPECT_EQ(frequencyRange.start, 0.123457);
}

TEST_F(Settings, HandEditedRangeKeysTakeEffectAtTheNextCommand)
{
    std::ofstream(settingsFile()) << "[tervan]\nfreqStart=2\nfreqStop=2000\nfreqSteps=300\n"
                                     "rlocStart=1.5\nrlocStop=7\nrlocSteps=9\nrlocAutoRange=0\n";
    EXPECT_EQ(frequencyRange.start, 0.1);
    loadRangeSettings();
    EXPECT_EQ(frequencyRange.start, 2.0);
    EXPECT_EQ(frequencyRange.stop, 2000.0);
    EXPECT_EQ(frequencyRange.steps, 300);
    EXPECT_EQ(optionsMemory.start, 1.5);
    EXPECT_EQ(optionsMemory.stop, 7.0);
    EXPECT_EQ(optionsMemory.steps, 9);
    EXPECT_EQ(optionsMemory.autoRange, 0);
    /* The gain range is not persisted. */
    EXPECT_EQ(gainRange.start, 0.0);
    EXPECT_EQ(gainRange.stop, 100.0);
    EXPECT_EQ(gainRange.steps, 50);

    /* Empty and missing keys leave the values alone. */
    std::ofstream(settingsFile()) << "[tervan]\nfreqStart=\nfreqStop=900\n";
    loadRangeSettings();
    EXPECT_EQ(frequencyRange.start, 2.0);
    EXPECT_EQ(frequencyRange.stop, 900.0);
    EXPECT_EQ(frequencyRange.steps, 300);
}

TEST_F(Settings, UnitKeysAndFlagsAreReadAtInit)
{
    std::ofstream(settingsFile()) << "[tervan]\nprxReusePlots=1\nuseNegativeFrequenciesInNyquistPlot=1\n"
                                     "freqUnits=210\nphaseUnits=213\nmagUnits=215\n";
    startHostWithPlugin(settingsFile(), dir.path);
    EXPECT_EQ(reusePlots, 1);
    EXPECT_EQ(negativeFrequencies, 1);
    EXPECT_EQ(frequencyUnit.selected, 210);
    EXPECT_EQ(phaseUnit.selected, 213);
    EXPECT_EQ(magnitudeUnit.selected, 215);
}

const std::vector<int> PREFERENCE_CONTROLS = {
    PREF_NUMERATOR_THRESHOLD, PREF_DENOMINATOR_THRESHOLD, PREF_PRECISION, PREF_NEGATIVE_FREQUENCIES,
    210, 211, 212, 213, 215, 216};

TEST_F(Settings, PreferencesShowTheSettings)
{
    act(ActionKind::Click, IDCANCEL);
    EXPECT_EQ(runSpied("PRX_Preferences", prefDlgFun, PREFERENCE_CONTROLS), 2);
    ASSERT_FALSE(views.empty());
    const DialogView &shown = views.front();
    EXPECT_EQ(shown.title, "Praxa Preferences");
    EXPECT_EQ(shown.text.at(PREF_NUMERATOR_THRESHOLD), "1e-055");
    EXPECT_EQ(shown.text.at(PREF_DENOMINATOR_THRESHOLD), "1e-060");
    EXPECT_EQ(shown.text.at(PREF_PRECISION), "6");
    EXPECT_TRUE(shown.focusOn(PREF_PRECISION));
    EXPECT_FALSE(shown.checked.at(PREF_NEGATIVE_FREQUENCIES));
    for (int id : {211, 212, 216})
        EXPECT_TRUE(shown.checked.at(id)) << id;
    for (int id : {210, 213, 215})
        EXPECT_FALSE(shown.checked.at(id)) << id;
    EXPECT_FALSE(std::filesystem::exists(settingsFile()));
}

TEST_F(Settings, HertzAndOkWritesTheUnitKeys)
{
    act(ActionKind::Check, 210);
    act(ActionKind::Check, 213);
    act(ActionKind::Check, 215);
    act(ActionKind::Check, PREF_NEGATIVE_FREQUENCIES);
    act(ActionKind::Type, PREF_PRECISION, "3");
    act(ActionKind::Type, PREF_NUMERATOR_THRESHOLD, "1e-20");
    act(ActionKind::Type, PREF_DENOMINATOR_THRESHOLD, "2.5e-30");
    act(ActionKind::Click, IDOK);
    EXPECT_EQ(praxaCmd(246), 1);
    EXPECT_EQ(setting("freqUnits"), "210");
    EXPECT_EQ(setting("phaseUnits"), "213");
    EXPECT_EQ(setting("magUnits"), "215");
    EXPECT_EQ(setting("prxReusePlots"), "0");
    EXPECT_EQ(setting("useNegativeFrequenciesInNyquistPlot"), "1");
    EXPECT_EQ(frequencyUnit.selected, 210);
    EXPECT_EQ(phaseUnit.selected, 213);
    EXPECT_EQ(magnitudeUnit.selected, 215);
    EXPECT_EQ(negativeFrequencies, 1);
    EXPECT_EQ(displayPrecision, 3);
    EXPECT_EQ(numeratorZeroThreshold, 1e-20);
    EXPECT_EQ(denominatorZeroThreshold, 2.5e-30);
    /* Precision and thresholds live in memory only. */
    EXPECT_EQ(setting("displayPrecision"), "<none>");
}

const std::vector<int> ROOT_LOCUS_CONTROLS = {OPTION_START, OPTION_STOP, OPTION_STEPS, OPTION_START_LABEL,
                                              OPTION_STOP_LABEL, OPTION_GAIN_GROUP, OPTION_AUTO_RANGE};

TEST_F(Settings, RootLocusOptionsEnableTheGainsWhenAutoRangeIsOff)
{
    editedRange = &gainRange;
    optionsMemory.autoRange = 1;
    act(ActionKind::Uncheck, OPTION_AUTO_RANGE);
    act(ActionKind::Type, OPTION_START, "2");
    act(ActionKind::Type, OPTION_STOP, "40");
    act(ActionKind::Type, OPTION_STEPS, "25");
    act(ActionKind::Click, IDOK);
    EXPECT_EQ(runSpied("ROOT_LOC_OPTIONS", rootLocOptionDlg, ROOT_LOCUS_CONTROLS), 1);
    ASSERT_GE(views.size(), 2u);
    ASSERT_FALSE(views.empty());
    const DialogView &atStart = views.front();
    EXPECT_EQ(atStart.title, "Root Locus Options");
    EXPECT_EQ(atStart.text.at(OPTION_STEPS), "50");
    EXPECT_TRUE(atStart.checked.at(OPTION_AUTO_RANGE));
    EXPECT_EQ(atStart.text.at(OPTION_START), "");         /* not filled while auto range is on */
    for (int id : {OPTION_START, OPTION_STOP, OPTION_START_LABEL, OPTION_STOP_LABEL, OPTION_GAIN_GROUP})
        EXPECT_FALSE(atStart.enabled.at(id)) << id;
    auto afterClick = std::find_if(views.begin(), views.end(),
                                   [](const DialogView &v) { return !v.checked.at(OPTION_AUTO_RANGE); });
    ASSERT_NE(afterClick, views.end());
    for (int id : {OPTION_START, OPTION_STOP, OPTION_START_LABEL, OPTION_STOP_LABEL, OPTION_GAIN_GROUP})
        EXPECT_TRUE(afterClick->enabled.at(id)) << id;
    EXPECT_EQ(gainRange.start, 2.0);
    EXPECT_EQ(gainRange.stop, 40.0);
    EXPECT_EQ(gainRange.steps, 25);
    EXPECT_EQ(optionsMemory.autoRange, 0);
    /* This dialog writes no key. */
    EXPECT_FALSE(std::filesystem::exists(settingsFile()));
}

TEST_F(Settings, RootLocusOptionsRefuseNegativeGainsAndBadEntries)
{
    editedRange = &gainRange;
    optionsMemory.autoRange = 0;
    act(ActionKind::Type, OPTION_START, "0");        /* zero is a gain */
    act(ActionKind::Type, OPTION_START, "-3");
    act(ActionKind::Type, OPTION_START, "4");
    act(ActionKind::Type, OPTION_STOP, "4");
    act(ActionKind::Click, IDOK);
    act(ActionKind::Type, OPTION_STEPS, "1");
    act(ActionKind::Click, IDOK);
    act(ActionKind::Click, HELP_BUTTON);
    act(ActionKind::Click, IDCANCEL);
    EXPECT_EQ(runSpied("ROOT_LOC_OPTIONS", rootLocOptionDlg, ROOT_LOCUS_CONTROLS), 2);
    EXPECT_EQ(messageCount("Gain value must be >= 0"), 1) << platform::transcriptText();
    EXPECT_EQ(messageCount("Start must be less than Stop"), 1);
    EXPECT_EQ(messageCount("step count too low"), 1);
    EXPECT_EQ(messageCount("[help]"), 0);            /* Help does nothing here */
    /* After the negative entry lost the focus, the focus went back to it. */
    bool refocused = false;
    for (const DialogView &v : views)
        refocused = refocused || (v.text.at(OPTION_START) == "-3" && v.focusOn(OPTION_START));
    EXPECT_TRUE(refocused);
}

}
