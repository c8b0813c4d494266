/*
** platform/windows.cpp: window objects, controls and their messages, the focus.
** Owns every window (main window, dialogs, controls) and what a control does with the
** messages it gets: texts, check states, list entries, selections, focus notifications.
*/
#include <algorithm>
#include <cctype>
#include <climits>
#include <cstring>
#include <map>
#include <memory>

#include "platform/driver.h"
#include "platform/window_system.h"

namespace platform {

namespace {

constexpr int MAX_PROCEDURE_DEPTH = 200;    /* nested messages to dialog procedures */
constexpr int MAX_FOCUS_DEPTH = 16;         /* focus changes made by focus notifications */

struct WindowSystem {
    std::map<uintptr_t, std::unique_ptr<Window>> windows;
    uintptr_t nextHandle = 0x10010;     /* never reused: a stale handle finds nothing */
    HWND focus = nullptr;
    HWND mainWindow = nullptr;
    std::vector<HWND> dialogs;
    std::function<LRESULT(UINT, WPARAM, LPARAM)> mainProcedure;
    int procedureDepth = 0;
    int focusDepth = 0;
};

WindowSystem &windowSystem()
{
    static WindowSystem system;
    return system;
}

uintptr_t keyOf(HWND window) { return reinterpret_cast<uintptr_t>(window); }

/* Copies `text` Win32-style: at most size - 1 characters and a NUL; returns the count. */
int copyText(const std::string &text, char *buffer, long long size)
{
    if (!buffer || size <= 0)
        return 0;
    size_t n = std::min(text.size(), static_cast<size_t>(std::min<long long>(size - 1, INT_MAX)));
    std::memcpy(buffer, text.data(), n);
    buffer[n] = '\0';
    return static_cast<int>(n);
}

std::string textArgument(LPARAM lParam)
{
    const char *text = reinterpret_cast<const char *>(lParam);
    return text ? std::string(text) : std::string();
}

bool lessIgnoringCase(const std::string &a, const std::string &b)
{
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) < std::tolower(static_cast<unsigned char>(y));
    });
}

void notifyFocus(HWND window, bool gained)
{
    const Window *w = findWindow(window);
    if (!w || !w->parent)
        return;
    if (w->kind == WindowKind::Edit)
        notifyParent(*w, gained ? EN_SETFOCUS : EN_KILLFOCUS);
    else if (w->kind == WindowKind::ListBox)
        notifyParent(*w, gained ? LBN_SETFOCUS : LBN_KILLFOCUS);
}

void setText(Window &w, const std::string &text)
{
    w.text = text;
    if (w.kind == WindowKind::Edit) {
        w.selectionStart = w.selectionEnd = 0;
        notifyParent(w, EN_CHANGE);     /* a single-line edit reports program-set text too */
    }
}

LRESULT editMessage(Window &w, UINT message, WPARAM wParam, LPARAM lParam)
{
    int length = static_cast<int>(w.text.size());
    switch (message) {
    case EM_SETSEL: {
        /* Start -1 removes the selection; an end below 0 or past the text means the end. */
        long long start = static_cast<int>(wParam), end = static_cast<int>(lParam);
        if (start < 0) {
            w.selectionStart = w.selectionEnd;
            return 0;
        }
        if (end < 0 || end > length)
            end = length;
        if (start > length)
            start = length;
        w.selectionStart = static_cast<int>(std::min(start, end));
        w.selectionEnd = static_cast<int>(std::max(start, end));
        return 0;
    }
    case EM_GETSEL: {
        int start = std::min(w.selectionStart, length), end = std::min(w.selectionEnd, length);
        if (wParam)
            *reinterpret_cast<DWORD *>(wParam) = static_cast<DWORD>(start);
        if (lParam)
            *reinterpret_cast<DWORD *>(lParam) = static_cast<DWORD>(end);
        return (start > 0xFFFF || end > 0xFFFF) ? -1 : static_cast<LRESULT>(MAKELPARAM(start, end));
    }
    case EM_LIMITTEXT:
        w.typingLimit = wParam == 0 ? 0x7FFFFFFE : static_cast<size_t>(wParam);
        return 0;
    }
    return 0;
}

