/*
** The draw command: the SVG picture of a diagram read back as XML: every block and port
** present with the ids and data attributes a program relies on, the selection and the
** reference points marked (those picked on the command line where given), compound
** blocks framing their children.
*/
#include <pugixml.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "hostapp/diagram.h"
#include "hostapp/diagram_picture.h"
#include "support.h"

using namespace testing_support;

namespace {

std::vector<std::string> attributeOf(const pugi::xml_document &doc, const char *query, const char *name)
{
    std::vector<std::string> values;
    for (const auto &node : doc.select_nodes(query))
        values.push_back(node.node().attribute(name).value());
    std::sort(values.begin(), values.end());
    return values;
}

struct Box {
    double x0, y0, x1, y1;
};

Box boxOf(const pugi::xml_node &group)
{
    pugi::xml_node r = group.child("rect");
    double x = r.attribute("x").as_double(), y = r.attribute("y").as_double();
    return {x, y, x + r.attribute("width").as_double(), y + r.attribute("height").as_double()};
}

struct PictureCase {
    const char *example;
    const char *options;                /* points picked on the command line */
    std::vector<std::string> out;       /* all the run says */
    std::vector<std::string> blocks;    /* every block path, sorted */
    std::vector<std::string> selected;  /* sorted */
    std::string inputPoint, outputPoint;
    size_t ports, wires;
};

TEST(DiagramPicture, ExamplesShowEveryBlockPortWireSelectionAndPoint)
{
    const PictureCase cases[] = {
        {"servo", "", {"[draw] servo.svg"}, {"amp", "ctrl", "err", "motor", "ref", "scope"}, {"amp", "ctrl", "motor"},
         "ctrl.in1", "motor.out1", 11, 6},
        /* the picked point is marked, not the file's own */
        {"servo", " --output amp.out", {"[host] reference points: input ctrl.1, output amp.out", "[draw] servo.svg"},
         {"amp", "ctrl", "err", "motor", "ref", "scope"}, {"amp", "ctrl", "motor"}, "ctrl.in1", "amp.out1", 11, 6},
        {"pendulum_hanging", "", {"[draw] pendulum_hanging.svg"},
         {"angle", "pendulum", "pendulum/accel", "pendulum/damping", "pendulum/gOverL", "pendulum/gravity",
          "pendulum/omega", "pendulum/theta", "torque"},
         {"pendulum", "pendulum/accel", "pendulum/damping", "pendulum/gOverL", "pendulum/gravity", "pendulum/omega",
          "pendulum/theta"},
         "pendulum.in1", "pendulum.out1", 18, 11},
    };
    for (const PictureCase &c : cases) {
        SCOPED_TRACE(std::string(c.example) + c.options);
        TempDir dir;
        expectSession({c.example, {}, "{examples}" + std::string(c.example) + ".json" + c.options + " draw", 0,
                       c.out, "", {}, {}, true}, dir);
        pugi::xml_document doc;
        ASSERT_TRUE(doc.load_file(dir.file(std::string(c.example) + ".svg").c_str()));

        EXPECT_EQ(attributeOf(doc, "//g[contains(@class,'block')]", "data-block"), c.blocks);
        EXPECT_EQ(attributeOf(doc, "//g[contains(@class,'selected')]", "data-block"), c.selected);
        EXPECT_EQ(attributeOf(doc, "//g[contains(@class,'input-point')]", "data-point"),
                  std::vector<std::string>{c.inputPoint});
        EXPECT_EQ(attributeOf(doc, "//g[contains(@class,'output-point')]", "data-point"),
                  std::vector<std::string>{c.outputPoint});
        EXPECT_EQ(doc.select_nodes("//g[contains(@class,'port')]").size(), c.ports);
        EXPECT_EQ(doc.select_nodes("//g[@class='wire']/path[1][starts-with(@d,'M')]").size(), c.wires);

        /* Ports name the point --input and --output take, and ids are unique. */
        std::set<std::string> ids;
        for (const auto &node : doc.select_nodes("//*[@id]"))
            EXPECT_TRUE(ids.insert(node.node().attribute("id").value()).second) << node.node().attribute("id").value();
        for (const auto &node : doc.select_nodes("//g[contains(@class,'port')]")) {
            pugi::xml_node port = node.node();
            std::string point = port.attribute("data-block").value() + std::string(".") + port.attribute("data-port").value();
            EXPECT_EQ(port.attribute("data-point").value(), point);
            EXPECT_EQ(std::string(port.attribute("data-port").value()).rfind(port.attribute("data-dir").value(), 0), 0u);
        }

        /* A compound block frames its children. */
        for (const auto &compound : doc.select_nodes("//g[contains(@class,'compound')]")) {
            Box frame = boxOf(compound.node());
            std::string prefix = compound.node().attribute("data-block").value() + std::string("/");
            for (const auto &child : doc.select_nodes("//g[contains(@class,'block')]")) {
                if (std::string(child.node().attribute("data-block").value()).rfind(prefix, 0) != 0)
                    continue;
                Box inner = boxOf(child.node());
                EXPECT_TRUE(inner.x0 > frame.x0 && inner.x1 < frame.x1 && inner.y0 > frame.y0 && inner.y1 < frame.y1)
                    << child.node().attribute("data-block").value();
            }
        }
    }
}

TEST(DiagramPicture, IdsOfUnusualBlockNamesStayDistinctAndValid)
{
    std::string error;
    ASSERT_TRUE(hostapp::loadDiagramText(R"({"blocks": [
        {"id": "a b", "type": "constant", "value": 1}, {"id": "a_20b", "type": "gain", "gain": 2},
        {"id": "x\"<&", "type": "gain", "gain": 3}],
        "wires": [["a b", "a_20b"], ["a_20b", "x\"<&"]]})", "odd.json", error)) << error;
    std::string svg = hostapp::diagramPictureSvg(error);
    pugi::xml_document doc;
    ASSERT_TRUE(doc.load_string(svg.c_str())) << svg;
    EXPECT_EQ(attributeOf(doc, "//g[contains(@class,'block')]", "id"),
              (std::vector<std::string>{"block-a_20b", "block-a_5f20b", "block-x_22_3c_26"}));
    EXPECT_EQ(attributeOf(doc, "//g[contains(@class,'block')]", "data-block"),
              (std::vector<std::string>{"a b", "a_20b", "x\"<&"}));
    hostapp::clearDiagram();
    EXPECT_EQ(hostapp::diagramPictureSvg(error), "");
    EXPECT_EQ(error, "no diagram is loaded to draw; give a diagram file before the draw command");
}

}
