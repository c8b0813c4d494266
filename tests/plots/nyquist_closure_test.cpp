/*
** The circles at infinity of a Nyquist curve (detours around poles on the imaginary
** axis) drawn apart from the response: dashed, in their own colour, named in the legend.
*/
#include <pugixml.hpp>

#include "support.h"

#include <gtest/gtest.h>

namespace {

TEST(NyquistClosure, CirclesAtInfinityAreDrawnApartFromTheResponse)
{
    /* With the default 1000 frequencies a detour has 250 points on each side of the axis;
    ** one around the origin has both halves (500).  The two half circles of 1/(s^2 + 1)
    ** meet on the real axis in one vertex. */
    const struct {
        const char *den;
        int closurePoints;              /* 0: no closure drawn */
    } cases[] = {
        {"[1, 0]", 500},
        {"[1, 1, 0]", 500},
        {"[1, 0, 1]", 499},
        {"[1, 1]", 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.den);
        testing_support::TempDir dir;
        testing_support::writeFile(dir.file("loop.json"), std::string(R"({"blocks": [{"id": "u", "type": "constant", "value": 0},
            {"id": "g", "type": "transferFunction", "num": [1], "den": )") + c.den + R"(}],
            "wires": [["u", "g"]], "selection": ["g"], "input": "g.in", "output": "g.out"})");
        testing_support::RunResult run = testing_support::runPraxa(
            "--settings " + dir.file("tervan.ini") + " --out " + dir.path + " " + dir.file("loop.json") + " nyquist");
        ASSERT_EQ(run.status, 0) << run.err;
        pugi::xml_document doc;
        ASSERT_TRUE(doc.load_string(testing_support::readFile(dir.file("Nyquist.svg")).c_str()));
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