LRESULT buttonMessage(Window &w, UINT message, WPARAM wParam)
{
    switch (message) {
    case BM_GETCHECK:
        return isCheckable(w) ? w.check : BST_UNCHECKED;
    case BM_SETCHECK:
        if (isCheckable(w)) {
            UINT state = static_cast<UINT>(wParam);
            bool threeState = w.kind == WindowKind::CheckBox &&
                              ((w.style & BUTTON_TYPE_MASK) == BUTTON_3STATE ||
                               (w.style & BUTTON_TYPE_MASK) == BUTTON_AUTO3STATE);
            w.check = state == BST_INDETERMINATE && !threeState ? BST_CHECKED
                      : state > BST_INDETERMINATE              ? BST_CHECKED
                                                               : state;
        }
        return 0;
    case BM_CLICK:
        if (canTakeInput(w))
            clickControl(w.handle);
        return 0;
    }
    return 0;
}

LRESULT listMessage(Window &w, UINT message, WPARAM wParam, LPARAM lParam)
{
    int count = static_cast<int>(w.items.size());
    int index = static_cast<int>(wParam);
    switch (message) {
    case LB_ADDSTRING: {
        std::string text = textArgument(lParam);
        int at = count;
        if (w.style & LIST_SORT)
            at = static_cast<int>(std::upper_bound(w.items.begin(), w.items.end(), text, lessIgnoringCase) -
                                  w.items.begin());
        w.items.insert(w.items.begin() + at, text);
        if (w.currentSelection >= at)
            ++w.currentSelection;
        return at;
    }
    case LB_INSERTSTRING: {
        if (index == -1)
            index = count;
        if (index < 0 || index > count)
            return LB_ERR;
        w.items.insert(w.items.begin() + index, textArgument(lParam));
        if (w.currentSelection >= index)
            ++w.currentSelection;
        return index;
    }
    case LB_DELETESTRING:
        if (index < 0 || index >= count)
            return LB_ERR;
        w.items.erase(w.items.begin() + index);
        if (w.currentSelection == index)
            w.currentSelection = LB_ERR;
        else if (w.currentSelection > index)
            --w.currentSelection;
        return count - 1;
    case LB_RESETCONTENT:
        w.items.clear();
        w.currentSelection = LB_ERR;
        return 0;
    case LB_SETCURSEL:
        if (index == -1) {
            w.currentSelection = LB_ERR;
            return LB_ERR;
        }
        if (index < 0 || index >= count)
            return LB_ERR;
        w.currentSelection = index;
        return index;
    case LB_GETCURSEL:
        return w.currentSelection;
    case LB_GETTEXT:
        /* As in Win32 the buffer has no size: it must hold LB_GETTEXTLEN + 1 characters. */
        if (index < 0 || index >= count)
            return LB_ERR;
        if (lParam)
            std::memcpy(reinterpret_cast<char *>(lParam), w.items[index].c_str(), w.items[index].size() + 1);
        return static_cast<LRESULT>(w.items[index].size());
    case LB_GETTEXTLEN:
        if (index < 0 || index >= count)
            return LB_ERR;
        return static_cast<LRESULT>(w.items[index].size());
    case LB_GETCOUNT:
        return count;
    case LB_SETTABSTOPS: {
        const int *stops = reinterpret_cast<const int *>(lParam);
        w.tabStops.clear();
        if (stops)
            for (int i = 0; i < index && i < 256; ++i)
                w.tabStops.push_back(stops[i]);
        return TRUE;
    }
    }
    return 0;
}

LRESULT textMessage(Window &w, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_SETTEXT:
        setText(w, textArgument(lParam));
        return TRUE;
    case WM_GETTEXT:
        return copyText(w.text, reinterpret_cast<char *>(lParam), static_cast<long long>(wParam));
    default:
        return static_cast<LRESULT>(w.text.size());
    }
}

