/*
** tests/linearize/block_library_test.cpp: the nonlinear and switching blocks linearized
** at their operating point against hand-derived Jacobians, and the refusals of badly
** given blocks.
*/
#include "fixture.h"

#include <cmath>

namespace {

class BlockLibrary : public DiagramTest {};

/* The block under test reads integrators x1..xN held at the operating point (numbers of at
** most 6 decimals, which std::to_string writes exactly), so the model's C row is the block's
** Jacobian: dy/du1 ... dy/duN. */
std::string jacobianDiagram(const std::string &block, const std::vector<double> &at)
{
    std::string blocks = "{\"id\": \"src\", \"type\": \"constant\", \"value\": 0}, " + block +
                         ", {\"id\": \"scope\", \"type\": \"plot\"}";
    std::string wires = "[\"f\", \"scope\"]", selection = "\"f\"";
    for (size_t i = 0; i < at.size(); ++i) {
        std::string x = "x" + std::to_string(i + 1);
        blocks += ", {\"id\": \"" + x + "\", \"type\": \"integrator\", \"initial\": " + std::to_string(at[i]) + "}";
        wires += ", [\"src\", \"" + x + "\"], [\"" + x + "\", \"f." + std::to_string(i + 1) + "\"]";
        selection += ", \"" + x + "\"";
    }
    return "{\"blocks\": [" + blocks + "], \"wires\": [" + wires + "], \"selection\": [" + selection +
           "], \"input\": \"x1.in\", \"output\": \"f.out\"}";
}

TEST_F(BlockLibrary, EachBlockLinearizesToItsHandJacobian)
{
    const double tanhHalf = std::tanh(0.5);
    const struct {
        const char *block;
        std::vector<double> at, jacobian;
    } rows[] = {
        {R"J({"id": "f", "type": "divide"})J", {3, 2}, {1.0 / 2, -3.0 / 4}},
        {R"J({"id": "f", "type": "exp"})J", {0.5}, {std::exp(0.5)}},
        {R"J({"id": "f", "type": "sqrt"})J", {4}, {0.25}},
        {R"J({"id": "f", "type": "power", "exponent": 3})J", {2}, {12}},
        {R"J({"id": "f", "type": "tanh"})J", {0.5}, {1 - tanhHalf * tanhHalf}},
        {R"J({"id": "f", "type": "atan2"})J", {1, 2}, {2.0 / 5, -1.0 / 5}},
        {R"J({"id": "f", "type": "deadZone", "lower": -1, "upper": 1})J", {2}, {1}},
        {R"J({"id": "f", "type": "deadZone", "lower": -1, "upper": 1})J", {0.5}, {0}},
        {R"J({"id": "f", "type": "lookup", "x": [0, 1, 3], "y": [0, 2, 3]})J", {2}, {0.5}},
        {R"J({"id": "f", "type": "lookup", "x": [0, 1, 3], "y": [0, 2, 3]})J", {0.5}, {2}},
        {R"J({"id": "f", "type": "lookup", "x": [0, 1, 3], "y": [0, 2, 3]})J", {5}, {0}},
        {R"J({"id": "f", "type": "min", "inputs": 3})J", {1, 3, 2}, {1, 0, 0}},
        {R"J({"id": "f", "type": "max"})J", {1, 3}, {0, 1}},
        {R"J({"id": "f", "type": "switch", "threshold": 0.5})J", {5, 1, 7}, {1, 0, 0}},
        {R"J({"id": "f", "type": "switch", "threshold": 0.5})J", {5, -1, 7}, {0, 0, 1}},
        /* k u1 / (1 + u2^2): k / (1 + u2^2) and -2 k u1 u2 / (1 + u2^2)^2 */
        {R"J({"id": "f", "type": "expression", "inputs": 2, "expr": "k*u1/(1 + u2^2)", "parameters": {"k": 2.5}})J",
         {2, 1}, {1.25, -2.5}},
        {R"J({"id": "f", "type": "expression", "expr": "sin(u1) + _pi"})J", {0.3}, {std::cos(0.3)}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(std::string(row.block) + " at u1 = " + std::to_string(row.at[0]));
        load(jacobianDiagram(row.block, row.at));
        ASSERT_EQ(linearize(nullptr), 1) << platform::transcriptText();
        expectMatrix(stateSpaceModel.C, 1, (uint32_t)row.at.size(), row.jacobian, 1e-7);
        expectMatrix(stateSpaceModel.D, 1, 1, {0});
    }
}

TEST_F(BlockLibrary, BadlyGivenBlocksAreRefusedSayingWhatToChange)
{
    const struct {
        const char *block;
        const char *message;
    } rows[] = {
        {R"J({"id": "f", "type": "expression", "inputs": 2, "expr": "u3 + 1"})J",
         "block 'f': the expression 'u3 + 1' does not parse: Unexpected token \"u3\" found at position 0. "
         "(the inputs are u1 ... u2); correct the formula"},
        {R"J({"id": "f", "type": "expression", "expr": "k*u1 +", "parameters": {"k": 1}})J",
         "block 'f': the expression 'k*u1 +' does not parse: Unexpected end of expression at position 7 "
         "(the input is u1; the parameters are k); correct the formula"},
        {R"J({"id": "f", "type": "expression", "expr": "u1", "parameters": {"u1": 1}})J",
         "block 'f': the parameter name 'u1' is kept for inputs; rename the parameter"},
        {R"J({"id": "f", "type": "expression", "expr": "u1", "parameters": {"k": "two"}})J",
         "block 'f': parameter 'k' must be a number; write one number, such as 2.5"},
        {R"J({"id": "f", "type": "lookup", "x": [0, 2, 1], "y": [0, 1, 2]})J",
         "block 'f': the breakpoints 'x' must increase strictly; sort them and drop repeats"},
        {R"J({"id": "f", "type": "lookup", "x": [0, 1], "y": [0]})J",
         "block 'f': 'x' and 'y' must hold the same number of values, at least 2"},
        {R"J({"id": "f", "type": "sqrt"})J",
         "block 'f': its output is NaN at time 0; change the initial values or parameters that feed it"},
        {R"J({"id": "f", "type": "compensator", "zeros": [[-1, 2]], "poles": [-3, -4]})J",
         "block 'f': the zero (-1,2) has no conjugate (-1,-2); add it so that the compensator stays real"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.block);
        std::string text = std::string("{\"blocks\": [{\"id\": \"src\", \"type\": \"constant\", \"value\": -1}, ") +
                           row.block + "], \"wires\": [[\"src\", \"f.1\"]]}";
        std::string error;
        EXPECT_FALSE(hostapp::loadDiagramText(text, "t.json", error));
        EXPECT_EQ(error, std::string("t.json:1: ") + row.message);
    }
}

}
