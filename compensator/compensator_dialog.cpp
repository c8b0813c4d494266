/*
** compensator/compensator_dialog.cpp: the Compensator Design dialog (COMPENSATORDESIGN):
** the gain and the zero and pole lists of the series compensator beside the plant's
** roots, editing of the lists (Add, Del, Change) and reading them into the record.
*/
#include <cstdlib>
#include <cstring>

#include "compensator/compensator.h"
#include "host/host.h"
#include "resources/prxdlg.h"
#include "shell/praxa.h"
#include "shell/text.h"
#include "xfer/xfer.h"

enum { COMPENSATOR_HELP_TOPIC = 1193, TEXT_BUFFER_BYTES = 4096, GAIN_BUFFER_BYTES = 64 };

Complex *loopZeros;
Complex *loopPoles;
int32_t loopZeroCount;
int32_t loopPoleCount;
int currentList;
int currentEdit;

static char textBuffer[TEXT_BUFFER_BYTES];

Complex parseRootText(const char *text)
{
    while (*text == '(')
        text++;
    Complex root{std::atof(text), 0.0};
    const char *comma = std::strchr(text, ',');
    if (comma)
        root.im = std::atof(comma + 1);
    return root;
}

static LRESULT listMessage(HWND dialog, int list, UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
{
    return SendDlgItemMessageA(dialog, list, message, wParam, lParam);
}

/* Entry `index` of a list into textBuffer; an entry too long for the buffer (none that
** this dialog adds is) reads as empty. */
static const char *listEntryText(HWND dialog, int list, int index)
{
    textBuffer[0] = '\0';
    LRESULT length = listMessage(dialog, list, LB_GETTEXTLEN, (WPARAM)index);
    if (length >= 0 && length < TEXT_BUFFER_BYTES)
        listMessage(dialog, list, LB_GETTEXT, (WPARAM)index, (LPARAM)textBuffer);
    return textBuffer;
}

static void listRootTexts(HWND dialog, int list, const Complex *roots, int32_t count)
{
    for (int32_t i = 0; roots && i < count; i++)
        listMessage(dialog, list, LB_ADDSTRING, 0, (LPARAM)complexToText(&roots[i]));
}

/* One row per plant pole: the zero of the same index (if any), a tab, the pole. */
static void listPlantRoots(HWND dialog)
{
    int tabStop = 64;
    listMessage(dialog, IDC_COMP_PLANT, LB_SETTABSTOPS, 1, (LPARAM)&tabStop);
    if (!currentXfer.poles)
        return;
    for (int32_t i = 0; i < currentXfer.poleCount; i++) {
        char row[2 * 128 + 2] = "";
        if (currentXfer.zeros && i < currentXfer.zeroCount)
            std::strcpy(row, complexToText(&currentXfer.zeros[i]));
        std::strcat(row, "\t");
        std::strcat(row, complexToText(&currentXfer.poles[i]));
        listMessage(dialog, IDC_COMP_PLANT, LB_ADDSTRING, 0, (LPARAM)row);
    }
}

static void initDialog(HWND dialog)
{
    if (currentCompensator.gain == 0.0)
        currentCompensator.gain = 1.0;
    SetDlgItemTextA(dialog, IDC_COMP_GAIN, numberToText(currentCompensator.gain));
    listPlantRoots(dialog);
    listRootTexts(dialog, IDC_COMP_ZEROS, currentCompensator.zeros, currentCompensator.zeroCount);
    listRootTexts(dialog, IDC_COMP_POLES, currentCompensator.poles, currentCompensator.poleCount);
    SetFocus(GetDlgItem(dialog, IDOK));
}

static void makeCurrent(int list)
{
    currentList = list;
    currentEdit = list == IDC_COMP_ZEROS ? IDC_COMP_ZERO_EDIT : IDC_COMP_POLE_EDIT;
}

static void addEntry(HWND dialog)
{
    if (!currentList)
        return;
    GetDlgItemTextA(dialog, currentEdit, textBuffer, TEXT_BUFFER_BYTES);
    Complex root = parseRootText(textBuffer);
    LRESULT index = listMessage(dialog, currentList, LB_ADDSTRING, 0, (LPARAM)complexToText(&root));
    if (index >= 0)
        listMessage(dialog, currentList, LB_SETCURSEL, (WPARAM)index);
}

static void deleteEntry(HWND dialog)
{
    if (!currentList)
        return;
    LRESULT index = listMessage(dialog, currentList, LB_GETCURSEL);
    if (index < 0)
        return;
    listMessage(dialog, currentList, LB_DELETESTRING, (WPARAM)index);
    listMessage(dialog, currentList, LB_SETCURSEL, (WPARAM)index);
}

static void changeEntry(HWND dialog)
{
    if (!currentList)
        return;
    GetDlgItemTextA(dialog, currentEdit, textBuffer, TEXT_BUFFER_BYTES);
    LRESULT index = listMessage(dialog, currentList, LB_GETCURSEL);
    if (index < 0)
        return;
    listMessage(dialog, currentList, LB_DELETESTRING, (WPARAM)index);
    listMessage(dialog, currentList, LB_INSERTSTRING, (WPARAM)index, (LPARAM)textBuffer);
    listMessage(dialog, currentList, LB_SETCURSEL, (WPARAM)index);
}

/* Reads one compensator list into *roots (grown to count + 1) and the head of *loop (grown
** to count + plant count + 1), the plant roots after them; returns the compensator count. */
static int32_t readRootList(HWND dialog, int list, Complex **roots, Complex **loop, const Complex *plantRoots,
                            int32_t plantCount, int32_t *loopCount)
{
    LRESULT entries = listMessage(dialog, list, LB_GETCOUNT);
    int32_t count = entries > 0 ? (int32_t)entries : 0;
    if (!plantRoots)
        plantCount = 0;
    *roots = (Complex *)grealloc(*roots, sizeof(Complex) * ((uint64_t)count + 1));
    *loop = (Complex *)grealloc(*loop, sizeof(Complex) * ((uint64_t)count + (uint64_t)plantCount + 1));
    for (int32_t i = 0; i < count; i++) {
        Complex root = parseRootText(listEntryText(dialog, list, i));
        (*roots)[i] = root;
        (*loop)[i] = root;
    }
    for (int32_t i = 0; i < plantCount; i++)
        (*loop)[count + i] = plantRoots[i];
    *loopCount = count + plantCount;
    return count;
}

void readCompensator(HWND dialog)
{
    char gainText[GAIN_BUFFER_BYTES] = "";
    GetDlgItemTextA(dialog, IDC_COMP_GAIN, gainText, GAIN_BUFFER_BYTES);
    currentCompensator.gain = std::atof(gainText);
    Compensator &c = currentCompensator;
    c.zeroCount = readRootList(dialog, IDC_COMP_ZEROS, &c.zeros, &loopZeros, currentXfer.zeros,
                               currentXfer.zeroCount, &loopZeroCount);
    c.poleCount = readRootList(dialog, IDC_COMP_POLES, &c.poles, &loopPoles, currentXfer.poles,
                               currentXfer.poleCount, &loopPoleCount);
}

extern "C" INT_PTR compensatorDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG) {
        initDialog(dialog);
        return 0;
    }
    if (message != WM_COMMAND)
        return 0;
    int id = LOWORD(wParam);
    int notification = HIWORD(wParam);
    switch (id) {
    case IDC_COMP_ZEROS:
    case IDC_COMP_POLES:
        if (notification == LBN_SELCHANGE) {
            makeCurrent(id);
            LRESULT index = listMessage(dialog, id, LB_GETCURSEL);
            if (index >= 0)
                SetDlgItemTextA(dialog, currentEdit, listEntryText(dialog, id, (int)index));
        } else if (notification == LBN_SETFOCUS) {
            makeCurrent(id);
        }
        return 0;
    case IDC_COMP_ZERO_EDIT:
    case IDC_COMP_POLE_EDIT:
        if (notification == EN_SETFOCUS)
            makeCurrent(id == IDC_COMP_ZERO_EDIT ? IDC_COMP_ZEROS : IDC_COMP_POLES);
        return 0;
    case IDC_COMP_ADD:
        addEntry(dialog);
        return 0;
    case IDC_COMP_DEL:
        deleteEntry(dialog);
        return 0;
    case IDC_COMP_CHANGE:
        changeEntry(dialog);
        return 0;
    case IDC_COMP_REPLOT:
        replotCompensatedLoop(dialog);
        return 0;
    case IDOK:
        readCompensator(dialog);
        EndDialog(dialog, IDOK);
        return 1;
    case IDCANCEL:
        EndDialog(dialog, IDCANCEL);
        return 1;
    case IDC_COMP_HELP:
        showHelp(COMPENSATOR_HELP_TOPIC);
        return 1;
    default:
        return 0;
    }
}