bool isTextMessage(UINT message)
{
    return message == WM_SETTEXT || message == WM_GETTEXT || message == WM_GETTEXTLENGTH;
}

Window *dialogControl(HWND dialog, int id)
{
    Window *d = findWindow(dialog);
    return d && d->kind == WindowKind::Dialog ? findControl(dialog, id) : nullptr;
}

}

/* ---- Shared inside the windowing stand-in ---- */

const char *kindName(WindowKind kind)
{
    switch (kind) {
    case WindowKind::Edit: return "edit";
    case WindowKind::PushButton: return "button";
    case WindowKind::DefaultButton: return "default-button";
    case WindowKind::CheckBox: return "checkbox";
    case WindowKind::RadioButton: return "radio";
    case WindowKind::GroupBox: return "groupbox";
    case WindowKind::ListBox: return "listbox";
    default: return "static";
    }
}

Window *findWindow(HWND window)
{
    auto &windows = windowSystem().windows;
    auto it = windows.find(keyOf(window));
    return it == windows.end() ? nullptr : it->second.get();
}

Window &createWindow(WindowKind kind, HWND parent)
{
    WindowSystem &system = windowSystem();
    auto window = std::make_unique<Window>();
    window->handle = reinterpret_cast<HWND>(system.nextHandle);
    system.nextHandle += 0x10;
    window->kind = kind;
    window->parent = parent;
    Window &result = *window;
    system.windows[keyOf(result.handle)] = std::move(window);
    return result;
}

void destroyWindow(HWND window)
{
    WindowSystem &system = windowSystem();
    Window *w = findWindow(window);
    if (!w)
        return;
    std::vector<HWND> controls = w->controls;
    for (HWND c : controls)
        system.windows.erase(keyOf(c));
    system.windows.erase(keyOf(window));
    std::erase(system.dialogs, window);
    if (window == system.mainWindow)
        system.mainWindow = nullptr;
}

void destroyAllWindows()
{
    WindowSystem &system = windowSystem();
    system.windows.clear();
    system.dialogs.clear();
    system.focus = nullptr;
    system.mainWindow = nullptr;
}

HWND mainWindowHandle() { return windowSystem().mainWindow; }

HWND focusedWindow() { return windowSystem().focus; }

void setFocusQuietly(HWND window) { windowSystem().focus = window; }

std::vector<HWND> &openDialogs() { return windowSystem().dialogs; }

Window *findControl(HWND dialog, int id)
{
    Window *d = findWindow(dialog);
    if (!d)
        return nullptr;
    for (HWND c : d->controls) {
        Window *w = findWindow(c);
        /* Control ids are 16-bit words in a template: -1 and 65535 are the same id. */
        if (w && static_cast<uint16_t>(w->id) == static_cast<uint16_t>(id))
            return w;
    }
    return nullptr;
}

bool isCheckable(const Window &w)
{
    return w.kind == WindowKind::CheckBox || w.kind == WindowKind::RadioButton;
}

bool canTakeInput(const Window &w) { return w.visible && w.enabled; }

HWND nextTabStop(const Window &dialog, HWND from)
{
    const std::vector<HWND> &controls = dialog.controls;
    size_t n = controls.size();
    size_t start = n;   /* no current control: begin with the first */
    for (size_t i = 0; i < n; ++i)
        if (controls[i] == from)
            start = i;
    for (size_t k = 1; k <= n; ++k) {
        size_t i = start == n ? k - 1 : (start + k) % n;
        const Window *w = findWindow(controls[i]);
        if (w && (w->style & STYLE_TABSTOP) && canTakeInput(*w))
            return controls[i];
    }
    return nullptr;
}

