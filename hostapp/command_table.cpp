/*
** hostapp/command_table.cpp: command names, ids, and option-to-dialog-action rules.
*/
#include "hostapp/command_table.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>

#include "resources/prxdlg.h"

namespace hostapp {

using platform::ActionKind;
using platform::DialogAction;

const std::vector<CommandSpec> &commandTable()
{
    static const std::vector<CommandSpec> table = {
        {"linearize", 206, true, "linearize the selection; [--file NAME.m | --screen | --select-points]"},
        {"select-points", 234, true, "start the host's input/output point selection"},
        {"tf", 243, true, "transfer function, zeros and poles"},
        {"compensator", 249, true,
         "compensator design; [--gain K] [--add-zero RE,IM] [--add-pole RE,IM] [--replot] [--ok [--save]]\n"
         "                        (filled in this order, as typed into the dialog; without --ok it ends with Cancel\n"
         "                        and hands nothing over; --ok hands the design to the diagram's compensator block,\n"
         "                        --save also writes it into that block in the diagram file)"},
        {"select-compensator", 254, true, "show the diagram's compensator block (host)"},
        {"rlocus", 240, true, "root locus plot"},
        {"rlocus-options", 241, true, "root locus gain range; [--start K --stop K --steps N --auto|--no-auto]\n"
                                      "                        [--cancel: look without saving]"},
        {"nyquist", 250, true, "Nyquist plot"},
        {"bode", 242, true, "Bode magnitude and phase plots"},
        {"frequency-range", 235, true, "frequency range; [--start F --stop F --steps N] [--cancel: look without saving]"},
        {"preferences", 246, true,
         "units, precision, thresholds; [--frequency-unit hertz|rad] [--phase-unit degrees|radians]\n"
         "                        [--magnitude-unit db|log10] [--precision N] [--numerator-threshold X]\n"
         "                        [--denominator-threshold X] [--negative-frequencies|--no-negative-frequencies]\n"
         "                        [--cancel: look without saving]"},
        {"reuse-plots", 296, true, "toggle reuse of plots"},
        {"about", 245, true, "the about box"},
        {"draw", HOST_COMMAND, true, "an SVG picture of the diagram (host); [--file NAME.svg]"},
        {"report", HOST_COMMAND, true, "exact margins, closed loop and step response of the linearized loop; [--json]"},
    };
    return table;
}

const CommandSpec *findCommand(const std::string &name)
{
    for (const CommandSpec &command : commandTable())
        if (name == command.name)
            return &command;
    return nullptr;
}

static bool parseInt(const std::string &text, int &value)
{
    char *end = nullptr;
    long parsed = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end || parsed < -2147483647L || parsed > 2147483647L)
        return false;
    value = (int)parsed;
    return true;
}

static DialogAction action(const char *dialog, ActionKind kind, int control, std::string text = "")
{
    DialogAction a;
    a.dialog = dialog;
    a.kind = kind;
    a.control = control;
    a.text = std::move(text);
    return a;
}

bool parseDialogAction(const std::vector<std::string> &words, DialogAction &a, std::string &error)
{
    static const struct {
        const char *word;
        ActionKind kind;
        size_t arguments;
    } verbs[] = {
        {"type", ActionKind::Type, 2}, {"click", ActionKind::Click, 1}, {"check", ActionKind::Check, 1},
        {"uncheck", ActionKind::Uncheck, 1}, {"select", ActionKind::Select, 2},
        {"focus", ActionKind::Focus, 1}, {"cancel", ActionKind::Cancel, 0},
    };
    if (words.empty()) {
        error = "empty dialog action; write one of type, click, check, uncheck, select, focus, cancel";
        return false;
    }
    for (const auto &verb : verbs) {
        if (words[0] != verb.word)
            continue;
        if (words.size() < verb.arguments + 1 || (verb.kind != ActionKind::Type && words.size() != verb.arguments + 1)) {
            static const char *const forms[] = {"", " ID", " ID INDEX"};
            error = "dialog action '" + words[0] + "' takes " + std::to_string(verb.arguments) + " argument(s); write it as '" +
                    words[0] + (verb.kind == ActionKind::Type ? " ID TEXT" : forms[verb.arguments]) + "'";
            return false;
        }
        a = DialogAction{};
        a.kind = verb.kind;
        if (verb.arguments >= 1 && !parseInt(words[1], a.control)) {
            error = "dialog action '" + words[0] + "': '" + words[1] + "' is not a control id (the transcript shows each control with its id)";
            return false;
        }
        if (verb.kind == ActionKind::Select && !parseInt(words[2], a.index)) {
            error = "dialog action 'select': '" + words[2] + "' is not an entry index (0 is the first entry)";
            return false;
        }
        if (verb.kind == ActionKind::Type) {
            /* The rest of the line is the text, blanks included. */
            for (size_t i = 2; i < words.size(); ++i)
                a.text += (i > 2 ? " " : "") + words[i];
        }
        return true;
    }
    error = "unknown dialog action '" + words[0] + "'; write one of type, click, check, uncheck, select, focus, cancel";
    return false;
}

