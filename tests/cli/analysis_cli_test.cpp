/*
** Analyses through the command line on the bundled example diagrams and small plants:
** the Linearize result file and screen output, the transfer function dialogs, reference
** points picked on the command line, step counts beyond what a plot holds, plots whose
** curves run to infinity kept readable (their axes read from the tick labels of the SVG
** file that praxa writes), and what the host adds: the reference points taken, and why
** an analysis has nothing to show.
*/
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "support.h"
#include "support/plugin_plot.h"

using namespace testing_support;

namespace {

std::string plantDiagram(const std::string &plant)
{
    return R"({"blocks": [{"id": "u", "type": "step", "value": 0}, )" + plant +
           R"(, {"id": "y", "type": "plot"}], "wires": [["u", "p"], ["p", "y"]],
              "selection": ["p"], "input": "p.in", "output": "p.out"})";
}

/* 1/(s^n + s^(n-1) + ... + 1): a plant of n states. */
std::string plantOfOrder(int n)
{
    std::string den = "1";
    for (int i = 0; i < n; ++i)
        den += ", 1";
    return plantDiagram(R"({"id": "p", "type": "transferFunction", "num": [1], "den": [)" + den + "]}");
}

TEST(Analyses, ExamplesThroughTheCommandLine)
{
    const std::string tenPoles = R"("den": [1, 9, 36, 84, 126, 126, 84, 36, 9, 1, 0]})";
    const Session sessions[] = {
        {"linearize writes the servo model as a function file", {}, "{examples}servo.json linearize --file servo.m", 0,
         {"[file written] {dir}/servo.m"}, "", {{"servo.m", SERVO_MODEL_FILE}}},
        {"linearize to the screen shows four message boxes", {}, "{examples}pendulum_inverted.json linearize", 0,
         {"[end] System Linearization: 1", "[Tervan] a = [0 1 ;", "    9.81 -.5 ];", "[Tervan] b = [0 ;", "    1 ];",
          "[Tervan] c = [1 0 ];", "[Tervan] d = [0 ];"}},
        {"transfer function of the servo", {}, "{examples}servo.json tf", 0,
         {"[dialog] Transfer Function", "  static -1 \"Gain\"", "  static 109 \"20\"",
          "  listbox 106: \"s^0\t1\t    \t0\" | \"s^1\t0\t    \t10.000000000000002\" | \"s^2\t0\t    \t11\" | "
          "\"s^3\t0\t    \t1\"",
          "  listbox 107:", "  listbox 108: \"(-10,0)\" | \"(-1,0)\" | \"(0,0)\"", "[end] Zeros and Poles: 1"}},
        {"zeros of the PI loop", {}, "{examples}dc_motor_pi.json tf", 0, {"  listbox 107: \"(-2,0)\""}},
        /* The output at the plant instead of after the unit delay: the model now sees the plant. */
        {"output point picked after the diagram", {}, "{examples}unit_delay.json --output plant.out linearize", 0,
         {"[Tervan Debug] Praxa can't handle unit delay", "[Tervan] c = [1 ];"}},
        /* The diagram's own input picked again stays taken (a second click would drop it). */
        {"points picked", {}, "{examples}servo.json --input ctrl.in --output amp.out tf", 0,
         {"[host] reference points: input ctrl.1, output amp.out", "[host] reference points: input ctrl.1, output amp.out",
          "[dialog] Transfer Function"}},
        {"options in any order around the diagram and a script", {{"x.txt", "tf\n"}},
         "--out {dir} {examples}servo.json --script {dir}/x.txt --settings {dir}/s.ini", 0, {"[end] Zeros and Poles: 1"}},
        {"options after the command", {}, "{examples}servo.json tf --settings {dir}/s.ini --out {dir}", 0,
         {"[end] Zeros and Poles: 1"}},
        {"steps beyond what a plot holds are refused, nothing is computed",
         {{"tervan.ini", "[tervan]\nfreqSteps=100000000\n"}}, "{examples}servo.json bode", 0,
         {"[error] Plot Bode-Magnitude1: 100000000 points are more than the 4194304 a plot holds",
          "[error] Plot Bode-Phase1: 100000000 points are more than the 4194304 a plot holds"},
         "", {{"Bode-Phase.svg", nullptr}, {"Bode-Magnitude.svg", nullptr}}},
        {"root locus steps beyond what its plot takes",
         {{"session.txt", "rlocus-options --start 0 --stop 10 --steps 100000000\nrlocus\n"}},
         "--script {dir}/session.txt {examples}servo.json", 0,
         {"[Tervan] Root locus: 100000000 steps are more than the 65536 a root locus plot can take."}},
        /* (s + 2)/((s + 1)(s + 3)(s + 4)(s + 5)) in controllable form: c b = 0 exactly, no feed-through */
        {"four states, one zero",
         {{"d.json", plantDiagram(R"({"id": "p", "type": "stateSpace", "a": [[0, 1, 0, 0], [0, 0, 1, 0],
             [0, 0, 0, 1], [-60, -107, -59, -13]], "b": [0, 0, 0, 1], "c": [2, 1, 0, 0]})")}},
         "{dir}/d.json tf", 0, {"  static -1 \"Gain\"", "  static 109 \"1\"", "  listbox 107: \"(-2,0)\""}},
        /* 5 (s - 0.2)/(s (s + 1)^9): the gain does not depend on the number of poles */
        {"ten poles",
         {{"d.json", plantDiagram(R"({"id": "p", "type": "transferFunction", "num": [5, -1], )" + tenPoles)}},
         "{dir}/d.json tf", 0, {"  static -1 \"Gain\"", "  static 109 \"5\"", "  listbox 107: \"(.2,0)\""}},
        /* the same scaled by 1e-10: a tiny |G| keeps its sign and size */
        {"tiny gain",
         {{"d.json", plantDiagram(R"({"id": "p", "type": "transferFunction", "num": [-5e-10, 1e-10], )" + tenPoles)}},
         "{dir}/d.json tf", 0, {"  static -1 \"Gain\"", "  static 109 \"-5e-010\"", "  listbox 107: \"(.2,0)\""}},
        /* steps times order that would keep praxa busy for minutes */
        {"Bode steps times states", {{"c.json", plantOfOrder(300)},
         {"s.txt", "frequency-range --start 0.1 --stop 10 --steps 1000000\nbode\n"}}, "--script {dir}/s.txt {dir}/c.json", 0,
         {"[Tervan] Bode: 1000000 points for 300 states are more than a plot takes (268435456 points times "
          "states); choose fewer steps."}},
        {"Nyquist steps times states", {{"c.json", plantOfOrder(300)},
         {"s.txt", "frequency-range --start 0.1 --stop 10 --steps 1000000\nnyquist\n"}}, "--script {dir}/s.txt {dir}/c.json", 0,
         {"[Tervan] Nyquist: 1000000 points for 300 states are more than a plot takes (268435456 points times "
          "states); choose fewer steps."}},
        {"root locus steps times poles cubed", {{"c.json", plantOfOrder(300)},
         {"s.txt", "rlocus-options --start 0 --stop 10 --steps 1000\nrlocus\n"}}, "--script {dir}/s.txt {dir}/c.json", 0,
         {"[Tervan] Root locus: 1000 steps for 300 closed-loop poles are more than a root locus run takes "
          "(17179869184 steps times poles cubed); choose fewer steps."}},
    };
    for (const Session &session : sessions)
        expectSession(session);
}

