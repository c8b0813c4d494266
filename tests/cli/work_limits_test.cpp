/*
** tests/cli/work_limits_test.cpp: analyses whose step count times the model's order would
** keep praxa busy for minutes are refused with a message, on a chain of 300 lags.
*/
#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

/* A step driving a chain of n first-order lags, all selected, from the first lag's input
** to the last one's output: a model of n states. */
std::string chainOfLags(int n)
{
    std::string blocks = R"({"id": "src", "type": "step", "value": 1})", wires, selection;
    std::string previous = "src";
    for (int i = 0; i < n; ++i) {
        std::string id = "p" + std::to_string(i);
        blocks += R"(, {"id": ")" + id + R"(", "type": "transferFunction", "num": [1], "den": [1, )" +
                  std::to_string(1 + i) + "]}";
        wires += std::string(i ? ", " : "") + "[\"" + previous + "\", \"" + id + "\"]";
        selection += std::string(i ? ", " : "") + "\"" + id + "\"";
        previous = id;
    }
    return R"({"blocks": [)" + blocks + R"(], "wires": [)" + wires + R"(], "selection": [)" + selection +
           R"(], "input": "p0.in", "output": ")" + previous + R"(.out"})";
}

TEST(WorkLimits, StepsTimesOrderBeyondTheLimitAreRefused)
{
    TempDir dir;
    writeFile(dir.file("chain.json"), chainOfLags(300));
    struct Row {
        std::string script, message;
    } rows[] = {
        {"frequency-range --start 0.1 --stop 10 --steps 1000000\nbode\n",
         "[Tervan] Bode: 1000000 points for 300 states are more than a plot takes (268435456 points times "
         "states); choose fewer steps.\n"},
        {"frequency-range --start 0.1 --stop 10 --steps 1000000\nnyquist\n",
         "[Tervan] Nyquist: 1000000 points for 300 states are more than a plot takes (268435456 points times "
         "states); choose fewer steps.\n"},
        {"rlocus-options --start 0 --stop 10 --steps 1000\nrlocus\n",
         "[Tervan] Root locus: 1000 steps for 300 closed-loop poles are more than a root locus run takes "
         "(17179869184 steps times poles cubed); choose fewer steps.\n"},
    };
    for (const Row &row : rows) {
        writeFile(dir.file("session.txt"), row.script);
        RunResult run = runPraxa("--settings " + dir.file("tervan.ini") + " --out " + dir.path + " --script " +
                                 dir.file("session.txt") + " " + dir.file("chain.json"));
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_NE(run.out.find(row.message), std::string::npos) << run.out;
        EXPECT_EQ(run.out.find("Margins"), std::string::npos) << "nothing computed: " << run.out;
    }
}

}
