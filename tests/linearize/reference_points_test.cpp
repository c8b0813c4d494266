/*
** tests/linearize/reference_points_test.cpp: picking reference points by clicks, the
** marking of candidates, the order of the state blocks and the sampling warnings.
*/
#include "fixture.h"

#include "host/host.h"
#include "hostapp/host_state.h"

namespace {

using RefPoints = DiagramTest;

/* servo.json with a plot on the error signal: scope.1 is both an input point (err is
** outside the selection, ctrl reads it) and an output point (a plot input). */
const char *const SERVO_WITH_ERROR_PLOT = R"({"blocks": [
    {"id": "ref", "type": "step", "value": 1}, {"id": "err", "type": "sum", "signs": "+-"},
    {"id": "ctrl", "type": "gain", "gain": 2},
    {"id": "motor", "type": "transferFunction", "num": [1], "den": [1, 1, 0]},
    {"id": "scope", "type": "plot"}],
    "wires": [["ref", "err.1"], ["err", "ctrl"], ["ctrl", "motor"], ["motor", "err.2"], ["err", "scope"]],
    "selection": ["ctrl", "motor"]})";

TEST_F(RefPoints, ANewOutputPointReplacesTheOldOne)
{
    load(SERVO_WITH_ERROR_PLOT);
    int repaints = hostapp::host().repaints;
    click("motor.out");
    ASSERT_EQ(outputRefList.count, 1u);
    EXPECT_EQ(outputRefList.items[0], point("motor.out"));
    EXPECT_TRUE(highlighted("motor.out"));
    EXPECT_EQ(hostapp::host().repaints, repaints + 1);

    click("ctrl.out");
    ASSERT_EQ(outputRefList.count, 1u);
    EXPECT_EQ(outputRefList.items[0], point("ctrl.out"));
    EXPECT_FALSE(highlighted("motor.out"));
    EXPECT_TRUE(highlighted("ctrl.out"));
    EXPECT_EQ(hostapp::host().repaints, repaints + 3);
    EXPECT_EQ(inputRefList.count, 0u);
    EXPECT_EQ(hostapp::host().beeps, 0);
}

TEST_F(RefPoints, ClickingTheHighlightedReferenceRemovesIt)
{
    load(SERVO_WITH_ERROR_PLOT);
    click("motor.out");
    click("ctrl.in");
    ASSERT_EQ(inputRefList.count, 1u);
    EXPECT_EQ(inputRefList.items[0], point("ctrl.in"));

    click("motor.out");
    EXPECT_EQ(outputRefList.count, 0u);
    EXPECT_FALSE(highlighted("motor.out"));
    EXPECT_EQ(inputRefList.count, 1u);
    click("ctrl.1");
    EXPECT_EQ(inputRefList.count, 0u);
    EXPECT_FALSE(highlighted("ctrl.in"));
}

TEST_F(RefPoints, APointOfNeitherKindBeepsAndChangesNothing)
{
    load(SERVO_WITH_ERROR_PLOT);
    click("motor.out");
    click("ctrl.in");
    click("ref.out");           /* ref and its reader err are both outside the selection */
    EXPECT_EQ(hostapp::host().beeps, 1);
    EXPECT_EQ(messages(), std::vector<std::string>{"[beep]"});
    EXPECT_FALSE(highlighted("ref.out"));
    EXPECT_EQ(outputRefList.items[0], point("motor.out"));
    EXPECT_EQ(inputRefList.items[0], point("ctrl.in"));
    EXPECT_TRUE(highlighted("motor.out"));
    EXPECT_TRUE(highlighted("ctrl.in"));
}

TEST_F(RefPoints, APointOfBothKindsBecomesTheOutputAndEmptiesBothLists)
{
    load(SERVO_WITH_ERROR_PLOT);
    click("motor.out");
    click("ctrl.in");
    ASSERT_TRUE(isLinInputRef(point("scope.1")));
    ASSERT_TRUE(isLinOutputRef(point("scope.1")));

    click("scope.1");
    ASSERT_EQ(outputRefList.count, 1u);
    EXPECT_EQ(outputRefList.items[0], point("scope.1"));
    EXPECT_TRUE(highlighted("scope.1"));
    EXPECT_EQ(inputRefList.count, 0u);
    EXPECT_FALSE(highlighted("ctrl.in"));
    EXPECT_FALSE(highlighted("motor.out"));
}

