/*
** platform/web_driver.h: the web dialog driver, a sibling of the scripted driver. A person
** at a web page acts instead of a script: the thread that runs the plug-in (the session
** thread) publishes what the page shows (menus, open dialogs with their templates and
** control states, the waiting message box) and blocks until the page sends its next input.
** Server threads hand inputs in and wait for the state that follows them; they never touch
** the windowing state themselves.
*/
#ifndef PRAXA_PLATFORM_WEB_DRIVER_H
#define PRAXA_PLATFORM_WEB_DRIVER_H

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace platform {

/* ---- Session thread ---- */

/* Installs the web driver for the dialogs and message boxes to come. `addHostState` adds
** the host's part (plots, points, ...) to each published state; it runs on this thread. */
void useWebDriver(std::function<void(nlohmann::json &state)> addHostState);

/* Publishes the state and waits for the page's next input that the open dialog or message
** box does not take itself: an input of the session (a command, a point click). Returns
** nullopt once the driver is closing. */
std::optional<nlohmann::json> waitForSessionInput();

/* The answer to the input just taken: the next published state carries `message`. */
void refuseInput(const std::string &message);

/* Runs `work` with the scripted driver acting instead of the page (queued actions, then
** default buttons): for the host's own runs of plug-in commands, which the person does
** not see. */
void withScriptedDriver(const std::function<void()> &work);

/* ---- Server threads ---- */

struct PublishedState {
    std::string json;       /* the state as the page reads it, "busy" included */
    long sequence = 0;      /* grows with every publication */
};

/* Hands an input to the session thread and waits, at most `timeout`, for the state
** published after it was taken; after a time-out the state says "busy": true. */
PublishedState submitPageInput(const nlohmann::json &input, std::chrono::milliseconds timeout);

/* The state published after `after`, waiting at most `timeout` for one. */
PublishedState publishedState(long after, std::chrono::milliseconds timeout);

/* Every wait ends: open dialogs are cancelled as with Esc, message boxes answered with
** their default button, and waitForSessionInput returns nullopt. Safe from any thread. */
void closeWebDriver();

}

#endif
