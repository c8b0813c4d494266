/*
** platform/dialogs.cpp: the dialog manager. Builds a modal dialog from its template, sends
** WM_INITDIALOG, sets the first focus, lets the driver act until EndDialog, and tears the
** dialog down; message boxes.
*/
#include <string>

#include "platform/driver.h"
#include "platform/module_resources.h"
#include "platform/window_system.h"

namespace platform {

namespace {

constexpr size_t MAX_NESTED_DIALOGS = 32;

WindowKind controlKind(const ControlTemplate &c)
{
    if (c.className == EDIT_CLASS)
        return WindowKind::Edit;
    if (c.className == LISTBOX_CLASS)
        return WindowKind::ListBox;
    if (c.className == STATIC_CLASS)
        return WindowKind::Static;
    switch (c.style & BUTTON_TYPE_MASK) {
    case 0x1: return WindowKind::DefaultButton;
    case 0x2: case 0x3: case 0x5: case 0x6: return WindowKind::CheckBox;
    case 0x4: case 0x9: return WindowKind::RadioButton;
    case 0x7: return WindowKind::GroupBox;
    default: return WindowKind::PushButton;
    }
}

std::string templateNameText(LPCSTR name)
{
    uintptr_t value = reinterpret_cast<uintptr_t>(name);
    if (value < 0x10000)    /* MAKEINTRESOURCE */
        return "#" + std::to_string(value);
    return name;
}

HWND buildDialog(const DialogTemplate &t, DLGPROC procedure)
{
    Window &dialog = createWindow(WindowKind::Dialog, nullptr);
    dialog.text = t.caption;
    dialog.style = t.style;
    dialog.templateName = t.name;
    dialog.procedure = procedure;
    dialog.focusBefore = focusedWindow();
    dialog.x = t.x;
    dialog.y = t.y;
    dialog.cx = t.cx;
    dialog.cy = t.cy;
    dialog.fontFace = t.fontFace;
    dialog.fontSize = t.fontSize;
    for (const ControlTemplate &c : t.controls) {
        Window &control = createWindow(controlKind(c), dialog.handle);
        control.id = c.id;
        control.text = c.text;
        control.style = c.style;
        control.visible = (c.style & STYLE_VISIBLE) != 0;
        control.enabled = (c.style & STYLE_DISABLED) == 0;
        control.x = c.x;
        control.y = c.y;
        control.cx = c.cx;
        control.cy = c.cy;
        dialog.controls.push_back(control.handle);
    }
    return dialog.handle;
}

bool focusIsIn(HWND dialog)
{
    HWND focus = focusedWindow();
    if (focus == dialog)
        return true;
    const Window *w = findWindow(focus);
    return w && w->parent == dialog;
}

/* Opening and closing a modal dialog moves the focus without notifications: the dialog
** procedures hear about focus changes that the user makes inside their dialog only. */
void closeDialog(HWND dialog)
{
    const Window *d = findWindow(dialog);
    HWND restore = d ? d->focusBefore : nullptr;
    if (focusIsIn(dialog)) {
        std::vector<HWND> &open = openDialogs();
        HWND fallback = mainWindowHandle();
        for (HWND other : open)
            if (other != dialog)
                fallback = other;
        const Window *r = findWindow(restore);
        bool restorable = r && restore != dialog && r->parent != dialog;
        setFocusQuietly(restorable ? restore : fallback);
    }
    destroyWindow(dialog);
}

int defaultMessageBoxAnswer(UINT type)
{
    size_t defaultButton = (type >> 8) & 0xF;
    const std::vector<int> &choices = messageBoxButtons(type);
    return choices[defaultButton < choices.size() ? defaultButton : 0];
}

}

const std::vector<int> &messageBoxButtons(UINT type)
{
    static const std::vector<std::vector<int>> buttons = {
        {IDOK}, {IDOK, IDCANCEL}, {IDABORT, IDRETRY, IDIGNORE}, {IDYES, IDNO, IDCANCEL},
        {IDYES, IDNO}, {IDRETRY, IDCANCEL}, {IDCANCEL, 10, 11}};
    size_t kind = type & 0xF;
    return buttons[kind < buttons.size() ? kind : 0];
}

}

using namespace platform;

extern "C" {

INT_PTR DialogBoxParamA(HINSTANCE module, LPCSTR templateName, HWND owner, DLGPROC procedure,
                        LPARAM initParam)
{
    (void)owner;    /* the owner is not disabled: only the innermost dialog gets user actions */
    if (!templateName) {
        recordError("DialogBoxParamA: no template name");
        return -1;
    }
    std::string name = templateNameText(templateName);
    if (openDialogs().size() >= MAX_NESTED_DIALOGS) {
        recordError("Dialog " + name + " not opened: more than " + std::to_string(MAX_NESTED_DIALOGS) +
                    " dialogs open");
        return -1;
    }
    TemplateLookup found = findDialogTemplate(module, name);
    if (!found.error.empty()) {
        recordError(found.error);
        return -1;
    }
    if (!found.dialog) {
        recordError("Dialog template " + name + " not found");
        return -1;
    }

    HWND dialog = buildDialog(*found.dialog, procedure);
    openDialogs().push_back(dialog);
    HWND firstTabStop = nextTabStop(*findWindow(dialog), nullptr);
    LRESULT init = callDialogProcedure(dialog, WM_INITDIALOG, reinterpret_cast<WPARAM>(firstTabStop), initParam);
    Window *d = findWindow(dialog);
    if (!d)
        return -1;  /* the windowing state was reset under it */
    if (init && firstTabStop && !d->ended)
        SetFocus(firstTabStop);
    if (!focusIsIn(dialog))
        setFocusQuietly(dialog);

    d = findWindow(dialog);
    if (d && !d->ended) {
        recordDialogSnapshot(*d);   /* the moment it waits for the user */
        driveDialog(dialog);
    }
    d = findWindow(dialog);
    if (!d)
        return -1;
    INT_PTR result = d->result;
    transcriptNote("[end] " + d->text + ": " + std::to_string(result));
    closeDialog(dialog);
    return result;
}

BOOL EndDialog(HWND dialog, INT_PTR result)
{
    Window *d = findWindow(dialog);
    if (!d || d->kind != WindowKind::Dialog)
        return FALSE;
    d->ended = true;
    d->result = result;
    return TRUE;
}

int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type)
{
    (void)owner;
    std::string shownCaption = caption ? caption : "Error", shownText = text ? text : "";
    transcriptNote("[" + shownCaption + "] " + shownText);
    return answerMessageBox(shownCaption, shownText, type, defaultMessageBoxAnswer(type));
}

}
