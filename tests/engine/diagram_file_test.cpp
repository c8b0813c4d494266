/*
** tests/engine/diagram_file_test.cpp: loading diagram files: a bad file is refused with a
** message naming the block, wire or entry and its line, and leaves the previous diagram.
*/
#include <gtest/gtest.h>

#include "hostapp/diagram.h"
#include "support.h"

namespace {

std::string refusal(const std::string &text)
{
    std::string error;
    EXPECT_FALSE(hostapp::loadDiagramText(text, "bad.json", error));
    return error;
}

/* PluginTest's host reset clears the diagram after each test. */
using DiagramFile = testing_support::PluginTest;

/* A bad file is refused with a message naming the block, wire or entry and its line. */
TEST_F(DiagramFile, BadFilesAreRefusedNamingWhatAndWhere)
{
    const std::string wires = R"({"blocks": [
        {"id": "ref", "type": "step", "value": 1},
        {"id": "err", "type": "sum", "signs": "+-"}],
      "wires": [
        ["ref", "err.1"],
        )";
    const std::string integrator = R"({"blocks": [{"id": "src", "type": "constant", "value": 1},
        {"id": "x", "type": "integrator"}], "wires": [["src", "x"]],
        )";
    const std::pair<std::string, std::string> rows[] = {
        {"{\n  \"blocks\": [\n    {\"id\": \"a\" \"type\": \"gain\"}\n  ]\n}",
         "bad.json:3: not valid JSON: syntax error while parsing object - unexpected string literal; "
         "expected '}'"},
        {"",
         "bad.json:1: not valid JSON: syntax error while parsing value - unexpected end of "
         "input; expected '[', '{', or a literal"},
        {"[1, 2]",
         "bad.json:1: the file is not one JSON object; write the diagram as one object with "
         "\"blocks\" and \"wires\" (see examples/README.md)"},
        {R"({
  "blocks": [
    {"id": "ref", "type": "step", "value": 1},
    {"id": "plant", "type": "tranferFunction", "num": [1], "den": [1, 1]}
  ]
})",
         "bad.json:4: block 'plant': unknown block type 'tranferFunction'; use one of the block types listed in "
         "examples/README.md"},
        {R"({"blocks": [
        {"id": "ctrl", "type": "gain"}]})",
         "bad.json:2: block 'ctrl': missing parameter 'gain'; add it as \"gain\": NUMBER"},
        {R"({"blocks": [
        {"id": "ctrl", "type": "gain", "gian": 2, "gain": 2}]})",
         "bad.json:2: block 'ctrl': a gain block has no parameter 'gian'; remove it or correct its name "
         "(examples/README.md lists each type's parameters)"},
        {R"({"blocks": [
        {"id": "ctrl", "type": "gain",
         "gain": "two"}]})",
         "bad.json:3: block 'ctrl': parameter 'gain' must be a number; write one number, such as 2.5"},
        {R"({"blocks": [{"type": "gain", "gain": 1}]})",
         "bad.json:1: block #1 has no \"id\"; give each block an \"id\" text"},
        {R"({"blocks": [{"id": "a.b", "type": "gain", "gain": 1}]})",
         "bad.json:1: block #1: the id 'a.b' must be a nonempty name without '.' or '/'; rename the block"},
        {R"({"blocks": [{"id": "k\u0000x", "type": "gain", "gain": 1}]})",
         "bad.json:1: block #1: the id holds a control character; rename the block with printable characters"},
        {wires + R"(["ref", "err.3"]]})",
         "bad.json:6: wire 'ref' -> 'err.3': block 'err' has no input 3; pick one from 1 to 2"},
        {wires + R"(["ref", "erx.2"]]})",
         "bad.json:6: wire 'ref' -> 'erx.2': no block 'erx'; name a block of the same level by its id"},
        {wires + R"(["err.2", "err.2"]]})",
         "bad.json:6: wire 'err.2' -> 'err.2': 'err.2' is an input; a wire starts at an output"},
        {wires + R"(["ref", "err.1"]]})",
         "bad.json:6: wire 'ref' -> 'err.1': input 'err.1' already has a wire; each input takes one wire (join "
         "signals with a sum block)"},
        {wires + R"(["ref", "err.out2"]]})",
         "bad.json:6: wire 'ref' -> 'err.out2': block 'err' has no output 2; it has only output 1"},
        {wires + R"(["ref", "err.x"]]})",
         "bad.json:6: wire 'ref' -> 'err.x': 'err.x' names no port (ports are out, outN, in, inN or N)"},
        {wires + R"("ref"]})",
         "bad.json:6: wire #2 must be a pair [\"from\", \"to\"]"},
        {R"({"blocks": [
        {"id": "ref", "type": "step", "value": 1},
        {"id": "err", "type": "sum", "signs": "+-"}],
      "wires": [["ref", "err.1"]]})",
         "bad.json:3: input 'err.2' is not connected; wire a signal to it (a constant 0 if it is not used)"},
        {R"({"blocks": [
        {"id": "c", "type": "compound",
         "blocks": [{"id": "k", "type": "gain", "gain": 1}],
         "inputs": ["k"], "outputs": ["k"]}]})",
         "bad.json:2: input 'c.1' is not connected; wire a signal to it (a constant 0 if it is not used)"},
        {R"({"blocks": [
        {"id": "ref", "type": "step", "value": 1},
        {"id": "err", "type": "sum", "signs": "+-"},
        {"id": "k", "type": "gain", "gain": 2},
        {"id": "lead", "type": "transferFunction", "num": [1, 1], "den": [1, 2]},
        {"id": "x", "type": "integrator"}],
      "wires": [["ref", "err.1"], ["err", "k"], ["k", "lead"], ["lead", "err.2"], ["lead", "x"]]})",
         "bad.json:3: algebraic loop: 'err' -> 'k' -> 'lead' -> 'err' (each block's output depends on its "
         "input at once; put a block with state in the loop)"},
        {R"({"blocks": [
        {"id": "src", "type": "constant", "value": 1},
        {"id": "plant", "type": "transferFunction", "num": [1, 0, 0], "den": [1, 1]}],
      "wires": [["src", "plant"]]})",
         "bad.json:3: block 'plant': improper transfer function: numerator degree 2 exceeds denominator degree 1; "
         "make the denominator's degree at least the numerator's"},
        {R"({"blocks": [
        {"id": "plant", "type": "discreteTransferFunction", "num": [1], "den": [0, 1]}]})",
         "bad.json:2: block 'plant': the denominator's leading coefficient is 0; drop the leading zeros"},
        {integrator + R"("selection": ["x", "y"]})",
         "bad.json:3: selection: no block 'y' at the top level of the diagram; list the ids of top-level blocks"},
        {integrator + R"("selection": ["x", "x"]})",
         "bad.json:3: selection: block 'x' is named twice; list each block once"},
        {integrator + R"("input": "x.2"})",
         "bad.json:3: input point: block 'x' has no input 2; it has only input 1"},
        {integrator + R"("initialStates": {"src": 1}})",
         "bad.json:3: block 'src' has no state to set; leave out its initial state"},
        {integrator + R"("initialStates": {"x": [1, 2]}})",
         "bad.json:3: block 'x': the initial state must hold 1 number(s)"},
        {integrator + R"("inputs": "x.2"})",
         "bad.json:3: unknown entry 'inputs'; remove it or correct its name (the entries are blocks, "
         "wires, selection, input, output, samplePeriod, perturbation, "
         "initialStates, title and comment)"},
        {R"({"blocks": [], "blocks": []})", "bad.json:1: 'blocks' is given twice in one object; keep one of them"},
        {R"({"wires": []})", "bad.json:1: the diagram has no \"blocks\"; add the list of its blocks as \"blocks\""},
        {R"({"blocks": [{"id": "k", "type": "constant", "value": 1}], "perturbation": 0})",
         "bad.json:1: the diagram: 'perturbation' must be positive; give a step such as 0.05"},
        {R"({"blocks": [{"id": "k", "type": "constant", "value": 1}], "initialStates": {"x": 1}})",
         "bad.json:1: initialStates: no block 'x'; name a block by its path, such as \"outer/inner\""},
        {R"({"blocks": [{"id": "k", "type": "gain", "gain": 1}, {"id": "k", "type": "gain", "gain": 1}]})",
         "bad.json:1: block 'k': the id is used twice; give each block of one level its own id"},
        {R"({"blocks": [{"id": "k"}]})",
         "bad.json:1: block 'k' has no \"type\"; give each block a \"type\" (see examples/README.md for the block types)"},
        {R"({"blocks": [{"id": "s", "type": "saturation", "lower": 1, "upper": 0}]})",
         "bad.json:1: block 's': 'lower' is above 'upper'; give the limits as lower <= upper"},
        {R"({"blocks": [{"id": "c", "type": "compound", "blocks": []}]})",
         "bad.json:1: compound block 'c' holds no blocks; put at least one block into it"},
        {R"({"blocks": [{"id": "c", "type": "compound", "blocks": [{"id": "k", "type": "gain", "gain": 1}],
             "inputs": ["k", "k"]}]})",
         "bad.json:2: compound block 'c': input 'c/k.1' is fed twice; name each inner input in one entry only"},
        {R"({"blocks": [{"id": "k", "type": "constant", "value": 1}], "input": 3})",
         "bad.json:1: input: must be a point BLOCK.PORT, such as \"ctrl.in\""},
    };
    for (const auto &[text, message] : rows)
        EXPECT_EQ(refusal(text), message) << text;
}

/* A file that cannot be read or does not parse leaves the previous diagram (the messages of
** unreadable files are the command line's to check). */
TEST_F(DiagramFile, RefusedFileLeavesThePreviousDiagram)
{
    std::string error;
    ASSERT_TRUE(hostapp::loadDiagramFile(testing_support::examplePath("servo.json"), error)) << error;
    EXPECT_FALSE(hostapp::loadDiagramFile("/nonexistent/diagram.json", error));
    refusal("{");
    EXPECT_NE(hostapp::diagramBlock("motor"), nullptr);
}

}

