/*
** analysis/margins.cpp: gain and phase crossovers of the open loop over the whole
** frequency axis, the margins read at them, and the critical margins.
*/
#include "analysis/analysis.h"

#include <cmath>
#include <numbers>

namespace analysis {

namespace {

const double DEGREES = 180.0 / std::numbers::pi;

/* Degrees wrapped into (-180, 180]. */
double wrapDegrees(double degrees)
{
    double wrapped = std::remainder(degrees, 360.0);
    return wrapped == -180.0 ? 180.0 : wrapped;
}

void addPhaseCrossover(Margins &margins, double w, const LoopValue &v)
{
    if (std::cos(v.angle) < 0.0 && std::isfinite(v.magnitude) && v.magnitude > 0.0)
        margins.phaseCrossovers.push_back({w, 1.0 / v.magnitude});
}

void pickCriticalValues(Margins &margins)
{
    for (const Crossover &c : margins.phaseCrossovers) {
        double db = 20.0 * std::log10(c.margin);
        if (!margins.gainMarginDb || std::fabs(db) < std::fabs(*margins.gainMarginDb)) {
            margins.gainMargin = c.margin;
            margins.gainMarginDb = db;
            margins.phaseCrossoverFrequency = c.frequency;
        }
    }
    for (const Crossover &c : margins.gainCrossovers) {
        if (!margins.phaseMargin || c.margin < *margins.phaseMargin) {
            margins.phaseMargin = c.margin;
            margins.gainCrossoverFrequency = c.frequency;
        }
    }
}

}

Margins findMargins(const Loop &loop, const std::vector<double> &grid, const std::vector<LoopValue> &values)
{
    Margins margins;
    if (loop.gain == 0.0 || !std::isfinite(loop.gain) || grid.empty())
        return margins;
    auto sine = [&](double w) { return std::sin(loopAt(loop, w).angle); };
    auto logMagnitude = [&](double w) { return std::log(loopAt(loop, w).magnitude); };
    double top = topFrequency(loop);

    /* At zero frequency L is real: a negative value there is a phase crossover. */
    bool rootAtOrigin = loop.originExcess != 0 || (!loop.singular.empty() && loop.singular[0] == 0.0);
    if (!rootAtOrigin)
        addPhaseCrossover(margins, 0.0, loopAt(loop, 0.0));

    for (size_t i = 0; i + 1 < grid.size(); i++) {
        double a = grid[i], b = grid[i + 1];
        double ga = std::log(values[i].magnitude), gb = std::log(values[i + 1].magnitude);
        if (std::isfinite(ga) && std::isfinite(gb) && (ga > 0.0) != (gb > 0.0)) {
            double w = bisectRoot(logMagnitude, a, b);
            margins.gainCrossovers.push_back({w, wrapDegrees(loopAt(loop, w).angle * DEGREES + 180.0)});
        }
        /* The imaginary part is exactly 0 at the Nyquist frequency; that end is read below. */
        if (b == top || spansSingularity(loop, a, b))
            continue;
        double sa = std::sin(values[i].angle), sb = std::sin(values[i + 1].angle);
        if ((sa < 0.0 && sb > 0.0) || (sa > 0.0 && sb < 0.0)) {
            double w = bisectRoot(sine, a, b);
            addPhaseCrossover(margins, w, loopAt(loop, w));
        }
    }
    if (grid.back() == top)
        addPhaseCrossover(margins, top, values.back());
    pickCriticalValues(margins);
    return margins;
}

std::optional<double> delayMarginOf(const Margins &margins)
{
    std::optional<double> smallest;
    for (const Crossover &c : margins.gainCrossovers) {
        if (!(c.frequency > 0.0))
            continue;
        double delay = std::fmod(c.margin + 360.0, 360.0) / DEGREES / c.frequency;
        if (!smallest || delay < *smallest)
            smallest = delay;
    }
    return smallest;
}

}