LRESULT callDialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    WindowSystem &system = windowSystem();
    Window *d = findWindow(dialog);
    if (!d || d->kind != WindowKind::Dialog || !d->procedure)
        return 0;
    if (system.procedureDepth >= MAX_PROCEDURE_DEPTH) {
        recordError("Dialog \"" + d->text + "\": messages nested too deeply, message " +
                    std::to_string(message) + " dropped");
        return 0;
    }
    DLGPROC procedure = d->procedure;
    ++system.procedureDepth;
    LRESULT result = procedure(dialog, message, wParam, lParam);
    --system.procedureDepth;
    return result;
}

void notifyParent(const Window &control, UINT notification)
{
    callDialogProcedure(control.parent, WM_COMMAND, MAKEWPARAM(control.id, notification),
                        reinterpret_cast<LPARAM>(control.handle));
}

void checkRadioInGroup(Window &radio)
{
    Window *d = findWindow(radio.parent);
    if (!d)
        return;
    const std::vector<HWND> &controls = d->controls;
    auto at = std::find(controls.begin(), controls.end(), radio.handle);
    if (at == controls.end())
        return;
    /* The group runs from the last WS_GROUP control at or before the button to the next one. */
    size_t i = static_cast<size_t>(at - controls.begin());
    size_t first = i;
    while (first > 0) {
        const Window *w = findWindow(controls[first]);
        if (w && (w->style & STYLE_GROUP))
            break;
        --first;
    }
    size_t last = i + 1;
    while (last < controls.size()) {
        const Window *w = findWindow(controls[last]);
        if (w && (w->style & STYLE_GROUP))
            break;
        ++last;
    }
    for (size_t k = first; k < last; ++k) {
        Window *w = findWindow(controls[k]);
        if (w && w->kind == WindowKind::RadioButton)
            w->check = k == i ? BST_CHECKED : BST_UNCHECKED;
    }
}

void clickControl(HWND control)
{
    Window *w = findWindow(control);
    if (!w)
        return;
    HWND dialog = w->parent;
    auto dialogOpen = [dialog] {
        const Window *d = findWindow(dialog);
        return d && !d->ended;
    };
    switch (w->kind) {
    case WindowKind::Static:
        if (w->style & STATIC_NOTIFY)
            notifyParent(*w, STN_CLICKED);
        return;
    case WindowKind::Edit:
    case WindowKind::ListBox:
        SetFocus(control);
        return;
    case WindowKind::PushButton:
    case WindowKind::DefaultButton:
    case WindowKind::CheckBox:
    case WindowKind::RadioButton:
        break;
    default:
        return;
    }
    SetFocus(control);
    w = findWindow(control);
    if (!w || !dialogOpen())
        return;
    DWORD type = w->style & BUTTON_TYPE_MASK;
    if (w->kind == WindowKind::CheckBox && type == BUTTON_AUTOCHECKBOX)
        w->check = w->check == BST_UNCHECKED ? BST_CHECKED : BST_UNCHECKED;
    else if (w->kind == WindowKind::CheckBox && type == BUTTON_AUTO3STATE)
        w->check = (w->check + 1) % 3;
    else if (w->kind == WindowKind::RadioButton && type == BUTTON_AUTORADIOBUTTON)
        checkRadioInGroup(*w);
    notifyParent(*w, BN_CLICKED);
}

void setMainWindowProcedure(std::function<LRESULT(UINT, WPARAM, LPARAM)> handler)
{
    windowSystem().mainProcedure = std::move(handler);
}

void resetWindowSystem()
{
    WindowSystem &system = windowSystem();
    destroyAllWindows();
    system.mainProcedure = nullptr;
    system.procedureDepth = 0;
    system.focusDepth = 0;
}

HWND createMainWindow(const char *title)
{
    WindowSystem &system = windowSystem();
    if (system.mainWindow)
        destroyWindow(system.mainWindow);
    Window &main = createWindow(WindowKind::Main, nullptr);
    main.text = title ? title : "";
    main.style = STYLE_VISIBLE;
    main.menu = createMainMenuBar();
    system.mainWindow = main.handle;
    system.focus = main.handle;
    return main.handle;
}

