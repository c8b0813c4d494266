/*
** hostapp/engine.cpp: the current diagram, the evaluation order of its blocks (with
** the refusal of algebraic loops), evaluation, points by name, and the user's clicks
** on points in point-selection mode.
*/
#include <algorithm>
#include <set>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "hostapp/diagram.h"
#include "hostapp/engine.h"
#include "hostapp/host_state.h"

namespace hostapp {

namespace {

std::unique_ptr<Diagram> &diagramHolder()
{
    static std::unique_ptr<Diagram> diagram;
    return diagram;
}

/* Port text after the '.': out, outN (outputs); in, inN, N (inputs). */
bool parsePortName(const std::string &port, bool &isInput, int &index)
{
    std::string digits;
    if (port.rfind("out", 0) == 0) {
        isInput = false;
        digits = port.substr(3);
    } else if (port.rfind("in", 0) == 0) {
        isInput = true;
        digits = port.substr(2);
    } else {
        isInput = true;
        digits = port;
        if (digits.empty())
            return false;
    }
    if (digits.empty()) {
        index = 1;
        return true;
    }
    if (digits.size() > 4 || !std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return false;
    index = std::stoi(digits);
    return index >= 1;
}

std::string quotedPaths(const std::vector<Block *> &blocks, const char *separator)
{
    std::string text;
    for (size_t i = 0; i < blocks.size(); ++i)
        text += (i ? separator : "") + ("'" + blocks[i]->path + "'");
    return text;
}

}

Diagram *currentDiagram()
{
    return diagramHolder().get();
}

void setCurrentDiagram(std::unique_ptr<Diagram> diagram)
{
    /* The plug-in's reference lists may hold points of the diagram going away. */
    if (diagramHolder() && host().plugin.resetRefPoints)
        host().plugin.resetRefPoints();
    diagramHolder() = std::move(diagram);
}

std::string Point::name() const
{
    if (isInput)
        return block->path + "." + std::to_string(port);
    return block->path + (port == 1 ? ".out" : ".out" + std::to_string(port));
}

void orderForEvaluation(Diagram &diagram)
{
    std::vector<Block *> leaves;
    forEachBlock(diagram.blocks, [&leaves](Block &block) {
        if (block.isLeaf())
            leaves.push_back(&block);
    });
    std::unordered_map<const Block *, size_t> indexOf;
    for (size_t i = 0; i < leaves.size(); ++i)
        indexOf[leaves[i]] = i;

    /* An edge producer -> reader wherever the reader's output depends on that input now. */
    std::vector<std::vector<size_t>> readersOf(leaves.size());
    std::vector<size_t> waitingFor(leaves.size(), 0);
    for (size_t i = 0; i < leaves.size(); ++i) {
        if (!hasFeedthrough(*leaves[i]))
            continue;
        for (const auto &input : leaves[i]->inputs) {
            readersOf[indexOf.at(input->signal->producer)].push_back(i);
            ++waitingFor[i];
        }
    }

    /* Kahn's method, taking the earliest block in file order first, so the order is stable. */
    std::set<size_t> ready;
    for (size_t i = 0; i < leaves.size(); ++i)
        if (waitingFor[i] == 0)
            ready.insert(i);
    diagram.evaluationOrder.clear();
    while (!ready.empty()) {
        size_t next = *ready.begin();
        ready.erase(ready.begin());
        diagram.evaluationOrder.push_back(leaves[next]);
        for (size_t reader : readersOf[next])
            if (--waitingFor[reader] == 0)
                ready.insert(reader);
    }
    if (diagram.evaluationOrder.size() == leaves.size())
        return;

    /* Every block left waits for another one left: walk back along such inputs until
    ** a block repeats; that stretch is a loop, named from its first block in the file. */
    size_t at = 0;
    while (waitingFor[at] == 0)
        ++at;
    std::vector<size_t> walk;
    while (std::find(walk.begin(), walk.end(), at) == walk.end()) {
        walk.push_back(at);
        for (const auto &input : leaves[at]->inputs) {
            size_t producer = indexOf.at(input->signal->producer);
            if (waitingFor[producer] > 0) {
                at = producer;
                break;
            }
        }
    }
    std::vector<size_t> cycle(std::find(walk.begin(), walk.end(), at), walk.end());
    std::reverse(cycle.begin(), cycle.end());
    std::rotate(cycle.begin(), std::min_element(cycle.begin(), cycle.end()), cycle.end());
    std::vector<Block *> loop;
    for (size_t index : cycle)
        loop.push_back(leaves[index]);
    loop.push_back(loop.front());
    throw DiagramError{loop.front()->line,
                       "algebraic loop: " + quotedPaths(loop, " -> ") +
                           " (each block's output depends on its input at once; put a block with state in the loop)"};
}

void executeBlocks(const std::vector<Block *> &blocks, double time)
{
    /* Outputs first, in order; then each block's derivatives or next states from the
    ** inputs of this pass, so a state block early in the order sees fresh inputs. */
    for (Block *block : blocks)
        evaluateOutput(*block, time);
    for (Block *block : blocks)
        evaluateNext(*block);
}

Block *findBlockByPath(Diagram &diagram, const std::string &path)
{
    const std::vector<std::unique_ptr<Block>> *scope = &diagram.blocks;
    Block *found = nullptr;
    size_t start = 0;
    while (start <= path.size()) {
        size_t slash = path.find('/', start);
        std::string id = path.substr(start, slash == std::string::npos ? std::string::npos : slash - start);
        found = nullptr;
        for (const auto &block : *scope)
            if (block->id == id)
                found = block.get();
        if (!found || slash == std::string::npos)
            return found;
        scope = &found->children;
        start = slash + 1;
    }
    return nullptr;
}

Point *portOf(Block &block, const std::string &port, bool defaultIsInput, std::string &error)
{
    bool isInput = defaultIsInput;
    int index = 1;
    if (!port.empty() && !parsePortName(port, isInput, index)) {
        error = "'" + block.path + "." + port + "' names no port (ports are out, outN, in, inN or N)";
        return nullptr;
    }
    const auto &ports = isInput ? block.inputs : block.outputs;
    if ((size_t)index > ports.size()) {
        error = "block '" + block.path + "' has no " + (isInput ? "input " : "output ") + std::to_string(index) +
                (ports.empty()       ? "; it has none"
                 : ports.size() == 1 ? "; it has only " + std::string(isInput ? "input" : "output") + " 1"
                                     : "; pick one from 1 to " + std::to_string(ports.size()));
        return nullptr;
    }
    return ports[(size_t)index - 1].get();
}

Point *findPoint(Diagram &diagram, const std::string &blockDotPort, std::string &error)
{
    size_t dot = blockDotPort.rfind('.');
    std::string path = blockDotPort.substr(0, dot);
    Block *block = findBlockByPath(diagram, path);
    if (!block) {
        error = "no block '" + path + "'; name a block by its id, or its path such as outer/inner";
        return nullptr;
    }
    return portOf(*block, dot == std::string::npos ? "" : blockDotPort.substr(dot + 1), false, error);
}

bool setSelection(Diagram &diagram, const std::vector<std::string> &ids, std::string &error, size_t &failed)
{
    std::unordered_map<std::string_view, Block *> byId;
    if (!ids.empty())
        for (const auto &block : diagram.blocks)
            byId.emplace(block->id, block.get());
    std::vector<Block *> selection;
    std::unordered_set<Block *> named;
    for (failed = 0; failed < ids.size(); ++failed) {
        const std::string &id = ids[failed];
        auto found = byId.find(id);
        if (found == byId.end()) {
            error = "selection: no block '" + id + "' at the top level of the diagram; list the ids of top-level blocks";
            return false;
        }
        if (!named.insert(found->second).second) {
            error = "selection: block '" + id + "' is named twice; list each block once";
            return false;
        }
        selection.push_back(found->second);
    }
    if (ids.empty())
        for (const auto &block : diagram.blocks)
            selection.push_back(block.get());
    diagram.selection = selection;
    return true;
}

bool selectBlocks(const std::vector<std::string> &ids, std::string &error)
{
    Diagram *diagram = currentDiagram();
    if (!diagram) {
        error = "no diagram is loaded to select blocks in; give a diagram file";
        return false;
    }
    size_t failed = 0;
    if (!setSelection(*diagram, ids, error, failed))
        return false;
    /* Marks the plug-in left on the old candidates would make the host judge points
    ** against blocks no longer selected. */
    forEachBlock(diagram->blocks, [](Block &block) { block.record.flags &= (uint8_t)~BLOCK_FLAG_CANDIDATE_MARK; });
    return true;
}

void clearDiagram()
{
    setCurrentDiagram(nullptr);
}

Point *findLoadedPoint(const std::string &blockDotPort, std::string &error)
{
    Diagram *diagram = currentDiagram();
    if (!diagram) {
        error = "no diagram is loaded to pick '" + blockDotPort + "' in; give a diagram file";
        return nullptr;
    }
    return findPoint(*diagram, blockDotPort, error);
}

bool clickReferencePoint(const std::string &blockDotPort, std::string &error)
{
    Point *point = findLoadedPoint(blockDotPort, error);
    if (!point)
        return false;
    if (!host().plugin.selectRefPoint) {
        error = "the plug-in takes no reference points; give the Praxa plug-in with --plugin";
        return false;
    }
    host().plugin.selectRefPoint(&point->record);
    return true;
}

bool applyDiagramReferencePoints(std::string &error)
{
    Diagram *diagram = currentDiagram();
    if (!diagram)
        return true;
    for (Point *point : {diagram->outputReference, diagram->inputReference})
        if (point && !clickReferencePoint(point->name(), error))
            return false;
    return true;
}

std::vector<double> diagramValues()
{
    std::vector<double> values;
    if (Diagram *diagram = currentDiagram()) {
        for (Block *block : diagram->evaluationOrder) {
            if (block->output)
                values.push_back(*block->output->slot());
            values.insert(values.end(), block->state.begin(), block->state.end());
            values.insert(values.end(), block->next.begin(), block->next.end());
        }
    }
    return values;
}

HostBlock *diagramBlock(const std::string &path)
{
    Diagram *diagram = currentDiagram();
    Block *block = diagram ? findBlockByPath(*diagram, path) : nullptr;
    return block ? &block->record : nullptr;
}

RefPoint *diagramPoint(const std::string &blockDotPort)
{
    std::string error;
    Point *point = findLoadedPoint(blockDotPort, error);
    return point ? &point->record : nullptr;
}

std::vector<std::string> selectedBlockIds()
{
    std::vector<std::string> ids;
    if (Diagram *diagram = currentDiagram())
        for (const Block *block : diagram->selection)
            ids.push_back(block->id);
    return ids;
}

std::vector<std::string> highlightedPoints()
{
    std::vector<std::string> names;
    if (Diagram *diagram = currentDiagram())
        forEachBlock(diagram->blocks, [&names](const Block &block) {
            for (const auto *ports : {&block.inputs, &block.outputs})
                for (const auto &point : *ports)
                    if (point->record.flags & REF_FLAG_HIGHLIGHT)
                        names.push_back(block.path + (point->isInput ? ".in" : ".out") + std::to_string(point->port));
        });
    return names;
}

void setSimulationStepObserver(std::function<void()> observer)
{
    if (Diagram *diagram = currentDiagram())
        diagram->stepObserver = std::move(observer);
}

int simulationStepRequests()
{
    Diagram *diagram = currentDiagram();
    return diagram ? diagram->simulationSteps : 0;
}

}
