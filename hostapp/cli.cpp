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
#include "hostapp/compensator_block.h"
#include "hostapp/diagram.h"
#include "hostapp/host_modules.h"
#include "hostapp/host_state.h"
#include "hostapp/plugin_loader.h"
#include "hostapp/report_command.h"
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
    "The options below may stand anywhere, before or after the diagram and the command.\n"
    "The diagram file's format and its block types are described in examples/README.md.\n"
    "\n"
    "Options:\n"
    "  --settings FILE       settings file (default: $XDG_CONFIG_HOME/praxa/tervan.ini)\n"
    "  --out DIR             folder for result files and plots (default: .)\n"
    "  --script FILE         run the commands and dialog actions of a script file\n"
    "  --input BLOCK.PORT    pick the input reference point: a signal computed outside the\n"
    "                        selection and read by a selected block\n"
    "  --output BLOCK.PORT   pick the output reference point: a signal a selected block computes\n"
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
    "A dialog with no action left is accepted with its default button. Values given as\n"
    "command options are checked before they are typed (a number must be finite).\n"
    "Script lines: a command with its options; indented lines below it: dialog actions\n"
    "(type ID TEXT, click ID, check ID, uncheck ID, select ID INDEX, focus ID, cancel);\n"
    "'input BLOCK.PORT' and 'output BLOCK.PORT' pick reference points; '#' starts a comment.\n"
    "\n"
    "The settings file is written by frequency-range, rlocus-options and preferences when\n"
    "their dialog ends with OK (add --cancel to look without saving) and by reuse-plots;\n"
    "the other commands only read it.\n"
    "\n"
    "Exit status: 0 when the commands ran; 1 when a dialog refused its entries or the\n"
    "settings file or a saved design could not be written; 2 when the diagram, script or\n"
    "options are unusable.\n";

enum ExitStatus { EXIT_RAN = 0, EXIT_REFUSED = 1, EXIT_UNUSABLE = 2 };

/* One step of a session: a command, or a click on a reference point. */
struct SessionStep {
    CommandRun run;
    std::string pointClick;     /* BLOCK.PORT, when this step is a click */
    std::string where;          /* "script.txt:12" or "command line", for messages */
    bool pickInput = false;     /* the click picks the input (else the output) */
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
        error = "cannot create output folder " + path + ": " + std::strerror(errno) + "; give another folder with --out";
        return false;
    }
    struct stat info;
    int reason = stat(path.c_str(), &info) != 0 ? errno
                 : !S_ISDIR(info.st_mode)        ? ENOTDIR
                 : access(path.c_str(), W_OK | X_OK) != 0 ? errno : 0;
    if (reason) {
        error = "cannot write into output folder " + path + ": " + std::strerror(reason) + "; give another folder with --out";
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
        error = "unterminated quote; close it with a second \"";
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
            error = words[0] + " takes one point BLOCK.PORT, such as ctrl.in";
            return false;
        }
        step.pointClick = words[1];
        step.pickInput = words[0] == "input";
        return true;
    }
    const CommandSpec *command = findCommand(words[0]);
    if (!command) {
        error = "unknown command '" + words[0] + "' (see praxa --help)";
        return false;
    }
    if (!command->available) {
        error = "the '" + words[0] + "' command is not available in this build (praxa --help lists the ones that are)";
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
                error = where + ": a dialog action must follow a command; put the command on an unindented line above it";
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

/* Sets a session option from its value; -1 when taken, else an exit status. */
int applySessionOption(const std::string &option, const std::string &value, Session &session,
                       std::vector<std::string> &inputs, std::vector<std::string> &outputs)
{
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
    }
    return -1;
}

bool isSessionOption(const std::string &word)
{
    static const char *const options[] = {"--settings", "--out", "--script", "--plugin", "--input",
                                          "--output", "--host-version", "--host-revision"};
    for (const char *option : options)
        if (word == option)
            return true;
    return false;
}

