/*
** A diagram file the loader refuses: the message names what is wrong, where, and what to
** write instead (the cases no other test covers).
*/
#include <gtest/gtest.h>

#include "hostapp/diagram.h"

namespace {

TEST(DiagramRefusalRemedies, EachRefusalSaysWhatToWriteInstead)
{
    const struct {
        const char *text, *message;
    } rows[] = {
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
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text);
        std::string error;
        EXPECT_FALSE(hostapp::loadDiagramText(row.text, "bad.json", error));
        EXPECT_EQ(error, row.message);
    }
    hostapp::clearDiagram();
}

}
