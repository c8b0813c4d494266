/*
** tests/linearize/linearizer_test.cpp: linearize on the example diagrams against
** hand-derived models, its central difference in the input, and every way it stops.
*/
#include "fixture.h"

#include <cmath>

#include "hostapp/host_state.h"

namespace {

class Linearizer : public DiagramTest {
protected:
    /* Loads a diagram text and clicks its own reference points. */
    void loadWithReferences(const std::string &text)
    {
        load(text);
        std::string error;
        ASSERT_TRUE(hostapp::applyDiagramReferencePoints(error)) << error;
        platform::clearTranscript();
    }
};

/* Servo: x = [amplifier, motor velocity state, motor position state], u = error, y = position.
**   amp' = -10 amp + 2 u;  m1' = -m1 + 10 amp;  m2' = m1;  y = m2. */
TEST_F(Linearizer, ServoGivesTheHandDerivedModel)
{
    loadExample("servo.json");
    double period = -1;
    ASSERT_EQ(linearize(&period), 1);
    EXPECT_EQ(period, 0.0);
    expectMatrix(stateSpaceModel.A, 3, 3, {-10, 0, 0, 10, -1, 0, 0, 1, 0});
    expectMatrix(stateSpaceModel.B, 3, 1, {2, 0, 0});
    expectMatrix(stateSpaceModel.C, 1, 3, {0, 0, 1});
    expectMatrix(stateSpaceModel.D, 1, 1, {0});
    EXPECT_TRUE(messages().empty()) << platform::transcriptText();
}

/* theta'' = u - 0.5 theta' - 9.81 sin(theta): A = [[0, 1], [-+9.81, -0.5]] at theta = 0 / pi. */
TEST_F(Linearizer, PendulumHangingAndInverted)
{
    for (auto [file, a21] : {std::pair{"pendulum_hanging.json", -9.81}, std::pair{"pendulum_inverted.json", 9.81}}) {
        SCOPED_TRACE(file);
        loadExample(file);
        double period = -1;
        ASSERT_EQ(linearize(&period), 1);
        expectMatrix(stateSpaceModel.A, 2, 2, {0, 1, a21, -0.5}, 1e-6);
        expectMatrix(stateSpaceModel.B, 2, 1, {0, 1}, 1e-9);
        expectMatrix(stateSpaceModel.C, 1, 2, {1, 0}, 1e-6);
        expectMatrix(stateSpaceModel.D, 1, 1, {0});
    }
}

/* Controller (0.5 z - 0.4)/(z - 1): c+ = c + e, v = 0.1 c + 0.5 e; plant p+ = 0.9048 p + v,
** y = 0.09516 p.  Both sampled at 0.1 s. */
TEST_F(Linearizer, SampledLoopGivesTheDiscreteModelAndItsPeriod)
{
    loadExample("sampled_loop.json");
    double period = -1;
    ASSERT_EQ(linearize(&period), 1);
    EXPECT_EQ(period, 0.1);
    double pole = std::exp(-0.1);
    expectMatrix(stateSpaceModel.A, 2, 2, {1, 0, 0.1, pole});
    expectMatrix(stateSpaceModel.B, 2, 1, {1, 0.5});
    expectMatrix(stateSpaceModel.C, 1, 2, {0, 1 - pole});
    expectMatrix(stateSpaceModel.D, 1, 1, {0});
    EXPECT_TRUE(messages().empty()) << platform::transcriptText();
}

TEST_F(Linearizer, DirectFeedthroughAndAModelWithoutStates)
{
    /* lead (s + 2)/(s + 1): x' = -x + u, y = x + u; gain block 3/2 as a transfer function of degree 0. */
    loadWithReferences(R"({"blocks": [{"id": "src", "type": "constant", "value": 0.5},
        {"id": "lead", "type": "transferFunction", "num": [1, 2], "den": [1, 1]},
        {"id": "flat", "type": "transferFunction", "num": [3], "den": [2]}],
        "wires": [["src", "lead"], ["src", "flat"]],
        "selection": ["lead"], "input": "lead.in", "output": "lead.out"})");
    double period = -1;
    ASSERT_EQ(linearize(&period), 1);
    expectMatrix(stateSpaceModel.A, 1, 1, {-1});
    expectMatrix(stateSpaceModel.B, 1, 1, {1});
    expectMatrix(stateSpaceModel.C, 1, 1, {1});
    expectMatrix(stateSpaceModel.D, 1, 1, {1});

    loadWithReferences(R"({"blocks": [{"id": "src", "type": "constant", "value": 0.5},
        {"id": "flat", "type": "transferFunction", "num": [3], "den": [2]}],
        "wires": [["src", "flat"]], "input": "flat.in", "output": "flat.out", "selection": ["flat"]})");
    ASSERT_EQ(linearize(&period), 1);
    expectMatrix(stateSpaceModel.A, 0, 0, {});
    expectMatrix(stateSpaceModel.C, 1, 0, {});
    expectMatrix(stateSpaceModel.D, 1, 1, {1.5});
    /* 1 by 0 reads as a vector of one element, which the result file shows: 0, not the
    ** previous model's 1. */
    EXPECT_EQ(stateSpaceModel.C->data[0], 0.0);
}