/* What the host adds to an analysis: the reference points taken, and why there is nothing
** to show. */
TEST(AnalysisNotes, PointsTakenAndEmptyAnalysesAreNamed)
{
    const std::string gain = R"({"blocks": [{"id": "src", "type": "constant", "value": 1},
        {"id": "k", "type": "gain", "gain": 3}, {"id": "scope", "type": "plot"}],
        "wires": [["src", "k"], ["k", "scope"]], "selection": ["k"], "input": "k.in", "output": "k.out"})";
    /* A saturation driven past its limit (5 against 1) passes no change to the plant. */
    const std::string saturated = R"({"blocks": [{"id": "src", "type": "constant", "value": 5},
        {"id": "lim", "type": "saturation", "lower": -1, "upper": 1},
        {"id": "plant", "type": "transferFunction", "num": [1], "den": [1, 1]}],
        "wires": [["src", "lim"], ["lim", "plant"]], "selection": ["lim", "plant"],
        "input": "lim.in", "output": "plant.out"})";
    const std::string noStates =
        "[host] nothing to plot: the selection has no states, so from k.1 to k.out it is the constant gain 3; add a "
        "block with state (an integrator or a transfer function) to the selection to see a frequency response or a "
        "root locus";
    const std::string noPath =
        "[host] nothing to show: the input lim.1 does not reach the output plant.out at this operating point (the "
        "transfer function is 0; a saturation past its limit, a dead zone or a switch passes no change); move the "
        "operating point or pick other points";
    /* A loop the input reaches gets no note: the servo without points of its own (the
    ** linearizer's choice is shown), and 5(s - 0.2)/(s (s+1)^9), whose first nonzero Markov
    ** parameter is its ninth. */
    std::string servo = readFile(examplePath("servo.json"));
    servo.replace(servo.find("\"input\": \"ctrl.in\","), 19, "");
    std::vector<Session> sessions = {
        {"servo without points", {{"d.json", servo}}, "{dir}/d.json bode", 0,
         {"[plot] Bode-Phase.svg", "[host] reference points taken: input ctrl.1, output motor.out"}, "", {},
         {"[host] nothing"}},
        {"first Markov parameter the ninth", {{"d.json", plantDiagram(R"({"id": "p", "type": "transferFunction",
            "num": [5, -1], "den": [1, 9, 36, 84, 126, 126, 84, 36, 9, 1, 0]})")}}, "{dir}/d.json bode", 0,
         {"[plot] Bode-Phase.svg"}, "", {}, {"[host] nothing"}},
    };
    for (const char *command : {"bode", "nyquist", "rlocus"}) {
        sessions.push_back({command, {{"d.json", gain}}, std::string("{dir}/d.json ") + command, 0, {noStates}, ""});
        sessions.push_back({command, {{"d.json", saturated}}, std::string("{dir}/d.json ") + command, 0, {noPath}, ""});
    }
    for (const Session &session : sessions)
        expectSession(session);
}

