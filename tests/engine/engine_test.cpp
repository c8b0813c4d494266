/*
** tests/engine/engine_test.cpp: the engine's evaluation and block library, and the
** host services it gives the plug-in for linearization, called as the plug-in calls them.
*/
#include <gtest/gtest.h>

#include "support.h"

#include <cmath>
#include <vector>

#include "host/host.h"
#include "hostapp/diagram.h"
#include "hostapp/engine.h"
#include "numeric/matrix.h"

namespace {

class Engine : public ::testing::Test {
protected:
    std::vector<HostList *> lists;

    void TearDown() override
    {
        hostapp::clearDiagram();
        for (HostList *list : lists) {
            gfree(list->items);
            delete list;
        }
    }
    void load(const std::string &text)
    {
        std::string error;
        ASSERT_TRUE(hostapp::loadDiagramText(text, "test.json", error)) << error;
    }
    void loadExample(const std::string &name)
    {
        std::string error;
        ASSERT_TRUE(hostapp::loadDiagramFile(testing_support::examplePath(name), error)) << error;
    }
    HostList *newList()
    {
        lists.push_back(new HostList{});
        return lists.back();
    }
    double value(const std::string &point) { return hostapp::diagramPoint(point)->signal->value.scalar; }
    HostBlock *block(const std::string &path) { return hostapp::diagramBlock(path); }
    void mark(const std::string &path) { block(path)->flags |= BLOCK_FLAG_CANDIDATE_MARK; }
};

void recordBlock(HostBlock *block, intptr_t list)
{
    ((std::vector<HostBlock *> *)list)->push_back(block);
}

TEST_F(Engine, DiagramIsEvaluatedAtLoadInDependencyOrder)
{
    /* Listed with every reader before the block it reads. */
    load(R"({"blocks": [
        {"id": "out", "type": "sum", "signs": "+-+"},
        {"id": "sat", "type": "saturation", "lower": -1, "upper": 0.5},
        {"id": "prod", "type": "product", "inputs": 3},
        {"id": "s", "type": "sin"}, {"id": "c", "type": "cos"}, {"id": "a", "type": "abs"},
        {"id": "k", "type": "gain", "gain": -2},
        {"id": "late", "type": "step", "value": 5, "time": 1, "initialValue": 0.25},
        {"id": "src", "type": "constant", "value": 0.5}],
      "wires": [["src", "k"], ["k", "a"], ["src", "s"], ["src", "c"], ["s", "prod.1"], ["c", "prod.2"],
                ["late", "prod.3"], ["a", "sat"], ["sat", "out.1"], ["prod", "out.2"], ["late", "out.3"]]})");
    EXPECT_EQ(value("k.out"), -1.0);
    EXPECT_EQ(value("a.out"), 1.0);
    EXPECT_EQ(value("sat.out"), 0.5);
    EXPECT_EQ(value("late.out"), 0.25);
    EXPECT_DOUBLE_EQ(value("prod.out"), std::sin(0.5) * std::cos(0.5) * 0.25);
    EXPECT_DOUBLE_EQ(value("out.out"), 0.5 - std::sin(0.5) * std::cos(0.5) * 0.25 + 0.25);
}

TEST_F(Engine, StatesGiveOutputsAndDerivativesAtLoad)
{
    loadExample("servo.json");
    /* ref 1, position 0: error 1, control 2; the amplifier state 0 moves at 2. */
    EXPECT_EQ(value("err.out"), 1.0);
    EXPECT_EQ(value("ctrl.out"), 2.0);
    EXPECT_EQ(value("motor.out"), 0.0);
    HostList *states = newList(), *derivs = newList(), *stateBlocks = newList(), *sampled = newList();
    addListMember(stateBlocks, block("amp"));
    EXPECT_EQ(getStateDerivList(states, derivs, stateBlocks, sampled), 0);
    ASSERT_EQ(derivs->count, 1u);
    EXPECT_EQ(*(double *)derivs->items[0], 2.0);

    load(R"({"blocks": [{"id": "src", "type": "constant", "value": 1},
        {"id": "x", "type": "stateSpace", "a": [[0, 1], [-2, -3]], "b": [0, 1], "c": [1, 0], "d": 0.5,
         "initial": [2, -1]}], "wires": [["src", "x"]]})");
    EXPECT_EQ(value("x.out"), 2.5);
}

