/*
** hostapp/cli.cpp: the praxa command line. Loads a diagram and the plug-in, runs menu
** commands of the plug-in with the dialog actions a user would take, prints the
** transcript of dialogs and messages, and writes result files and plots into --out.
*/
#include "hostapp/cli.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "hostapp/command_table.h"
#include "hostapp/diagram.h"
#include "hostapp/diagram_picture.h"
#include "hostapp/host_state.h"
#include "hostapp/plugin_loader.h"
#include "hostapp/serve.h"
#include "hostapp/text_file.h"
#include "platform/driver.h"

namespace hostapp {

namespace {

const char *const USAGE =
    "usage: praxa [options] [DIAGRAM] COMMAND [command options]\n"
    "       praxa [options] [DIAGRAM] --script FILE\n"
    "       praxa [options] [DIAGRAM] serve [--port N]   (the session as a web page on 127.0.0.1)\n"
    "\n"
    "Runs a Praxa menu command on a Tervan diagram file and prints the dialogs and\n"
    "messages it shows; result files and plots (SVG) are written into the output folder.\n"
    "\n"
    "Options:\n"
    "  --settings FILE       settings file (default: $XDG_CONFIG_HOME/praxa/tervan.ini)\n"
    "  --out DIR             folder for result files and plots (default: .)\n"
    "  --script FILE         run the commands and dialog actions of a script file\n"
    "  --input BLOCK.PORT    pick the input reference point\n"
    "  --output BLOCK.PORT   pick the output reference point\n"
    "  --plugin FILE         the plug-in library (default: libpraxa.so beside praxa)\n"
    "  --host-version N      host version times ten (default 230)\n"
    "  --host-revision N     host revision character code (default 0)\n"
    "  --help                this text\n"
    "\n"
    "Commands:\n";

const char *const SCRIPT_HELP =
    "\n"
    "Dialog actions, for any command (also as indented lines under a command in a script):\n"
    "  --type ID=TEXT  --click ID  --check ID  --uncheck ID  --select ID=INDEX  --focus ID  --cancel\n"
    "A dialog with no action left is accepted with its default button.\n"
    "Script lines: a command with its options; indented lines below it: dialog actions\n"
    "(type ID TEXT, click ID, check ID, uncheck ID, select ID INDEX, focus ID, cancel);\n"
    "'input BLOCK.PORT' and 'output BLOCK.PORT' pick reference points; '#' starts a comment.\n"
    "\n"
    "Exit status: 0 when the commands ran; 1 when a dialog refused its entries or the\n"
    "settings file could not be written; 2 when the diagram, script or options are unusable.\n";

enum ExitStatus { EXIT_RAN = 0, EXIT_REFUSED = 1, EXIT_UNUSABLE = 2 };

/* One step of a session: a command, or a click on a reference point. */
struct SessionStep {
    CommandRun run;
    std::string pointClick;     /* BLOCK.PORT, when this step is a click */
    std::string where;          /* "script.txt:12" or "command line", for messages */
};

struct Session {
    std::string settingsPath;
    std::string outputDir = ".";
    std::string pluginPath;
    std::string diagramPath;
    std::string scriptPath;
    int hostVersion = 230;
    int hostRevision = 0;
    std::vector<SessionStep> steps;
    bool serve = false;
    int port = 8080;
};

int unusable(const std::string &message)
{
    std::fprintf(stderr, "praxa: %s\n", message.c_str());
    return EXIT_UNUSABLE;
}

bool parseInteger(const std::string &text, int low, int high, int &value)
{
    char *end = nullptr;
    errno = 0;
    long parsed = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end || errno || parsed < low || parsed > high)
        return false;
    value = (int)parsed;
    return true;
}

std::string defaultSettingsPath()
{
    const char *config = std::getenv("XDG_CONFIG_HOME");
    std::string dir;
    if (config && *config)
        dir = config;
    else if (const char *home = std::getenv("HOME"); home && *home)
        dir = std::string(home) + "/.config";
    else
        return "tervan.ini";
    dir += "/praxa";
    mkdir(dir.c_str(), 0755);   /* the parent may be missing too; then the file is simply not written */
    return dir + "/tervan.ini";
}

bool isFile(const std::string &path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

/* Creates the output folder when missing; a path that is no folder, or a folder that
** cannot be written into, is refused before any command runs. */
bool prepareOutputFolder(const std::string &path, std::string &error)
{
    if (mkdir(path.c_str(), 0755) != 0 && errno != EEXIST) {
        error = "cannot create output folder " + path + ": " + std::strerror(errno);
        return false;
    }
    struct stat info;
    int reason = stat(path.c_str(), &info) != 0 ? errno
                 : !S_ISDIR(info.st_mode)        ? ENOTDIR
                 : access(path.c_str(), W_OK | X_OK) != 0 ? errno : 0;
    if (reason) {
        error = "cannot write into output folder " + path + ": " + std::strerror(reason);
        return false;
    }
    return true;
}

/* Splits a script line into words; "double quotes" keep blanks. */
bool splitWords(const std::string &line, std::vector<std::string> &words, std::string &error)
{
    words.clear();
    std::string word;
    bool inWord = false, quoted = false;
    for (char c : line) {
        if (quoted) {
            if (c == '"')
                quoted = false;
            else
                word += c;
        } else if (c == '"') {
            quoted = inWord = true;
        } else if (c == ' ' || c == '\t') {
            if (inWord)
                words.push_back(word);
            word.clear();
            inWord = false;
        } else {
            word += c;
            inWord = true;
        }
    }
    if (quoted) {
        error = "unterminated quote";
        return false;
    }
    if (inWord)
        words.push_back(word);
    return true;
}

bool parseCommandWords(const std::vector<std::string> &words, const std::string &where, SessionStep &step,
                       std::string &error)
{
    step.where = where;
    if (words[0] == "input" || words[0] == "output") {
        if (words.size() != 2) {
            error = words[0] + " takes one BLOCK.PORT";
            return false;
        }
        step.pointClick = words[1];
        return true;
    }
    const CommandSpec *command = findCommand(words[0]);
    if (!command) {
        error = "unknown command '" + words[0] + "' (see praxa --help)";
        return false;
    }
    if (!command->available) {
        error = "the '" + words[0] + "' command is not available in this build";
        return false;
    }
    return parseCommandOptions(*command, std::vector<std::string>(words.begin() + 1, words.end()), step.run, error);
}

bool readScript(Session &session, std::string &error)
{
    std::string text;
    if (!readTextFile(session.scriptPath, "script", SCRIPT_FILE_LIMIT, text, error))
        return false;
    std::istringstream in(text);
    std::string line;
    int lineNumber = 0;
    while (std::getline(in, line)) {
        ++lineNumber;
        std::string where = session.scriptPath + ":" + std::to_string(lineNumber);
        if (size_t hash = line.find('#'); hash != std::string::npos && line.find('"') == std::string::npos)
            line.erase(hash);
        std::vector<std::string> words;
        if (!splitWords(line, words, error)) {
            error = where + ": " + error;
            return false;
        }
        if (words.empty())
            continue;
        bool indented = line[0] == ' ' || line[0] == '\t';
        if (indented) {
            if (session.steps.empty() || !session.steps.back().run.command) {
                error = where + ": a dialog action must follow a command";
                return false;
            }
            platform::DialogAction action;
            if (!parseDialogAction(words, action, error)) {
                error = where + ": " + error;
                return false;
            }
            session.steps.back().run.actions.push_back(action);
            continue;
        }
        SessionStep step;
        if (!parseCommandWords(words, where, step, error)) {
            error = where + ": " + error;
            return false;
        }
        session.steps.push_back(step);
    }
    return true;
}

/* Parses the command line into a session; returns -1 to go on, else an exit status. */
int parseArguments(int argc, char **argv, Session &session)
{
    std::vector<std::string> args(argv + 1, argv + argc);
    std::vector<std::string> inputs, outputs;
    size_t i = 0;
    for (; i < args.size() && args[i].rfind("--", 0) == 0; ++i) {
        const std::string &option = args[i];
        if (option == "--help") {
            std::fputs(USAGE, stdout);
            std::fputs(commandHelp().c_str(), stdout);
            std::fputs(SCRIPT_HELP, stdout);
            return EXIT_RAN;
        }
        if (i + 1 >= args.size())
            return unusable("option " + option + " needs a value (see praxa --help)");
        const std::string &value = args[++i];
        if (option == "--settings")
            session.settingsPath = value;
        else if (option == "--out")
            session.outputDir = value;
        else if (option == "--script")
            session.scriptPath = value;
        else if (option == "--plugin")
            session.pluginPath = value;
        else if (option == "--input")
            inputs.push_back(value);
        else if (option == "--output")
            outputs.push_back(value);
        else if (option == "--host-version") {
            if (!parseInteger(value, 0, 65535, session.hostVersion))
                return unusable("--host-version takes a whole number from 0 to 65535, not '" + value + "'");
        } else if (option == "--host-revision") {
            if (!parseInteger(value, -128, 255, session.hostRevision))
                return unusable("--host-revision takes a character code from -128 to 255, not '" + value + "'");
        } else {
            return unusable("unknown option " + option + " (see praxa --help)");
        }
    }
    /* The first word is the diagram unless it names a command and no such file exists. */
    if (i < args.size() && ((!findCommand(args[i]) && args[i] != "serve") || isFile(args[i]))) {
        if (i + 1 == args.size() && session.scriptPath.empty() && !isFile(args[i]))
            return unusable("unknown command '" + args[i] + "' (see praxa --help)");
        session.diagramPath = args[i++];
    }

    for (const std::string &point : outputs)
        session.steps.push_back({CommandRun{}, point, "--output"});
    for (const std::string &point : inputs)
        session.steps.push_back({CommandRun{}, point, "--input"});

    std::string error;
    if (i < args.size() && args[i] == "serve") {
        session.serve = true;
        if (!session.scriptPath.empty())
            return unusable("give either --script or serve, not both");
        if (i + 1 < args.size() && !(args.size() == i + 3 && args[i + 1] == "--port" &&
                                     parseInteger(args[i + 2], 0, 65535, session.port)))
            return unusable("serve takes one option, --port N (0 to 65535; 0 picks a free port)");
        return -1;
    }
    if (!session.scriptPath.empty()) {
        if (i < args.size())
            return unusable("give either --script or a command, not both");
        if (!readScript(session, error))
            return unusable(error);
    } else {
        if (i >= args.size())
            return unusable("no command given (see praxa --help)");
        SessionStep step;
        std::vector<std::string> words(args.begin() + (long)i, args.end());
        if (!parseCommandWords(words, "command line", step, error))
            return unusable(error);
        session.steps.push_back(step);
    }
    return -1;
}

void printTranscript()
{
    std::fputs(platform::transcriptText().c_str(), stdout);
    std::fflush(stdout);
    platform::clearTranscript();
}

LRESULT mainWindowMessage(UINT message, WPARAM wParam, LPARAM)
{
    if (message != WM_COMMAND)
        return 0;
    if (LOWORD(wParam) == 234)
        platform::transcriptNote("[host] point selection: pick points with --input/--output BLOCK.PORT");
    else if (LOWORD(wParam) == 255)
        platform::transcriptNote("[host] compensator block updated");
    return 0;
}

int runStep(const SessionStep &step)
{
    HostState &state = host();
    if (!step.pointClick.empty()) {
        std::string error;
        if (!clickReferencePoint(step.pointClick, error))
            return unusable(step.where + ": " + error);
        return EXIT_RAN;
    }
    if (step.run.command->id == HOST_COMMAND) {
        std::string error;
        bool drawn = writeDiagramPicture(step.run.file, error);
        printTranscript();
        return drawn ? EXIT_RAN : unusable(step.where + ": " + error);
    }
    platform::clearDialogActions();
    for (const platform::DialogAction &action : step.run.actions)
        platform::queueDialogAction(action);
    int handled = state.plugin.command(step.run.command->id);
    /* Commands the plug-in leaves to the host: 234 starts the point selection; 254
    ** selects nothing, as the stand-in's diagrams have no compensator block to pick. */
    if (!handled && step.run.command->id == 234)
        mainWindowMessage(WM_COMMAND, 234, 0);
    size_t unused = platform::pendingDialogActions();
    platform::clearDialogActions();
    printTranscript();
    if (unused) {
        std::fprintf(stderr, "praxa: %s: %zu dialog action(s) were not used by any dialog\n", step.where.c_str(), unused);
        return EXIT_REFUSED;
    }
    return EXIT_RAN;
}

}

int checkCommandLine(int argc, char **argv)
{
    Session session;
    return parseArguments(argc, argv, session);
}

int runCommandLine(int argc, char **argv)
{
    Session session;
    int status = parseArguments(argc, argv, session);
    if (status >= 0)
        return status;

    std::string error;
    HostState &state = host();
    state.version = session.hostVersion;
    state.revision = session.hostRevision;
    state.settingsPath = session.settingsPath.empty() ? defaultSettingsPath() : session.settingsPath;
    state.outputDir = session.outputDir;
    if (!prepareOutputFolder(session.outputDir, error))
        return unusable(error);

    state.mainWindow = platform::createMainWindow("Tervan");
    platform::setMainWindowHandler(mainWindowMessage);
    if (!session.diagramPath.empty() && !loadDiagramFile(session.diagramPath, error))
        return unusable(error);
    std::string pluginPath = session.pluginPath.empty() ? defaultPluginPath() : session.pluginPath;
    if (!loadPlugin(pluginPath, state.plugin, error))
        return unusable(error);
    state.plugin.init(state.mainWindow);
    if (!session.diagramPath.empty() && !applyDiagramReferencePoints(error))
        return unusable(error);

    int worst = EXIT_RAN;
    for (const SessionStep &step : session.steps) {
        status = runStep(step);
        if (status == EXIT_UNUSABLE)
            return status;
        worst = std::max(worst, status);
    }
    if (session.serve)
        return serveSession(session.diagramPath, session.port);
    printTranscript();
    if (platform::refusedDialogCount() > 0)
        worst = std::max(worst, (int)EXIT_REFUSED);
    if (platform::settingsWriteFailures() > 0) {
        std::fprintf(stderr, "praxa: the settings file %s could not be written\n", state.settingsPath.c_str());
        worst = std::max(worst, (int)EXIT_REFUSED);
    }
    return worst;
}

}
