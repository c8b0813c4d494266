/*
** xfer/xfer_info_dialog.cpp: the "Transfer Function" dialog (TRANSFERINFO_BOX): the
** gain of currentXfer and one row per power of s with numerator and denominator.
*/
#include <cstdio>
#include <cstring>

#include "host/host.h"
#include "platform/winapi.h"
#include "resources/prxdlg.h"
#include "shell/praxa.h"
#include "shell/text.h"
#include "xfer/xfer.h"

enum { XFER_INFO_HELP_TOPIC = 1180 };

/* Numerator texts are padded towards this width so the denominators line up at the
** list box's default tab stops. */
static const int NUMERATOR_COLUMN_WIDTH = 13;

static char rowText[256];

static void appendText(const char *text)
{
    size_t used = std::strlen(rowText);
    std::snprintf(rowText + used, sizeof rowText - used, "%s", text);
}

/* s^i <tab> numerator, padded, <tab> denominator: the row of power i of s. */
static const char *xferRow(int32_t power)
{
    std::snprintf(rowText, sizeof rowText, "s^%d\t", (int)power);
    const char *numeratorText = power <= currentXfer.zeroCount
                                    ? floatToString(currentXfer.numerator[power]) : "0";
    appendText(numeratorText);
    int pad = NUMERATOR_COLUMN_WIDTH - (int)std::strlen(numeratorText);
    while (pad > 0) {
        if (pad >= 8) {
            appendText("\t");
            pad -= 7;
        } else {
            appendText(" ");
        }
        pad -= 1;
    }
    appendText("\t");
    appendText(floatToString(currentXfer.denominator[power]));
    return rowText;
}

/* Coefficients are written in the host's own digits (floatToString), the gain at the
** display precision.  Outside timeToFrequency the coefficient arrays are gone: the
** dialog then shows the gain alone. */
static void fillXferInfo(HWND dialog)
{
    SetDlgItemTextA(dialog, IDC_XFERINFO_GAIN, numberToText(currentXfer.gain));
    if (!currentXfer.numerator || !currentXfer.denominator)
        return;
    for (int32_t power = 0; power <= currentXfer.poleCount; power++)
        SendDlgItemMessageA(dialog, IDC_XFERINFO_ROWS, LB_ADDSTRING, 0, (LPARAM)xferRow(power));
}

/* Dialog procedure of TRANSFERINFO_BOX; reads currentXfer while timeToFrequency shows it. */
INT_PTR xferInfoDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG) {
        fillXferInfo(dialog);
        return TRUE;
    }
    if (message != WM_COMMAND)
        return FALSE;
    return displayDialogCommand(dialog, LOWORD(wParam), XFER_INFO_HELP_TOPIC);
}