TEST_F(Engine, TransferFunctionsAreRealizedInControllableCanonicalForm)
{
    /* (2 s^2 + 3 s + 4) / (2 s^2 + 10 s + 12): D = 1, A = [[-5, -6], [1, 0]], C = [1.5 - 5, 2 - 6]. */
    hostapp::LinearSystem sys;
    std::string error;
    ASSERT_TRUE(hostapp::realizeTransferFunction({2, 3, 4}, {2, 10, 12}, sys, error)) << error;
    EXPECT_EQ(sys.n, 2);
    EXPECT_EQ(sys.a, (std::vector<double>{-5, -6, 1, 0}));
    EXPECT_EQ(sys.b, (std::vector<double>{1, 0}));
    EXPECT_EQ(sys.c, (std::vector<double>{-3.5, -4}));
    EXPECT_EQ(sys.d, 1.0);

    /* Leading zeros of the numerator do not count: (0 s + 1) / (s + 1) is strictly proper. */
    ASSERT_TRUE(hostapp::realizeTransferFunction({0, 0, 1}, {1, 1}, sys, error)) << error;
    EXPECT_EQ(sys.c, (std::vector<double>{1}));
    EXPECT_EQ(sys.d, 0.0);
    EXPECT_FALSE(hostapp::realizeTransferFunction({1, 0}, {4}, sys, error));
    EXPECT_EQ(error, "improper transfer function: numerator degree 1 exceeds denominator degree 0");
}

TEST_F(Engine, IntegerOutputsAreCutTowardZero)
{
    load(R"({"blocks": [{"id": "src", "type": "constant", "value": 1},
        {"id": "up", "type": "gain", "gain": 2.7, "dataType": "int16"},
        {"id": "down", "type": "gain", "gain": -2.7, "dataType": "boolean"},
        {"id": "m", "type": "gain", "gain": 1.5, "dataType": "matrix"}],
      "wires": [["src", "up"], ["src", "down"], ["src", "m"]]})");
    EXPECT_EQ(value("up.out"), 2.0);
    EXPECT_EQ(value("down.out"), -2.0);
    HostSignal *matrix = hostapp::diagramPoint("m.out")->signal;
    EXPECT_EQ(matrix->dataType, SIGNAL_TYPE_MATRIX_A);
    EXPECT_EQ(*(double *)(matrix->value.storage + SIGNAL_MATRIX_FIRST), 1.5);
    EXPECT_EQ(hostapp::diagramPoint("up.out")->signal->dataType, 5);
}

TEST_F(Engine, HostListsGrowAndPopFromTheEnd)
{
    HostList *list = newList();
    int items[20];
    for (int &item : items)
        addListMember(list, &item);
    EXPECT_EQ(list->count, 20u);
    EXPECT_GE(list->capacity, 20u);
    for (int i = 19; i >= 0; --i)
        EXPECT_EQ(removeLastMember(list), &items[i]);
    EXPECT_EQ(removeLastMember(list), nullptr);
    EXPECT_EQ(list->count, 0u);
}

TEST_F(Engine, CandidatesAndTheirTreesAreVisitedInOrder)
{
    loadExample("pendulum_hanging.json");
    std::vector<HostBlock *> seen;
    iterateCandidates(recordBlock, (intptr_t)&seen);
    EXPECT_EQ(seen, std::vector<HostBlock *>{block("pendulum")});

    seen.clear();
    operateNodeTree(block("pendulum"), recordBlock, (intptr_t)&seen);
    std::vector<HostBlock *> tree = {block("pendulum")};
    for (const char *inner : {"accel", "omega", "theta", "gravity", "gOverL", "damping"})
        tree.push_back(block(std::string("pendulum/") + inner));
    EXPECT_EQ(seen, tree);
    EXPECT_EQ(block("pendulum/theta")->kind, BLOCK_KIND_STATE_A);
    EXPECT_EQ(block("pendulum/theta")->orderKeys[1], 1.0);
    EXPECT_EQ(block("pendulum/omega")->orderKeys[1], 2.0);
}

