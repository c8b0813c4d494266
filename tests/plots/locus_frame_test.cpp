/*
** The view of a root locus that runs far out: framed on its poles, zeros, axis crossings
** and breakaway points, with the closed-loop poles at the current gain where they are.
*/
#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "support.h"

#include <gtest/gtest.h>

namespace {

TEST(LocusFrame, HoldsTheBreakInPointOfALocusThatRunsFarOut)
{
    /* (s + 20)/(s (s + 1)) over gains 0 ... 10000: the branches leave the real axis near 0,
    ** circle the zero and meet again at the break-in point -20 - sqrt(380) = -39.49, then
    ** one runs to -9981.  At K = 1 the closed-loop poles are -1 +- 4.36 j. */
    testing_support::TempDir dir;
    testing_support::writeFile(dir.file("loop.json"), R"({"blocks": [{"id": "u", "type": "constant", "value": 0},
        {"id": "g", "type": "transferFunction", "num": [1, 20], "den": [1, 1, 0]}],
        "wires": [["u", "g"]], "selection": ["g"], "input": "g.in", "output": "g.out"})");
    testing_support::writeFile(dir.file("run.txt"), "rlocus-options --no-auto --start 0 --stop 10000 --steps 400\nrlocus\n");
    testing_support::RunResult run = testing_support::runPraxa("--settings " + dir.file("tervan.ini") + " --out " +
                                                               dir.path + " " + dir.file("loop.json") +
                                                               " --script " + dir.file("run.txt"));
    ASSERT_EQ(run.status, 0) << run.err;
    pugi::xml_document doc;
    ASSERT_TRUE(doc.load_string(testing_support::readFile(dir.file("Root-Locus.svg")).c_str()));
    std::vector<double> xTicks;
    for (const auto &n : doc.select_nodes("//text[@class='x-tick']"))
        xTicks.push_back(std::stod(n.node().child_value()));
    ASSERT_FALSE(xTicks.empty());
    EXPECT_LE(*std::min_element(xTicks.begin(), xTicks.end()), -39.49);
    EXPECT_GT(*std::min_element(xTicks.begin(), xTicks.end()), -200.0);
    EXPECT_GE(*std::max_element(xTicks.begin(), xTicks.end()), 0.0);
    std::vector<double> closedY;
    for (const auto &n : doc.select_nodes("//circle[@class='closed-loop-pole']"))
        closedY.push_back(n.node().attribute("cy").as_double());
    ASSERT_EQ(closedY.size(), 2u);
    EXPECT_GT(std::fabs(closedY[0] - closedY[1]), 20.0);
}

}
