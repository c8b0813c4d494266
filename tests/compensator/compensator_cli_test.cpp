/*
** tests/compensator/compensator_cli_test.cpp: the compensator command through the praxa
** executable on the servo example: filled by its options and by a script, the plots
** written, the record handed to the host and kept for the next invocation.
*/
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "support.h"

using namespace testing_support;

namespace {

bool fileExists(const std::string &path) { return std::ifstream(path).good(); }

bool has(const std::string &text, const std::string &part) { return text.find(part) != std::string::npos; }

size_t at(const std::string &text, const std::string &part) { return text.find(part); }

}

TEST(CompensatorCommand, OptionsFillTheDialogReplotAndHandTheCompensatorOver)
{
    TempDir dir;
    RunResult run = runPraxa("--settings " + dir.file("tervan.ini") + " --out " + dir.path + " " +
                             examplePath("servo.json") +
                             " compensator --gain 10 --add-zero -1 --add-pole '(-10,0)' --replot --ok");
    EXPECT_EQ(run.status, 0) << run.err << run.out;
    /* the servo 20/(s (s + 1)(s + 10)): no zeros, three poles, one row each */
    EXPECT_TRUE(has(run.out, "  listbox 1022: \"\t(-10,0)\" | \"\t(-1,0)\" | \"\t(0,0)\"\n")) << run.out;
    EXPECT_TRUE(has(run.out, "  edit 1023 \"1\"\n"));
    size_t margins = at(run.out, "[dialog] Phase and Gain Margins\n");
    size_t locus = at(run.out, "[plot] Root-Locus.svg\n");
    size_t end = at(run.out, "[end] Compensator Design: 1\n");
    size_t record = at(run.out, "[compensator] gain 10 zeros (-1,0) poles (-10,0)\n");
    size_t host = at(run.out, "[host] the diagram has no compensator block");
    ASSERT_NE(margins, std::string::npos) << run.out;
    ASSERT_NE(host, std::string::npos) << run.out;
    EXPECT_LT(margins, locus);
    EXPECT_LT(locus, end);
    EXPECT_LT(end, record);
    EXPECT_LT(record, host);
    /* 200 (s + 1)/(s (s + 1)(s + 10)^2): phase -90 - 2 atan(w/10) degrees, so the phase
    ** margin at the tracked gain crossover 1.67683 is 90 - 2 atan(0.167683) = 70.962 */
    EXPECT_TRUE(has(run.out, "  edit 105 \"70.962\" (disabled)\n")) << run.out;
    for (const char *name : {"Bode-Magnitude.svg", "Bode-Phase.svg", "Root-Locus.svg"})
        EXPECT_TRUE(fileExists(dir.file(name))) << name;
    EXPECT_TRUE(has(readFile(dir.file("Root-Locus.svg")), "Root Locus-1"));
}

TEST(CompensatorCommand, TheRecordIsKeptForTheNextInvocationOfAScript)
{
    TempDir dir;
    writeFile(dir.file("design.txt"),
              "# a lag compensator, then the dialog reopened and left with Cancel\n"
              "compensator\n"
              "  type 1023 2.5\n"
              "  type 1021 -0.1\n"
              "  click 303\n"
              "  type 1020 -0.01\n"
              "  click 303\n"
              "  click 1\n"
              "compensator\n"
              "  cancel\n");
    RunResult run = runPraxa("--settings " + dir.file("tervan.ini") + " --out " + dir.path + " --script " +
                             dir.file("design.txt") + " " + examplePath("servo.json"));
    EXPECT_EQ(run.status, 0) << run.err << run.out;
    size_t first = at(run.out, "[compensator] gain 2.5 zeros (-0.1,0) poles (-0.01,0)\n");
    ASSERT_NE(first, std::string::npos) << run.out;
    size_t second = run.out.find("[dialog] Compensator Design\n", first);
    ASSERT_NE(second, std::string::npos) << run.out;
    std::string reopened = run.out.substr(second);
    EXPECT_TRUE(has(reopened, "  edit 1023 \"2.5\"\n")) << reopened;
    EXPECT_TRUE(has(reopened, "  listbox 107: \"(-.1,0)\"\n")) << reopened;
    EXPECT_TRUE(has(reopened, "  listbox 108: \"(-.01,0)\"\n")) << reopened;
    EXPECT_TRUE(has(reopened, "[end] Compensator Design: 2\n"));
    EXPECT_FALSE(has(reopened, "[compensator]"));
    EXPECT_FALSE(has(run.out, "[plot]"));     /* no Replot: nothing drawn */
}
