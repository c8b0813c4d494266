/*
** What a person reads a plot for, drawn on it: -1 always in a Nyquist plot, the way the
** curve runs, its circles at infinity set apart, the poles, zeros and closed-loop poles
** of a root locus in a frame that holds them (and its break-in point), the crossovers of
** a Bode plot.
*/
#include <pugixml.hpp>

#include <regex>

#include "plot_fixture.h"
#include "support.h"

namespace {

constexpr double FRAME_LEFT = 80, FRAME_RIGHT = 610, FRAME_TOP = 50, FRAME_BOTTOM = 440;

/* A diagram of one transfer function block, input and output at its ports. */
std::string loopDiagram(const std::string &num, const std::string &den)
{
    return R"({"blocks": [{"id": "u", "type": "constant", "value": 0},
        {"id": "g", "type": "transferFunction", "num": )" + num + R"(, "den": )" + den + R"(}],
        "wires": [["u", "g"]], "selection": ["g"], "input": "g.in", "output": "g.out"})";
}

/* Runs one command (or a script of several lines) on a diagram text and parses the plot
** file it names. */
void runPlot(const std::string &diagram, const std::string &command, const std::string &file, pugi::xml_document &doc)
{
    testing_support::TempDir dir;
    testing_support::expectSession({command.c_str(), {{"loop.json", diagram}, {"run.txt", command + "\n"}},
                                    "{dir}/loop.json --script {dir}/run.txt", 0, {"[plot] " + file}}, dir);
    ASSERT_TRUE(doc.load_file(dir.file(file).c_str()));
}

struct Marker {
    double x, y;
};

/* Centres of the markers of a class, left to right: circles by cx, cy; crosses by their
** path's middle. */
std::vector<Marker> markers(const pugi::xml_document &doc, const char *cls)
{
    std::vector<Marker> found;
    std::string query = std::string("//*[@class='") + cls + "']";
    for (const auto &n : doc.select_nodes(query.c_str())) {
        pugi::xml_node node = n.node();
        if (std::string(node.name()) == "circle") {
            found.push_back({node.attribute("cx").as_double(), node.attribute("cy").as_double()});
            continue;
        }
        std::smatch m;
        std::string d = node.attribute("d").value();
        std::regex first("M(-?[0-9.]+),(-?[0-9.]+) L(-?[0-9.]+),(-?[0-9.]+)");
        if (std::regex_search(d, m, first))
            found.push_back({(std::stod(m[1]) + std::stod(m[3])) / 2, (std::stod(m[2]) + std::stod(m[4])) / 2});
    }
    std::stable_sort(found.begin(), found.end(), [](const Marker &a, const Marker &b) { return a.x < b.x; });
    return found;
}

TEST(PlotMarks, NyquistAlwaysShowsTheCriticalPointAndTheDirection)
{
    /* Curves whose own extent leaves -1 out: the inverted pendulum (real -0.1 ... 0) and
    ** a biproper loop (real 1 ... 2). */
    for (const std::string &diagram :
         {testing_support::readFile(testing_support::examplePath("pendulum_inverted.json")), loopDiagram("[1, 2]", "[1, 1]")}) {
        pugi::xml_document doc;
        runPlot(diagram, "nyquist", "Nyquist.svg", doc);
        std::vector<Marker> critical = markers(doc, "critical-point");
        ASSERT_EQ(critical.size(), 1u);
        EXPECT_GT(critical[0].x, FRAME_LEFT);
        EXPECT_LT(critical[0].x, FRAME_RIGHT);
        EXPECT_EQ(texts(doc, "critical-label"), std::vector<std::string>{"-1"});
        EXPECT_GE(doc.select_nodes("//*[@class='direction-arrow']").size(), 1u);
    }
}

