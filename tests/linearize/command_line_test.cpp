/*
** tests/linearize/command_line_test.cpp: the praxa executable linearizing the example
** diagrams, and refusing a bad diagram with its line.
*/
#include <gtest/gtest.h>

#include "support.h"

namespace {

using testing_support::readFile;
using testing_support::runPraxa;
using testing_support::TempDir;

std::string example(const std::string &name)
{
    return std::string(PRAXA_SOURCE_DIR) + "/examples/" + name;
}

TEST(LinearizeCommandLine, ServoIsWrittenToTheNamedResultFile)
{
    TempDir dir;
    auto run = runPraxa("--settings " + dir.file("tervan.ini") + " --out " + dir.path + " " + example("servo.json") +
                        " linearize --click 207 --type 101=servo.m");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(readFile(dir.file("servo.m")), "function [a,b,c,d] = servo\n"
                                             "a = [-10 0 0 ;\n    10 -1 0 ;\n    0 1 0 ];\n"
                                             "b = [2 ;\n    0 ;\n    0 ];\n"
                                             "c = [0 0 1 ];\n"
                                             "d = [0 ];\n");
    EXPECT_NE(run.out.find("[file written] " + dir.file("servo.m")), std::string::npos) << run.out;
}

TEST(LinearizeCommandLine, FirstRunShowsAnEmptyNameAndScreenDisplay)
{
    TempDir dir;
    auto run = runPraxa("--settings " + dir.file("tervan.ini") + " " + example("pendulum_hanging.json") + " linearize");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("  edit 101 \"\"\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("  radio 208 \"Linearize to Screen Display\" [x]\n"), std::string::npos) << run.out;
    size_t end = run.out.find("[end] System Linearization: 1\n");
    ASSERT_NE(end, std::string::npos) << run.out;
    EXPECT_EQ(run.out.substr(end), "[end] System Linearization: 1\n"
                                   "[Tervan] a = [0 1 ;\n    -9.81 -.5 ];\n"
                                   "[Tervan] b = [0 ;\n    1 ];\n"
                                   "[Tervan] c = [1 0 ];\n"
                                   "[Tervan] d = [0 ];\n");
}

TEST(LinearizeCommandLine, PointsPickedOnTheCommandLineReplaceTheDiagramsOwn)
{
    TempDir dir;
    /* Output after the amplifier instead of the motor: amp' = -10 amp + 2 u, y = 10 amp. */
    auto run = runPraxa("--settings " + dir.file("tervan.ini") + " --output amp.out " + example("servo.json") +
                        " linearize");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("[Tervan] c = [10 0 0 ];\n"), std::string::npos) << run.out;
}

TEST(LinearizeCommandLine, BadDiagramIsRefusedWithItsLine)
{
    TempDir dir;
    testing_support::writeFile(dir.file("bad.json"), "{\"blocks\": [\n  {\"id\": \"k\", \"type\": \"gain\"}\n]}\n");
    auto run = runPraxa("--settings " + dir.file("tervan.ini") + " " + dir.file("bad.json") + " linearize");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "praxa: " + dir.file("bad.json") + ":2: block 'k': missing parameter 'gain'\n");
    EXPECT_EQ(run.out, "");
}

}
