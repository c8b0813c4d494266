/*
** tests/freq/bode_cli_test.cpp: the bode command of the praxa executable on the servo
** example: the margins of its open loop 20 / (s (s + 1) (s + 10)) on the default grid,
** derived here by hand, and the two plot files.
*/
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>

#include "support.h"

using namespace testing_support;

namespace {

const double PI = 3.141592653589793;

double servoMagnitude(double w) { return 20.0 / (w * std::sqrt(1 + w * w) * std::sqrt(100 + w * w)); }
double servoPhase(double w) { return -PI / 2 - std::atan(w) - std::atan(w / 10); }
double grid(int k) { return std::pow(10.0, -1.0 + (k - 1) * 3.0 / 49.0); }

/* The last point before a grid step that meets the level (as the dialog reports it). */
int crossover(double (*f)(double), double level)
{
    int found = -1;
    for (int k = 2; k <= 50; k++) {
        double a = f(grid(k - 1)), b = f(grid(k));
        if ((a > level && b <= level) || a == level || (a < level && b >= level))
            found = k - 1;
    }
    return found;
}

/* The number in `  edit ID "..."` of the printed transcript. */
double editValue(const std::string &out, int id)
{
    std::string prefix = "  edit " + std::to_string(id) + " \"";
    size_t at = out.find(prefix);
    if (at == std::string::npos)
        return NAN;
    return std::atof(out.c_str() + at + prefix.size());
}

TEST(BodeCommand, ServoMarginsAndPlotFiles)
{
    TempDir dir;
    RunResult run = runPraxa("--settings " + dir.file("tervan.ini") + " --out " + dir.path + " " +
                             examplePath("servo.json") + " bode");
    ASSERT_EQ(run.status, 0) << run.err << run.out;
    EXPECT_EQ(run.err, "");

    int phaseCrossover = crossover(servoPhase, -PI), gainCrossover = crossover(servoMagnitude, 1.0);
    ASSERT_EQ(phaseCrossover, 25);      /* the true one is at sqrt(10) = 3.162 */
    ASSERT_EQ(gainCrossover, 18);
    double w = grid(gainCrossover);
    EXPECT_NEAR(editValue(run.out, 1032), grid(phaseCrossover), 1e-5);
    EXPECT_NEAR(editValue(run.out, 1033), servoMagnitude(grid(phaseCrossover)), 1e-6);
    EXPECT_NEAR(editValue(run.out, 1034), w, 1e-5);
    EXPECT_NEAR(editValue(run.out, 105), (servoPhase(w) + PI) * 180 / PI, 1e-4);
    EXPECT_NE(run.out.find("  edit 1032 \"2.94705\" (disabled)\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("  edit 105 \"36.0425\" (disabled)\n"), std::string::npos) << run.out;

    /* The dialog comes first, then the magnitude and the phase plot are shown. */
    size_t dialog = run.out.find("[dialog] Phase and Gain Margins\n");
    size_t magnitude = run.out.find("[plot] Bode-Magnitude.svg\n");
    size_t phase = run.out.find("[plot] Bode-Phase.svg\n");
    ASSERT_NE(dialog, std::string::npos) << run.out;
    EXPECT_LT(dialog, magnitude);
    EXPECT_LT(magnitude, phase);
    EXPECT_NE(phase, std::string::npos);

    std::string phaseSvg = readFile(dir.file("Bode-Phase.svg"));
    /* The phase runs from -96 to -264 degrees: its axis spans -280 ... -80. */
    EXPECT_NE(phaseSvg.find(">-280</text>"), std::string::npos);
    EXPECT_NE(phaseSvg.find(">-80</text>"), std::string::npos);
}

}
