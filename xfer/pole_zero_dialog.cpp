/*
** xfer/pole_zero_dialog.cpp: the "Zeros and Poles" dialog (POLEZERO_BOX): the zeros
** and poles of currentXfer side by side, in the order the eigenvalue routine gave them.
*/
#include "host/host.h"
#include "platform/winapi.h"
#include "resources/prxdlg.h"
#include "shell/praxa.h"
#include "shell/text.h"
#include "xfer/xfer.h"

enum { POLE_ZERO_HELP_TOPIC = 1185 };

/* Outside timeToFrequency the root lists are gone (null): the list stays empty. */
static void listRoots(HWND dialog, int listId, const Complex *roots, int32_t count)
{
    for (int32_t i = 0; roots && i < count; i++)
        SendDlgItemMessageA(dialog, listId, LB_ADDSTRING, 0, (LPARAM)complexToText(&roots[i]));
}

/* Dialog procedure of POLEZERO_BOX; reads currentXfer while timeToFrequency shows it. */
INT_PTR poleZeroDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG) {
        listRoots(dialog, IDC_POLEZERO_ZEROS, currentXfer.zeros, currentXfer.zeroCount);
        listRoots(dialog, IDC_POLEZERO_POLES, currentXfer.poles, currentXfer.poleCount);
        SetFocus(GetDlgItem(dialog, IDOK));
        return FALSE;   /* the focus is set: the dialog manager must not move it */
    }
    if (message != WM_COMMAND)
        return FALSE;
    return displayDialogCommand(dialog, LOWORD(wParam), POLE_ZERO_HELP_TOPIC);
}
