/*
** platform/web_driver.cpp: the web dialog driver. Owns the mailbox between the server
** threads and the session thread, the published page state, and the driving of dialogs
** and message boxes from the page's inputs. Everything that reads or changes windows
** runs on the session thread; the server threads see only the published JSON text.
*/
#include "platform/web_driver.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>

#include "platform/window_system.h"

namespace platform {

namespace {

constexpr size_t MAX_TYPED_TEXT = 4096;     /* far beyond any edit of the templates */
constexpr size_t MAX_QUEUED_INPUTS = 64;    /* a page sends one at a time */

struct Mailbox {
    std::mutex lock;
    std::condition_variable changed;
    std::deque<nlohmann::json> inputs;
    long submitted = 0, taken = 0;
    long sequence = 0;
    long takenAtPublish = 0;                /* inputs taken when the state was published */
    nlohmann::json state = nlohmann::json::object();
    bool closing = false;
};

Mailbox &mailbox()
{
    static Mailbox box;
    return box;
}

/* Session-thread state: never touched by the server threads. */
struct Session {
    std::function<void(nlohmann::json &)> addHostState;
    std::string message;                    /* the answer to a refused input */
    nlohmann::json messageBox;              /* the waiting message box, or null */
};

Session &session()
{
    static Session s;
    return s;
}

uintptr_t handleNumber(const void *handle) { return reinterpret_cast<uintptr_t>(handle); }

std::string menuText(HMENU menu, int position)
{
    char text[256];
    GetMenuStringA(menu, static_cast<UINT>(position), text, sizeof text, MF_BYPOSITION);
    return text;
}

/* The main window's menu bar: each popup with its items, check marks and states. */
nlohmann::json menuBarState()
{
    nlohmann::json bar = nlohmann::json::array();
    HMENU menu = GetMenu(mainWindowHandle());
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        nlohmann::json popup = {{"text", menuText(menu, i)}, {"items", nlohmann::json::array()}};
        HMENU sub = GetSubMenu(menu, i);
        for (int k = 0; sub && k < GetMenuItemCount(sub); ++k) {
            UINT state = GetMenuState(sub, static_cast<UINT>(k), MF_BYPOSITION);
            popup["items"].push_back({{"id", GetMenuItemID(sub, k)},
                                      {"text", menuText(sub, k)},
                                      {"separator", (state & MF_SEPARATOR) != 0},
                                      {"checked", (state & MF_CHECKED) != 0},
                                      {"grayed", (state & (MF_GRAYED | MF_DISABLED)) != 0}});
        }
        bar.push_back(popup);
    }
    return bar;
}

nlohmann::json controlState(const Window &w)
{
    nlohmann::json c = {{"id", static_cast<int16_t>(w.id)}, {"kind", kindName(w.kind)}, {"text", w.text},
                        {"style", w.style}, {"x", w.x}, {"y", w.y}, {"cx", w.cx}, {"cy", w.cy},
                        {"enabled", w.enabled}, {"visible", w.visible}};
    if (isCheckable(w))
        c["check"] = w.check;
    if (w.kind == WindowKind::ListBox) {
        c["items"] = w.items;
        c["selection"] = w.currentSelection;
        c["tabStops"] = w.tabStops;
    }
    return c;
}

nlohmann::json dialogState(const Window &d)
{
    nlohmann::json controls = nlohmann::json::array();
    int focus = 0;
    bool focusInside = false;
    for (HWND handle : d.controls) {
        const Window *w = findWindow(handle);
        if (!w)
            continue;
        controls.push_back(controlState(*w));
        if (handle == focusedWindow()) {
            focus = static_cast<int16_t>(w->id);
            focusInside = true;
        }
    }
    return {{"handle", handleNumber(d.handle)}, {"name", d.templateName}, {"caption", d.text},
            {"font", {{"face", d.fontFace}, {"size", d.fontSize}}},
            {"x", d.x}, {"y", d.y}, {"cx", d.cx}, {"cy", d.cy},
            {"focus", focusInside ? nlohmann::json(focus) : nlohmann::json(nullptr)},
            {"controls", controls}};
}

nlohmann::json pageState()
{
    Session &s = session();
    nlohmann::json dialogs = nlohmann::json::array();
    for (HWND handle : openDialogs())
        if (const Window *d = findWindow(handle); d && !d->ended)
            dialogs.push_back(dialogState(*d));
    nlohmann::json state = {{"menuBar", menuBarState()}, {"dialogs", dialogs}, {"messageBox", s.messageBox},
                            {"message", s.message}};
    s.message.clear();
    if (s.addHostState)
        s.addHostState(state);
    return state;
}

std::string stateText(const Mailbox &box)
{
    nlohmann::json state = box.state;
    state["sequence"] = box.sequence;
    state["busy"] = box.taken > box.takenAtPublish || !box.inputs.empty();
    return state.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

/* Publishes the state, then waits for the next input; nullopt once closing. */
std::optional<nlohmann::json> takeInput()
{
    nlohmann::json state = pageState();
    Mailbox &box = mailbox();
    std::unique_lock<std::mutex> hold(box.lock);
    box.state = std::move(state);
    ++box.sequence;
    box.takenAtPublish = box.taken;
    box.changed.notify_all();
    box.changed.wait(hold, [&box] { return box.closing || !box.inputs.empty(); });
    if (box.closing)
        return std::nullopt;
    nlohmann::json input = std::move(box.inputs.front());
    box.inputs.pop_front();
    ++box.taken;
    return input;
}

bool isClosing()
{
    Mailbox &box = mailbox();
    std::lock_guard<std::mutex> hold(box.lock);
    return box.closing;
}

std::string inputKind(const nlohmann::json &input)
{
    return input.is_object() && input.contains("kind") && input["kind"].is_string() ? input["kind"].get<std::string>()
                                                                                     : "";
}

/* The page's dialog input as the scripted driver's action; false with a message when malformed. */
bool readDialogAction(const nlohmann::json &input, DialogAction &action, std::string &error)
{
    static const struct {
        const char *name;
        ActionKind kind;
    } verbs[] = {{"type", ActionKind::Type}, {"click", ActionKind::Click}, {"check", ActionKind::Check},
                 {"uncheck", ActionKind::Uncheck}, {"select", ActionKind::Select}, {"focus", ActionKind::Focus},
                 {"cancel", ActionKind::Cancel}};
    std::string verb = input.value("action", "");
    const auto *found = std::find_if(std::begin(verbs), std::end(verbs), [&](const auto &v) { return verb == v.name; });
    if (found == std::end(verbs)) {
        error = "unknown dialog action '" + verb + "'; send one of type, click, check, uncheck, select, focus, cancel";
        return false;
    }
    action.kind = found->kind;
    action.control = input.value("control", 0);
    action.index = input.value("index", 0);
    action.text = input.value("text", "");
    if (action.text.size() > MAX_TYPED_TEXT) {
        error = "typed text longer than " + std::to_string(MAX_TYPED_TEXT) + " characters; type a shorter text";
        return false;
    }
    return true;
}

/* One input while `dialog` is the innermost open dialog. */
void actOnDialog(HWND dialog, const nlohmann::json &input)
{
    if (inputKind(input) != "dialog") {
        refuseInput("The dialog \"" + findWindow(dialog)->text + "\" is open: finish it first (OK or Cancel).");
        return;
    }
    if (input.value("dialog", uintptr_t{0}) != handleNumber(dialog)) {
        refuseInput("That dialog is no longer the one waiting.");
        return;
    }
    if (input.value("action", "") == "enter") {
        pressEnter(dialog);
        return;
    }
    DialogAction action;
    std::string error;
    if (!readDialogAction(input, action, error)) {
        refuseInput(error);
        return;
    }
    performDialogAction(dialog, action);
}

void driveFromPage(HWND dialog)
{
    for (;;) {
        const Window *d = findWindow(dialog);
        if (!d || d->ended)
            return;
        std::optional<nlohmann::json> input = takeInput();
        if (!input) {
            pressEscape(dialog);
            if ((d = findWindow(dialog)) && !d->ended)
                EndDialog(dialog, IDCANCEL);
            return;
        }
        try {
            actOnDialog(dialog, *input);
        } catch (const nlohmann::json::exception &) {
            refuseInput("malformed dialog input");
        }
    }
}

const char *buttonLabel(int answer)
{
    switch (answer) {
    case IDOK: return "OK";
    case IDCANCEL: return "Cancel";
    case IDABORT: return "Abort";
    case IDRETRY: return "Retry";
    case IDIGNORE: return "Ignore";
    case IDYES: return "Yes";
    case IDNO: return "No";
    case 10: return "Try Again";
    default: return "Continue";
    }
}

int answerFromPage(const std::string &caption, const std::string &text, UINT type, int defaultAnswer)
{
    const std::vector<int> &answers = messageBoxButtons(type);
    nlohmann::json buttons = nlohmann::json::array();
    for (int answer : answers)
        buttons.push_back({{"answer", answer}, {"label", buttonLabel(answer)}});
    session().messageBox = {{"caption", caption}, {"text", text}, {"buttons", buttons},
                            {"defaultAnswer", defaultAnswer}};
    int answer = defaultAnswer;
    while (std::optional<nlohmann::json> input = takeInput()) {
        if (inputKind(*input) == "message" && (*input)["answer"].is_number_integer() &&
            std::find(answers.begin(), answers.end(), (*input)["answer"].get<int>()) != answers.end()) {
            answer = (*input)["answer"].get<int>();
            break;
        }
        refuseInput("The message \"" + caption + "\" waits for an answer.");
    }
    session().messageBox = nullptr;
    return answer;
}

}

void useWebDriver(std::function<void(nlohmann::json &state)> addHostState)
{
    session().addHostState = std::move(addHostState);
    installPersonDriver({driveFromPage, answerFromPage});
}

std::optional<nlohmann::json> waitForSessionInput()
{
    if (isClosing())
        return std::nullopt;
    return takeInput();
}

void refuseInput(const std::string &message) { session().message = message; }

void withScriptedDriver(const std::function<void()> &work)
{
    installPersonDriver({});
    work();
    installPersonDriver({driveFromPage, answerFromPage});
}

PublishedState submitPageInput(const nlohmann::json &input, std::chrono::milliseconds timeout)
{
    Mailbox &box = mailbox();
    std::unique_lock<std::mutex> hold(box.lock);
    if (box.inputs.size() >= MAX_QUEUED_INPUTS || box.closing)
        return {stateText(box), box.sequence};
    box.inputs.push_back(input);
    long ordinal = ++box.submitted;
    box.changed.notify_all();
    box.changed.wait_for(hold, timeout, [&] { return box.closing || box.takenAtPublish >= ordinal; });
    return {stateText(box), box.sequence};
}

PublishedState publishedState(long after, std::chrono::milliseconds timeout)
{
    Mailbox &box = mailbox();
    std::unique_lock<std::mutex> hold(box.lock);
    box.changed.wait_for(hold, timeout, [&] { return box.closing || box.sequence > after; });
    return {stateText(box), box.sequence};
}

void closeWebDriver()
{
    Mailbox &box = mailbox();
    std::lock_guard<std::mutex> hold(box.lock);
    box.closing = true;
    box.changed.notify_all();
}

}
