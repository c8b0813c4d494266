/*
** tests/platform/test_dialogs.cpp: the test templates and the lambda dialog procedures.
*/
#include "test_dialogs.h"

#include <map>

namespace testdialogs {

namespace {

const char *const testHeader = R"(/* Identifiers of the test dialogs. */
#ifndef PLATFORM_TEST_H
#define PLATFORM_TEST_H
#define IDC_NAME        101
#define IDC_GAIN        (IDC_NAME + 1)
#define IDC_HELP        9
#endif
)";

const char *const testScript = R"(// Test dialogs of the windowing stand-in.
#include <windows.h>
#include "platform_test.h"

ENTRY DIALOG 10, 10, 200, 140
STYLE DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU
CAPTION "Entry"
FONT 10, "Microsoft Sans Serif"
BEGIN
    LTEXT           "Name:", IDC_STATIC, 5, 5, 40, 8
    EDITTEXT        IDC_NAME, 50, 5, 100, 12, ES_AUTOHSCROLL
    EDITTEXT        IDC_GAIN, 50, 20, 100, 12
    GROUPBOX        "Units", 300, 5, 35, 90, 30
    AUTORADIOBUTTON "Hertz", 210, 10, 45, 60, 10, WS_GROUP
    AUTORADIOBUTTON "Radians/Second", 211, 10, 55, 60, 10
    GROUPBOX        "Phase", 301, 100, 35, 90, 30, WS_GROUP
    AUTORADIOBUTTON "Degrees", 212, 105, 45, 60, 10, WS_GROUP
    AUTORADIOBUTTON "Radians", 213, 105, 55, 60, 10
    AUTOCHECKBOX    "Auto Range", 1029, 5, 70, 60, 10, WS_GROUP
    CHECKBOX        "Manual", 1030, 70, 70, 60, 10
    RADIOBUTTON     "File", 207, 5, 82, 60, 10, WS_GROUP
    RADIOBUTTON     "Screen", 208, 70, 82, 60, 10
    LISTBOX         107, 5, 95, 90, 30, LBS_NOTIFY | WS_VSCROLL | WS_TABSTOP
    DEFPUSHBUTTON   "OK", IDOK, 100, 120, 30, 14, WS_GROUP
    PUSHBUTTON      "Cancel", IDCANCEL, 135, 120, 30, 14
    PUSHBUTTON      "Help", IDC_HELP, 170, 120, 25, 14, WS_DISABLED
END

SMALL DIALOGEX 0, 0, 120, 60
STYLE DS_MODALFRAME | WS_POPUP | WS_CAPTION
CAPTION "Small"
FONT 8, "Helv", 400, 0, 1
{
    CTEXT           "Gain\t\tvalue", 5, 5, 5, 60, 8
    EDITTEXT        IDC_NAME, 5, 15, 60, 12
    AUTOCHECKBOX    "Negative", 1035, 5, 30, 60, 10
    AUTORADIOBUTTON "A", 215, 70, 30, 20, 10, WS_GROUP
    AUTORADIOBUTTON "B", 216, 90, 30, 20, 10
    LISTBOX         108, 70, 5, 45, 20, WS_TABSTOP
    CONTROL         "Hidden", 110, "Static", SS_LEFT | NOT WS_VISIBLE, 5, 45, 30, 8
    CONTROL         "OK", IDOK, "Button", BS_PUSHBUTTON | WS_TABSTOP, 40, 44, 30, 14
    CONTROL         "Off", 112, "Button", BS_PUSHBUTTON | WS_TABSTOP | WS_DISABLED, 75, 44, 30, 14
}

INNER DIALOG 20, 20, 100, 40
CAPTION "Inner"
BEGIN
    EDITTEXT        901, 5, 5, 60, 12
    DEFPUSHBUTTON   "&Ok", IDOK, 5, 20, 30, 14
END

NODEFAULT DIALOG 0, 0, 100, 40
CAPTION "No Default"
BEGIN
    PUSHBUTTON      "&OK", IDOK, 5, 20, 30, 14
    PUSHBUTTON      "Replot", 302, 40, 20, 30, 14
END
)";

/* Procedures of the open test dialogs; the next one is bound at its WM_INITDIALOG. */
std::vector<Procedure> pendingProcedures;
std::map<HWND, Procedure> boundProcedures;

INT_PTR trampoline(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG && !pendingProcedures.empty()) {
        boundProcedures[dialog] = pendingProcedures.back();
        pendingProcedures.pop_back();
    }
    auto it = boundProcedures.find(dialog);
    if (it == boundProcedures.end())
        return FALSE;
    Procedure procedure = it->second;   /* a copy: nested dialogs may change the map */
    return procedure(dialog, message, wParam, lParam);
}

std::string notificationName(UINT code)
{
    switch (code) {
    case EN_SETFOCUS: return "EN_SETFOCUS";
    case EN_KILLFOCUS: return "EN_KILLFOCUS";
    case EN_CHANGE: return "EN_CHANGE";
    case LBN_SELCHANGE: return "LBN_SELCHANGE";
    case LBN_SETFOCUS: return "LBN_SETFOCUS";
    case LBN_KILLFOCUS: return "LBN_KILLFOCUS";
    case BN_CLICKED: return "BN_CLICKED";
    default: return "code " + std::to_string(code);
    }
}

}

HMODULE testModule()
{
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCSTR>(&testHeader), &module);
    return module;
}

void registerTestTemplates()
{
    RegisterModuleResource(&testHeader, "platform_test.h", testHeader);
    RegisterModuleResource(&testHeader, "platform_test.rc", testScript);
}

void registerExtraScript(const std::string &text)
{
    RegisterModuleResource(&testHeader, "extra.rc", text.c_str());
}

INT_PTR run(const char *name, Procedure procedure, LPARAM initParam)
{
    registerTestTemplates();
    pendingProcedures.push_back(std::move(procedure));
    size_t pending = pendingProcedures.size();
    INT_PTR result = DialogBoxParamA(testModule(), name, GetFocus(), trampoline, initParam);
    if (pendingProcedures.size() == pending)    /* the dialog never opened */
        pendingProcedures.pop_back();
    return result;
}

Procedure recorder(std::vector<std::string> &log)
{
    return [&log](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            HWND first = reinterpret_cast<HWND>(wParam);
            log.push_back("init first=" + std::to_string(first ? GetDlgCtrlID(first) : 0));
            return TRUE;
        }
        if (message != WM_COMMAND)
            return FALSE;
        int id = LOWORD(wParam);
        UINT code = HIWORD(wParam);
        HWND control = reinterpret_cast<HWND>(lParam);
        /* A notification names its control in lParam; commands without a control have 0. */
        if (control && GetDlgCtrlID(control) != id)
            log.push_back("wrong lParam for " + std::to_string(id));
        log.push_back(notificationName(code) + " " + std::to_string(id));
        if (code == BN_CLICKED && (id == IDOK || id == IDCANCEL))
            EndDialog(dialog, id);
        return TRUE;
    };
}

}
