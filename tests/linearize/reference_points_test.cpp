/*
** tests/linearize/reference_points_test.cpp: picking reference points by clicks and the
** marking of candidates.
*/
#include "fixture.h"

#include <algorithm>

#include "host/host.h"
#include "hostapp/host_state.h"

namespace {

using RefPoints = DiagramTest;

/* servo.json with a plot on the error signal. */
const char *const SERVO_WITH_ERROR_PLOT = R"({"blocks": [
    {"id": "ref", "type": "step", "value": 1}, {"id": "err", "type": "sum", "signs": "+-"},
    {"id": "ctrl", "type": "gain", "gain": 2},
    {"id": "motor", "type": "transferFunction", "num": [1], "den": [1, 1, 0]},
    {"id": "scope", "type": "plot"}],
    "wires": [["ref", "err.1"], ["err", "ctrl"], ["ctrl", "motor"], ["motor", "err.2"], ["err", "scope"]],
    "selection": ["ctrl", "motor"]})";

/* Click sequences on the servo with an error plot: the points taken, the ones highlighted
** (of motor.out, ctrl.out, ctrl.in, scope.1, ref.out), the beeps and the repaints; every
** click marks the candidates, the selected blocks. */
TEST_F(RefPoints, ClicksTakeReplaceAndDropPoints)
{
    const struct {
        const char *name;
        std::vector<std::string> clicks;
        const char *output, *input;
        std::vector<std::string> highlighted;
        int beeps, repaints;
    } rows[] = {
        /* each highlight and each unhighlight repaints */
        {"a new output point replaces the old one", {"motor.out", "ctrl.out"}, "ctrl.out", nullptr, {"ctrl.out"}, 0, 3},
        {"clicking the highlighted output removes it", {"motor.out", "ctrl.in", "motor.out"}, nullptr, "ctrl.in",
         {"ctrl.in"}, 0, 3},
        /* ctrl.1 is ctrl.in by its number */
        {"clicking the highlighted input removes it", {"motor.out", "ctrl.in", "motor.out", "ctrl.1"}, nullptr,
         nullptr, {}, 0, 4},
        /* ref and its reader err are both outside the selection */
        {"a point of neither kind beeps and changes nothing", {"motor.out", "ctrl.in", "ref.out"}, "motor.out",
         "ctrl.in", {"motor.out", "ctrl.in"}, 1, 2},
        /* scope.1 is an input point (err is outside the selection, ctrl reads it) and an
        ** output point (a plot input) */
        {"a point of both kinds becomes the output and empties both lists", {"motor.out", "ctrl.in", "scope.1"},
         "scope.1", nullptr, {"scope.1"}, 0, 5},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        TearDown();
        SetUp();
        load(SERVO_WITH_ERROR_PLOT, false);
        std::string error;
        for (const std::string &name : row.clicks)
            ASSERT_TRUE(hostapp::clickReferencePoint(name, error)) << error;
        ASSERT_EQ(outputRefList.count, row.output ? 1u : 0u);
        ASSERT_EQ(inputRefList.count, row.input ? 1u : 0u);
        if (row.output) {
            EXPECT_EQ(outputRefList.items[0], hostapp::diagramPoint(row.output));
        }
        if (row.input) {
            EXPECT_EQ(inputRefList.items[0], hostapp::diagramPoint(row.input));
        }
        for (const char *name : {"motor.out", "ctrl.out", "ctrl.in", "scope.1", "ref.out"})
            EXPECT_EQ(highlighted(name), std::count(row.highlighted.begin(), row.highlighted.end(), name) == 1) << name;
        EXPECT_EQ(hostapp::host().beeps, row.beeps);
        EXPECT_EQ(platform::transcript(), std::vector<std::string>(row.beeps, "[beep]"));
        EXPECT_EQ(hostapp::host().repaints, row.repaints);
        for (const char *name : {"ctrl", "motor", "ref", "err", "scope"})
            EXPECT_EQ((hostapp::diagramBlock(name)->flags & BLOCK_FLAG_CANDIDATE_MARK) != 0,
                      name == std::string("ctrl") || name == std::string("motor")) << name;
    }
}

}
