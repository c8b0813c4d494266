/*
** shell/option_dialogs.h: the dialog procedures that edit the settings: the range
** options (PRX_OPTIONS), the preferences (PRX_PREFERENCES) and the exported root
** locus options procedure (ROOT_LOC_OPTIONS).
*/
#ifndef PRAXA_OPTION_DIALOGS_H
#define PRAXA_OPTION_DIALOGS_H

#include "platform/winapi.h"

/* Control ids of the option dialogs (resources/prxdlg.h has the same numbers). */
enum : int {
    OPTION_START = 102,
    OPTION_STOP = 103,
    OPTION_STEPS = 104,
    OPTION_START_LABEL = 1026,
    OPTION_STOP_LABEL = 1027,
    OPTION_GAIN_GROUP = 1028,
    OPTION_AUTO_RANGE = 1029,
    PREF_NUMERATOR_THRESHOLD = 200,
    PREF_DENOMINATOR_THRESHOLD = 201,
    PREF_PRECISION = 203,
    PREF_NEGATIVE_FREQUENCIES = 1035,
};

/* Help topics of the option dialogs. */
enum : int { HELP_TOPIC_PREFERENCES = 1179, HELP_TOPIC_GAIN_RANGE = 1183, HELP_TOPIC_FREQUENCY_RANGE = 1186 };

extern "C" {

/* PRX_OPTIONS: edits *editedRange (frequencyRange or gainRange), showing and keeping
** the options dialog memory; on OK writes the rloc and freq keys.  Ends with 1 (OK)
** or 2 (Cancel); a refused entry keeps the dialog open. */
INT_PTR freqOptionDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

/* PRX_PREFERENCES: units, negative frequencies, display precision and zero
** thresholds; on OK writes the unit and flag keys.  Ends with 1 or 2. */
INT_PTR prefDlgFun(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

/* ROOT_LOC_OPTIONS: edits *editedRange as a gain range (steps, auto range, start and
** stop gains); writes no key.  Ends with 1 or 2. */
INT_PTR rootLocOptionDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

}

#endif
