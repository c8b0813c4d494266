/*
** hostapp/diagram_layout.cpp: the diagram handed to Graphviz (libgvc, the dot layout)
** and the positions read back.  Every node is an HTML-like table of fixed-size cells,
** one per port, so that the drawing knows where each port is without asking Graphviz.
*/
#include "hostapp/diagram_layout.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>

#include <graphviz/gvc.h>

#include "hostapp/svg_text.h"

namespace hostapp {

namespace {

/* dot takes minutes on diagrams of thousands of blocks, and nobody reads such a picture. */
constexpr size_t MAX_PICTURE_BLOCKS = 2000;
const char *const LAYOUT_FAILED = "Graphviz could not lay out the diagram; check that Graphviz's dot layout "
                                  "plug-in is installed (Debian package libgvc6)";
constexpr double PORT_WIDTH = 10;
constexpr double CHARACTER_WIDTH = 7.2;     /* a 12-unit sans-serif letter, generously */
constexpr double LINE_HEIGHT = 15;
constexpr double POINTS_PER_INCH_OF_GRAPHVIZ = 72;   /* its sizes are in inches */

std::string shortNumber(double v)
{
    return svgNumber(v, "%g");
}

/* Coefficients in descending powers of s (or z) as "s^2 + 2 s + 1". */
std::string polynomialText(const std::vector<double> &coefficients, char variable)
{
    std::string text;
    size_t degree = coefficients.empty() ? 0 : coefficients.size() - 1;
    for (size_t i = 0; i < coefficients.size(); ++i) {
        double c = coefficients[i];
        size_t power = degree - i;
        if (c == 0.0)
            continue;
        std::string term;
        double shown = text.empty() ? c : std::fabs(c);
        if (power == 0 || std::fabs(shown) != 1.0)
            term = shortNumber(shown);
        else if (shown < 0)
            term = "-";
        if (power > 0) {
            term += (term.empty() || term == "-" ? "" : " ") + std::string(1, variable);
            if (power > 1)
                term += "^" + std::to_string(power);
        }
        text += text.empty() ? term : (c < 0 ? " - " : " + ") + term;
    }
    return text.empty() ? "0" : text;
}

std::string parenthesized(const std::string &text)
{
    return text.find(' ') == std::string::npos ? text : "(" + text + ")";
}

/* The block's main parameter, as a person reads it on the block. */
std::string mainParameter(const Block &b)
{
    char variable = b.type == BlockType::DiscreteTransferFunction ? 'z' : 's';
    switch (b.type) {
    case BlockType::Constant: return shortNumber(b.value);
    case BlockType::Step: return shortNumber(b.initialValue) + " to " + shortNumber(b.value) + " at " + shortNumber(b.stepTime) + " s";
    case BlockType::Gain: return shortNumber(b.gain);
    case BlockType::Sum: return b.signs;
    case BlockType::Saturation: return "[" + shortNumber(b.lower) + ", " + shortNumber(b.upper) + "]";
    case BlockType::Integrator: return "1/s";
    case BlockType::TransferFunction:
    case BlockType::DiscreteTransferFunction:
        return parenthesized(polynomialText(b.num, variable)) + " / " + parenthesized(polynomialText(b.den, variable));
    case BlockType::StateSpace:
    case BlockType::DiscreteStateSpace:
        return std::to_string(b.linear.n) + (b.linear.n == 1 ? " state" : " states");
    case BlockType::UnitDelay: return "1/z";
    default: return "";
    }
}

std::vector<std::string> captionOf(const Block &b)
{
    std::vector<std::string> lines = {b.id, blockTypeName(b.type)};
    std::string parameter = mainParameter(b);
    if (b.samplePeriod > 0)
        parameter += (parameter.empty() ? "" : ", ") + std::string("T = ") + shortNumber(b.samplePeriod) + " s";
    if (!parameter.empty())
        lines.push_back(parameter);
    return lines;
}

/* One column of port cells (or an empty cell of the node's height). */
std::string portColumn(char side, size_t count, double height)
{
    std::string cell = "<TD FIXEDSIZE=\"TRUE\" WIDTH=\"" + svgNumber(PORT_WIDTH, "%.0f") + "\" HEIGHT=\"" +
                       svgNumber(height, "%.0f") + "\">";
    if (count == 0)
        return cell + "</TD>";
    cell += "<TABLE BORDER=\"0\" CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"0\">";
    for (size_t k = 1; k <= count; ++k)
        cell += "<TR><TD PORT=\"" + std::string(1, side) + std::to_string(k) + "\" FIXEDSIZE=\"TRUE\" WIDTH=\"" +
                svgNumber(PORT_WIDTH, "%.0f") + "\" HEIGHT=\"" + svgNumber(PORT_PITCH, "%.0f") + "\"></TD></TR>";
    return cell + "</TABLE></TD>";
}

/* A node's label: input cells, the caption's room, output cells. */
std::string tableLabel(size_t inputs, size_t outputs, double bodyWidth, double height)
{
    return "<<TABLE BORDER=\"0\" CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"0\"><TR>" +
           portColumn('i', inputs, height) + "<TD FIXEDSIZE=\"TRUE\" WIDTH=\"" + svgNumber(bodyWidth, "%.0f") +
           "\" HEIGHT=\"" + svgNumber(height, "%.0f") + "\"></TD>" + portColumn('o', outputs, height) +
           "</TR></TABLE>>";
}

std::string quoted(const std::string &text)
{
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += c;
    }
    return out + "\"";
}

/* The DOT text of the diagram and which node and port each point is drawn at. */
class DotWriter {
public:
    std::string text;
    std::vector<LaidOutNode> nodes;
    std::vector<const Block *> clusters;
    std::vector<std::pair<const Point *, const Point *>> wires;

