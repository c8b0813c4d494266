/* Temporary until the option dialogs are merged. */
#include "shell/option_dialogs.h"
extern "C" {
INT_PTR freqOptionDlg(HWND, UINT, WPARAM, LPARAM) { return 0; }
INT_PTR prefDlgFun(HWND, UINT, WPARAM, LPARAM) { return 0; }
INT_PTR rootLocOptionDlg(HWND, UINT, WPARAM, LPARAM) { return 0; }
}
