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
using testing_support::examplePath;

TEST(LinearizeCommandLine, FirstRunShowsAnEmptyNameAndScreenDisplay)
{
    TempDir dir;
    auto run = runPraxa("--settings " + dir.file("tervan.ini") + " " + examplePath("pendulum_hanging.json") + " linearize");
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
    auto run = runPraxa("--settings " + dir.file("tervan.ini") + " --output amp.out " + examplePath("servo.json") +
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
