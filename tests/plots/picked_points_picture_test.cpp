/*
** The picture of a diagram marks the reference points the session took: those picked
** with --input and --output instead of the diagram file's own.
*/
#include <pugixml.hpp>

#include <string>

#include "support.h"

#include <gtest/gtest.h>

namespace {

TEST(PickedPointsPicture, DrawMarksThePickedPointsNotTheFilesOwn)
{
    testing_support::TempDir dir;
    /* The sum reads both its inputs from outside the selection: either can be the input. */
    testing_support::writeFile(dir.file("loop.json"), R"({"blocks": [{"id": "ref", "type": "step", "value": 1},
        {"id": "err", "type": "sum", "signs": "+-"}, {"id": "ctrl", "type": "gain", "gain": 2},
        {"id": "amp", "type": "transferFunction", "num": [10], "den": [1, 10]},
        {"id": "motor", "type": "transferFunction", "num": [1], "den": [1, 1, 0]}],
        "wires": [["ref", "err.1"], ["err", "ctrl"], ["ctrl", "amp"], ["amp", "motor"], ["motor", "err.2"]],
        "selection": ["err", "ctrl", "amp"], "input": "err.1", "output": "amp.out"})");
    testing_support::RunResult run =
        testing_support::runPraxa("--settings " + dir.file("tervan.ini") + " --out " + dir.path + " " +
                                  dir.file("loop.json") + " --input err.2 --output ctrl.out draw");
    ASSERT_EQ(run.status, 0) << run.err;
    pugi::xml_document doc;
    ASSERT_TRUE(doc.load_string(testing_support::readFile(dir.file("loop.svg")).c_str()));
    EXPECT_STREQ(doc.select_node("//g[contains(@class,'input-point')]").node().attribute("data-point").value(), "err.in2");
    EXPECT_STREQ(doc.select_node("//g[contains(@class,'output-point')]").node().attribute("data-point").value(), "ctrl.out1");
    EXPECT_EQ(doc.select_nodes("//g[contains(@class,'reference-point')]").size(), 2u);
}

}