void setMainWindowHandler(std::function<LRESULT(UINT, WPARAM, LPARAM)> handler)
{
    setMainWindowProcedure(std::move(handler));
}

}

using namespace platform;

extern "C" {

HWND GetFocus(void)
{
    WindowSystem &system = windowSystem();
    if (system.dialogs.empty())
        return system.mainWindow;
    return findWindow(system.focus) ? system.focus : nullptr;
}

/* Win32 order: the focus moves first, then the old window hears it lost the focus; if
** that handler moved the focus elsewhere, the new window is not told it got it. */
HWND SetFocus(HWND window)
{
    WindowSystem &system = windowSystem();
    if (window && !findWindow(window))
        return nullptr;
    HWND previous = system.focus;
    if (window == previous)
        return previous;
    system.focus = window;
    if (system.focusDepth >= MAX_FOCUS_DEPTH) {
        recordError("Focus changes nested too deeply: notifications dropped");
        return previous;
    }
    ++system.focusDepth;
    notifyFocus(previous, false);
    if (system.focus == window)
        notifyFocus(window, true);
    --system.focusDepth;
    return findWindow(previous) ? previous : nullptr;
}

HWND GetDlgItem(HWND dialog, int id)
{
    Window *w = dialogControl(dialog, id);
    return w ? w->handle : nullptr;
}

int GetDlgCtrlID(HWND control)
{
    Window *w = findWindow(control);
    return w && w->parent ? w->id : 0;
}

BOOL SetWindowTextA(HWND window, LPCSTR text)
{
    Window *w = findWindow(window);
    if (!w)
        return FALSE;
    setText(*w, text ? text : "");
    return TRUE;
}

int GetWindowTextA(HWND window, LPSTR buffer, int size)
{
    Window *w = findWindow(window);
    if (!w) {
        copyText("", buffer, size);
        return 0;
    }
    return copyText(w->text, buffer, size);
}

BOOL ShowWindow(HWND window, int command)
{
    Window *w = findWindow(window);
    if (!w)
        return FALSE;
    bool wasVisible = w->visible;
    w->visible = command != SW_HIDE;
    return wasVisible ? TRUE : FALSE;
}

BOOL EnableWindow(HWND window, BOOL enable)
{
    Window *w = findWindow(window);
    if (!w)
        return FALSE;
    bool wasDisabled = !w->enabled;
    w->enabled = enable != FALSE;
    return wasDisabled ? TRUE : FALSE;
}

BOOL IsWindowEnabled(HWND window)
{
    Window *w = findWindow(window);
    return w && w->enabled ? TRUE : FALSE;
}

BOOL IsWindowVisible(HWND window)
{
    Window *w = findWindow(window);
    return w && w->visible ? TRUE : FALSE;
}

LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window *w = findWindow(window);
    if (!w)
        return 0;
    if (isTextMessage(message))
        return textMessage(*w, message, wParam, lParam);
    switch (w->kind) {
    case WindowKind::Main: {
        auto handler = windowSystem().mainProcedure;    /* a copy: the handler may replace itself */
        return handler ? handler(message, wParam, lParam) : 0;
    }
    case WindowKind::Dialog: {
        LRESULT result = callDialogProcedure(window, message, wParam, lParam);
        if (message == WM_CLOSE && !result) {
            /* The dialog manager turns an unhandled close into Cancel. */
            Window *cancel = findControl(window, IDCANCEL);
            if (!cancel || cancel->enabled)
                callDialogProcedure(window, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED),
                                    reinterpret_cast<LPARAM>(cancel ? cancel->handle : nullptr));
        }
        return result;
    }
    case WindowKind::Edit:
        return editMessage(*w, message, wParam, lParam);
    case WindowKind::ListBox:
        return listMessage(*w, message, wParam, lParam);
    case WindowKind::PushButton:
    case WindowKind::DefaultButton:
    case WindowKind::CheckBox:
    case WindowKind::RadioButton:
    case WindowKind::GroupBox:
        return buttonMessage(*w, message, wParam);
    default:
        return 0;
    }
}