TEST(PlotMarks, RootLocusFramesPolesZerosAndClosedLoopPoles)
{
    pugi::xml_document doc;
    /* 20/(s(s+1)(s+10)): its automatic range runs far out; the view holds the poles in
    ** its middle, spread over a good part of the width. */
    runPlot(loopDiagram("[20]", "[1, 11, 10, 0]"), "rlocus", "Root-Locus.svg", doc);
    std::vector<Marker> poles = markers(doc, "open-loop-pole");
    ASSERT_EQ(poles.size(), 3u);
    double left = FRAME_RIGHT, right = FRAME_LEFT;
    for (const Marker &p : poles) {
        EXPECT_GT(p.x, FRAME_LEFT + 0.1 * (FRAME_RIGHT - FRAME_LEFT));
        EXPECT_LT(p.x, FRAME_RIGHT - 0.1 * (FRAME_RIGHT - FRAME_LEFT));
        EXPECT_GT(p.y, FRAME_TOP + 0.25 * (FRAME_BOTTOM - FRAME_TOP));
        EXPECT_LT(p.y, FRAME_BOTTOM - 0.25 * (FRAME_BOTTOM - FRAME_TOP));
        left = std::min(left, p.x);
        right = std::max(right, p.x);
    }
    EXPECT_GT(right - left, 0.4 * (FRAME_RIGHT - FRAME_LEFT));
    /* The closed-loop poles at K = 1: roots of s^3 + 11 s^2 + 10 s + 20, -10.2126 and
    ** -0.39371 +- 1.34289 j, placed as the poles 0 and -10 scale the axis. */
    std::vector<Marker> closed = markers(doc, "closed-loop-pole");
    ASSERT_EQ(closed.size(), 3u);
    double perUnit = (poles[2].x - poles[0].x) / 10.0;
    EXPECT_NEAR(closed[0].x, poles[2].x - 10.2126 * perUnit, 0.5);
    EXPECT_NEAR(closed[1].x, poles[2].x - 0.39371 * perUnit, 0.5);
    /* The y axis has its own scale: from two of its tick labels. */
    std::vector<std::pair<double, double>> yTicks;
    for (const auto &n : doc.select_nodes("//*[@class='y-tick']"))
        yTicks.push_back({n.node().attribute("y").as_double(), std::stod(n.node().child_value())});
    ASSERT_GE(yTicks.size(), 2u);
    double yPerUnit = (yTicks[0].first - yTicks[1].first) / (yTicks[1].second - yTicks[0].second);
    EXPECT_NEAR(std::fabs(closed[1].y - closed[2].y), 2 * 1.34289 * yPerUnit, 0.5);
    EXPECT_NEAR(closed[1].y + closed[2].y, 2 * poles[0].y, 0.5);
    EXPECT_TRUE(markers(doc, "open-loop-zero").empty());

    /* (s+2)/(s(s+1)(s+3)): one zero, at -2 between the poles -1 and -3. */
    runPlot(loopDiagram("[1, 2]", "[1, 4, 3, 0]"), "rlocus", "Root-Locus.svg", doc);
    poles = markers(doc, "open-loop-pole");
    std::vector<Marker> zeros = markers(doc, "open-loop-zero");
    ASSERT_EQ(poles.size(), 3u);
    ASSERT_EQ(zeros.size(), 1u);
    EXPECT_NEAR(zeros[0].x, (poles[0].x + poles[1].x) / 2, 0.5);
    EXPECT_NEAR(zeros[0].y, poles[0].y, 0.5);
}

TEST(PlotMarks, BodeMarksItsCrossoversFromTheCurves)
{
    pugi::xml_document doc;
    /* 20/(s(s+1)(s+10)) reaches -180 degrees at sqrt(10) rad/s, where |L| = 2/11: a gain
    ** margin of 20 log10 5.5 = 14.8 dB. */
    runPlot(loopDiagram("[20]", "[1, 11, 10, 0]"), "bode", "Bode-Phase.svg", doc);
    EXPECT_EQ(texts(doc, "crossover-label"), std::vector<std::string>{"-180 deg at 3.16, gain margin 14.8 dB"});
    /* |L| = 1 where w^2 (w^2 + 1)(w^2 + 100) = 400: w = 1.2442, phase -90 - atan(1.2442)
    ** - atan(0.12442) = -148.3 degrees, a phase margin of 31.7 degrees. */
    runPlot(loopDiagram("[20]", "[1, 11, 10, 0]"), "bode", "Bode-Magnitude.svg", doc);
    EXPECT_EQ(texts(doc, "crossover-label"), std::vector<std::string>{"0 dB at 1.24, phase margin 31.7 deg"});
}

TEST(PlotMarks, LocusThatRunsFarOutIsFramedOnItsBreakInPoint)
{
    /* (s + 20)/(s (s + 1)) over gains 0 ... 10000: the branches leave the real axis near 0,
    ** circle the zero and meet again at the break-in point -20 - sqrt(380) = -39.49, then
    ** one runs to -9981.  At K = 1 the closed-loop poles are -1 +- 4.36 j. */
    pugi::xml_document doc;
    runPlot(loopDiagram("[1, 20]", "[1, 1, 0]"), "rlocus-options --no-auto --start 0 --stop 10000 --steps 400\nrlocus",
            "Root-Locus.svg", doc);
    auto [left, right] = tickRange(doc, "x-tick");
    EXPECT_LE(left, -39.49);
    EXPECT_GT(left, -200.0);
    EXPECT_GE(right, 0.0);
    std::vector<Marker> closed = markers(doc, "closed-loop-pole");
    ASSERT_EQ(closed.size(), 2u);
    EXPECT_GT(std::fabs(closed[0].y - closed[1].y), 20.0);
}

TEST(PlotMarks, CirclesAtInfinityAreDrawnApartFromTheResponse)
{
    /* With the default 1000 frequencies a detour has 250 points on each side of the axis;
    ** one around the origin has both halves (500).  The two half circles of 1/(s^2 + 1)
    ** meet on the real axis in one vertex. */
    const struct {
        const char *den;
        int closurePoints;              /* 0: no closure drawn */
    } cases[] = {{"[1, 0]", 500}, {"[1, 1, 0]", 500}, {"[1, 0, 1]", 499}, {"[1, 1]", 0}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.den);
        pugi::xml_document doc;
        runPlot(loopDiagram("[1]", c.den), "nyquist", "Nyquist.svg", doc);
        pugi::xml_node closure = doc.select_node("//path[@class='infinity-closure']").node();
        bool named = doc.select_node("//text[@class='legend-entry'][text()='Closure at infinity']");
        EXPECT_EQ(closure.attribute("data-points").as_int(), c.closurePoints);
        EXPECT_EQ(named, c.closurePoints > 0);
        if (c.closurePoints > 0) {
            EXPECT_STRNE(closure.attribute("stroke-dasharray").value(), "");
            EXPECT_STRNE(closure.attribute("stroke").value(),
                         doc.select_node("//path[@class='trace']").node().attribute("stroke").value());
        }
    }
}

}