TEST_F(Engine, CompoundPortsConnectToTheirInnerPoints)
{
    loadExample("pendulum_hanging.json");
    RefPoint *in = hostapp::diagramPoint("pendulum.in");
    RefPoint *out = hostapp::diagramPoint("pendulum.out");
    EXPECT_NE(in->flags & REF_FLAG_INDIRECT, 0);
    EXPECT_EQ(getVecConnect(in, 1), hostapp::diagramPoint("pendulum/accel.1"));
    EXPECT_EQ(getVecConnect(out, 1), hostapp::diagramPoint("pendulum/theta.out"));
    EXPECT_EQ(getVecConnect(hostapp::diagramPoint("torque.out"), 1), nullptr);
    EXPECT_EQ(in->signal, hostapp::diagramPoint("torque.out")->signal);
}

TEST_F(Engine, PointKindsFollowTheMarkedBlocks)
{
    loadExample("servo.json");
    RefPoint *ctrlIn = hostapp::diagramPoint("ctrl.in");
    RefPoint *motorOut = hostapp::diagramPoint("motor.out");
    EXPECT_FALSE(isLinInputRef(ctrlIn));        /* nothing marked yet */
    EXPECT_FALSE(isLinOutputRef(motorOut));
    EXPECT_TRUE(isLinOutputRef(hostapp::diagramPoint("scope.1")));

    for (const char *name : {"ctrl", "amp", "motor"})
        mark(name);
    EXPECT_TRUE(isLinInputRef(ctrlIn));
    EXPECT_TRUE(isLinInputRef(hostapp::diagramPoint("err.out")));
    EXPECT_FALSE(isLinOutputRef(ctrlIn));
    EXPECT_TRUE(isLinOutputRef(motorOut));
    EXPECT_TRUE(isLinOutputRef(hostapp::diagramPoint("amp.in")));
    EXPECT_FALSE(isLinInputRef(hostapp::diagramPoint("err.1")));
    EXPECT_FALSE(isLinOutputRef(hostapp::diagramPoint("err.1")));

    EXPECT_EQ(getVisitedInput(block("ctrl"), 0), ctrlIn);
    EXPECT_EQ(getVisitedInput(block("amp"), 0), nullptr);
    EXPECT_EQ(getVisitedOutput(block("ctrl"), 0), nullptr);
    EXPECT_EQ(getVisitedOutput(block("motor"), 0), motorOut);
}

TEST_F(Engine, ExecutionSubgraphHoldsTheMarkedBlocksInEvaluationOrder)
{
    loadExample("servo.json");
    for (const char *name : {"motor", "ctrl", "amp"})
        mark(name);
    HostList *execution = newList();
    createExecutionOrderSubGraph(execution);
    /* Blocks whose outputs come from their states alone go first. */
    ASSERT_EQ(execution->count, 3u);
    EXPECT_EQ(execution->items[0], block("amp"));
    EXPECT_EQ(execution->items[1], block("motor"));
    EXPECT_EQ(execution->items[2], block("ctrl"));

    /* Evaluating it changes the listed blocks only. */
    HostSignal *err = hostapp::diagramPoint("err.out")->signal;
    err->value.scalar = 3;
    executeNodeList(execution);
    EXPECT_EQ(value("ctrl.out"), 6.0);
    EXPECT_EQ(value("err.out"), 3.0);
    EXPECT_EQ(value("ref.out"), 1.0);
}

TEST_F(Engine, MixedSelectionsListTheSampledEntriesLast)
{
    load(R"({"blocks": [{"id": "src", "type": "constant", "value": 1},
        {"id": "z", "type": "discreteStateSpace", "a": [[0.5, 0], [0, 0.25]], "b": [1, 1], "c": [1, 1],
         "samplePeriod": 0.1},
        {"id": "x", "type": "integrator"}],
      "wires": [["src", "z"], ["src", "x"]]})");
    HostList *states = newList(), *derivs = newList(), *stateBlocks = newList(), *sampled = newList();
    addListMember(sampled, block("z"));
    EXPECT_EQ(getStateDerivList(states, derivs, stateBlocks, sampled), 0);
    EXPECT_EQ(states->count, 2u);
    EXPECT_EQ(derivs->count, 2u);

    states->count = derivs->count = 0;
    addListMember(stateBlocks, block("x"));
    EXPECT_EQ(getStateDerivList(states, derivs, stateBlocks, sampled), 2);
    EXPECT_EQ(states->count, 1u);
    EXPECT_EQ(derivs->count, 3u);
    EXPECT_EQ(*(double *)derivs->items[0], 1.0);    /* x' = u */
    auto *record = (SampledBlockRecord *)block("z")->kindRecord;
    EXPECT_TRUE(record->sampleFlags & SAMPLED_FLAG_IS_SAMPLED);
    EXPECT_EQ(record->samplePeriod, 0.1);
}

