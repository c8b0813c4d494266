/*
** tests/linearize/reference_points_test.cpp: picking reference points by clicks, the
** marking of candidates, and the order of the state blocks.
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

}
