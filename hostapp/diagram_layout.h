/*
** hostapp/diagram_layout.h: where the blocks, compound blocks and wires of the current
** diagram go in its picture, as Graphviz's dot lays them out: blocks left to right along
** the signal flow, inputs on a block's left side and outputs on its right, each compound
** block a frame around its children with one small node per port of it.
*/
#ifndef TERVAN_DIAGRAM_LAYOUT_H
#define TERVAN_DIAGRAM_LAYOUT_H

#include <string>
#include <vector>

#include "hostapp/engine.h"

namespace hostapp {

struct LayoutPoint {
    double x = 0, y = 0;                /* picture units, y downwards */
};

/* A leaf block, or one port of a compound block drawn as a small node of its own. */
struct LaidOutNode {
    const Block *block = nullptr;
    const Point *compoundPort = nullptr;    /* set: the node stands for this port of `block` */
    std::vector<std::string> caption;   /* lines of text: id, type, main parameter */
    double x = 0, y = 0, width = 0, height = 0;   /* top left corner and size */
};

/* A wire: from an output point to an input point (either may be a compound's port). */
struct LaidOutWire {
    const Point *from = nullptr;
    const Point *to = nullptr;
    std::vector<LayoutPoint> curve;     /* cubic Bezier pieces: a start, then 3 points per piece */
    LayoutPoint tip;                    /* where the arrow head ends, at the input */
};

struct LaidOutCluster {
    const Block *block = nullptr;       /* the compound block */
    double x = 0, y = 0, width = 0, height = 0;
};

struct DiagramLayout {
    double width = 0, height = 0;
    std::vector<LaidOutNode> nodes;
    std::vector<LaidOutWire> wires;
    std::vector<LaidOutCluster> clusters;   /* outer ones before the ones inside them */
};

/* Vertical distance between neighbouring ports on one side of a node. */
inline constexpr double PORT_PITCH = 16.0;

/* Where port `port` (from 1) of `count` on the left (inputs) or right side sits. */
LayoutPoint portPosition(const LaidOutNode &node, bool input, int port, int count);

/* Lays out the diagram with Graphviz; false with a message when it cannot (too many
** blocks for a picture a person can read, or Graphviz failed). */
bool layOutDiagram(const Diagram &diagram, DiagramLayout &layout, std::string &error);

}

#endif
