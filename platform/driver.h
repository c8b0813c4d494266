/*
** platform/driver.h: the dialog driver and the transcript of the windowing stand-in.
** A modal dialog is driven by a queue of user actions; when the queue holds nothing
** for the open dialog, the driver presses its default push button.  Every dialog
** (as it waits for the user) and every message box is written to the transcript.
*/
#ifndef PRAXA_PLATFORM_DRIVER_H
#define PRAXA_PLATFORM_DRIVER_H

#include <functional>
#include <string>
#include <vector>

#include "platform/winapi.h"

namespace platform {

enum class ActionKind {
    Type,       /* focus control, replace its text, move the focus away */
    Click,      /* push button, check box or radio button clicked */
    Check,      /* check box or radio button set checked (click if not checked) */
    Uncheck,    /* check box set unchecked (click if checked) */
    Select,     /* list box entry `index` selected */
    Focus,      /* focus moved to the control */
    Cancel,     /* the Esc key: WM_COMMAND IDCANCEL (no control) */
};

struct DialogAction {
    std::string dialog;         /* template name or title it is meant for; empty: any */
    ActionKind kind = ActionKind::Click;
    int control = 0;
    std::string text;           /* for Type */
    int index = 0;              /* for Select */
};

/* Queue actions for the dialogs to come, in order. */
void queueDialogAction(const DialogAction &action);
void clearDialogActions();
size_t pendingDialogActions();

/* Number of dialogs that refused the default button (a refused entry) and were cancelled. */
int refusedDialogCount();

/* Number of actions that could not be carried out (no such control, disabled control, wrong
** kind of control, list entry out of range, too many actions): each is an "[error]" line. */
int scriptErrorCount();

/* The answer of the next message box (IDOK, IDYES, IDNO, ...), in order. Without one a
** message box answers with its default button: IDOK, or IDYES for MB_YESNO. */
void queueMessageBoxAnswer(int answer);

/* Number of settings-file writes that failed (each is an "[error]" line). */
int settingsWriteFailures();

/* The transcript: one entry per line. */
const std::vector<std::string> &transcript();
std::string transcriptText();
void clearTranscript();
void transcriptNote(const std::string &line);

/* The host's main window, with its menu bar "&File", "&Edit", "&View", "&Simulate", "&Help"
** (empty popups); it has the focus while no dialog is open. */
HWND createMainWindow(const char *title);

/* Receives what is sent or posted to the main window (WM_COMMAND 234, 255 from the plug-in). */
void setMainWindowHandler(std::function<LRESULT(UINT, WPARAM, LPARAM)> handler);

/* Resets the whole windowing state (tests). */
void resetWindowing();

}

#endif
