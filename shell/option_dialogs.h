/*
** shell/option_dialogs.h: the dialogs that edit the settings: the sweep range
** (PRX_OPTIONS), the preferences (PRX_PREFERENCES) and ROOT_LOC_OPTIONS.
*/
#ifndef PRAXA_OPTION_DIALOGS_H
#define PRAXA_OPTION_DIALOGS_H

#include "platform/winapi.h"

extern "C" {
/* Edits *editedRange and the options dialog memory. */
INT_PTR freqOptionDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
INT_PTR prefDlgFun(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
INT_PTR rootLocOptionDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
}

#endif