TEST_F(Engine, CalcAcMatrixDifferentiatesAroundTheOperatingPoint)
{
    loadExample("pendulum_inverted.json");
    for (const char *name : {"pendulum/accel", "pendulum/omega", "pendulum/theta", "pendulum/gravity",
                             "pendulum/gOverL", "pendulum/damping"})
        mark(name);
    HostList *execution = newList(), *states = newList(), *derivs = newList(), *stateBlocks = newList(),
             *sampled = newList();
    createExecutionOrderSubGraph(execution);
    addListMember(stateBlocks, block("pendulum/theta"));
    addListMember(stateBlocks, block("pendulum/omega"));
    ASSERT_EQ(getStateDerivList(states, derivs, stateBlocks, sampled), 0);
    std::vector<double> before = hostapp::diagramValues();

    Matrix *A = (Matrix *)galloc(matrixBytes(2, 2));
    Matrix *C = (Matrix *)galloc(matrixBytes(1, 2));
    A->rows = 2, A->cols = 2, C->rows = 1, C->cols = 2;
    double *y = &hostapp::diagramPoint("pendulum/theta.out")->signal->value.scalar;
    calcACMatrix(A, C, y, execution, states, derivs, 0, nullptr, nullptr, nullptr);
    /* Column-major: A = [[0, 1], [9.81 cos(pi) * -1, -0.5]]. */
    EXPECT_NEAR(A->data[0], 0, 1e-9);
    EXPECT_NEAR(A->data[1], 9.81, 1e-7);
    EXPECT_NEAR(A->data[2], 1, 1e-9);
    EXPECT_NEAR(A->data[3], -0.5, 1e-9);
    EXPECT_NEAR(C->data[0], 1, 1e-9);
    EXPECT_NEAR(C->data[1], 0, 1e-9);
    EXPECT_EQ(hostapp::diagramValues(), before);
    gfree(A);
    gfree(C);
}

TEST_F(Engine, PerturbationAndSimulationStepRequests)
{
    double step = 0;
    getLinPerturbation(&step);
    EXPECT_EQ(step, 0.05);
    load(R"({"perturbation": 0.001, "blocks": [{"id": "c", "type": "constant", "value": 1}]})");
    getLinPerturbation(&step);
    EXPECT_EQ(step, 0.001);

    SimStepRequest request = {SIM_REQUEST_STEP, {}};
    EXPECT_EQ(tvnRequest(&request, 0), 1);
    EXPECT_EQ(tvnRequest(&request, 0), 1);
    request.code = 9;
    EXPECT_EQ(tvnRequest(&request, 0), 0);
    EXPECT_EQ(hostapp::simulationStepRequests(), 2);
}

TEST_F(Engine, ClicksNeedAKnownPointAndAPlugin)
{
    std::string error;
    EXPECT_FALSE(hostapp::clickReferencePoint("ctrl.in", error));
    EXPECT_EQ(error, "no diagram is loaded to pick 'ctrl.in' in");
    loadExample("servo.json");
    EXPECT_FALSE(hostapp::clickReferencePoint("ctrl.3", error));
    EXPECT_EQ(error, "block 'ctrl' has no input 3");
    EXPECT_FALSE(hostapp::clickReferencePoint("nothing.out", error));
    EXPECT_EQ(error, "no block 'nothing'");
    EXPECT_EQ(hostapp::diagramPoint("motor"), hostapp::diagramPoint("motor.out1"));
    EXPECT_EQ(hostapp::diagramPoint("err.in2"), hostapp::diagramPoint("err.2"));
    EXPECT_FALSE(hostapp::selectBlocks({"ctrl", "nothing"}, error));
    EXPECT_EQ(error, "selection: no block 'nothing' at the top level of the diagram");
}

}