/* Parses the command line into a session; returns -1 to go on, else an exit status.
** Session options may stand anywhere, before or after the diagram and the command (no
** command option is spelt like one); the words after the command are its options. */
int parseArguments(int argc, char **argv, Session &session)
{
    std::vector<std::string> args(argv + 1, argv + argc);
    std::vector<std::string> inputs, outputs, positional, commandWords;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string &word = args[i];
        if (word == "--help") {
            std::fputs(USAGE, stdout);
            std::fputs(commandHelp().c_str(), stdout);
            std::fputs(SCRIPT_HELP, stdout);
            return EXIT_RAN;
        }
        if (isSessionOption(word)) {
            if (i + 1 >= args.size())
                return unusable("option " + word + " needs a value (see praxa --help)");
            if (int status = applySessionOption(word, args[++i], session, inputs, outputs); status >= 0)
                return status;
        } else if (!commandWords.empty()) {
            commandWords.push_back(word);
        } else if (word.rfind("--", 0) == 0) {
            return unusable("unknown option " + word + " (see praxa --help)");
        } else if (positional.empty() && ((!findCommand(word) && word != "serve") || isFile(word))) {
            positional.push_back(word);     /* the diagram */
        } else {
            commandWords.push_back(word);
        }
    }
    if (!positional.empty())
        session.diagramPath = positional.front();

    for (const std::string &point : outputs)
        session.steps.push_back({CommandRun{}, point, "--output " + point, false});
    for (const std::string &point : inputs)
        session.steps.push_back({CommandRun{}, point, "--input " + point, true});

    std::string error;
    if (!commandWords.empty() && commandWords[0] == "serve") {
        session.serve = true;
        if (!session.scriptPath.empty())
            return unusable("give either --script or serve, not both");
        if (commandWords.size() > 1 && !(commandWords.size() == 3 && commandWords[1] == "--port" &&
                                         parseInteger(commandWords[2], 0, 65535, session.port)))
            return unusable("serve takes one option, --port N (0 to 65535; 0 picks a free port)");
        return -1;
    }
    if (!session.scriptPath.empty()) {
        if (!commandWords.empty())
            return unusable("give either --script or a command, not both (put the command into the script)");
        if (!readScript(session, error))
            return unusable(error);
    } else {
        if (commandWords.empty()) {
            /* A lone word that is neither a file nor a command was most likely meant as a command. */
            if (!session.diagramPath.empty() && !isFile(session.diagramPath))
                return unusable("unknown command '" + session.diagramPath + "' (see praxa --help)");
            return unusable("no command given (see praxa --help)");
        }
        SessionStep step;
        if (!parseCommandWords(commandWords, "command line", step, error))
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

/* Compensator hand-overs (command 255) seen so far, the diagram file a hand-over is to
** be saved in (empty: none), and the saves that failed. */
int compensatorHandOvers = 0;
std::string compensatorSaveTarget;
int compensatorSaveFailures = 0;

LRESULT mainWindowMessage(UINT message, WPARAM wParam, LPARAM)
{
    if (message != WM_COMMAND)
        return 0;
    if (LOWORD(wParam) == 234) {
        platform::transcriptNote("[host] point selection: pick points with --input/--output BLOCK.PORT");
    } else if (LOWORD(wParam) == 255) {
        ++compensatorHandOvers;
        if (!takeCompensatorDesign(compensatorSaveTarget))
            ++compensatorSaveFailures;
    }
    return 0;
}

/* The report on the selection: only the report is printed, or what the plug-in said
** when it could not linearize. */
int runReport(const SessionStep &step)
{
    std::string text, error;
    if (!selectionReport(step.run.json, &text, &error)) {
        printTranscript();
        std::fprintf(stderr, "praxa: %s: %s\n", step.where.c_str(), error.c_str());
        return EXIT_REFUSED;
    }
    platform::clearTranscript();
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
    return EXIT_RAN;
}

bool hasClick(const CommandRun &run, int control)
{
    for (const platform::DialogAction &action : run.actions)
        if (action.kind == platform::ActionKind::Click && action.control == control)
            return true;
    return false;
}

/* A compensator design tried without OK ends with Cancel: its default button, Replot,
** would keep the dialog open, and a trial is not a refused entry. */
void endCompensatorTrial(CommandRun &run)
{
    for (const platform::DialogAction &action : run.actions)
        if (action.kind == platform::ActionKind::Cancel)
            return;
    if (hasClick(run, IDOK) || hasClick(run, IDCANCEL))
        return;
    platform::DialogAction cancel;
    cancel.dialog = "COMPENSATORDESIGN";
    cancel.kind = platform::ActionKind::Cancel;
    run.actions.push_back(cancel);
}

int runStep(const SessionStep &step, const Session &session)
{
    HostState &state = host();
    if (!step.pointClick.empty()) {
        std::string error;
        if (!pickReferencePoint(step.pointClick, step.pickInput, error))
            return unusable(step.where + ": " + error);
        platform::transcriptNote("[host] reference points: " + highlightedReferencePoints());
        return EXIT_RAN;
    }
    if (step.run.command->id == HOST_COMMAND && std::string(step.run.command->name) == "report")
        return runReport(step);
    if (step.run.command->id == HOST_COMMAND) {
        std::string error;
        bool drawn = drawDiagramWithModule(step.run.file, error);
        printTranscript();
        return drawn ? EXIT_RAN : unusable(step.where + ": " + error);
    }
    std::string pointsBefore = highlightedReferencePoints();
    CommandRun run = step.run;
    bool compensator = run.command->id == 249;
    if (run.saveDesign && !hasClick(run, IDOK))
        return unusable(step.where + ": compensator --save keeps what OK hands over; add --ok (in a script: click 1)");
    if (run.saveDesign && compensatorBlockPath().empty())
        return unusable(step.where + ": compensator --save: the diagram has no compensator block to write the design "
                                     "into; add a block of type \"compensator\" or leave out --save");
    compensatorSaveTarget = run.saveDesign ? session.diagramPath : std::string();
    if (compensator)
        endCompensatorTrial(run);
    int handOversBefore = compensatorHandOvers;
    platform::clearDialogActions();
    for (const platform::DialogAction &action : run.actions)
        platform::queueDialogAction(action);
    int handled = state.plugin.command(run.command->id);
    /* Commands the plug-in leaves to the host: 234 starts the point selection; 254 shows
    ** the compensator block, the first one in the diagram file. */
    if (!handled && step.run.command->id == 234)
        mainWindowMessage(WM_COMMAND, 234, 0);
    if (!handled && step.run.command->id == 254) {
        std::string block = compensatorBlockPath();
        platform::transcriptNote(block.empty() ? "[host] the diagram has no compensator block; add a block of type "
                                                 "\"compensator\" to receive designs"
                                               : "[host] compensator block: '" + block + "'");
    }
    compensatorSaveTarget.clear();
    if (std::string points = highlightedReferencePoints(); points != pointsBefore)
        platform::transcriptNote("[host] reference points taken: " + points);
    if (uint16_t id = run.command->id; id == 240 || id == 242 || id == 250)
        if (std::string reason = emptyAnalysisReason(); !reason.empty())
            platform::transcriptNote("[host] " + reason);
    if (compensator && compensatorHandOvers == handOversBefore)
        platform::transcriptNote("[host] the compensator design was not handed over: add --ok to the compensator "
                                 "options (in a script: click 1) to hand it over");
    size_t unused = platform::pendingDialogActions();
    platform::clearDialogActions();
    printTranscript();
    if (unused) {
        std::fprintf(stderr, "praxa: %s: %zu dialog action(s) were not used by any dialog; check them against the dialogs in the transcript\n", step.where.c_str(), unused);
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
        status = runStep(step, session);
        if (status == EXIT_UNUSABLE)
            return status;
        worst = std::max(worst, status);
    }
    if (session.serve)
        return serveWithModule(session.diagramPath, session.port);
    printTranscript();
    if (platform::refusedDialogCount() > 0)
        worst = std::max(worst, (int)EXIT_REFUSED);
    if (compensatorSaveFailures > 0) {
        std::fprintf(stderr, "praxa: the compensator design could not be saved in %s; the transcript says why and what to do\n",
                     session.diagramPath.c_str());
        worst = std::max(worst, (int)EXIT_REFUSED);
    }
    if (platform::settingsWriteFailures() > 0) {
        std::fprintf(stderr, "praxa: the settings file %s could not be written; give a writable one with --settings\n", state.settingsPath.c_str());
        worst = std::max(worst, (int)EXIT_REFUSED);
    }
    return worst;
}

}
