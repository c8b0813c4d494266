/*
** tests/analysis/report_command_test.cpp: praxa DIAGRAM report [--json] on the bundled
** servo (L = 20/(s(s+1)(s+10)): phase crossover sqrt 10, where |L| = 2/11) and on a
** selection without states.
*/
#include <cmath>
#include <set>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support.h"

using namespace testing_support;

namespace {

std::set<std::string> keysOf(const nlohmann::json &object)
{
    std::set<std::string> keys;
    for (auto it = object.begin(); it != object.end(); ++it)
        keys.insert(it.key());
    return keys;
}

}

TEST(ReportCommand, ServoAsJson)
{
    TempDir dir;
    RunResult run = runPraxa("--settings " + dir.file("tervan.ini") + " --out " + dir.path + " " +
                             examplePath("servo.json") + " report --json");
    ASSERT_EQ(run.status, 0) << run.err;
    nlohmann::json report = nlohmann::json::parse(run.out);
    using Keys = std::set<std::string>;
    EXPECT_EQ(keysOf(report), (Keys{"model", "transferFunction", "margins", "closedLoop", "step"}));
    EXPECT_EQ(keysOf(report["model"]), (Keys{"a", "b", "c", "d", "samplePeriod"}));
    EXPECT_EQ(keysOf(report["transferFunction"]), (Keys{"gain", "numerator", "denominator", "zeros", "poles"}));
    EXPECT_EQ(keysOf(report["margins"]),
              (Keys{"gainMargin", "gainMarginDb", "phaseCrossoverFrequency", "phaseMargin", "gainCrossoverFrequency",
                    "delayMargin", "gainCrossovers", "phaseCrossovers"}));
    EXPECT_EQ(keysOf(report["margins"]["gainCrossovers"][0]), (Keys{"frequency", "phaseMargin"}));
    EXPECT_EQ(keysOf(report["margins"]["phaseCrossovers"][0]), (Keys{"frequency", "gainMargin"}));
    EXPECT_EQ(keysOf(report["closedLoop"]),
              (Keys{"poles", "stable", "damping", "naturalFrequency", "bandwidth", "peakSensitivity"}));
    EXPECT_EQ(keysOf(report["step"]), (Keys{"finalValue", "overshootPercent", "peakTime", "riseTime", "settlingTime"}));

    EXPECT_NEAR(report["margins"]["phaseCrossoverFrequency"].get<double>(), std::sqrt(10.0), 1e-9 * std::sqrt(10.0));
    EXPECT_NEAR(report["margins"]["gainMargin"].get<double>(), 5.5, 1e-9 * 5.5);
    EXPECT_NEAR(report["step"]["finalValue"].get<double>(), 1.0, 1e-12);
    EXPECT_EQ(report["model"]["samplePeriod"], 0.0);
    EXPECT_EQ(report["closedLoop"]["stable"], true);
}

TEST(ReportCommand, SelectionWithoutStatesIsRefusedWithThePluginsMessage)
{
    TempDir dir;
    writeFile(dir.file("gains.json"), R"({"blocks": [{"id": "src", "type": "constant", "value": 1},
        {"id": "g", "type": "gain", "gain": 3}], "wires": [["src", "g"]], "selection": ["g"],
        "input": "g.in", "output": "g.out"})");
    RunResult run = runPraxa("--settings " + dir.file("tervan.ini") + " --out " + dir.path + " " +
                             dir.file("gains.json") + " report");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.out.find("No blocks with state in selection"), std::string::npos) << run.out;
    EXPECT_EQ(run.err, "praxa: command line: the selection could not be linearized (the transcript says why); pick other "
                       "points or blocks\n");
}