/* Posted messages are delivered at once: nothing here waits for a message loop. */
BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (!window)
        return TRUE;
    if (!findWindow(window))
        return FALSE;
    SendMessageA(window, message, wParam, lParam);
    return TRUE;
}

BOOL SetDlgItemTextA(HWND dialog, int id, LPCSTR text)
{
    Window *w = dialogControl(dialog, id);
    return w ? SetWindowTextA(w->handle, text) : FALSE;
}

UINT GetDlgItemTextA(HWND dialog, int id, LPSTR buffer, int size)
{
    Window *w = dialogControl(dialog, id);
    if (!w) {
        copyText("", buffer, size);
        return 0;
    }
    return static_cast<UINT>(copyText(w->text, buffer, size));
}

BOOL SetDlgItemInt(HWND dialog, int id, UINT value, BOOL isSigned)
{
    Window *w = dialogControl(dialog, id);
    if (!w)
        return FALSE;
    std::string text = isSigned ? std::to_string(static_cast<int>(value)) : std::to_string(value);
    return SetWindowTextA(w->handle, text.c_str());
}

/* Win32 parsing: leading blanks skipped, a minus sign only when signed, decimal digits,
** trailing blanks allowed; anything else, no digits, or a value out of range: 0, FALSE. */
UINT GetDlgItemInt(HWND dialog, int id, BOOL *translated, BOOL isSigned)
{
    if (translated)
        *translated = FALSE;
    Window *w = dialogControl(dialog, id);
    if (!w)
        return 0;
    const std::string &t = w->text;
    size_t i = 0;
    while (i < t.size() && (t[i] == ' ' || t[i] == '\t'))
        ++i;
    bool negative = false;
    if (i < t.size() && t[i] == '-') {
        if (!isSigned)
            return 0;
        negative = true;
        ++i;
    }
    size_t digitsStart = i;
    unsigned long long value = 0;
    while (i < t.size() && std::isdigit(static_cast<unsigned char>(t[i]))) {
        value = value * 10 + static_cast<unsigned>(t[i] - '0');
        if (value > 0xFFFFFFFFULL)
            return 0;
        ++i;
    }
    if (i == digitsStart)
        return 0;
    while (i < t.size() && (t[i] == ' ' || t[i] == '\t'))
        ++i;
    if (i != t.size())
        return 0;
    if (isSigned && value > (negative ? 0x80000000ULL : 0x7FFFFFFFULL))
        return 0;
    if (translated)
        *translated = TRUE;
    long long signedValue = negative ? -static_cast<long long>(value) : static_cast<long long>(value);
    return static_cast<UINT>(signedValue);
}

BOOL CheckDlgButton(HWND dialog, int id, UINT check)
{
    Window *w = dialogControl(dialog, id);
    if (!w)
        return FALSE;
    SendMessageA(w->handle, BM_SETCHECK, check, 0);
    return TRUE;
}

UINT IsDlgButtonChecked(HWND dialog, int id)
{
    Window *w = dialogControl(dialog, id);
    return w ? static_cast<UINT>(SendMessageA(w->handle, BM_GETCHECK, 0, 0)) : BST_UNCHECKED;
}

BOOL CheckRadioButton(HWND dialog, int firstId, int lastId, int checkId)
{
    Window *d = findWindow(dialog);
    if (!d || d->kind != WindowKind::Dialog)
        return FALSE;
    for (HWND c : d->controls) {
        Window *w = findWindow(c);
        if (w && w->id >= firstId && w->id <= lastId)
            SendMessageA(c, BM_SETCHECK, w->id == checkId ? BST_CHECKED : BST_UNCHECKED, 0);
    }
    return TRUE;
}

LRESULT SendDlgItemMessageA(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window *w = dialogControl(dialog, id);
    return w ? SendMessageA(w->handle, message, wParam, lParam) : 0;
}

}