    void scope(const std::vector<std::unique_ptr<Block>> &blocks)
    {
        for (const auto &b : blocks) {
            if (b->isLeaf()) {
                leafNode(*b);
                continue;
            }
            text += "subgraph cluster_" + std::to_string(clusters.size()) + " { label=" + quoted(b->id) +
                    "; fontsize=13; margin=12;\n";
            clusters.push_back(b.get());
            for (const auto &port : b->inputs)
                portNode(*b, *port);
            for (const auto &port : b->outputs)
                portNode(*b, *port);
            scope(b->children);
            text += "}\n";
        }
    }

    /* The node and port name of a point, as the tail (output side) or head of a wire. */
    std::string endOf(const Point *point, bool tail) const
    {
        auto found = nodeOfPoint.find(point);
        if (found == nodeOfPoint.end())
            return "";
        const LaidOutNode &node = nodes[found->second];
        std::string port = node.compoundPort ? (tail ? "o1" : "i1")
                                             : (tail ? "o" : "i") + std::to_string(point->port);
        return "n" + std::to_string(found->second) + ":" + port + (tail ? ":e" : ":w");
    }

    void collectWires(const std::vector<std::unique_ptr<Block>> &blocks)
    {
        forEachBlock(blocks, [this](const Block &b) {
            for (const auto &p : b.inputs) {
                if (p->wiredFrom)
                    wires.push_back({p->wiredFrom, p.get()});
                if (p->fedBy)
                    wires.push_back({p->fedBy, p.get()});
            }
            if (!b.isLeaf())
                for (const auto &p : b.outputs)
                    if (p->connectsTo)
                        wires.push_back({p->connectsTo, p.get()});
        });
    }

private:
    std::map<const Point *, size_t> nodeOfPoint;

    void addNode(LaidOutNode node, size_t inputs, size_t outputs, double bodyWidth, double height)
    {
        text += "n" + std::to_string(nodes.size()) + " [label=" + tableLabel(inputs, outputs, bodyWidth, height) +
                "];\n";
        nodes.push_back(std::move(node));
    }

    void leafNode(const Block &b)
    {
        LaidOutNode node;
        node.block = &b;
        node.caption = captionOf(b);
        size_t longest = 0;
        for (const std::string &line : node.caption)
            longest = std::max(longest, line.size());
        double bodyWidth = std::max(56.0, std::ceil(longest * CHARACTER_WIDTH) + 12);
        size_t ports = std::max(b.inputs.size(), b.outputs.size());
        double height = std::max(node.caption.size() * LINE_HEIGHT + 8, ports * PORT_PITCH + 8);
        for (const auto &p : b.inputs)
            nodeOfPoint[p.get()] = nodes.size();
        for (const auto &p : b.outputs)
            nodeOfPoint[p.get()] = nodes.size();
        addNode(node, b.inputs.size(), b.outputs.size(), bodyWidth, height);
    }

    void portNode(const Block &compound, const Point &port)
    {
        LaidOutNode node;
        node.block = &compound;
        node.compoundPort = &port;
        node.caption = {(port.isInput ? "in" : "out") + std::to_string(port.port)};
        nodeOfPoint[&port] = nodes.size();
        addNode(node, 1, 1, 30, PORT_PITCH + 4);
    }
};

std::vector<double> numbersIn(const char *text)
{
    std::vector<double> values;
    while (text && *text) {
        char *end = nullptr;
        double v = std::strtod(text, &end);
        if (end == text) {
            ++text;
            continue;
        }
        values.push_back(v);
        text = end;
    }
    return values;
}

/* Graphviz's own messages would land in the transcript's stream; failures are reported
** by the return codes instead. */
struct GraphvizSession {
    GVC_t *context = gvContext();
    Agraph_t *graph = nullptr;
    bool laidOut = false;

    ~GraphvizSession()
    {
        if (laidOut)
            gvFreeLayout(context, graph);
        if (graph)
            agclose(graph);
        gvFreeContext(context);
    }
};

}

LayoutPoint portPosition(const LaidOutNode &node, bool input, int port, int count)
{
    double centreY = node.y + node.height / 2;
    return {input ? node.x : node.x + node.width, centreY + (port - (count + 1) / 2.0) * PORT_PITCH};
}

