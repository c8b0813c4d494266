/*
** tests/analysis/report_command_test.cpp: praxa DIAGRAM report [--json] on the bundled
** servo (L = 20/(s(s+1)(s+10)): phase crossover sqrt 10, where |L| = 2/11) and on a
** selection without states.
*/
#include <cmath>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support.h"

using namespace testing_support;

TEST(ReportCommand, ServoAsJson)
{
    TempDir dir;
    RunResult run = runPraxaIn(dir, "{examples}servo.json report --json");
    ASSERT_EQ(run.status, 0) << run.err;
    nlohmann::json report = nlohmann::json::parse(run.out);
    /* The keys of the object at a pointer, in order (nlohmann keeps objects sorted). */
    auto keys = [&report](const std::string &pointer) {
        std::string text;
        for (const auto &item : report.at(nlohmann::json::json_pointer(pointer)).items())
            text += item.key() + " ";
        return text;
    };
    EXPECT_EQ(keys(""), "closedLoop margins model step transferFunction ");
    EXPECT_EQ(keys("/model"), "a b c d samplePeriod ");
    EXPECT_EQ(keys("/transferFunction"), "denominator gain numerator poles zeros ");
    EXPECT_EQ(keys("/margins"), "delayMargin gainCrossoverFrequency gainCrossovers gainMargin gainMarginDb "
                                "phaseCrossoverFrequency phaseCrossovers phaseMargin ");
    EXPECT_EQ(keys("/margins/gainCrossovers/0"), "frequency phaseMargin ");
    EXPECT_EQ(keys("/margins/phaseCrossovers/0"), "frequency gainMargin ");
    EXPECT_EQ(keys("/closedLoop"), "bandwidth damping naturalFrequency peakSensitivity poles stable ");
    EXPECT_EQ(keys("/step"), "finalValue overshootPercent peakTime riseTime settlingTime ");

    EXPECT_NEAR(report["margins"]["phaseCrossoverFrequency"].get<double>(), std::sqrt(10.0), 1e-9 * std::sqrt(10.0));
    EXPECT_NEAR(report["margins"]["gainMargin"].get<double>(), 5.5, 1e-9 * 5.5);
    EXPECT_NEAR(report["step"]["finalValue"].get<double>(), 1.0, 1e-12);
    EXPECT_EQ(report["model"]["samplePeriod"], 0.0);
    EXPECT_EQ(report["closedLoop"]["stable"], true);
}

TEST(ReportCommand, SelectionWithoutStatesIsRefusedWithThePluginsMessage)
{
    expectSession({"gains only", {{"gains.json", R"({"blocks": [{"id": "src", "type": "constant", "value": 1},
        {"id": "g", "type": "gain", "gain": 3}], "wires": [["src", "g"]], "selection": ["g"],
        "input": "g.in", "output": "g.out"})"}}, "{dir}/gains.json report", 1,
                   {"[Tervan] No blocks with state in selection"},
                   "praxa: command line: the selection could not be linearized (the transcript says why); pick other "
                   "points or blocks\n"});
}
