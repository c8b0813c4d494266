/*
** tests/cli/options_test.cpp: option values refused before they reach a dialog; the
** settings dialogs looked at without saving.
*/
#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

TEST(CommandLineOptions, UnusableValuesAndPointsAreRefusedBeforeAnyDialog)
{
    TempDir dir;
    const struct {
        std::string arguments, message;
    } rows[] = {
        {"compensator --gain abc", "--gain takes a finite number such as 2.5 or -1e3, not 'abc'"},
        {"compensator --gain 1e999", "--gain takes a finite number such as 2.5 or -1e3, not '1e999'"},
        {"compensator --add-zero xyz", "--add-zero takes a root RE or RE,IM of finite numbers, such as -2 or -1,3, not 'xyz'"},
        {"compensator --add-pole '(1,nan)'",
         "--add-pole takes a root RE or RE,IM of finite numbers, such as -2 or -1,3, not '(1,nan)'"},
        {"compensator --gain", "option --gain needs a value (see praxa --help)"},
        {"frequency-range --steps 2.5", "--steps takes a whole number such as 100, not '2.5'"},
        {"rlocus-options --start inf", "--start takes a finite number such as 2.5 or -1e3, not 'inf'"},
        {"preferences --precision ''", "--precision takes a whole number such as 100, not ''"},
        {"preferences --magnitude-unit dB", "option --magnitude-unit takes db or log10, not 'dB'"},
        {"bode --fast", "unknown option --fast for command bode (see praxa --help)"},
        {"compensator --save", "command line: compensator --save keeps what OK hands over; add --ok (in a script: click 1)"},
        {"compensator --ok --save",
         "command line: compensator --save: the diagram has no compensator block to write the design into; "
         "add a block of type \"compensator\" or leave out --save"},
        {"--input motor.out linearize",
         "--input motor.out: the selection computes motor.out, so it would be taken as the output, not the input; "
         "pick a signal that enters the selection, such as ctrl.1"},
        {"--input ref.out linearize",
         "--input ref.out: no selected block reads ref.out, so it cannot be an input of the selection; "
         "pick a signal that enters the selection, such as ctrl.1"},
        {"--output ref.out linearize",
         "--output ref.out: no selected block computes ref.out, so it cannot be an output of the selection; "
         "pick one that does, such as ctrl.out, amp.out, motor.out"},
        {"--output nowhere.out linearize", "--output nowhere.out: no block 'nowhere'; name a block by its id, or its path such as outer/inner"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.arguments);
        RunResult run = runPraxa("--settings " + dir.file("s.ini") + " --out " + dir.path + " " +
                                 examplePath("servo.json") + " " + row.arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err, "praxa: " + row.message + "\n");
        EXPECT_EQ(run.out, "");
    }
}

TEST(CommandLineOptions, SettingsDialogsCanBeLookedAtWithoutSaving)
{
    TempDir dir;
    const std::string settings = "[tervan]\nfreqSteps=50\n";
    writeFile(dir.file("s.ini"), settings);
    for (const char *command : {"frequency-range", "rlocus-options", "preferences"}) {
        SCOPED_TRACE(command);
        RunResult run = runPraxa("--settings " + dir.file("s.ini") + " " + command + " --cancel");
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_NE(run.out.find("  > cancel\n"), std::string::npos) << run.out;
        EXPECT_EQ(readFile(dir.file("s.ini")), settings);
    }
    RunResult help = runPraxa("--help");
    EXPECT_NE(help.out.find("The settings file is written by frequency-range, rlocus-options and preferences when\n"
                            "their dialog ends with OK (add --cancel to look without saving) and by reuse-plots;\n"),
              std::string::npos)
        << help.out;
}

}
