/*
** hostapp/diagram_picture.cpp: drawing the laid-out diagram as SVG (see the header for
** the ids and data attributes a program may rely on).
*/
#include "hostapp/diagram_picture.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "hostapp/diagram_layout.h"
#include "hostapp/host_state.h"
#include "hostapp/svg_plot.h"
#include "hostapp/svg_text.h"
#include "platform/driver.h"

namespace hostapp {

namespace {

constexpr double LEGEND_HEIGHT = 30;
const char *const INPUT_COLOUR = "#2ca02c";
const char *const OUTPUT_COLOUR = "#d62728";

std::string n(double v)
{
    return svgNumber(v);
}

std::string attribute(const std::string &text)
{
    return escapeXml(text, true);
}

std::string elementId(const std::string &path)
{
    static const char HEX[] = "0123456789abcdef";
    std::string id = "block-";
    for (char c : path) {
        unsigned char u = (unsigned char)c;
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-') {
            id += c;
        } else {
            id += '_';
            id += HEX[u >> 4];
            id += HEX[u & 15];
        }
    }
    return id;
}

std::string portName(const Point &p)
{
    return (p.isInput ? "in" : "out") + std::to_string(p.port);
}

bool isSelected(const Diagram &diagram, const Block *block)
{
    while (block && block->parent)
        block = block->parent;
    return std::find(diagram.selection.begin(), diagram.selection.end(), block) != diagram.selection.end();
}

class PictureWriter {
public:
    PictureWriter(const Diagram &diagram, const DiagramLayout &layout, const TakenPoints &taken)
        : diagram_(diagram), layout_(layout), taken_(taken)
    {
        for (const LaidOutNode &node : layout.nodes) {
            if (node.compoundPort) {
                nodeOfPoint_[node.compoundPort] = &node;
                continue;
            }
            for (const auto &p : node.block->inputs)
                nodeOfPoint_[p.get()] = &node;
            for (const auto &p : node.block->outputs)
                nodeOfPoint_[p.get()] = &node;
        }
    }

    std::string svg()
    {
        double width = std::max(layout_.width, 260.0), height = layout_.height + LEGEND_HEIGHT;
        text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
        text_ += "<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"diagram\" width=\"" + n(width) + "\" height=\"" +
                 n(height) + "\" viewBox=\"0 0 " + n(width) + " " + n(height) +
                 "\" font-family=\"DejaVu Sans, Arial, Helvetica, sans-serif\" font-size=\"12\">\n";
        text_ += "<title>" + attribute(diagram_.name) + "</title>\n";
        text_ += "<rect width=\"" + n(width) + "\" height=\"" + n(height) + "\" fill=\"#ffffff\"/>\n";
        for (const LaidOutCluster &c : layout_.clusters)
            cluster(c);
        text_ += "<g class=\"wires\" fill=\"none\" stroke=\"#404040\" stroke-width=\"1.2\">\n";
        for (const LaidOutWire &w : layout_.wires)
            wire(w);
        text_ += "</g>\n";
        for (const LaidOutNode &node : layout_.nodes)
            node.compoundPort ? compoundPort(node) : block(node);
        referencePoint(taken_.input, "input", INPUT_COLOUR);
        referencePoint(taken_.output, "output", OUTPUT_COLOUR);
        legend(height - LEGEND_HEIGHT + 8);
        text_ += "</svg>\n";
        return text_;
    }

private:
    const Diagram &diagram_;
    const DiagramLayout &layout_;
    /* The points the session has taken: the diagram file's own, or those picked instead. */
    TakenPoints taken_;
    std::map<const Point *, const LaidOutNode *> nodeOfPoint_;
    std::string text_;

    /* Where a wire or a marker meets the point. */
    LayoutPoint pointPosition(const Point &p) const
    {
        auto found = nodeOfPoint_.find(&p);
        if (found == nodeOfPoint_.end())
            return {};
        const LaidOutNode &node = *found->second;
        if (node.compoundPort)
            return {node.x + (p.isInput ? 0 : node.width), node.y + node.height / 2};
        int count = (int)(p.isInput ? node.block->inputs.size() : node.block->outputs.size());
        return portPosition(node, p.isInput, p.port, count);
    }

    std::string blockAttributes(const Block &b, const std::string &cls)
    {
        return "class=\"" + cls + (isSelected(diagram_, &b) ? " selected" : "") + "\" id=\"" + elementId(b.path) +
               "\" data-block=\"" + attribute(b.path) + "\" data-type=\"" + blockTypeName(b.type) + "\"";
    }

