/*
** tests/cli/options_test.cpp: the settings dialogs looked at without saving.
*/
#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

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
