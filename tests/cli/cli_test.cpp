/*
** The praxa command line end to end: the executable loads libpraxa.so with dlopen,
** the plug-in's host symbols resolve against the executable, and the transcript,
** settings file and exit status are what a user sees.
*/
#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

TEST(CommandLine, AboutShowsTheVersionThroughTheLoadedPlugin)
{
    TempDir dir;
    RunResult run = runPraxa("--settings " + dir.file("s.ini") + " --out " + dir.path + " about");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("static 100 \"Version  Build 10623.0\""), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("[end] "), std::string::npos) << run.out;
}

TEST(CommandLine, OldHostIsToldTheRequiredVersionAndNothingChanges)
{
    TempDir dir;
    RunResult run = runPraxa("--settings " + dir.file("s.ini") + " --host-version 220 --host-revision 3 reuse-plots");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "[Tervan] Praxa requires version 23.0.00 of Tervan but you've got version 22.0.03\n");
    EXPECT_EQ(readFile(dir.file("s.ini")), "");

    run = runPraxa("--settings " + dir.file("s.ini") + " --host-version 220 --host-revision 3 about");
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("Version  Build 10623.0"), std::string::npos);
}

TEST(CommandLine, ReusePlotsTwiceWritesOneThenZeroKeepingOtherSections)
{
    TempDir dir;
    std::string settings = dir.file("s.ini");
    writeFile(settings, "# Tervan settings\n[display]\ngrid=on\n\n[tervan]\nmagUnits=215\n");
    RunResult run = runPraxa("--settings " + settings + " reuse-plots");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(readFile(settings), "# Tervan settings\n[display]\ngrid=on\n\n[tervan]\nmagUnits=215\nprxReusePlots=1\n");
    run = runPraxa("--settings " + settings + " reuse-plots");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(readFile(settings), "# Tervan settings\n[display]\ngrid=on\n\n[tervan]\nmagUnits=215\nprxReusePlots=0\n");
}

TEST(CommandLine, UnknownCommandsAndOptionsAreRefusedOnStderr)
{
    RunResult run = runPraxa("frobnicate");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "praxa: unknown command 'frobnicate' (see praxa --help)\n");
    EXPECT_EQ(run.out, "");

    run = runPraxa("--colour blue about");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "praxa: unknown option --colour (see praxa --help)\n");

    run = runPraxa("about --fast");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "praxa: unknown option --fast for command about (see praxa --help)\n");

    run = runPraxa("--host-version x about");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("--host-version takes a whole number"), std::string::npos);

    run = runPraxa("");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "praxa: no command given (see praxa --help)\n");
}

TEST(CommandLine, HelpListsEveryMenuCommand)
{
    RunResult run = runPraxa("--help");
    EXPECT_EQ(run.status, 0);
    for (const char *name : {"linearize", "select-points", "tf", "compensator", "select-compensator", "rlocus",
                             "rlocus-options", "nyquist", "bode", "frequency-range", "preferences", "reuse-plots",
                             "about"})
        EXPECT_NE(run.out.find(std::string("  ") + name + " "), std::string::npos) << name;
}

TEST(CommandLine, UnreadableSettingsFileReadsAsEmpty)
{
    TempDir dir;
    RunResult run = runPraxa("--settings " + dir.path + " about");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("Version  Build 10623.0"), std::string::npos);
}

TEST(CommandLine, SettingsThatCannotBeWrittenAreReportedAndTheOldFileStays)
{
    std::string before = readFile("/proc/version");
    RunResult run = runPraxa("--settings /proc/version reuse-plots");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("praxa: the settings file /proc/version could not be written"), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("[error] Cannot write settings file /proc/version"), std::string::npos) << run.out;
    EXPECT_EQ(readFile("/proc/version"), before);
}

}

namespace {

TEST(CommandLine, ScriptRunsCommandsInOrderWithTheirDialogActions)
{
    TempDir dir;
    writeFile(dir.file("session.txt"), "# two toggles and the about box\nreuse-plots\nabout\n  cancel\nreuse-plots\nreuse-plots\n");
    RunResult run = runPraxa("--settings " + dir.file("s.ini") + " --script " + dir.file("session.txt"));
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("  > cancel\n  > default 1\n[end] About Praxa: 1\n"), std::string::npos) << run.out;
    EXPECT_EQ(readFile(dir.file("s.ini")), "[tervan]\nprxReusePlots=1\n");
}

TEST(CommandLine, ScriptErrorsNameTheLine)
{
    TempDir dir;
    writeFile(dir.file("a.txt"), "about\n  type x y\n");
    RunResult run = runPraxa("--script " + dir.file("a.txt"));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "praxa: " + dir.file("a.txt") + ":2: dialog action 'type': 'x' is not a control id (the transcript shows each control with its id)\n");

    writeFile(dir.file("b.txt"), "  click 1\n");
    run = runPraxa("--script " + dir.file("b.txt"));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "praxa: " + dir.file("b.txt") + ":1: a dialog action must follow a command; put the command on an unindented line above it\n");

    run = runPraxa("--script " + dir.file("missing.txt"));
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("cannot read script"), std::string::npos);
}

TEST(CommandLine, ActionsNoDialogUsedMakeTheRunFail)
{
    TempDir dir;
    RunResult run = runPraxa("--settings " + dir.file("s.ini") + " reuse-plots --click 5");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "praxa: command line: 1 dialog action(s) were not used by any dialog; check them against the dialogs in the transcript\n");
}

}