    std::string portAttributes(const Point &p)
    {
        return "class=\"port port-" + std::string(p.isInput ? "in" : "out") + "\" id=\"" + elementId(p.block->path) +
               "-" + portName(p) + "\" data-block=\"" + attribute(p.block->path) + "\" data-port=\"" + portName(p) +
               "\" data-dir=\"" + (p.isInput ? "in" : "out") + "\" data-point=\"" +
               attribute(p.block->path + "." + portName(p)) + "\"";
    }

    void label(double x, double y, const std::string &content, const std::string &attributes)
    {
        text_ += "<text x=\"" + n(x) + "\" y=\"" + n(y) + "\" " + attributes + ">" + attribute(content) + "</text>\n";
    }

    void cluster(const LaidOutCluster &c)
    {
        bool selected = isSelected(diagram_, c.block);
        text_ += "<g " + blockAttributes(*c.block, "block compound") + ">\n";
        text_ += "<rect x=\"" + n(c.x) + "\" y=\"" + n(c.y) + "\" width=\"" + n(c.width) + "\" height=\"" +
                 n(c.height) + "\" rx=\"6\" fill=\"" + (selected ? "#fff8dc" : "#f5f7fa") + "\" stroke=\"" +
                 (selected ? "#c08000" : "#8090a0") + "\" stroke-width=\"" + (selected ? "2" : "1") +
                 "\" stroke-dasharray=\"6 3\"/>\n";
        label(c.x + 8, c.y + 15, c.block->id, "font-weight=\"bold\" fill=\"#405060\"");
        text_ += "</g>\n";
    }

    void wire(const LaidOutWire &w)
    {
        if (w.curve.empty())
            return;
        std::string d = "M" + n(w.curve[0].x) + "," + n(w.curve[0].y);
        for (size_t i = 1; i + 2 < w.curve.size(); i += 3)
            d += " C" + n(w.curve[i].x) + "," + n(w.curve[i].y) + " " + n(w.curve[i + 1].x) + "," +
                 n(w.curve[i + 1].y) + " " + n(w.curve[i + 2].x) + "," + n(w.curve[i + 2].y);
        const LayoutPoint &last = w.curve.back();
        double dx = w.tip.x - last.x, dy = w.tip.y - last.y, length = std::hypot(dx, dy);
        std::string from = w.from->block->path + "." + portName(*w.from);
        std::string to = w.to->block->path + "." + portName(*w.to);
        text_ += "<g class=\"wire\" data-from=\"" + attribute(from) + "\" data-to=\"" + attribute(to) + "\">";
        text_ += "<path d=\"" + d + (length > 0 ? " L" + n(w.tip.x) + "," + n(w.tip.y) : "") + "\"/>";
        if (length > 0) {
            /* The arrow head along the last piece of the curve, ending at the input. */
            double ux = dx / length, uy = dy / length, size = 7;
            double bx = w.tip.x - ux * size, by = w.tip.y - uy * size;
            text_ += "<path d=\"M" + n(w.tip.x) + "," + n(w.tip.y) + " L" + n(bx - uy * 3.5) + "," + n(by + ux * 3.5) +
                     " L" + n(bx + uy * 3.5) + "," + n(by - ux * 3.5) + " Z\" fill=\"#404040\" stroke=\"none\"/>";
        }
        text_ += "</g>\n";
    }

    void port(const Point &p, const LaidOutNode &node)
    {
        LayoutPoint at = pointPosition(p);
        double x = p.isInput ? node.x : node.x + node.width - 10;
        text_ += "<g " + portAttributes(p) + ">";
        text_ += "<rect x=\"" + n(x) + "\" y=\"" + n(at.y - PORT_PITCH / 2 + 1) + "\" width=\"10\" height=\"" +
                 n(PORT_PITCH - 2) + "\" fill=\"#ffffff\" stroke=\"#6080a0\"/>";
        text_ += "<text x=\"" + n(x + 5) + "\" y=\"" + n(at.y + 3.5) +
                 "\" font-size=\"9\" text-anchor=\"middle\" fill=\"#304050\">" + std::to_string(p.port) + "</text>";
        text_ += "</g>\n";
    }

    void block(const LaidOutNode &node)
    {
        const Block &b = *node.block;
        bool selected = isSelected(diagram_, &b);
        text_ += "<g " + blockAttributes(b, "block") + ">\n";
        double left = node.x + (b.inputs.empty() ? 0 : 4), right = node.x + node.width - (b.outputs.empty() ? 0 : 4);
        text_ += "<rect x=\"" + n(left) + "\" y=\"" + n(node.y) + "\" width=\"" + n(right - left) + "\" height=\"" +
                 n(node.height) + "\" rx=\"4\" fill=\"" + (selected ? "#fff3c4" : "#ffffff") + "\" stroke=\"" +
                 (selected ? "#c08000" : "#304050") + "\" stroke-width=\"" + (selected ? "2" : "1.2") + "\"/>\n";
        double lineY = node.y + node.height / 2 - (node.caption.size() - 1) * 7.5 + 4;
        for (size_t i = 0; i < node.caption.size(); ++i, lineY += 15)
            label(node.x + node.width / 2, lineY, node.caption[i],
                  "text-anchor=\"middle\"" + std::string(i == 0 ? " font-weight=\"bold\"" : i == 1 ? " fill=\"#506070\"" : ""));
        for (const auto &p : b.inputs)
            port(*p, node);
        for (const auto &p : b.outputs)
            port(*p, node);
        text_ += "</g>\n";
    }