TEST_F(Linearizer, InputIsRaisedLoweredAndRestoredAndTheDiagramIsLeftAsItWas)
{
    loadExample("servo.json");
    double *input = &hostapp::diagramPoint("err.out")->signal->value.scalar;
    ASSERT_EQ(*input, 1.0);
    std::vector<double> seen;
    hostapp::setSimulationStepObserver([&] { seen.push_back(*input); });
    std::vector<double> before = hostapp::diagramValues();

    double period = -1;
    ASSERT_EQ(linearize(&period), 1);
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_DOUBLE_EQ(seen[0], 1.05);
    EXPECT_DOUBLE_EQ(seen[1], 0.95);
    EXPECT_EQ(seen[2], 1.0);
    EXPECT_EQ(hostapp::diagramValues(), before);
}

TEST_F(Linearizer, DiagramPerturbationIsUsedForTheInput)
{
    loadWithReferences(R"({"perturbation": 0.25,
        "blocks": [{"id": "src", "type": "constant", "value": 2}, {"id": "x", "type": "integrator"},
                   {"id": "sq", "type": "product"}],
        "wires": [["src", "sq.1"], ["src", "sq.2"], ["sq", "x"]],
        "selection": ["sq", "x"], "input": "sq.1", "output": "x.out"})");
    std::vector<double> seen;
    double *input = &hostapp::diagramPoint("src.out")->signal->value.scalar;
    hostapp::setSimulationStepObserver([&] { seen.push_back(*input); });
    double period = -1;
    ASSERT_EQ(linearize(&period), 1);
    EXPECT_EQ(seen, (std::vector<double>{2.25, 1.75, 2.0}));
    /* x' = u * u with both factors perturbed: ((2.25)^2 - (1.75)^2) / 0.5 = 4. */
    expectMatrix(stateSpaceModel.B, 1, 1, {4}, 1e-12);
}

