/*
** platform/window_system.h: the window objects shared inside the windowing stand-in.
** A handle is a number, never a pointer into memory: a stale handle finds nothing.
** windows.cpp owns the objects; dialogs.cpp and driver.cpp build on them.
*/
#ifndef PRAXA_PLATFORM_WINDOW_SYSTEM_H
#define PRAXA_PLATFORM_WINDOW_SYSTEM_H

#include <functional>
#include <string>
#include <vector>

#include "platform/driver.h"
#include "platform/winapi.h"

namespace platform {

enum class WindowKind {
    Main, Dialog,
    Static, Edit, PushButton, DefaultButton, CheckBox, RadioButton, GroupBox, ListBox,
};

/* Style bits the window system itself looks at (Win32 values). */
enum : DWORD {
    STYLE_VISIBLE = 0x10000000, STYLE_DISABLED = 0x08000000, STYLE_GROUP = 0x00020000,
    STYLE_TABSTOP = 0x00010000, BUTTON_TYPE_MASK = 0xF, BUTTON_AUTOCHECKBOX = 0x3,
    BUTTON_AUTO3STATE = 0x6, BUTTON_AUTORADIOBUTTON = 0x9, BUTTON_3STATE = 0x5,
    EDIT_UPPERCASE = 0x8, EDIT_LOWERCASE = 0x10, EDIT_READONLY = 0x800, EDIT_NUMBER = 0x2000,
    LIST_NOTIFY = 0x1, LIST_SORT = 0x2, STATIC_NOTIFY = 0x100,
};

struct Window {
    HWND handle = nullptr;
    HWND parent = nullptr;          /* the dialog that holds a control */
    WindowKind kind = WindowKind::Static;
    int id = 0;
    DWORD style = 0;
    std::string text;
    bool enabled = true;
    bool visible = true;
    UINT check = BST_UNCHECKED;

    /* Edit controls. */
    int selectionStart = 0, selectionEnd = 0;
    size_t typingLimit = 30000;     /* what the user can type; program-set text is not limited */

    /* List boxes. */
    std::vector<std::string> items;
    int currentSelection = LB_ERR;
    std::vector<int> tabStops;      /* dialog units */

    /* Dialogs. */
    std::string templateName;
    DLGPROC procedure = nullptr;
    std::vector<HWND> controls;     /* template order = tab order */
    bool ended = false;
    INT_PTR result = 0;
    HWND focusBefore = nullptr;     /* focus when the dialog opened, restored when it ends */

    /* Main window. */
    HMENU menu = nullptr;

    /* Dialogs and controls: the template's rectangle (dialog units); dialogs: its font. */
    int x = 0, y = 0, cx = 0, cy = 0;
    std::string fontFace;
    int fontSize = 0;
};

/* ---- windows.cpp ---- */
const char *kindName(WindowKind kind);      /* a control's kind as transcripts and the web page name it */
Window *findWindow(HWND window);
Window &createWindow(WindowKind kind, HWND parent);
void destroyWindow(HWND window);            /* a dialog goes with its controls */
void destroyAllWindows();
HWND mainWindowHandle();
HWND focusedWindow();                       /* the focus as stored, whatever it is */
void setFocusQuietly(HWND window);          /* no notifications: a modal dialog opens or ends */
/* A user's click on a control: focus, automatic check state, notification. */
void clickControl(HWND control);
std::vector<HWND> &openDialogs();           /* innermost last */
Window *findControl(HWND dialog, int id);   /* first control with that id (16-bit compare) */
bool isCheckable(const Window &w);          /* check box or radio button */
bool canTakeInput(const Window &w);         /* visible and enabled */
HWND nextTabStop(const Window &dialog, HWND from);
/* Calls the dialog procedure; nested calls are bounded (an error, not a stack overflow). */
LRESULT callDialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
/* WM_COMMAND(MAKEWPARAM(control id, notification), control) to the control's dialog. */
void notifyParent(const Window &control, UINT notification);
/* Auto radio button clicked: check it and uncheck the other radio buttons of its group. */
void checkRadioInGroup(Window &radio);
void setMainWindowProcedure(std::function<LRESULT(UINT, WPARAM, LPARAM)> handler);
void resetWindowSystem();

/* ---- dialogs.cpp ---- */
/* The answers of a message box's buttons, left to right (IDOK, IDYES, ...). */
const std::vector<int> &messageBoxButtons(UINT type);

/* ---- menus.cpp ---- */
void resetMenus();
HMENU createMainMenuBar();                  /* the host's menu bar with its popups */

/* ---- profile.cpp ---- */
void resetProfileState();

/* ---- driver.cpp ---- */
void recordDialogSnapshot(const Window &dialog);
void driveDialog(HWND dialog);              /* acts on the dialog until it has ended */
int answerMessageBox(const std::string &caption, const std::string &text, UINT type, int defaultAnswer);
void recordError(const std::string &message);   /* "[error] message" */
/* One user action on the dialog: the messages the dialog manager sends for it. */
void performDialogAction(HWND dialog, const DialogAction &action);
void pressEnter(HWND dialog);               /* the default push button, if enabled */
void pressEscape(HWND dialog);              /* IDCANCEL, unless Cancel is disabled */

/* A driver that acts for a person instead of the script: while installed, a dialog that
** waits for the user is handed to driveDialog until it has ended, a message box to
** answerMessageBox. Empty functions: the scripted driver acts. */
struct PersonDriver {
    std::function<void(HWND dialog)> driveDialog;
    std::function<int(const std::string &caption, const std::string &text, UINT type, int defaultAnswer)>
        answerMessageBox;
};
void installPersonDriver(PersonDriver driver);

}

#endif