TEST_F(RefPoints, ResetForgetsBothPoints)
{
    load(SERVO_WITH_ERROR_PLOT);
    click("motor.out");
    click("ctrl.in");
    linResetRefPoints();
    EXPECT_EQ(outputRefList.count, 0u);
    EXPECT_EQ(inputRefList.count, 0u);
    EXPECT_FALSE(highlighted("motor.out"));
    EXPECT_FALSE(highlighted("ctrl.in"));
}

TEST_F(RefPoints, ClickingMarksTheCandidatesAndLinearizingClearsTheMarks)
{
    load(SERVO_WITH_ERROR_PLOT);
    click("motor.out");
    for (const char *name : {"ctrl", "motor"})
        EXPECT_TRUE(hostapp::diagramBlock(name)->flags & BLOCK_FLAG_CANDIDATE_MARK) << name;
    for (const char *name : {"ref", "err", "scope"})
        EXPECT_FALSE(hostapp::diagramBlock(name)->flags & BLOCK_FLAG_CANDIDATE_MARK) << name;

    double period = 0;
    ASSERT_EQ(linearize(&period), 1);
    for (const char *name : {"ctrl", "motor"})
        EXPECT_FALSE(hostapp::diagramBlock(name)->flags & BLOCK_FLAG_CANDIDATE_MARK) << name;
}

TEST_F(RefPoints, StateBlocksAreOrderedByKeysThatDifferByOneOrMore)
{
    /* Integrators a, b, c with keys 3.0, 1.5, 1.2, fed with 1, 2 and 3 times the input. */
    load(R"({"blocks": [{"id": "src", "type": "constant", "value": 0},
        {"id": "pre", "type": "compound", "blocks": [
            {"id": "ga", "type": "gain", "gain": 1}, {"id": "a", "type": "integrator", "stateOrder": 3.0},
            {"id": "gb", "type": "gain", "gain": 2}, {"id": "b", "type": "integrator", "stateOrder": 1.5},
            {"id": "gc", "type": "gain", "gain": 3}, {"id": "c", "type": "integrator", "stateOrder": 1.2},
            {"id": "total", "type": "sum", "signs": "+++"}],
          "wires": [["ga", "a"], ["gb", "b"], ["gc", "c"], ["a", "total.1"], ["b", "total.2"], ["c", "total.3"]],
          "inputs": [["ga", "gb", "gc"]], "outputs": ["total"]},
        {"id": "scope", "type": "plot"}],
        "wires": [["src", "pre"], ["pre", "scope"]], "selection": ["pre"]})");
    click("pre.out");
    ASSERT_EQ(stateBlockList.count, 3u);
    EXPECT_EQ(stateBlockList.items[0], hostapp::diagramBlock("pre/b"));
    EXPECT_EQ(stateBlockList.items[1], hostapp::diagramBlock("pre/c"));
    EXPECT_EQ(stateBlockList.items[2], hostapp::diagramBlock("pre/a"));

    double period = 0;
    ASSERT_EQ(linearize(&period), 1);
    EXPECT_EQ(inputRefList.items[0], point("pre.in"));
    expectMatrix(stateSpaceModel.B, 3, 1, {2, 3, 1});
    expectMatrix(stateSpaceModel.C, 1, 3, {1, 1, 1});
}

TEST_F(RefPoints, ASampledBlockAfterAContinuousFirstBlockWarnsAndKeepsPeriodZero)
{
    load(R"({"blocks": [{"id": "src", "type": "constant", "value": 1}, {"id": "k", "type": "gain", "gain": 2},
        {"id": "z", "type": "discreteTransferFunction", "num": [1], "den": [1, -0.5], "samplePeriod": 0.1},
        {"id": "scope", "type": "plot"}],
        "wires": [["src", "k"], ["k", "z"], ["z", "scope"]], "selection": ["k", "z"]})");
    double period = -1;
    ASSERT_EQ(linearize(&period), 1);
    EXPECT_EQ(period, 0.0);
    EXPECT_EQ(messages(), std::vector<std::string>{
                              "[Tervan Debug] Attempt to analyze discrete subsystem with differing sampling rates"});
    /* The linearization went on: z+ = 0.5 z + 2 u, y = z. */
    expectMatrix(stateSpaceModel.A, 1, 1, {0.5});
    expectMatrix(stateSpaceModel.B, 1, 1, {2});
}