bool layOutDiagram(const Diagram &diagram, DiagramLayout &layout, std::string &error)
{
    size_t blocks = 0;
    forEachBlock(diagram.blocks, [&](const Block &) { ++blocks; });
    if (blocks > MAX_PICTURE_BLOCKS) {
        error = "the diagram holds " + std::to_string(blocks) + " blocks; a picture is drawn of at most " +
                std::to_string(MAX_PICTURE_BLOCKS) + "; draw a smaller diagram";
        return false;
    }
    DotWriter dot;
    dot.text = "digraph diagram {\nrankdir=LR; nodesep=0.3; ranksep=0.5; node [shape=plain];\n";
    dot.scope(diagram.blocks);
    dot.collectWires(diagram.blocks);
    for (const auto &wire : dot.wires)
        dot.text += dot.endOf(wire.first, true) + " -> " + dot.endOf(wire.second, false) + ";\n";
    dot.text += "}\n";

    agseterr(AGMAX);
    GraphvizSession gv;
    gv.graph = agmemread(dot.text.c_str());
    if (!gv.context || !gv.graph || gvLayout(gv.context, gv.graph, "dot") != 0) {
        error = LAYOUT_FAILED;
        return false;
    }
    gv.laidOut = true;
    char *rendered = nullptr;
    unsigned int length = 0;
    /* Rendering as DOT stores the positions as attributes, which is how they are read. */
    if (gvRenderData(gv.context, gv.graph, "dot", &rendered, &length) != 0) {
        error = LAYOUT_FAILED;
        return false;
    }
    gvFreeRenderData(rendered);

    constexpr double MARGIN = 12;
    std::vector<double> box = numbersIn(agget(gv.graph, (char *)"bb"));
    if (box.size() != 4) {
        error = LAYOUT_FAILED;
        return false;
    }
    double top = box[3];
    auto place = [&](double x, double y) { return LayoutPoint{x - box[0] + MARGIN, top - y + MARGIN}; };
    layout.width = box[2] - box[0] + 2 * MARGIN;
    layout.height = box[3] - box[1] + 2 * MARGIN;

    layout.nodes = dot.nodes;
    for (size_t i = 0; i < layout.nodes.size(); ++i) {
        Agnode_t *n = agnode(gv.graph, (char *)("n" + std::to_string(i)).c_str(), 0);
        std::vector<double> pos = n ? numbersIn(agget(n, (char *)"pos")) : std::vector<double>{};
        if (pos.size() != 2)
            continue;
        LaidOutNode &node = layout.nodes[i];
        node.width = std::atof(agget(n, (char *)"width")) * POINTS_PER_INCH_OF_GRAPHVIZ;
        node.height = std::atof(agget(n, (char *)"height")) * POINTS_PER_INCH_OF_GRAPHVIZ;
        LayoutPoint centre = place(pos[0], pos[1]);
        node.x = centre.x - node.width / 2;
        node.y = centre.y - node.height / 2;
    }
    for (size_t c = 0; c < dot.clusters.size(); ++c) {
        Agraph_t *sub = agsubg(gv.graph, (char *)("cluster_" + std::to_string(c)).c_str(), 0);
        std::vector<double> bb = sub ? numbersIn(agget(sub, (char *)"bb")) : std::vector<double>{};
        if (bb.size() != 4)
            continue;
        LayoutPoint corner = place(bb[0], bb[3]);
        layout.clusters.push_back({dot.clusters[c], corner.x, corner.y, bb[2] - bb[0], bb[3] - bb[1]});
    }
    /* Edges are matched to wires by their ends: Graphviz lists them in its own order. */
    std::map<std::string, size_t> wireOfEnds;
    for (const auto &wire : dot.wires) {
        wireOfEnds[dot.endOf(wire.first, true) + " " + dot.endOf(wire.second, false)] = layout.wires.size();
        layout.wires.push_back({wire.first, wire.second, {}, {}});
    }
    for (Agnode_t *n = agfstnode(gv.graph); n; n = agnxtnode(gv.graph, n))
        for (Agedge_t *e = agfstout(gv.graph, n); e; e = agnxtout(gv.graph, e)) {
            std::string ends = std::string(agnameof(agtail(e))) + ":" + agget(e, (char *)"tailport") + " " +
                               agnameof(aghead(e)) + ":" + agget(e, (char *)"headport");
            auto found = wireOfEnds.find(ends);
            const char *pos = agget(e, (char *)"pos");
            if (found == wireOfEnds.end() || !pos)
                continue;
            LaidOutWire &laid = layout.wires[found->second];
            bool hasTip = std::string(pos).rfind("e,", 0) == 0;
            std::vector<double> values = numbersIn(hasTip ? pos + 2 : pos);
            size_t first = 0;
            if (hasTip && values.size() >= 2) {
                laid.tip = place(values[0], values[1]);
                first = 2;
            }
            for (size_t v = first; v + 1 < values.size(); v += 2)
                laid.curve.push_back(place(values[v], values[v + 1]));
            if (!hasTip && !laid.curve.empty())
                laid.tip = laid.curve.back();
        }
    return true;
}

}
