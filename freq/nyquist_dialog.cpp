/*
** freq/nyquist_dialog.cpp: the NYQUISTINFINITI dialog, in which the user sets R∞,
** the response size at which the Nyquist path turns around an imaginary-axis pole.
*/
#include <cstdlib>

#include "freq/nyquist.h"
#include "resources/prxdlg.h"
#include "shell/text.h"

static const double LEAST_INFINITY = 2.0;

/* OK: a value below 2 is refused and the dialog stays open.  A text that reads as NaN
** is not below 2 and is taken: no crossing test then holds, so each detour reaches
** halfway to the next pole. */
static void acceptInfinity(HWND dialog)
{
    char text[65];
    GetDlgItemTextA(dialog, IDC_NYQUIST_INFINITY, text, sizeof text);
    double value = std::atof(text);
    if (value < LEAST_INFINITY) {
        MessageBoxA(dialog, " The value for infinity must be >= 2", "Error", MB_OK);
        return;
    }
    nyquistInfinity = value;
    EndDialog(dialog, 1);
}

INT_PTR nyqustInfinitiDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG) {
        SetDlgItemTextA(dialog, IDC_NYQUIST_INFINITY, numberToText(nyquistInfinity));
        SetFocus(GetDlgItem(dialog, IDC_NYQUIST_INFINITY));
        return FALSE;   /* the focus is set */
    }
    if (message != WM_COMMAND)
        return FALSE;
    switch (LOWORD(wParam)) {
    case IDOK:
        acceptInfinity(dialog);
        return TRUE;
    case IDCANCEL:
        EndDialog(dialog, 2);
        return TRUE;
    default:
        return FALSE;   /* Help (9) included */
    }
}