/* Every tick of both axes stays within 20 where the curve ran far out. */
TEST(PlotExtent, CurvesThatRunToInfinityKeepReadableAxes)
{
    struct Row {
        const char *what;
        std::string diagram;
        std::string script;
        double widestBelow;     /* the x axis spans at least this */
    };
    const Row rows[] = {
        /* branches straight up from -1 once they meet: reached K = 1.6e9, Im 4e4 */
        {"root locus of 1/(s^2 + 2s + 2)",
         plantDiagram(R"({"id": "p", "type": "transferFunction", "num": [1], "den": [1, 2, 2]})"), "rlocus", 0.1},
        /* one branch along the negative real axis: ran to -5.3e8 */
        {"root locus of 1/s", plantDiagram(R"({"id": "p", "type": "integrator"})"), "rlocus", 1.0},
        /* a circle of radius about R = 10, not a flat line from -14 to 46 */
        {"Nyquist curve of 1/(s^2 + 1) in Hertz",
         plantDiagram(R"({"id": "p", "type": "transferFunction", "num": [1], "den": [1, 0, 1]})"),
         "preferences --frequency-unit hertz\nnyquist", 10.0},
        /* the last grid point sits on the integrator's pole z = 1: the y axis ran to 9e13 */
        {"sampled loop", readFile(examplePath("sampled_loop.json")), "nyquist", 0.5},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        TempDir dir;
        std::string plot = row.script.ends_with("rlocus") ? "Root-Locus.svg" : "Nyquist.svg";
        expectSession({row.what, {{"d.json", row.diagram}, {"s.txt", row.script + "\n"}},
                       "{dir}/d.json --script {dir}/s.txt", 0, {"[plot] " + plot}}, dir);
        pugi::xml_document svg;
        ASSERT_TRUE(svg.load_file(dir.file(plot).c_str()));
        auto [xLow, xHigh] = tickRange(svg, "x-tick");
        auto [yLow, yHigh] = tickRange(svg, "y-tick");
        for (double tick : {xLow, xHigh, yLow, yHigh})
            EXPECT_LE(std::fabs(tick), 20.0);
        EXPECT_GE(xHigh - xLow, row.widestBelow);
    }
}

}
