/*
** hostapp/serve.cpp: `praxa serve`. Runs the plug-in on a session thread that takes the
** page's inputs (menu commands, point clicks; dialog inputs go to the web dialog driver),
** adds the host's part to every published state (diagram marks, plots, the log), and
** stops on SIGINT/SIGTERM by ending every wait, so the plug-in finishes as after Esc.
*/
#include "hostapp/serve.h"

#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <deque>
#include <thread>

#include <nlohmann/json.hpp>

#include "hostapp/compensator_block.h"
#include "hostapp/diagram.h"
#include "hostapp/diagram_picture.h"
#include "hostapp/host_state.h"
#include "hostapp/plot_csv.h"
#include "hostapp/plots.h"
#include "hostapp/report_command.h"
#include "hostapp/web_server.h"
#include "platform/driver.h"
#include "platform/web_driver.h"

namespace hostapp {

namespace {

constexpr size_t LOG_LINES = 300;
constexpr int SELECT_POINTS_COMMAND = 234;
constexpr int COMPENSATOR_HANDED_OVER = 255;

struct ServedSession {
    std::string diagramPath;
    bool pointSelection = false;        /* the host's point selection is on */
    std::deque<std::string> log;        /* the transcript's last lines */
    std::string report;                 /* the report of the selection as it stands */
};

ServedSession &served()
{
    static ServedSession s;
    return s;
}

/* The transcript goes to standard output as it grows, and its tail to the page. */
void takeTranscript()
{
    ServedSession &s = served();
    for (const std::string &line : platform::transcript()) {
        std::fputs((line + "\n").c_str(), stdout);
        s.log.push_back(line);
        if (s.log.size() > LOG_LINES)
            s.log.pop_front();
    }
    std::fflush(stdout);
    platform::clearTranscript();
}

LRESULT mainWindowMessage(UINT message, WPARAM wParam, LPARAM)
{
    if (message != WM_COMMAND)
        return 0;
    if (LOWORD(wParam) == SELECT_POINTS_COMMAND) {
        served().pointSelection = true;
        platform::transcriptNote("[host] point selection: click an input port for the input point, "
                                 "an output port for the output point");
    } else if (LOWORD(wParam) == COMPENSATOR_HANDED_OVER) {
        takeCompensatorDesign("");
    }
    return 0;
}

/* The modification time in nanoseconds: the page reloads a plot whose file changed. */
long long fileVersion(const std::string &path)
{
    struct stat info;
    if (stat(path.c_str(), &info) != 0)
        return -1;
    return (long long)info.st_mtim.tv_sec * 1000000000LL + info.st_mtim.tv_nsec;
}

nlohmann::json plotsState()
{
    nlohmann::json plots = nlohmann::json::array();
    for (HostBlock *block : plotBlocks()) {
        std::string file = plotFileName(block);
        long long version = file.empty() ? -1 : fileVersion(outputPath(file));
        if (version < 0)
            continue;
        std::string csv = plotDataFileName(file);
        plots.push_back({{"file", file}, {"title", file.substr(0, file.size() - 4)}, {"version", version},
                         {"csv", fileVersion(outputPath(csv)) >= 0 ? nlohmann::json(csv) : nlohmann::json(nullptr)}});
    }
    return plots;
}

void addHostState(nlohmann::json &state)
{
    takeTranscript();
    ServedSession &s = served();
    state["diagram"] = {{"file", s.diagramPath}, {"selection", selectedBlockIds()}, {"points", highlightedPoints()}};
    state["pointSelection"] = s.pointSelection;
    state["plots"] = plotsState();
    state["log"] = s.log;
    if (!s.report.empty())
        state["report"] = s.report;
}

/* The report for the side panel, after each input: its own linearization runs with its
** dialog cancelled by the scripted driver and is kept out of the session's log. */
void refreshReport()
{
    ServedSession &s = served();
    if (s.diagramPath.empty())
        return;
    takeTranscript();
    std::string text, error;
    platform::withScriptedDriver([&] {
        if (!selectionReport(false, &text, &error))
            text = "No report: " + error + ".";
    });
    platform::clearTranscript();
    s.report = text;
}

bool isMenuCommand(int id)
{
    UINT itemState = GetMenuState(GetMenu(host().mainWindow), static_cast<UINT>(id), MF_BYCOMMAND);
    return id > 0 && id <= 0xFFFF && itemState != static_cast<UINT>(-1) &&
           !(itemState & (MF_POPUP | MF_GRAYED | MF_DISABLED));
}

void runInput(const nlohmann::json &input)
{
    std::string kind = input.value("kind", "");
    if (kind == "command") {
        int id = input.value("id", 0);
        if (!isMenuCommand(id)) {
            platform::refuseInput("No menu item runs command " + std::to_string(id) + ".");
            return;
        }
        served().pointSelection = false;
        if (!host().plugin.command(static_cast<uint16_t>(id)) && id == SELECT_POINTS_COMMAND)
            mainWindowMessage(WM_COMMAND, SELECT_POINTS_COMMAND, 0);
    } else if (kind == "point") {
        std::string error;
        if (!clickReferencePoint(input.value("name", ""), error))
            platform::refuseInput(error);
    } else if (kind == "dialog" || kind == "message") {
        platform::refuseInput("No dialog or message is waiting.");
    } else {
        platform::refuseInput("Unknown input '" + kind + "'.");
    }
}

void runSessionThread()
{
    refreshReport();
    while (std::optional<nlohmann::json> input = platform::waitForSessionInput()) {
        try {
            runInput(*input);
            refreshReport();
        } catch (const nlohmann::json::exception &) {
            platform::refuseInput("Malformed input.");
        }
    }
}

/* The first signal ends every wait and stops the server; a second one (the plug-in is busy
** computing) ends the process at once. Settings writes replace the file in one rename, so
** the file stays whole either way. */
void waitForStopSignals(sigset_t signals)
{
    int signal = 0;
    sigwait(&signals, &signal);
    std::fputs("\npraxa: stopping\n", stderr);
    platform::closeWebDriver();
    stopWebServer();
    sigwait(&signals, &signal);
    _exit(128 + signal);
}

}

int serveSession(const std::string &diagramPath, int port)
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);  /* every thread started below inherits it */

    served().diagramPath = diagramPath;
    WebServerSetup setup;
    setup.outputDir = host().outputDir;
    int boundPort = 0;
    std::string error;
    if (!diagramPath.empty()) {
        setup.diagramPicture = diagramPictureSvg(error);
        if (setup.diagramPicture.empty())
            std::fprintf(stderr, "praxa: no picture of the diagram: %s\n", error.c_str());
    }
    if (!openWebServer(setup, port, boundPort, error)) {
        std::fprintf(stderr, "praxa: %s\n", error.c_str());
        return 2;
    }
    platform::useWebDriver(addHostState);
    platform::setMainWindowHandler(mainWindowMessage);
    std::printf("Praxa serves %s at http://127.0.0.1:%d/ (Ctrl-C stops)\n",
                diagramPath.empty() ? "no diagram" : diagramPath.c_str(), boundPort);
    std::fflush(stdout);

    std::thread(waitForStopSignals, signals).detach();
    std::thread session(runSessionThread);
    runWebServer();
    platform::closeWebDriver();
    session.join();
    takeTranscript();
    if (platform::settingsWriteFailures() > 0) {
        std::fprintf(stderr, "praxa: the settings file %s could not be written; give a writable one with --settings\n", host().settingsPath.c_str());
        return 1;
    }
    return 0;
}

}