TEST_F(RefPoints, SampledBlocksOfOnePeriodRecordItWithoutWarning)
{
    load(R"({"samplePeriod": 0.1, "blocks": [{"id": "src", "type": "constant", "value": 1},
        {"id": "z1", "type": "discreteTransferFunction", "num": [1], "den": [1, -0.5]},
        {"id": "k", "type": "gain", "gain": 2},
        {"id": "z2", "type": "discreteStateSpace", "a": [[0.25]], "b": [1], "c": [1]},
        {"id": "scope", "type": "plot"}],
        "wires": [["src", "z1"], ["z1", "k"], ["k", "z2"], ["z2", "scope"]], "selection": ["z1", "k", "z2"]})");
    double period = -1;
    ASSERT_EQ(linearize(&period), 1);
    EXPECT_EQ(period, 0.1);
    EXPECT_TRUE(messages().empty()) << platform::transcriptText();
    expectMatrix(stateSpaceModel.A, 2, 2, {0.5, 0, 2, 0.25});

    /* Another period later in the selection is reported. */
    load(R"({"blocks": [{"id": "src", "type": "constant", "value": 1},
        {"id": "z1", "type": "discreteTransferFunction", "num": [1], "den": [1, -0.5], "samplePeriod": 0.1},
        {"id": "z2", "type": "discreteTransferFunction", "num": [1], "den": [1, -0.5], "samplePeriod": 0.2},
        {"id": "scope", "type": "plot"}],
        "wires": [["src", "z1"], ["z1", "z2"], ["z2", "scope"]], "selection": ["z1", "z2"]})");
    platform::clearTranscript();
    ASSERT_EQ(linearize(&period), 1);
    EXPECT_EQ(period, 0.1);
    EXPECT_EQ(messages(), std::vector<std::string>{
                              "[Tervan Debug] Attempt to analyze discrete subsystem with differing sampling rates"});
}

TEST_F(RefPoints, UnitDelayIsReportedAndLinearizingGoesOn)
{
    loadExample("unit_delay.json");
    platform::clearTranscript();
    double period = -1;
    ASSERT_EQ(linearize(&period), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{"[Tervan Debug] Praxa can't handle unit delay"});
    /* The delay's sample is held: plant' = -plant + u, and the output after the delay does not move. */
    expectMatrix(stateSpaceModel.A, 1, 1, {-1});
    expectMatrix(stateSpaceModel.B, 1, 1, {1});
    expectMatrix(stateSpaceModel.C, 1, 1, {0});
    expectMatrix(stateSpaceModel.D, 1, 1, {0});
}

TEST_F(RefPoints, MixedSelectionKeepsTheContinuousStatesAndHoldsTheSampledOnes)
{
    /* Visited first, the sampled block gives the period; the host holds its state (M = 1). */
    load(R"({"blocks": [{"id": "src", "type": "constant", "value": 1},
        {"id": "z", "type": "discreteTransferFunction", "num": [1], "den": [1, -0.5], "samplePeriod": 0.1},
        {"id": "x", "type": "transferFunction", "num": [4], "den": [1, 3]},
        {"id": "scope", "type": "plot"}],
        "wires": [["src", "z"], ["src", "x"], ["x", "scope"]], "selection": ["z", "x"],
        "input": "src.out", "output": "x.out"})");
    std::string error;
    ASSERT_TRUE(hostapp::applyDiagramReferencePoints(error)) << error;
    double period = -1;
    ASSERT_EQ(linearize(&period), 1);
    EXPECT_EQ(period, 0.1);
    EXPECT_EQ(derivEntryList.count, 2u);
    expectMatrix(stateSpaceModel.A, 1, 1, {-3});
    expectMatrix(stateSpaceModel.B, 1, 1, {1});
    expectMatrix(stateSpaceModel.C, 1, 1, {4});
}

}
