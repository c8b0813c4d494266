/*
** tests/cli/input_limits_test.cpp: files and folders praxa refuses before any command
** runs (endless or oversized input, a folder as script, a file as output folder), and a
** settings file it must not replace.
*/
#include <gtest/gtest.h>

#include <sys/stat.h>

#include "support.h"

using namespace testing_support;

namespace {

TEST(InputLimits, UnusableFilesAndFoldersAreRefusedUpFront)
{
    TempDir dir;
    writeFile(dir.file("afile"), "x");
    const std::string settings = "--settings " + dir.file("tervan.ini") + " ";
    const std::string servo = examplePath("servo.json");
    struct Row {
        std::string arguments, error;
    } rows[] = {
        {settings + "/dev/zero tf", "praxa: cannot read diagram /dev/zero: larger than 256 MiB; give a smaller diagram file\n"},
        {settings + "--script /dev/zero", "praxa: cannot read script /dev/zero: larger than 16 MiB; give a smaller script file\n"},
        {settings + "--script " + dir.path + " " + servo, "praxa: cannot read script " + dir.path + ": Is a directory; give a readable script file\n"},
        {settings + "--out " + dir.file("afile") + " " + servo + " bode",
         "praxa: cannot write into output folder " + dir.file("afile") + ": Not a directory; give another folder with --out\n"},
    };
    for (const Row &row : rows) {
        RunResult run = runPraxa(row.arguments);
        EXPECT_EQ(run.status, 2) << row.arguments;
        EXPECT_EQ(run.err, row.error) << row.arguments;
        EXPECT_EQ(run.out, "") << row.arguments;
    }
}

TEST(InputLimits, ReadOnlySettingsFileIsLeftAsItIs)
{
    TempDir dir;
    writeFile(dir.file("tervan.ini"), "[tervan]\nprxReusePlots=0\n");
    ASSERT_EQ(chmod(dir.file("tervan.ini").c_str(), 0444), 0);
    RunResult run = runPraxa("--settings " + dir.file("tervan.ini") + " " + examplePath("servo.json") + " reuse-plots");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "[error] Cannot write settings file " + dir.file("tervan.ini") + ": Permission denied\n");
    EXPECT_EQ(run.err, "praxa: the settings file " + dir.file("tervan.ini") + " could not be written; give a writable one with --settings\n");
    EXPECT_EQ(readFile(dir.file("tervan.ini")), "[tervan]\nprxReusePlots=0\n");
}

}
