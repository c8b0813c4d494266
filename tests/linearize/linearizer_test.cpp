/*
** tests/linearize/linearizer_test.cpp: linearize on the example diagrams against
** hand-derived models, its central difference in the input, the reference points it finds
** itself, and a run that stops.
*/
#include "fixture.h"

#include <cmath>

#include "hostapp/host_state.h"

namespace {

using Linearizer = DiagramTest;

/* Hand-derived models of the examples and of small diagrams, each with the period the run
** gives and the one message it shows (if any); the diagram's values are as they were. The
** input is raised and lowered by the perturbation (the diagram's own, if it has one) and
** then restored, the steps seeing it so. */
TEST_F(Linearizer, DiagramsGiveTheirHandDerivedModels)
{
    const double pole = std::exp(-0.1);
    const std::string lead = R"({"blocks": [{"id": "src", "type": "constant", "value": 0.5},
        {"id": "lead", "type": "transferFunction", "num": [1, 2], "den": [1, 1]},
        {"id": "flat", "type": "transferFunction", "num": [3], "den": [2]}],
        "wires": [["src", "lead"], ["src", "flat"]],
        "selection": ["lead"], "input": "lead.in", "output": "lead.out"})";
    struct Row {
        const char *name;
        std::string diagram;            /* an example's name, or the diagram's text */
        double period, tolerance;
        std::vector<double> a, b, c, d;
        const char *message;
        const char *input = nullptr;    /* the input's value as each step sees it, when given */
        std::vector<double> seen = {};
    } rows[] = {
        /* x = [amplifier, motor velocity state, motor position state], u = error, y = position:
        ** amp' = -10 amp + 2 u;  m1' = -m1 + 10 amp;  m2' = m1;  y = m2. */
        {"servo", "servo.json", 0.0, 1e-8, {-10, 0, 0, 10, -1, 0, 0, 1, 0}, {2, 0, 0}, {0, 0, 1}, {0}, nullptr,
         "err.out", {1.05, 0.95, 1.0}},
        /* x' = u * u with both factors perturbed by 0.25: ((2.25)^2 - (1.75)^2) / 0.5 = 4 */
        {"diagram perturbation", R"({"perturbation": 0.25,
            "blocks": [{"id": "src", "type": "constant", "value": 2}, {"id": "x", "type": "integrator"},
                       {"id": "sq", "type": "product"}],
            "wires": [["src", "sq.1"], ["src", "sq.2"], ["sq", "x"]],
            "selection": ["sq", "x"], "input": "sq.1", "output": "x.out"})",
         0.0, 1e-12, {0}, {4}, {1}, {0}, nullptr, "src.out", {2.25, 1.75, 2.0}},
        /* theta'' = u - 0.5 theta' - 9.81 sin(theta): A = [[0, 1], [-9.81, -0.5]] at theta = 0 (at pi,
        ** inverted, the command line's). */
        {"pendulum hanging", "pendulum_hanging.json", 0.0, 1e-6, {0, 1, -9.81, -0.5}, {0, 1}, {1, 0}, {0}, nullptr},
        /* Controller (0.5 z - 0.4)/(z - 1): c+ = c + e, v = 0.1 c + 0.5 e; plant p+ = 0.9048 p + v,
        ** y = 0.09516 p.  Both sampled at 0.1 s. */
        {"sampled loop", "sampled_loop.json", 0.1, 1e-8, {1, 0, 0.1, pole}, {1, 0.5}, {0, 1 - pole}, {0}, nullptr},
        /* lead (s + 2)/(s + 1): x' = -x + u, y = x + u */
        {"direct feedthrough", lead, 0.0, 1e-8, {-1}, {1}, {1}, {1}, nullptr},
        /* 3/2 as a transfer function of degree 0; C, 1 by 0, reads as a vector of one element,
        ** which the result file shows: 0, not the previous row's 1. */
        {"no states", R"({"blocks": [{"id": "src", "type": "constant", "value": 0.5},
            {"id": "flat", "type": "transferFunction", "num": [3], "den": [2]}],
            "wires": [["src", "flat"]], "input": "flat.in", "output": "flat.out", "selection": ["flat"]})",
         0.0, 1e-8, {}, {}, {0}, {1.5}, nullptr},
        {"matrix input on its first element",
         R"({"blocks": [{"id": "src", "type": "constant", "value": 1, "dataType": "matrix"},
            {"id": "x", "type": "transferFunction", "num": [3], "den": [1, 2]}],
            "wires": [["src", "x"]], "selection": ["x"], "input": "x.in", "output": "x.out"})",
         0.0, 1e-8, {-2}, {1}, {3}, {0},
         "[Tervan Debug] Warning, linearizing with respect to the first matrix element only."},
        /* x'' = g - c i^2 / x^2 at x = 0.01, i = 1 (c = g x^2 / i^2):
        ** d/dx = 2 c i^2 / x^3 = 1962, d/di = -2 c i / x^2 = -19.62 */
        {"magnetic levitation", "maglev.json", 0.0, 0.05, {0, 1, 1962, 0}, {0, -19.62}, {1, 0}, {0}, nullptr},
        /* a sampled block after a continuous first block: period 0, and on it goes with
        ** z+ = 0.5 z + 2 u, y = z */
        {"differing sampling", R"({"blocks": [{"id": "src", "type": "constant", "value": 1},
            {"id": "k", "type": "gain", "gain": 2},
            {"id": "z", "type": "discreteTransferFunction", "num": [1], "den": [1, -0.5], "samplePeriod": 0.1},
            {"id": "scope", "type": "plot"}],
            "wires": [["src", "k"], ["k", "z"], ["z", "scope"]], "selection": ["k", "z"]})",
         0.0, 1e-8, {0.5}, {2}, {1}, {0},
         "[Tervan Debug] Attempt to analyze discrete subsystem with differing sampling rates"},
        /* the delay's sample is held: plant' = -plant + u, and the output after it does not move */
        {"unit delay", "unit_delay.json", 0.0, 1e-8, {-1}, {1}, {0}, {0},
         "[Tervan Debug] Praxa can't handle unit delay"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        load(row.diagram);
        platform::clearTranscript();
        std::vector<double> before = hostapp::diagramValues(), seen;
        if (row.input) {
            double *input = &hostapp::diagramPoint(row.input)->signal->value.scalar;
            hostapp::setSimulationStepObserver([&seen, input] { seen.push_back(*input); });
        }
        double period = -1;
        ASSERT_EQ(linearize(&period), 1);
        EXPECT_EQ(seen, row.seen);
        EXPECT_EQ(period, row.period);
        uint32_t n = (uint32_t)row.b.size();
        expectMatrix(stateSpaceModel.A, n, n, row.a, row.tolerance);
        expectMatrix(stateSpaceModel.B, n, 1, row.b, row.tolerance);
        expectMatrix(stateSpaceModel.C, 1, n, row.c, row.tolerance);
        if (n == 0) {
            EXPECT_EQ(stateSpaceModel.C->data[0], row.c[0]);
        }
        expectMatrix(stateSpaceModel.D, 1, 1, row.d, row.tolerance);
        EXPECT_EQ(platform::transcript(),
                  row.message ? std::vector<std::string>{row.message} : std::vector<std::string>{});
        EXPECT_EQ(hostapp::diagramValues(), before);
    }
}

