/*
** platform/driver.cpp: the scripted dialog driver and the transcript. Queued user actions
** become the messages a real dialog manager sends; without an action for the open dialog
** the driver presses its default button. Dialogs and message boxes are written down.
*/
#include <algorithm>
#include <cctype>
#include <deque>
#include <optional>

#include "platform/driver.h"
#include "platform/window_system.h"

namespace platform {

namespace {

constexpr int MAX_ACTIONS_PER_DIALOG = 1000;

struct DriverState {
    std::deque<DialogAction> actions;
    std::deque<int> messageBoxAnswers;
    std::vector<std::string> transcript;
    int refusedDialogs = 0;
    int scriptErrors = 0;
    PersonDriver person;
};

DriverState &driver()
{
    static DriverState state;
    return state;
}

bool sameIgnoringCase(const std::string &a, const std::string &b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

bool appliesTo(const DialogAction &action, const Window &dialog)
{
    return action.dialog.empty() || sameIgnoringCase(action.dialog, dialog.templateName) ||
           sameIgnoringCase(action.dialog, dialog.text);
}

std::optional<DialogAction> takeActionFor(const Window &dialog)
{
    auto &actions = driver().actions;
    for (auto it = actions.begin(); it != actions.end(); ++it)
        if (appliesTo(*it, dialog)) {
            DialogAction action = *it;
            actions.erase(it);
            return action;
        }
    return std::nullopt;
}

bool hasActionFor(const Window &dialog)
{
    const auto &actions = driver().actions;
    return std::any_of(actions.begin(), actions.end(),
                       [&dialog](const DialogAction &a) { return appliesTo(a, dialog); });
}

std::string actionLine(const DialogAction &a)
{
    std::string id = std::to_string(a.control);
    switch (a.kind) {
    case ActionKind::Type: return "  > type " + id + " \"" + a.text + "\"";
    case ActionKind::Click: return "  > click " + id;
    case ActionKind::Check: return "  > check " + id;
    case ActionKind::Uncheck: return "  > uncheck " + id;
    case ActionKind::Select: return "  > select " + id + " " + std::to_string(a.index);
    case ActionKind::Focus: return "  > focus " + id;
    case ActionKind::Cancel: return "  > cancel";
    }
    return "  > ?";
}

void scriptError(const std::string &message)
{
    recordError(message);
    ++driver().scriptErrors;
}

bool dialogOpen(HWND dialog)
{
    const Window *d = findWindow(dialog);
    return d && !d->ended;
}

void sendCommand(HWND dialog, int id, HWND control)
{
    callDialogProcedure(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(control));
}

}

/* The Esc key: IDCANCEL, unless the dialog has a disabled Cancel button. */
void pressEscape(HWND dialog)
{
    Window *cancel = findControl(dialog, IDCANCEL);
    if (cancel && !cancel->enabled)
        return;
    sendCommand(dialog, IDCANCEL, cancel ? cancel->handle : nullptr);
}

/* The Enter key: the template's default push button, IDOK when it has none; nothing when
** that button is disabled. The focus does not move. */
void pressEnter(HWND dialog)
{
    const Window *d = findWindow(dialog);
    const Window *button = nullptr;
    for (HWND c : d->controls) {
        const Window *w = findWindow(c);
        if (w && w->kind == WindowKind::DefaultButton) {
            button = w;
            break;
        }
    }
    int id = button ? button->id : IDOK;
    if (!button)
        button = findControl(dialog, IDOK);
    transcriptNote("  > default " + std::to_string(id));
    if (button && !button->enabled)
        return;
    sendCommand(dialog, id, button ? button->handle : nullptr);
}

namespace {

/* Typing replaces the whole text, as a user who selects all and types; the edit's own
** styles apply (read-only refuses, upper/lower case converts, digits-only drops the rest). */
void typeInto(HWND dialog, Window &edit, const std::string &typed)
{
    HWND control = edit.handle;
    SetFocus(control);
    Window *w = findWindow(control);
    if (!w || !dialogOpen(dialog))
        return;
    std::string text;
    for (char c : typed) {
        if ((w->style & EDIT_NUMBER) && !std::isdigit(static_cast<unsigned char>(c)))
            continue;
        if (w->style & EDIT_UPPERCASE)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        else if (w->style & EDIT_LOWERCASE)
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        text += c;
    }
    if (text.size() > w->typingLimit)
        text.resize(w->typingLimit);
    SetWindowTextA(control, text.c_str());
    w = findWindow(control);
    if (!w || !dialogOpen(dialog))
        return;
    int end = static_cast<int>(w->text.size());
    w->selectionStart = w->selectionEnd = end;
    HWND next = nextTabStop(*findWindow(dialog), control);
    if (next && next != control)
        SetFocus(next);
}

/* A click on an entry: the list takes the focus and selects it; as in Win32 only a list
** with LBS_NOTIFY tells its dialog about the new selection. */
void selectEntry(HWND dialog, Window &list, int index)
{
    HWND control = list.handle;
    SetFocus(control);
    Window *w = findWindow(control);
    if (!w || !dialogOpen(dialog))
        return;
    SendMessageA(control, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
    if (w->style & LIST_NOTIFY)
        notifyParent(*w, LBN_SELCHANGE);
}

}

void performDialogAction(HWND dialog, const DialogAction &action)
{
    transcriptNote(actionLine(action));
    if (action.kind == ActionKind::Cancel) {
        pressEscape(dialog);
        return;
    }
    const Window *d = findWindow(dialog);
    std::string where = "Dialog \"" + d->text + "\"";
    std::string id = std::to_string(action.control);
    Window *c = findControl(dialog, action.control);
    if (!c) {
        scriptError(where + " has no control " + id);
        return;
    }
    if (!c->visible || !c->enabled) {
        scriptError(where + ": control " + id + (c->visible ? " is disabled" : " is hidden"));
        return;
    }
    switch (action.kind) {
    case ActionKind::Type:
        if (c->kind != WindowKind::Edit)
            scriptError(where + ": control " + id + " is not an edit control");
        else if (c->style & EDIT_READONLY)
            scriptError(where + ": control " + id + " is read-only");
        else
            typeInto(dialog, *c, action.text);
        return;
    case ActionKind::Click:
        clickControl(c->handle);
        return;
    case ActionKind::Check:
    case ActionKind::Uncheck:
        if (!isCheckable(*c))
            scriptError(where + ": control " + id + " is not a check box or radio button");
        else if ((c->check != BST_UNCHECKED) != (action.kind == ActionKind::Check))
            clickControl(c->handle);
        return;
    case ActionKind::Select:
        if (c->kind != WindowKind::ListBox)
            scriptError(where + ": control " + id + " is not a list box");
        else if (action.index < 0 || action.index >= static_cast<int>(c->items.size()))
            scriptError(where + ": list " + id + " has no entry " + std::to_string(action.index));
        else
            selectEntry(dialog, *c, action.index);
        return;
    case ActionKind::Focus:
        SetFocus(c->handle);
        return;
    case ActionKind::Cancel:
        return;
    }
}

void recordError(const std::string &message)
{
    transcriptNote("[error] " + message);
}

void recordDialogSnapshot(const Window &dialog)
{
    transcriptNote("[dialog] " + dialog.text);
    for (HWND c : dialog.controls) {
        const Window *w = findWindow(c);
        if (!w)
            continue;
        std::string line = std::string("  ") + kindName(w->kind) + " " + std::to_string(w->id);
        if (w->kind == WindowKind::ListBox) {
            line += ":";
            for (size_t i = 0; i < w->items.size(); ++i)
                line += (i == 0 ? " \"" : " | \"") + w->items[i] + "\"";
        } else {
            line += " \"" + w->text + "\"";
        }
        if (isCheckable(*w))
            line += w->check != BST_UNCHECKED ? " [x]" : " [ ]";
        if (!w->visible)
            line += " (hidden)";
        if (!w->enabled)
            line += " (disabled)";
        transcriptNote(line);
    }
}

/* Acts on the dialog until it has ended. A dialog still open after the default button was
** pressed refused its entry: it is cancelled (Esc), and ended by force if it ignores that. */
void driveDialog(HWND dialog)
{
    if (driver().person.driveDialog) {
        driver().person.driveDialog(dialog);
        return;
    }
    int performed = 0;
    for (;;) {
        const Window *d = findWindow(dialog);
        if (!d || d->ended)
            return;
        if (performed < MAX_ACTIONS_PER_DIALOG) {
            if (std::optional<DialogAction> action = takeActionFor(*d)) {
                ++performed;
                performDialogAction(dialog, *action);
                continue;
            }
        } else if (performed == MAX_ACTIONS_PER_DIALOG && hasActionFor(*d)) {
            ++performed;
            scriptError("Dialog \"" + d->text + "\": more than " + std::to_string(MAX_ACTIONS_PER_DIALOG) +
                        " actions, the rest are left for later dialogs");
        }
        pressEnter(dialog);
        d = findWindow(dialog);
        if (!d || d->ended)
            return;
        transcriptNote("[refused] " + d->text);
        ++driver().refusedDialogs;
        pressEscape(dialog);
        if (dialogOpen(dialog))
            EndDialog(dialog, IDCANCEL);
        return;
    }
}

int answerMessageBox(const std::string &caption, const std::string &text, UINT type, int defaultAnswer)
{
    if (driver().person.answerMessageBox)
        return driver().person.answerMessageBox(caption, text, type, defaultAnswer);
    auto &answers = driver().messageBoxAnswers;
    if (answers.empty())
        return defaultAnswer;
    int answer = answers.front();
    answers.pop_front();
    return answer;
}

void installPersonDriver(PersonDriver person) { driver().person = std::move(person); }

void queueDialogAction(const DialogAction &action) { driver().actions.push_back(action); }

void clearDialogActions() { driver().actions.clear(); }

size_t pendingDialogActions() { return driver().actions.size(); }

int refusedDialogCount() { return driver().refusedDialogs; }

int scriptErrorCount() { return driver().scriptErrors; }

void queueMessageBoxAnswer(int answer) { driver().messageBoxAnswers.push_back(answer); }

const std::vector<std::string> &transcript() { return driver().transcript; }

std::string transcriptText()
{
    std::string text;
    for (const std::string &entry : driver().transcript) {
        text += entry;
        if (entry.empty() || entry.back() != '\n')
            text += '\n';
    }
    return text;
}

void clearTranscript() { driver().transcript.clear(); }

void transcriptNote(const std::string &line) { driver().transcript.push_back(line); }

void resetWindowing()
{
    resetWindowSystem();
    resetMenus();
    resetProfileState();
    driver() = DriverState{};
}

}
