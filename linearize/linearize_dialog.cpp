/*
** linearize/linearize_dialog.cpp: the Linearize dialog (LINEARIZE), its remembered
** output choice and result file name, and the output of the model: a .m function file
** or four message boxes.
*/
#include <cstring>

#include "host/host.h"
#include "linearize/linearize.h"
#include "resources/prxdlg.h"
#include "shell/praxa.h"
#include "shell/text.h"

enum { LINEARIZE_HELP_TOPIC = 1177, RESULT_FILE_SIZE = 32 };
enum : INT_PTR { END_OK = IDOK, END_CANCEL = IDCANCEL, END_SELECT_POINTS = IDC_LIN_SELECT_POINTS };

int16_t linOutputChoice = 0;
static char linResultFile[RESULT_FILE_SIZE];
static int pendingChoice;

INT_PTR linearizeDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG) {
        if (linOutputChoice == 0)
            linOutputChoice = LIN_OUTPUT_SCREEN;
        SetDlgItemTextA(dialog, IDC_LIN_RESULT_FILE, linResultFile);
        pendingChoice = linOutputChoice;
        CheckRadioButton(dialog, IDC_LIN_CHOICE_FIRST, IDC_LIN_TO_SCREEN, pendingChoice);
        return FALSE;
    }
    if (message != WM_COMMAND)
        return FALSE;
    switch (wParam) {
    case IDC_LIN_CHOICE_FIRST:
    case IDC_LIN_TO_FILE:
    case IDC_LIN_TO_SCREEN:
        pendingChoice = (int)wParam;
        CheckRadioButton(dialog, IDC_LIN_CHOICE_FIRST, IDC_LIN_TO_SCREEN, pendingChoice);
        if (pendingChoice != linOutputChoice && pendingChoice == LIN_OUTPUT_FILE)
            std::strcpy(linResultFile, "vabcd.m");
        /* Text typed into the name field is discarded. */
        SetDlgItemTextA(dialog, IDC_LIN_RESULT_FILE, linResultFile);
        return FALSE;
    case IDOK:
        linOutputChoice = (int16_t)pendingChoice;
        GetDlgItemTextA(dialog, IDC_LIN_RESULT_FILE, linResultFile, RESULT_FILE_SIZE);
        if (linResultFile[0] == '\0' && linOutputChoice != LIN_OUTPUT_SCREEN) {
            beep(0);
            return FALSE;
        }
        EndDialog(dialog, END_OK);
        return TRUE;
    case IDCANCEL:
        EndDialog(dialog, END_CANCEL);
        return TRUE;
    case IDC_HELP:
        showHelp(LINEARIZE_HELP_TOPIC);
        return TRUE;
    case IDC_LIN_SELECT_POINTS:
        EndDialog(dialog, END_SELECT_POINTS);
        return TRUE;
    default:
        return FALSE;
    }
}

static void printModel(void)
{
    printMatrix("a = ", stateSpaceModel.A);
    printMatrix("b = ", stateSpaceModel.B);
    printMatrix("c = ", stateSpaceModel.C);
    printMatrix("d = ", stateSpaceModel.D);
}

/* "function [a,b,c,d] = NAME" and the four matrices; NAME is the file name cut at its
** first "." (the remembered name keeps only that part). */
static void writeResultFile(void)
{
    if (!fileOpen(linResultFile, FILE_OPEN_WRITE_CREATE_TRUNC)) {
        winMsg("Can't open %Fs", linResultFile);
        return;
    }
    if (char *dot = std::strchr(linResultFile, '.'))
        *dot = '\0';
    farFilePrint("function [a,b,c,d] = ");
    farFilePrint(linResultFile);
    farFilePrint("\n");
    printModel();
    fileClose();
}

void linearizeCommand()
{
    INT_PTR end = DialogBoxParamA(moduleInstance, "LINEARIZE", GetFocus(), linearizeDlgProc, 0);
    if (end == END_OK && linOutputChoice == LIN_OUTPUT_FILE)
        writeResultFile();
    else if (end == END_OK && linOutputChoice == LIN_OUTPUT_SCREEN)
        printModel();
    else if (end == END_SELECT_POINTS)
        SendMessageA(hostMainWindow, WM_COMMAND, CMD_SELECT_POINTS, 0);
    linOutputChoice = LIN_OUTPUT_SCREEN;
}