/* The servo without its reference points: the first visited ones are taken and highlighted,
** the candidates' marks cleared, and the next run keeps them.  A run that then stops (the
** source is selected: the output is found and highlighted, no input) says why and keeps the
** period and the servo's model; a selection without states is the dialog's to check. */
TEST_F(Linearizer, PointsFoundAreKeptAndAStoppedRunKeepsTheModel)
{
    load("servo.json", false);
    for (int run = 0; run < 2; run++) {
        ASSERT_EQ(linearize(nullptr), 1);
        ASSERT_EQ(outputRefList.count, 1u);
        ASSERT_EQ(inputRefList.count, 1u);
        EXPECT_EQ(outputRefList.items[0], hostapp::diagramPoint("motor.out"));
        EXPECT_EQ(inputRefList.items[0], hostapp::diagramPoint("ctrl.1"));
    }
    EXPECT_TRUE(highlighted("motor.out"));
    EXPECT_TRUE(highlighted("ctrl.in"));
    for (const char *name : {"ctrl", "amp", "motor"})
        EXPECT_FALSE(hostapp::diagramBlock(name)->flags & BLOCK_FLAG_CANDIDATE_MARK) << name;

    load(R"({"blocks": [{"id": "src", "type": "step", "value": 1}, {"id": "x", "type": "integrator"},
        {"id": "scope", "type": "plot"}], "wires": [["src", "x"], ["x", "scope"]], "selection": ["src", "x"]})");
    platform::clearTranscript();
    double period = -7;
    EXPECT_EQ(linearize(&period), 0);
    EXPECT_EQ(period, -7);
    EXPECT_EQ(platform::transcript(), std::vector<std::string>{"[Tervan] No input reference block."});
    EXPECT_TRUE(highlighted("x.out"));
    expectMatrix(stateSpaceModel.A, 3, 3, {-10, 0, 0, 10, -1, 0, 0, 1, 0});
}

}
