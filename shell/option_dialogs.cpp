/*
** shell/option_dialogs.cpp: the dialog procedures of the range options, the
** preferences and the root locus options.  Each changes the settings in memory
** and, where its OK says so, in the settings file.
*/
#include "shell/option_dialogs.h"

#include <cstdlib>

#include "host/host.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "shell/text.h"

/* The root locus options dialog's working copy of the auto range flag. */
static int32_t rootLocAutoRangeCopy;

/* A dialog opened without a range to edit edits the frequency range. */
static RangeSettings *rangeBeingEdited()
{
    return editedRange ? editedRange : &frequencyRange;
}

static double readNumber(HWND dialog, int id)
{
    char text[64];
    GetDlgItemTextA(dialog, id, text, sizeof text);
    return std::atof(text);
}

static void selectAllAndFocus(HWND dialog, int id)
{
    SendDlgItemMessageA(dialog, id, EM_SETSEL, 0, 0x7FFF0000);
    SetFocus(GetDlgItem(dialog, id));
}

/* ---- PRX_OPTIONS ---------------------------------------------------------- */

static void initRangeOptions(HWND dialog)
{
    if (rangeBeingEdited() == &gainRange) {
        SetWindowTextA(dialog, "Root Locus Gain Range");
        CheckDlgButton(dialog, OPTION_AUTO_RANGE, optionsMemory.autoRange ? BST_CHECKED : BST_UNCHECKED);
    } else {
        SetWindowTextA(dialog, "Bode Frequency Range");
        ShowWindow(GetDlgItem(dialog, OPTION_AUTO_RANGE), SW_HIDE);
    }
    /* The dialog shows its own memory, not the range it edits. */
    SetDlgItemTextA(dialog, OPTION_START, numberToText(optionsMemory.start));
    SetDlgItemTextA(dialog, OPTION_STOP, numberToText(optionsMemory.stop));
    SetDlgItemInt(dialog, OPTION_STEPS, (UINT)optionsMemory.steps, FALSE);
    selectAllAndFocus(dialog, OPTION_START);
}

/* The values go into the edited range before they are checked, so a refused entry
** followed by Cancel stays in memory. */
static void acceptRangeOptions(HWND dialog)
{
    RangeSettings *range = rangeBeingEdited();
    optionsMemory.autoRange = (int32_t)IsDlgButtonChecked(dialog, OPTION_AUTO_RANGE);
    range->stop = readNumber(dialog, OPTION_STOP);
    range->start = readNumber(dialog, OPTION_START);
    optionsMemory.start = range->start;
    optionsMemory.stop = range->stop;
    if (!(range->start < range->stop)) {
        winMsg("Start must be less than Stop");
        return;
    }
    range->steps = (int32_t)GetDlgItemInt(dialog, OPTION_STEPS, nullptr, FALSE);
    optionsMemory.steps = range->steps;
    if (range->steps < 2) {
        winMsg("step count too low");
        return;
    }
    writeIntSetting("rlocSteps", optionsMemory.steps);
    writeIntSetting("rlocAutoRange", optionsMemory.autoRange);
    writeDoubleSetting("rlocStart", optionsMemory.start);
    writeDoubleSetting("rlocStop", optionsMemory.stop);
    writeIntSetting("freqSteps", frequencyRange.steps);
    writeDoubleSetting("freqStart", frequencyRange.start);
    writeDoubleSetting("freqStop", frequencyRange.stop);
    EndDialog(dialog, 1);
}

INT_PTR freqOptionDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG) {
        initRangeOptions(dialog);
        return FALSE;
    }
    if (message != WM_COMMAND)
        return FALSE;
    switch (LOWORD(wParam)) {
    case IDOK:
        acceptRangeOptions(dialog);
        return TRUE;
    case IDCANCEL:
        EndDialog(dialog, 2);
        return TRUE;
    case HELP_BUTTON:
        showHelp(rangeBeingEdited() == &gainRange ? HELP_TOPIC_GAIN_RANGE : HELP_TOPIC_FREQUENCY_RANGE);
        return TRUE;
    default:
        return FALSE;
    }
}

/* ---- PRX_PREFERENCES ------------------------------------------------------- */

static RadioGroup *const unitGroups[] = {&frequencyUnit, &phaseUnit, &magnitudeUnit};

static void initPreferences(HWND dialog)
{
    CheckDlgButton(dialog, PREF_NEGATIVE_FREQUENCIES, negativeFrequencies ? BST_CHECKED : BST_UNCHECKED);
    SetDlgItemTextA(dialog, PREF_NUMERATOR_THRESHOLD, numberToText(numeratorZeroThreshold));
    SetDlgItemTextA(dialog, PREF_DENOMINATOR_THRESHOLD, numberToText(denominatorZeroThreshold));
    SetDlgItemInt(dialog, PREF_PRECISION, (UINT)displayPrecision, FALSE);
    selectAllAndFocus(dialog, PREF_PRECISION);
    for (RadioGroup *group : unitGroups)
        CheckRadioButton(dialog, group->first, group->first + group->count - 1, group->selected);
}

