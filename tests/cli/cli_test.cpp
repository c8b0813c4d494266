/*
** The praxa command line end to end: the executable loads libpraxa.so with dlopen,
** the plug-in's host symbols resolve against the executable, and the transcript,
** settings file and exit status are what a user sees.
*/
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

const char *const ABOUT = "  static 100 \"Version  Build 10623.0\"";

TEST(CommandLine, SessionsShowTranscriptsWriteSettingsAndExit)
{
    std::vector<Session> sessions = {
        {"about through the loaded plug-in", {}, "about", 0, {"[dialog] About Praxa", ABOUT, "[end] About Praxa: 1"}, ""},
        {"an old host is told the required version, nothing changes, the about box opens all the same",
         {{"tervan.ini", ""}, {"s.txt", "reuse-plots\nabout\n"}},
         "--host-version 220 --host-revision 3 --script {dir}/s.txt", 0,
         {"[Tervan] Praxa requires version 23.0.00 of Tervan but you've got version 22.0.03", ABOUT}, "",
         {{"tervan.ini", ""}}},
        {"reuse-plots toggles back and keeps the other sections",
         {{"tervan.ini", "# Tervan settings\n[display]\ngrid=on\n\n[tervan]\nprxReusePlots=1\nmagUnits=215\n"}},
         "reuse-plots", 0, {}, "",
         {{"tervan.ini", "# Tervan settings\n[display]\ngrid=on\n\n[tervan]\nprxReusePlots=0\nmagUnits=215\n"}}},
        {"unknown command", {}, "frobnicate", 2, {}, "praxa: unknown command 'frobnicate' (see praxa --help)\n"},
        {"unknown option", {}, "--colour blue about", 2, {}, "praxa: unknown option --colour (see praxa --help)\n"},
        {"no command", {}, "", 2, {}, "praxa: no command given (see praxa --help)\n"},
        /* the commands with options; the others' one-phrase summaries are in the same table */
        {"help lists the commands with their options", {}, "--help", 0,
         {"  linearize             linearize the selection; [--file NAME.m | --screen | --select-points]",
          "  compensator           compensator design; [--gain K] [--add-zero RE,IM] [--add-pole RE,IM] [--replot] "
          "[--ok [--save]]",
          "  rlocus-options        root locus gain range; [--start K --stop K --steps N --auto|--no-auto]",
          "  frequency-range       frequency range; [--start F --stop F --steps N] [--cancel: look without saving]",
          "  preferences           units, precision, thresholds; [--frequency-unit hertz|rad] [--phase-unit "
          "degrees|radians]",
          "  about                 the about box",
          "The settings file is written by frequency-range, rlocus-options and preferences when",
          "their dialog ends with OK (add --cancel to look without saving) and by reuse-plots;"},
         ""},
        {"a script runs commands in order with their dialog actions",
         {{"session.txt", "# two toggles and the about box\nreuse-plots\nabout\n\tcancel\nreuse-plots\nreuse-plots\n"}},
         "--script {dir}/session.txt", 0, {"  > cancel", "  > default 1", "[end] About Praxa: 1"}, "",
         {{"tervan.ini", "[tervan]\nprxReusePlots=1\n"}}},
        {"a script error names the line", {{"a.txt", "about\n  type x y\n"}}, "--script {dir}/a.txt", 2, {},
         "praxa: {dir}/a.txt:2: dialog action 'type': 'x' is not a control id (the transcript shows each control "
         "with its id)\n"},
        {"an action before any command", {{"b.txt", "  click 1\n"}}, "--script {dir}/b.txt", 2, {},
         "praxa: {dir}/b.txt:1: a dialog action must follow a command; put the command on an unindented line above "
         "it\n"},
        {"actions no dialog used make the run fail", {}, "reuse-plots --click 5", 1, {},
         "praxa: command line: 1 dialog action(s) were not used by any dialog; check them against the dialogs in the "
         "transcript\n"},
    };
    const char *const seen = "[tervan]\nfreqSteps=50\n";
    for (const char *dialog : {"frequency-range --cancel", "rlocus-options --cancel", "preferences --cancel"})
        sessions.push_back({dialog, {{"tervan.ini", seen}}, dialog, 0, {"  > cancel"}, "", {{"tervan.ini", seen}}});
    for (const Session &session : sessions)
        expectSession(session);
}