/* The value after args[i] (i moves onto it); false with a message when there is none. */
static bool takeValue(const std::vector<std::string> &args, size_t &i, std::string &value, std::string &error)
{
    if (i + 1 >= args.size()) {
        error = "option " + args[i] + " needs a value (see praxa --help)";
        return false;
    }
    value = args[++i];
    return true;
}

/* Options every command accepts: raw dialog actions. */
static bool parseGenericOption(const std::vector<std::string> &args, size_t &i, CommandRun &run, std::string &error)
{
    const std::string &option = args[i];
    auto valueOf = [&](std::string &value) { return takeValue(args, i, value, error); };
    std::string value;
    if (option == "--cancel") {
        run.actions.push_back(action("", ActionKind::Cancel, 0));
        return true;
    }
    static const struct {
        const char *option;
        const char *verb;
    } forms[] = {{"--type", "type"}, {"--click", "click"}, {"--check", "check"}, {"--uncheck", "uncheck"},
                 {"--select", "select"}, {"--focus", "focus"}};
    for (const auto &form : forms) {
        if (option != form.option)
            continue;
        if (!valueOf(value))
            return false;
        /* ID=TEXT for --type and --select, ID otherwise. */
        std::vector<std::string> words = {form.verb};
        size_t equals = value.find('=');
        if (equals != std::string::npos) {
            words.push_back(value.substr(0, equals));
            words.push_back(value.substr(equals + 1));
        } else {
            words.push_back(value);
        }
        DialogAction a;
        if (!parseDialogAction(words, a, error))
            return false;
        run.actions.push_back(a);
        return true;
    }
    error = "unknown option " + option + " for command " + run.command->name + " (see praxa --help)";
    return false;
}

/* What an option's value must look like before it is typed into a dialog: the dialogs
** read typed text leniently ("abc" reads as 0, "1e999" as infinite), so a value given as
** an option is checked here and refused with a message instead. */
enum class ValueForm { Text, Number, WholeNumber, Root };

static bool isFiniteNumber(const std::string &text)
{
    if (text.empty() || std::isspace((unsigned char)text[0]))
        return false;
    char *end = nullptr;
    errno = 0;
    double value = std::strtod(text.c_str(), &end);
    return *end == '\0' && std::isfinite(value) && !(errno == ERANGE && std::fabs(value) > 1.0);
}

static bool isWholeNumber(const std::string &text)
{
    char *end = nullptr;
    errno = 0;
    long value = std::strtol(text.c_str(), &end, 10);
    return !text.empty() && !std::isspace((unsigned char)text[0]) && *end == '\0' && errno == 0 &&
           value >= -2147483647L && value <= 2147483647L;
}

/* RE, RE,IM or (RE,IM), as the compensator's lists show roots. */
static bool isRoot(std::string text)
{
    if (text.size() >= 2 && text.front() == '(' && text.back() == ')')
        text = text.substr(1, text.size() - 2);
    size_t comma = text.find(',');
    if (comma == std::string::npos)
        return isFiniteNumber(text);
    return isFiniteNumber(text.substr(0, comma)) && isFiniteNumber(text.substr(comma + 1));
}

static bool checkValue(const std::string &option, const std::string &value, ValueForm form, std::string &error)
{
    bool ok = form == ValueForm::Text ? !value.empty()
              : form == ValueForm::Number ? isFiniteNumber(value)
              : form == ValueForm::WholeNumber ? isWholeNumber(value)
                                               : isRoot(value);
    if (ok)
        return true;
    const char *expected = form == ValueForm::Text ? "a nonempty text"
                           : form == ValueForm::Number ? "a finite number such as 2.5 or -1e3"
                           : form == ValueForm::WholeNumber ? "a whole number such as 100"
                                                            : "a root RE or RE,IM of finite numbers, such as -2 or -1,3";
    error = option + " takes " + expected + ", not '" + value + "'";
    return false;
}