    void compoundPort(const LaidOutNode &node)
    {
        const Point &p = *node.compoundPort;
        text_ += "<g " + portAttributes(p) + ">";
        text_ += "<rect x=\"" + n(node.x + 2) + "\" y=\"" + n(node.y + 1) + "\" width=\"" + n(node.width - 4) +
                 "\" height=\"" + n(node.height - 2) + "\" rx=\"8\" fill=\"#e8eef5\" stroke=\"#6080a0\"/>";
        text_ += "<text x=\"" + n(node.x + node.width / 2) + "\" y=\"" + n(node.y + node.height / 2 + 4) +
                 "\" font-size=\"10\" text-anchor=\"middle\" fill=\"#304050\">" + attribute(node.caption[0]) +
                 "</text></g>\n";
    }

    void referencePoint(const Point *p, const char *what, const char *colour)
    {
        if (!p || !nodeOfPoint_.count(p))
            return;
        LayoutPoint at = pointPosition(*p);
        bool left = p->isInput;
        double labelX = at.x + (left ? -8 : 8);
        text_ += "<g class=\"reference-point " + std::string(what) + "-point\" data-point=\"" +
                 attribute(p->block->path + "." + portName(*p)) + "\">";
        text_ += "<circle cx=\"" + n(at.x) + "\" cy=\"" + n(at.y) + "\" r=\"5\" fill=\"" + colour +
                 "\" stroke=\"#ffffff\" stroke-width=\"1.5\"/>";
        text_ += "<text x=\"" + n(labelX) + "\" y=\"" + n(at.y - 8) + "\" text-anchor=\"" + (left ? "end" : "start") +
                 "\" font-weight=\"bold\" fill=\"" + colour + "\">" + what + "</text></g>\n";
    }

    void legend(double y)
    {
        text_ += "<g class=\"legend\" font-size=\"11\" fill=\"#404040\">";
        text_ += "<rect x=\"12\" y=\"" + n(y) + "\" width=\"14\" height=\"12\" fill=\"#fff3c4\" stroke=\"#c08000\" "
                 "stroke-width=\"2\"/><text x=\"32\" y=\"" + n(y + 10) + "\">selected</text>";
        text_ += "<circle cx=\"100\" cy=\"" + n(y + 6) + "\" r=\"5\" fill=\"" + INPUT_COLOUR +
                 "\"/><text x=\"110\" y=\"" + n(y + 10) + "\">input point</text>";
        text_ += "<circle cx=\"195\" cy=\"" + n(y + 6) + "\" r=\"5\" fill=\"" + OUTPUT_COLOUR +
                 "\"/><text x=\"205\" y=\"" + n(y + 10) + "\">output point</text>";
        text_ += "</g>\n";
    }
};

/* The diagram file's name without folder and extension, letters and digits kept. */
std::string defaultPictureName(const std::string &diagramName)
{
    std::string name = diagramName.substr(diagramName.find_last_of('/') + 1);
    name = name.substr(0, name.rfind('.'));
    std::string safe;
    for (char c : name)
        safe += (std::isalnum((unsigned char)c) && (unsigned char)c < 0x80) || c == '-' || c == '_' ? c : '-';
    return (safe.empty() ? "diagram" : safe) + ".svg";
}

}

std::string diagramPictureSvg(std::string &error)
{
    Diagram *diagram = currentDiagram();
    if (!diagram) {
        error = "no diagram is loaded to draw; give a diagram file before the draw command";
        return "";
    }
    DiagramLayout layout;
    if (!layOutDiagram(*diagram, layout, error))
        return "";
    return PictureWriter(*diagram, layout, takenReferencePoints(*diagram)).svg();
}

bool writeDiagramPicture(const std::string &fileName, std::string &error)
{
    std::string svg = diagramPictureSvg(error);
    if (svg.empty())
        return false;
    std::string name = fileName.empty() ? defaultPictureName(currentDiagram()->name) : fileName;
    std::string path = outputPath(name);
    if (!writeSvgFile(path, svg, &error)) {
        error = "cannot write " + path + ": " + error + "; give another folder with --out or another name with --file";
        return false;
    }
    platform::transcriptNote("[draw] " + name);
    return true;
}

}
