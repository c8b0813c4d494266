/*
** The praxa command line end to end: the executable loads libpraxa.so with dlopen,
** the plug-in's host symbols resolve against the executable, and the transcript,
** settings file and exit status are what a user sees.
*/
#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

const char *const ABOUT = "  static 100 \"Version  Build 10623.0\"";

TEST(CommandLine, SessionsShowTranscriptsWriteSettingsAndExit)
{
    const Session sessions[] = {
        {"about through the loaded plug-in", {}, "about", 0, {"[dialog] About Praxa", ABOUT, "[end] About Praxa: 1"}, ""},
        {"an old host is told the required version and nothing changes", {{"tervan.ini", ""}},
         "--host-version 220 --host-revision 3 reuse-plots", 0,
         {"[Tervan] Praxa requires version 23.0.00 of Tervan but you've got version 22.0.03"}, "",
         {{"tervan.ini", ""}}},
        {"the about box on an old host all the same", {}, "--host-version 220 --host-revision 3 about", 0, {ABOUT}},
        {"reuse-plots keeps the other sections",
         {{"tervan.ini", "# Tervan settings\n[display]\ngrid=on\n\n[tervan]\nmagUnits=215\n"}}, "reuse-plots", 0, {}, "",
         {{"tervan.ini", "# Tervan settings\n[display]\ngrid=on\n\n[tervan]\nmagUnits=215\nprxReusePlots=1\n"}}},
        {"reuse-plots twice toggles back",
         {{"tervan.ini", "[tervan]\nprxReusePlots=1\n"}}, "reuse-plots", 0, {}, "",
         {{"tervan.ini", "[tervan]\nprxReusePlots=0\n"}}},
        {"unknown command", {}, "frobnicate", 2, {}, "praxa: unknown command 'frobnicate' (see praxa --help)\n"},
        {"unknown option", {}, "--colour blue about", 2, {}, "praxa: unknown option --colour (see praxa --help)\n"},
        {"unknown command option", {}, "about --fast", 2, {},
         "praxa: unknown option --fast for command about (see praxa --help)\n"},
        {"no command", {}, "", 2, {}, "praxa: no command given (see praxa --help)\n"},
        {"help lists every menu command", {}, "--help", 0,
         {"  linearize             linearize the selection; [--file NAME.m | --screen | --select-points]",
          "  select-points         start the host's input/output point selection",
          "  tf                    transfer function, zeros and poles",
          "  compensator           compensator design; [--gain K] [--add-zero RE,IM] [--add-pole RE,IM] [--replot] "
          "[--ok [--save]]",
          "  select-compensator    show the diagram's compensator block (host)",
          "  rlocus                root locus plot",
          "  rlocus-options        root locus gain range; [--start K --stop K --steps N --auto|--no-auto]",
          "  nyquist               Nyquist plot", "  bode                  Bode magnitude and phase plots",
          "  frequency-range       frequency range; [--start F --stop F --steps N] [--cancel: look without saving]",
          "  preferences           units, precision, thresholds; [--frequency-unit hertz|rad] [--phase-unit "
          "degrees|radians]",
          "  reuse-plots           toggle reuse of plots", "  about                 the about box"},
         ""},
        {"a settings path that is a folder reads as empty", {}, "--settings {dir} about", 0, {ABOUT}, ""},
        {"a script runs commands in order with their dialog actions",
         {{"session.txt", "# two toggles and the about box\nreuse-plots\nabout\n  cancel\nreuse-plots\nreuse-plots\n"}},
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
    for (const Session &session : sessions)
        expectSession(session);
}

/* Messages that hold a value only the system gives. */
TEST(CommandLine, UnusableInputsAreNamedOnStderr)
{
    std::string before = readFile("/proc/version");
    RunResult run = runPraxa("--settings /proc/version reuse-plots");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.out.find("[error] Cannot write settings file /proc/version"), std::string::npos) << run.out;
    EXPECT_NE(run.err.find("praxa: the settings file /proc/version could not be written"), std::string::npos) << run.err;
    EXPECT_EQ(readFile("/proc/version"), before);

    run = runPraxa("--host-version x about");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("--host-version takes a whole number"), std::string::npos) << run.err;

    run = runPraxa("--script /nonexistent/missing.txt");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("cannot read script"), std::string::npos) << run.err;
}

}