bool parseCommandOptions(const CommandSpec &command, const std::vector<std::string> &args, CommandRun &run,
                         std::string &error)
{
    run.command = &command;
    const std::string name = command.name;
    const char *dialog = "";
    if (name == "linearize")
        dialog = "LINEARIZE";
    else if (name == "frequency-range" || name == "rlocus-options")
        dialog = "PRX_OPTIONS";
    else if (name == "preferences")
        dialog = "PRX_PREFERENCES";
    else if (name == "compensator")
        dialog = "COMPENSATORDESIGN";

    for (size_t i = 0; i < args.size(); ++i) {
        const std::string &option = args[i];
        auto next = [&](std::string &value) { return takeValue(args, i, value, error); };
        auto typed = [&](int control, ValueForm form) {
            std::string value;
            if (!next(value) || !checkValue(option, value, form, error))
                return false;
            run.actions.push_back(action(dialog, ActionKind::Type, control, value));
            return true;
        };
        auto choice = [&](const std::vector<std::pair<std::string, int>> &choices) {
            std::string value;
            if (!next(value))
                return false;
            for (const auto &c : choices) {
                if (value == c.first) {
                    run.actions.push_back(action(dialog, ActionKind::Click, c.second));
                    return true;
                }
            }
            std::string known;
            for (const auto &c : choices)
                known += (known.empty() ? "" : " or ") + c.first;
            error = "option " + option + " takes " + known + ", not '" + value + "'";
            return false;
        };
        bool ok;
        if (name == "draw" && option == "--file") {
            ok = next(run.file);
        } else if (name == "linearize" && option == "--file") {
            run.actions.push_back(action(dialog, ActionKind::Click, IDC_LIN_TO_FILE));
            ok = typed(IDC_LIN_RESULT_FILE, ValueForm::Text);
        } else if (name == "linearize" && option == "--screen") {
            run.actions.push_back(action(dialog, ActionKind::Click, IDC_LIN_TO_SCREEN));
            ok = true;
        } else if (name == "linearize" && option == "--select-points") {
            run.actions.push_back(action(dialog, ActionKind::Click, IDC_LIN_SELECT_POINTS));
            ok = true;
        } else if ((name == "frequency-range" || name == "rlocus-options") && option == "--start") {
            ok = typed(IDC_OPTION_START, ValueForm::Number);
        } else if ((name == "frequency-range" || name == "rlocus-options") && option == "--stop") {
            ok = typed(IDC_OPTION_STOP, ValueForm::Number);
        } else if ((name == "frequency-range" || name == "rlocus-options") && option == "--steps") {
            ok = typed(IDC_OPTION_STEPS, ValueForm::WholeNumber);
        } else if (name == "rlocus-options" && (option == "--auto" || option == "--no-auto")) {
            run.actions.push_back(action(dialog, option == "--auto" ? ActionKind::Check : ActionKind::Uncheck, IDC_OPTION_AUTO_RANGE));
            ok = true;
        } else if (name == "compensator" && option == "--gain") {
            ok = typed(IDC_COMP_GAIN, ValueForm::Number);
        } else if (name == "compensator" && (option == "--add-zero" || option == "--add-pole")) {
            /* Typing into a list's edit makes that list current; Add then appends the root. */
            ok = typed(option == "--add-zero" ? IDC_COMP_ZERO_EDIT : IDC_COMP_POLE_EDIT, ValueForm::Root);
            if (ok)
                run.actions.push_back(action(dialog, ActionKind::Click, IDC_COMP_ADD));
        } else if (name == "compensator" && (option == "--replot" || option == "--ok")) {
            run.actions.push_back(action(dialog, ActionKind::Click, option == "--ok" ? IDOK : IDC_COMP_REPLOT));
            ok = true;
        } else if (name == "report" && option == "--json") {
            run.json = true;
            ok = true;
        } else if (name == "compensator" && option == "--save") {
            run.saveDesign = true;
            ok = true;
        } else if (name == "preferences" && option == "--frequency-unit") {
            ok = choice({{"hertz", IDC_PREF_HERTZ}, {"rad", IDC_PREF_RADIANS_SEC}});
        } else if (name == "preferences" && option == "--phase-unit") {
            ok = choice({{"degrees", IDC_PREF_DEGREES}, {"radians", IDC_PREF_RADIANS}});
        } else if (name == "preferences" && option == "--magnitude-unit") {
            ok = choice({{"db", IDC_PREF_DECIBELS}, {"log10", IDC_PREF_LOG10}});
        } else if (name == "preferences" && option == "--precision") {
            ok = typed(IDC_PREF_PRECISION, ValueForm::WholeNumber);
        } else if (name == "preferences" && option == "--numerator-threshold") {
            ok = typed(IDC_PREF_NUMERATOR, ValueForm::Number);
        } else if (name == "preferences" && option == "--denominator-threshold") {
            ok = typed(IDC_PREF_DENOMINATOR, ValueForm::Number);
        } else if (name == "preferences" && (option == "--negative-frequencies" || option == "--no-negative-frequencies")) {
            run.actions.push_back(action(dialog, option == "--negative-frequencies" ? ActionKind::Check : ActionKind::Uncheck, IDC_PREF_NEGATIVE_FREQ));
            ok = true;
        } else {
            ok = parseGenericOption(args, i, run, error);
        }
        if (!ok)
            return false;
    }
    return true;
}

std::string commandHelp()
{
    std::string text;
    for (const CommandSpec &command : commandTable()) {
        std::string name = command.name;
        name.resize(22, ' ');
        text += "  " + name + command.summary;
        if (!command.available)
            text += " (not available in this build)";
        text += "\n";
    }
    return text;
}

}
