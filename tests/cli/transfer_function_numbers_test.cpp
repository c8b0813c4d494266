/*
** tests/cli/transfer_function_numbers_test.cpp: `praxa D tf` on models whose zeros and
** gain are known by hand: a rounding residue in c b must not count as a feed-through,
** and the gain must not depend on the number of poles.
*/
#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

std::string plantDiagram(const std::string &plant)
{
    return R"({"blocks": [{"id": "u", "type": "step", "value": 0}, )" + plant +
           R"(, {"id": "y", "type": "plot"}], "wires": [["u", "p"], ["p", "y"]],
              "selection": ["p"], "input": "p.in", "output": "p.out"})";
}

}

TEST(TransferFunctionNumbers, ZerosAndGainOfHandDerivedModels)
{
    struct Row {
        const char *what;
        std::string plant;
        const char *gain;
        const char *zeros;
    };
    const Row rows[] = {
        /* (s + 2)/((s + 1)(s + 3)(s + 4)(s + 5)) in controllable form: c b = 0 exactly. */
        {"four states, one zero",
         R"({"id": "p", "type": "stateSpace", "a": [[0, 1, 0, 0], [0, 0, 1, 0], [0, 0, 0, 1],
             [-60, -107, -59, -13]], "b": [0, 0, 0, 1], "c": [2, 1, 0, 0]})",
         "1", "\"(-2,0)\""},
        /* 5 (s - 0.2)/(s (s + 1)^9): ten poles */
        {"ten poles",
         R"({"id": "p", "type": "transferFunction", "num": [5, -1],
             "den": [1, 9, 36, 84, 126, 126, 84, 36, 9, 1, 0]})",
         "5", "\"(.2,0)\""},
        /* the same scaled by 1e-10: a tiny |G| keeps its sign and size */
        {"tiny gain",
         R"({"id": "p", "type": "transferFunction", "num": [-5e-10, 1e-10],
             "den": [1, 9, 36, 84, 126, 126, 84, 36, 9, 1, 0]})",
         "-5e-010", "\"(.2,0)\""},
    };
    TempDir dir;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        writeFile(dir.file("d.json"), plantDiagram(row.plant));
        RunResult run = runPraxa("--settings " + dir.file("t.ini") + " " + dir.file("d.json") + " tf");
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_NE(run.out.find(std::string("static -1 \"Gain\"\n  static 109 \"") + row.gain + "\"\n"),
                  std::string::npos) << run.out;
        EXPECT_NE(run.out.find(std::string("listbox 107: ") + row.zeros + "\n"), std::string::npos) << run.out;
    }
}
