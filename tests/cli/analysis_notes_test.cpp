/*
** tests/cli/analysis_notes_test.cpp: what the host adds to an analysis's transcript: the
** reference points taken when they are picked or change, and why Bode, Nyquist or root
** locus has nothing to show (a selection without states, an input that does not reach
** the output).
*/
#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

TEST(AnalysisNotes, PointsPickedOrTakenAreNamed)
{
    TempDir dir;
    std::string common = "--settings " + dir.file("s.ini") + " --out " + dir.path + " ";
    /* The diagram's own input picked again stays taken (a second click would drop it). */
    RunResult run = runPraxa(common + examplePath("servo.json") + " --input ctrl.in --output amp.out tf");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out.find("[host] reference points: input ctrl.1, output amp.out\n"
                           "[host] reference points: input ctrl.1, output amp.out\n"
                           "[dialog] Transfer Function\n"),
              0u)
        << run.out;

    /* A diagram without points of its own: the linearizer's choice is shown. */
    std::string text = readFile(examplePath("servo.json"));
    text.replace(text.find("\"input\": \"ctrl.in\","), 19, "");
    writeFile(dir.file("nopoints.json"), text);
    run = runPraxa(common + dir.file("nopoints.json") + " bode");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("[plot] Bode-Phase.svg\n[host] reference points taken: input ctrl.1, output motor.out\n"),
              std::string::npos)
        << run.out;
}

TEST(AnalysisNotes, AnAnalysisWithNothingToShowSaysWhy)
{
    const std::string gain = R"({"blocks": [{"id": "src", "type": "constant", "value": 1},
        {"id": "k", "type": "gain", "gain": 3}, {"id": "scope", "type": "plot"}],
        "wires": [["src", "k"], ["k", "scope"]], "selection": ["k"], "input": "k.in", "output": "k.out"})";
    /* A saturation driven past its limit (5 against 1) passes no change to the plant. */
    const std::string saturated = R"({"blocks": [{"id": "src", "type": "constant", "value": 5},
        {"id": "lim", "type": "saturation", "lower": -1, "upper": 1},
        {"id": "plant", "type": "transferFunction", "num": [1], "den": [1, 1]}],
        "wires": [["src", "lim"], ["lim", "plant"]], "selection": ["lim", "plant"],
        "input": "lim.in", "output": "plant.out"})";
    const std::string noStates =
        "[host] nothing to plot: the selection has no states, so from k.1 to k.out it is the constant gain 3; add a "
        "block with state (an integrator or a transfer function) to the selection to see a frequency response or a "
        "root locus";
    const std::string noPath =
        "[host] nothing to show: the input lim.1 does not reach the output plant.out at this operating point (the "
        "transfer function is 0; a saturation past its limit, a dead zone or a switch passes no change); move the "
        "operating point or pick other points";
    const Session sessions[] = {
        {"bode of a gain", {{"d.json", gain}}, "{dir}/d.json bode", 0, {noStates}, ""},
        {"nyquist of a gain", {{"d.json", gain}}, "{dir}/d.json nyquist", 0, {noStates}, ""},
        {"rlocus of a gain", {{"d.json", gain}}, "{dir}/d.json rlocus", 0, {noStates}, ""},
        {"bode past a saturation", {{"d.json", saturated}}, "{dir}/d.json bode", 0, {noPath}, ""},
        {"nyquist past a saturation", {{"d.json", saturated}}, "{dir}/d.json nyquist", 0, {noPath}, ""},
        {"rlocus past a saturation", {{"d.json", saturated}}, "{dir}/d.json rlocus", 0, {noPath}, ""},
    };
    for (const Session &session : sessions)
        expectSession(session);
    /* A loop the input reaches gets no note. */
    TempDir dir;
    RunResult run = runPraxa("--settings " + dir.file("s.ini") + " --out " + dir.path + " " +
                             examplePath("servo.json") + " bode");
    EXPECT_EQ(run.out.find("[host] nothing"), std::string::npos) << run.out;
}

}