/* Arguments, option values and files refused before any command runs, each with what
** failed and what to give instead; the run on the servo example unless the row names a
** diagram (a path first). The diagram parser's own wording is checked in tests/engine. */
TEST(CommandLine, UnusableArgumentsAndFilesAreRefusedWithARemedy)
{
    const std::string optionArgument = "praxa: --gain takes a finite number such as 2.5 or -1e3, not ";
    const std::string root = "takes a root RE or RE,IM of finite numbers, such as -2 or -1,3, not ";
    const struct {
        std::string arguments, error;
    } rows[] = {
        {"compensator --gain abc", optionArgument + "'abc'"},
        {"compensator --gain 1e999", optionArgument + "'1e999'"},
        {"compensator --add-zero xyz", "praxa: --add-zero " + root + "'xyz'"},
        {"compensator --add-pole '(1,nan)'", "praxa: --add-pole " + root + "'(1,nan)'"},
        {"compensator --gain", "praxa: option --gain needs a value (see praxa --help)"},
        {"frequency-range --steps 2.5", "praxa: --steps takes a whole number such as 100, not '2.5'"},
        {"rlocus-options --start inf", "praxa: --start takes a finite number such as 2.5 or -1e3, not 'inf'"},
        {"preferences --precision ''", "praxa: --precision takes a whole number such as 100, not ''"},
        {"preferences --magnitude-unit dB", "praxa: option --magnitude-unit takes db or log10, not 'dB'"},
        {"bode --fast", "praxa: unknown option --fast for command bode (see praxa --help)"},
        {"compensator --save",
         "praxa: command line: compensator --save keeps what OK hands over; add --ok (in a script: click 1)"},
        {"compensator --ok --save",
         "praxa: command line: compensator --save: the diagram has no compensator block to write the design into; "
         "add a block of type \"compensator\" or leave out --save"},
        {"--input motor.out linearize",
         "praxa: --input motor.out: the selection computes motor.out, so it would be taken as the output, not the "
         "input; pick a signal that enters the selection, such as ctrl.1"},
        {"--input ref.out linearize",
         "praxa: --input ref.out: no selected block reads ref.out, so it cannot be an input of the selection; "
         "pick a signal that enters the selection, such as ctrl.1"},
        {"--output ref.out linearize",
         "praxa: --output ref.out: no selected block computes ref.out, so it cannot be an output of the selection; "
         "pick one that does, such as ctrl.out, amp.out, motor.out"},
        {"--output nowhere.out linearize",
         "praxa: --output nowhere.out: no block 'nowhere'; name a block by its id, or its path such as outer/inner"},
        {"--plugin {dir}/none.so tf",
         "praxa: cannot load plug-in {dir}/none.so: {dir}/none.so: cannot open shared object file: No such file or "
         "directory; give the plug-in library with --plugin"},
        {"draw --file missing/servo.svg",
         "praxa: command line: cannot write {dir}/missing/servo.svg: cannot create the file; give another folder "
         "with --out or another name with --file"},
        {"--out {dir}/afile bode",
         "praxa: cannot write into output folder {dir}/afile: Not a directory; give another folder with --out"},
        {"--script {dir}", "praxa: cannot read script {dir}: Is a directory; give a readable script file"},
        {"--script /dev/zero", "praxa: cannot read script /dev/zero: larger than 16 MiB; give a smaller script file"},
        {"/dev/zero tf", "praxa: cannot read diagram /dev/zero: larger than 256 MiB; give a smaller diagram file"},
        {"--script /nonexistent/s.txt",
         "praxa: cannot read script /nonexistent/s.txt: No such file or directory; give a readable script file"},
        {"--host-version x about", "praxa: --host-version takes a whole number from 0 to 65535, not 'x'"},
        {"--host-revision 256 about", "praxa: --host-revision takes a character code from -128 to 255, not '256'"},
        {"{dir}/bad.json tf",
         "praxa: {dir}/bad.json:2: block 'k': unknown block type 'gian'; use one of the block types listed in "
         "examples/README.md"},
        {"{dir}/missing.json tf",
         "praxa: cannot read diagram {dir}/missing.json: No such file or directory; give a readable diagram file"},
    };
    const std::string bad = R"({"wires": [], "blocks": [
        {"id": "k", "type": "gian", "gain": 2}]})";
    for (const auto &row : rows) {
        std::string arguments = row.arguments;
        if (arguments[0] != '/' && arguments[0] != '{')
            arguments = "{examples}servo.json " + arguments;
        expectSession({row.arguments.c_str(), {{"afile", "x"}, {"bad.json", bad}}, arguments, 2, {},
                       (row.error + "\n").c_str(), {}, {}, true});
    }
}

/* Settings files that cannot be written are named and left as they are: one in a folder
** that takes no new file, and one marked read-only (even for root). */
TEST(CommandLine, UnwritableSettingsFilesAreNamedAndLeftAsTheyAre)
{
    TempDir dir;
    writeFile(dir.file("tervan.ini"), "[tervan]\nprxReusePlots=0\n");
    ASSERT_EQ(chmod(dir.file("tervan.ini").c_str(), 0444), 0);
    for (const std::string settings : {"/proc/version", "{dir}/tervan.ini"})
        expectSession({settings.c_str(), {}, "--settings " + settings + " {examples}servo.json reuse-plots", 1,
                       {"[error] Cannot write settings file " + settings + ": Permission denied"},
                       ("praxa: the settings file " + settings + " could not be written; give a writable one with "
                        "--settings\n").c_str(), {}, {}, true}, dir);
    EXPECT_EQ(readFile(dir.file("tervan.ini")), "[tervan]\nprxReusePlots=0\n");
}

}
