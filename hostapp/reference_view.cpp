/*
** hostapp/reference_view.cpp: the host's view of the reference points on the command
** line: whether a point the user picks can be an input or output of the selection (a
** click on any other point would be taken as something else, or ignored), which points
** are highlighted as the ones taken, and why an analysis between them has nothing to
** show (a selection without states, or an input that does not reach the output).
*/
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "hostapp/diagram.h"
#include "hostapp/engine.h"

namespace hostapp {

namespace {

bool inSelection(const Diagram &diagram, const Block *block)
{
    while (block && block->parent)
        block = block->parent;
    return std::find(diagram.selection.begin(), diagram.selection.end(), block) != diagram.selection.end();
}

bool computedBySelection(const Diagram &diagram, const Point &point)
{
    return point.signal && inSelection(diagram, point.signal->producer);
}

bool readBySelection(const Diagram &diagram, const Point &point)
{
    return point.signal && std::any_of(point.signal->readers.begin(), point.signal->readers.end(),
                                       [&](const Block *b) { return inSelection(diagram, b); });
}

/* As the linearizer judges points: an output is computed by the selection (or shown by
** a plot); an input enters it from outside, and a click prefers the output reading. */
bool canBeOutput(const Diagram &diagram, const Point &point)
{
    return computedBySelection(diagram, point) || (point.isInput && point.block->type == BlockType::Plot);
}

bool canBeInput(const Diagram &diagram, const Point &point)
{
    return !canBeOutput(diagram, point) && readBySelection(diagram, point);
}

/* Up to three points of the diagram that could serve, for the message. */
std::string examplesOf(Diagram &diagram, bool inputs)
{
    std::vector<std::string> names;
    forEachBlock(diagram.blocks, [&](Block &block) {
        if (!block.isLeaf())
            return;
        for (const auto &point : inputs ? block.inputs : block.outputs)
            if (names.size() < 3 && (inputs ? canBeInput(diagram, *point) : canBeOutput(diagram, *point)))
                names.push_back(point->name());
    });
    std::string text;
    for (size_t i = 0; i < names.size(); ++i)
        text += (i ? ", " : "") + names[i];
    return text.empty() ? "none: select other blocks" : text;
}

std::vector<Point *> highlighted(Diagram &diagram)
{
    std::vector<Point *> points;
    forEachBlock(diagram.blocks, [&points](Block &block) {
        for (auto *ports : {&block.inputs, &block.outputs})
            for (const auto &point : *ports)
                if (point->record.flags & REF_FLAG_HIGHLIGHT)
                    points.push_back(point.get());
    });
    return points;
}

/* The host's own central differences over the selected blocks between the points: just
** enough to tell whether the transfer function is zero. */
struct SmallSignal {
    size_t n = 0;
    std::vector<double> a, b, c;   /* a row-major n x n */
    double d = 0.0;
};

SmallSignal smallSignal(Diagram &diagram, Point &input, Point &output)
{
    std::vector<Block *> blocks;
    std::vector<double *> states, rates;
    for (Block *block : diagram.evaluationOrder) {
        if (!inSelection(diagram, block))
            continue;
        blocks.push_back(block);
        for (size_t i = 0; i < block->state.size(); ++i) {
            states.push_back(&block->state[i]);
            rates.push_back(&block->next[i]);
        }
    }
    SmallSignal model;
    model.n = states.size();
    model.a.assign(model.n * model.n, 0.0);
    model.b.assign(model.n, 0.0);
    model.c.assign(model.n, 0.0);
    double *y = output.signal->slot();
    auto differentiate = [&](double *value, std::vector<double> &column, double &dy) {
        double at = *value, step = 1e-6 * std::max(1.0, std::fabs(at));
        std::vector<double> plus(model.n);
        *value = at + step;
        executeBlocks(blocks, diagram.time);
        for (size_t i = 0; i < model.n; ++i)
            plus[i] = *rates[i];
        double yPlus = *y;
        *value = at - step;
        executeBlocks(blocks, diagram.time);
        for (size_t i = 0; i < model.n; ++i)
            column[i] = (plus[i] - *rates[i]) / (2 * step);
        dy = (yPlus - *y) / (2 * step);
        *value = at;
    };
    differentiate(input.signal->slot(), model.b, model.d);
    std::vector<double> column(model.n);
    for (size_t j = 0; j < model.n; ++j) {
        differentiate(states[j], column, model.c[j]);
        for (size_t i = 0; i < model.n; ++i)
            model.a[i * model.n + j] = column[i];
    }
    executeBlocks(blocks, diagram.time);
    return model;
}

/* G(s) = D + C B / s + C A B / s^2 + ...: zero when D and the first n Markov
** parameters are. Each C A^k B is measured against sum |c_i| |(A^k B)_i|, the size of the
** products it was summed from, so that only cancellation to rounding level counts as zero;
** a bound grown by |A| at every step would call the late first Markov parameter of a high
** relative degree zero. Blocks that pass no change leave exact zeros (their central
** differences are exactly 0), which pass either way. */
bool transferIsZero(const SmallSignal &m)
{
    if (m.d != 0.0)
        return false;
    std::vector<double> power = m.b;    /* A^k B */
    for (size_t k = 0; k < m.n; ++k) {
        double markov = 0.0, size = 0.0;
        for (size_t i = 0; i < m.n; ++i) {
            markov += m.c[i] * power[i];
            size += std::fabs(m.c[i] * power[i]);
        }
        if (std::fabs(markov) > 1e-9 * size)
            return false;
        std::vector<double> next(m.n, 0.0);
        for (size_t i = 0; i < m.n; ++i)
            for (size_t j = 0; j < m.n; ++j)
                next[i] += m.a[i * m.n + j] * power[j];
        power = next;
    }
    return true;
}

}

bool pickReferencePoint(const std::string &blockDotPort, bool asInput, std::string &error)
{
    Point *point = findLoadedPoint(blockDotPort, error);
    if (!point)
        return false;
    Diagram *diagram = currentDiagram();
    std::string name = point->name();
    if (asInput && !canBeInput(*diagram, *point)) {
        error = canBeOutput(*diagram, *point)
                    ? (computedBySelection(*diagram, *point) ? "the selection computes " + name
                                                             : name + " is a plot's input") +
                          ", so it would be taken as the output, not the input"
                    : "no selected block reads " + name + ", so it cannot be an input of the selection";
        error += "; pick a signal that enters the selection, such as " + examplesOf(*diagram, true);
        return false;
    }
    if (!asInput && !canBeOutput(*diagram, *point)) {
        error = "no selected block computes " + name + ", so it cannot be an output of the selection; pick one "
                "that does, such as " + examplesOf(*diagram, false);
        return false;
    }
    /* A click on a highlighted point takes it away: one already taken stays as it is. */
    if (point->record.flags & REF_FLAG_HIGHLIGHT)
        return true;
    return clickReferencePoint(blockDotPort, error);
}

TakenPoints takenReferencePoints(Diagram &diagram)
{
    TakenPoints taken;
    for (Point *point : highlighted(diagram))
        (canBeOutput(diagram, *point) ? taken.output : taken.input) = point;
    return taken;
}

std::string highlightedReferencePoints()
{
    Diagram *diagram = currentDiagram();
    if (!diagram)
        return "";
    TakenPoints taken = takenReferencePoints(*diagram);
    if (!taken.input && !taken.output)
        return "";
    return "input " + (taken.input ? taken.input->name() : std::string("none")) + ", output " +
           (taken.output ? taken.output->name() : std::string("none"));
}

std::string emptyAnalysisReason()
{
    Diagram *diagram = currentDiagram();
    if (!diagram)
        return "";
    auto [input, output] = takenReferencePoints(*diagram);
    if (!input || !output || !input->signal || !output->signal)
        return "";
    SmallSignal model = smallSignal(*diagram, *input, *output);
    if (model.n == 0) {
        char gain[32];
        std::snprintf(gain, sizeof gain, "%.6g", model.d);
        return "nothing to plot: the selection has no states, so from " + input->name() + " to " + output->name() +
               " it is the constant gain " + gain + "; add a block with state (an integrator or a transfer "
               "function) to the selection to see a frequency response or a root locus";
    }
    if (transferIsZero(model))
        return "nothing to show: the input " + input->name() + " does not reach the output " + output->name() +
               " at this operating point (the transfer function is 0; a saturation past its limit, a dead zone "
               "or a switch passes no change); move the operating point or pick other points";
    return "";
}

}