/* The last checked button of the group wins; none checked keeps the setting. */
static void readRadioGroup(HWND dialog, RadioGroup *group)
{
    for (int id = group->first; id < group->first + group->count; ++id)
        if (IsDlgButtonChecked(dialog, id))
            group->selected = id;
}

static void acceptPreferences(HWND dialog)
{
    numeratorZeroThreshold = readNumber(dialog, PREF_NUMERATOR_THRESHOLD);
    denominatorZeroThreshold = readNumber(dialog, PREF_DENOMINATOR_THRESHOLD);
    /* Taken as typed: numberToText gives whatever the C runtime makes of it. */
    displayPrecision = (int)GetDlgItemInt(dialog, PREF_PRECISION, nullptr, FALSE);
    for (RadioGroup *group : unitGroups)
        readRadioGroup(dialog, group);
    negativeFrequencies = IsDlgButtonChecked(dialog, PREF_NEGATIVE_FREQUENCIES) ? 1 : 0;
    writeIntSetting("phaseUnits", phaseUnit.selected);
    writeIntSetting("magUnits", magnitudeUnit.selected);
    writeIntSetting("freqUnits", frequencyUnit.selected);
    writeIntSetting("prxReusePlots", reusePlots);
    writeIntSetting("useNegativeFrequenciesInNyquistPlot", negativeFrequencies);
    EndDialog(dialog, 1);
}

INT_PTR prefDlgFun(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG) {
        initPreferences(dialog);
        return FALSE;
    }
    if (message != WM_COMMAND)
        return FALSE;
    switch (LOWORD(wParam)) {
    case IDOK:
        acceptPreferences(dialog);
        return TRUE;
    case IDCANCEL:
        EndDialog(dialog, 2);
        return TRUE;
    case HELP_BUTTON:
        showHelp(HELP_TOPIC_PREFERENCES);
        return TRUE;
    default:
        return FALSE;
    }
}

/* ---- ROOT_LOC_OPTIONS ------------------------------------------------------- */

static void enableGainControls(HWND dialog, bool enable)
{
    static const int ids[] = {OPTION_START, OPTION_STOP, OPTION_STOP_LABEL, OPTION_GAIN_GROUP, OPTION_START_LABEL};
    for (int id : ids)
        EnableWindow(GetDlgItem(dialog, id), enable ? TRUE : FALSE);
}

static void initRootLocusOptions(HWND dialog)
{
    RangeSettings *range = rangeBeingEdited();
    SetDlgItemInt(dialog, OPTION_STEPS, (UINT)range->steps, FALSE);
    rootLocAutoRangeCopy = optionsMemory.autoRange;
    enableGainControls(dialog, rootLocAutoRangeCopy == 0);
    CheckDlgButton(dialog, OPTION_AUTO_RANGE, rootLocAutoRangeCopy ? BST_CHECKED : BST_UNCHECKED);
    if (!rootLocAutoRangeCopy) {
        SetDlgItemTextA(dialog, OPTION_START, numberToText(range->start));
        SetDlgItemTextA(dialog, OPTION_STOP, numberToText(range->stop));
    }
}

static void acceptRootLocusOptions(HWND dialog)
{
    RangeSettings *range = rangeBeingEdited();
    range->steps = (int32_t)GetDlgItemInt(dialog, OPTION_STEPS, nullptr, FALSE);
    if (range->steps < 2) {
        winMsg("step count too low");
        return;
    }
    optionsMemory.autoRange = (int32_t)IsDlgButtonChecked(dialog, OPTION_AUTO_RANGE);
    if (optionsMemory.autoRange == 0) {
        range->start = readNumber(dialog, OPTION_START);
        range->stop = readNumber(dialog, OPTION_STOP);
        if (!(range->start < range->stop)) {
            winMsg("Start must be less than Stop");
            return;
        }
    }
    EndDialog(dialog, 1);
}

/* A gain edit that loses the focus with a negative value takes the focus back. */
static void checkGainEdit(HWND dialog, int id)
{
    if (readNumber(dialog, id) < 0) {
        winMsg("Gain value must be >= 0");
        SetFocus(GetDlgItem(dialog, id));
    }
}

INT_PTR rootLocOptionDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG) {
        initRootLocusOptions(dialog);
        return FALSE;
    }
    if (message != WM_COMMAND)
        return FALSE;
    int id = LOWORD(wParam);
    switch (id) {
    case IDOK:
        acceptRootLocusOptions(dialog);
        return TRUE;
    case IDCANCEL:
        EndDialog(dialog, 2);
        return TRUE;
    case OPTION_AUTO_RANGE:
        if (HIWORD(wParam) != BN_CLICKED)
            return FALSE;
        rootLocAutoRangeCopy = (int32_t)IsDlgButtonChecked(dialog, OPTION_AUTO_RANGE);
        enableGainControls(dialog, rootLocAutoRangeCopy == 0);
        return TRUE;
    case OPTION_START:
    case OPTION_STOP:
        if (HIWORD(wParam) != EN_KILLFOCUS)
            return FALSE;
        checkGainEdit(dialog, id);
        return TRUE;
    default:
        return FALSE;          /* Help and everything else: nothing */
    }
}
