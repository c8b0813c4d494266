/*
** tests/cli/plot_extent_cli_test.cpp: plots of loops whose response or locus runs to
** infinity keep axes a person can read: the automatic root locus of straight branches,
** the Nyquist curve of an oscillator in Hertz, the sampled loop with an integrator.
** The axes are read from the tick labels of the SVG file that praxa writes.
*/
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <regex>
#include <string>

#include "support.h"

using namespace testing_support;

namespace {

std::string plantDiagram(const std::string &plant)
{
    return R"({"blocks": [{"id": "u", "type": "step", "value": 0}, )" + plant +
           R"(, {"id": "y", "type": "plot"}], "wires": [["u", "p"], ["p", "y"]],
              "selection": ["p"], "input": "p.in", "output": "p.out"})";
}

/* The smallest and largest tick label of one axis ("x" or "y") of an SVG plot. */
std::pair<double, double> axisRange(const std::string &svg, const std::string &axis)
{
    std::regex tick("class=\"" + axis + "-tick\"[^>]*>([^<]*)<");
    double low = INFINITY, high = -INFINITY;
    for (auto it = std::sregex_iterator(svg.begin(), svg.end(), tick); it != std::sregex_iterator(); ++it) {
        double v = std::stod((*it)[1]);
        low = std::min(low, v);
        high = std::max(high, v);
    }
    return {low, high};
}

}

TEST(PlotExtent, CurvesThatRunToInfinityKeepReadableAxes)
{
    struct Row {
        const char *what;
        std::string diagram;        /* a plant, or an example's name */
        std::string preferences;    /* options of the preferences command, run first */
        std::string command;
        double largest;             /* bound on every tick of both axes */
        double widestBelow;         /* the x axis spans at least this */
    };
    const Row rows[] = {
        /* branches straight up from -1 once they meet: reached K = 1.6e9, Im 4e4 */
        {"root locus of 1/(s^2 + 2s + 2)",
         plantDiagram(R"({"id": "p", "type": "transferFunction", "num": [1], "den": [1, 2, 2]})"), "", "rlocus", 20.0, 0.1},
        /* one branch along the negative real axis: ran to -5.3e8 */
        {"root locus of 1/s", plantDiagram(R"({"id": "p", "type": "integrator"})"), "", "rlocus", 20.0, 1.0},
        /* a circle of radius about R = 10, not a flat line from -14 to 46 */
        {"Nyquist curve of 1/(s^2 + 1) in Hertz",
         plantDiagram(R"({"id": "p", "type": "transferFunction", "num": [1], "den": [1, 0, 1]})"),
         "--frequency-unit hertz", "nyquist", 20.0, 10.0},
        /* the last grid point sits on the integrator's pole z = 1: the y axis ran to 9e13 */
        {"sampled loop", "sampled_loop.json", "", "nyquist", 20.0, 0.5},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        TempDir dir;
        std::string diagram = row.diagram;
        if (diagram.front() == '{') {
            writeFile(dir.file("d.json"), diagram);
            diagram = dir.file("d.json");
        } else {
            diagram = examplePath(diagram);
        }
        std::string common = "--settings " + dir.file("t.ini") + " --out " + dir.path + " " + diagram + " ";
        if (!row.preferences.empty()) {
            ASSERT_EQ(runPraxa(common + "preferences " + row.preferences).status, 0);
        }
        RunResult run = runPraxa(common + row.command);
        ASSERT_EQ(run.status, 0) << run.err;
        /* the plot file, as the transcript names it */
        size_t named = run.out.find("[plot] ");
        ASSERT_NE(named, std::string::npos) << run.out;
        std::string plot = run.out.substr(named + 7, run.out.find('\n', named) - named - 7);
        std::string svg = readFile(dir.file(plot));
        auto [xLow, xHigh] = axisRange(svg, "x");
        auto [yLow, yHigh] = axisRange(svg, "y");
        for (double tick : {xLow, xHigh, yLow, yHigh})
            EXPECT_LE(std::fabs(tick), row.largest) << svg.substr(0, 200);
        EXPECT_GE(xHigh - xLow, row.widestBelow);
    }
}
