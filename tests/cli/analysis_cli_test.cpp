/*
** Analyses through the command line on the bundled example diagrams: the Linearize
** result file and screen output, the transfer function dialogs, reference points
** picked on the command line, and diagram files that are refused.
*/
#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

class Analyses : public ::testing::Test {
protected:
    TempDir dir;
    RunResult praxa(const std::string &example, const std::string &arguments)
    {
        return runPraxa("--settings " + dir.file("tervan.ini") + " --out " + dir.path + " " +
                        examplePath(example) + " " + arguments);
    }
};

TEST_F(Analyses, LinearizeWritesTheServoModelAsAFunctionFile)
{
    RunResult run = praxa("servo.json", "linearize --file servo.m");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(readFile(dir.file("servo.m")), SERVO_MODEL_FILE);
    EXPECT_NE(run.out.find("[file written] " + dir.file("servo.m")), std::string::npos) << run.out;
}

TEST_F(Analyses, LinearizeToTheScreenShowsFourMessageBoxes)
{
    RunResult run = praxa("pendulum_inverted.json", "linearize");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("[end] System Linearization: 1\n"
                           "[Tervan] a = [0 1 ;\n    9.81 -.5 ];\n"
                           "[Tervan] b = [0 ;\n    1 ];\n"
                           "[Tervan] c = [1 0 ];\n"
                           "[Tervan] d = [0 ];\n"),
              std::string::npos)
        << run.out;
}

TEST_F(Analyses, TransferFunctionOfTheServo)
{
    RunResult run = praxa("servo.json", "tf");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("[dialog] Transfer Function\n  static -1 \"Gain\"\n  static 109 \"20\"\n"), std::string::npos)
        << run.out;
    EXPECT_NE(run.out.find("  listbox 106: \"s^0\t1\t    \t0\" | \"s^1\t0\t    \t10.000000000000002\" | "
                           "\"s^2\t0\t    \t11\" | \"s^3\t0\t    \t1\"\n"),
              std::string::npos)
        << run.out;
    EXPECT_NE(run.out.find("  listbox 107:\n  listbox 108: \"(-10,0)\" | \"(-1,0)\" | \"(0,0)\"\n"), std::string::npos)
        << run.out;
}

TEST_F(Analyses, ZerosOfThePiLoopAreListed)
{
    RunResult run = praxa("dc_motor_pi.json", "tf");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("  listbox 107: \"(-2,0)\"\n"), std::string::npos) << run.out;
}

TEST_F(Analyses, ReferencePointsPickedOnTheCommandLine)
{
    /* The output at the plant instead of after the unit delay: the model now sees the plant. */
    RunResult run = praxa("unit_delay.json", "--output plant.out linearize");
    EXPECT_EQ(run.status, 0) << "options may follow the diagram";
    run = runPraxa("--settings " + dir.file("tervan.ini") + " --output plant.out " + examplePath("unit_delay.json") + " linearize");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("[Tervan Debug] Praxa can't handle unit delay\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("[Tervan] c = [1 ];\n"), std::string::npos) << run.out;

    run = runPraxa("--settings " + dir.file("tervan.ini") + " --output nowhere.out " + examplePath("unit_delay.json") + " linearize");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("nowhere"), std::string::npos) << run.err;
}

TEST_F(Analyses, BadDiagramFilesAreRefusedWithTheirLine)
{
    writeFile(dir.file("bad.json"), "{\n  \"blocks\": [\n    {\"id\": \"k\", \"type\": \"gian\", \"gain\": 2}\n  ],\n  \"wires\": []\n}\n");
    RunResult run = runPraxa("--settings " + dir.file("tervan.ini") + " " + dir.file("bad.json") + " tf");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find(dir.file("bad.json") + ":3:"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("'k'"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("gian"), std::string::npos) << run.err;
    EXPECT_EQ(run.out, "");

    writeFile(dir.file("notjson.json"), "{ blocks: ");
    run = runPraxa("--settings " + dir.file("tervan.ini") + " " + dir.file("notjson.json") + " tf");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("praxa: " + dir.file("notjson.json")), std::string::npos) << run.err;

    run = runPraxa("--settings " + dir.file("tervan.ini") + " " + dir.file("missing.json") + " tf");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("missing.json"), std::string::npos) << run.err;
}

}

namespace {

TEST_F(Analyses, StepCountsBeyondWhatAPlotHoldsAreRefusedNotRun)
{
    writeFile(dir.file("tervan.ini"), "[tervan]\nfreqSteps=100000000\n");
    RunResult run = praxa("servo.json", "bode");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("[error] Plot Bode-Magnitude1: 100000000 points are more than the 4194304 a plot holds\n"),
              std::string::npos)
        << run.out;
    EXPECT_EQ(run.out.find("[dialog] Phase and Gain Margins"), std::string::npos) << "nothing is computed";

    writeFile(dir.file("session.txt"), "rlocus-options --start 0 --stop 10 --steps 100000000\nrlocus\n");
    run = runPraxa("--settings " + dir.file("tervan.ini") + " --out " + dir.path + " --script " +
                   dir.file("session.txt") + " " + examplePath("servo.json"));
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("[Tervan] Root locus: 100000000 steps are more than the 65536 a root locus plot can take.\n"),
              std::string::npos)
        << run.out;
}

}