TEST_F(Linearizer, WithoutReferencePointsTheFirstVisitedOnesAreTakenAndHighlighted)
{
    load(R"({"blocks": [
        {"id": "ref", "type": "step", "value": 1}, {"id": "err", "type": "sum", "signs": "+-"},
        {"id": "ctrl", "type": "gain", "gain": 2},
        {"id": "amp", "type": "transferFunction", "num": [10], "den": [1, 10]},
        {"id": "motor", "type": "transferFunction", "num": [1], "den": [1, 1, 0]}],
        "wires": [["ref", "err.1"], ["err", "ctrl"], ["ctrl", "amp"], ["amp", "motor"], ["motor", "err.2"]],
        "selection": ["ctrl", "amp", "motor"]})");
    double period = -1;
    ASSERT_EQ(linearize(&period), 1);
    ASSERT_EQ(outputRefList.count, 1u);
    ASSERT_EQ(inputRefList.count, 1u);
    EXPECT_EQ(outputRefList.items[0], point("motor.out"));
    EXPECT_EQ(inputRefList.items[0], point("ctrl.1"));
    EXPECT_TRUE(highlighted("motor.out"));
    EXPECT_TRUE(highlighted("ctrl.in"));
    expectMatrix(stateSpaceModel.A, 3, 3, {-10, 0, 0, 10, -1, 0, 0, 1, 0});
    expectMatrix(stateSpaceModel.B, 3, 1, {2, 0, 0});

    /* The next run keeps the points found. */
    ASSERT_EQ(linearize(&period), 1);
    EXPECT_EQ(outputRefList.count, 1u);
    EXPECT_EQ(inputRefList.count, 1u);
}

TEST_F(Linearizer, NoBlocksWithStateEvenWithBothReferences)
{
    loadWithReferences(R"({"blocks": [{"id": "src", "type": "constant", "value": 1},
        {"id": "k1", "type": "gain", "gain": 2}, {"id": "k2", "type": "gain", "gain": 3}],
        "wires": [["src", "k1"], ["k1", "k2"]], "selection": ["k1", "k2"], "input": "k1.in", "output": "k2.out"})");
    ASSERT_EQ(outputRefList.count, 1u);
    ASSERT_EQ(inputRefList.count, 1u);
    double period = -7;
    EXPECT_EQ(linearize(&period), 0);
    EXPECT_EQ(period, -7);
    EXPECT_EQ(messages(), std::vector<std::string>{"[Tervan] No blocks with state in selection"});
}

TEST_F(Linearizer, NoInputReferenceWhenTheSourceIsSelected)
{
    loadWithReferences(R"({"blocks": [{"id": "src", "type": "step", "value": 1}, {"id": "x", "type": "integrator"},
        {"id": "scope", "type": "plot"}], "wires": [["src", "x"], ["x", "scope"]], "selection": ["src", "x"]})");
    double period = 0;
    EXPECT_EQ(linearize(&period), 0);
    EXPECT_EQ(messages(), std::vector<std::string>{"[Tervan] No input reference block."});
    EXPECT_TRUE(highlighted("x.out"));
}

TEST_F(Linearizer, MatrixInputIsLinearizedOnItsFirstElement)
{
    loadWithReferences(R"({"blocks": [{"id": "src", "type": "constant", "value": 1, "dataType": "matrix"},
        {"id": "x", "type": "transferFunction", "num": [3], "den": [1, 2]}],
        "wires": [["src", "x"]], "selection": ["x"], "input": "x.in", "output": "x.out"})");
    std::vector<double> before = hostapp::diagramValues();
    double period = -1;
    ASSERT_EQ(linearize(&period), 1);
    EXPECT_EQ(messages(), std::vector<std::string>{
                              "[Tervan Debug] Warning, linearizing with respect to the first matrix element only."});
    expectMatrix(stateSpaceModel.A, 1, 1, {-2});
    expectMatrix(stateSpaceModel.B, 1, 1, {1});
    expectMatrix(stateSpaceModel.C, 1, 1, {3});
    EXPECT_EQ(hostapp::diagramValues(), before);
}

TEST_F(Linearizer, FailedRunKeepsThePreviousModel)
{
    loadExample("servo.json");
    double period = 0;
    ASSERT_EQ(linearize(&period), 1);
    loadWithReferences(R"({"blocks": [{"id": "src", "type": "constant", "value": 1},
        {"id": "k1", "type": "gain", "gain": 2}], "wires": [["src", "k1"]]})");
    EXPECT_EQ(linearize(&period), 0);
    expectMatrix(stateSpaceModel.A, 3, 3, {-10, 0, 0, 10, -1, 0, 0, 1, 0});
}

}
