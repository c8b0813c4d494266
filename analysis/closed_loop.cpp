/*
** analysis/closed_loop.cpp: the closed loop T = L/(1+L) under negative unity feedback:
** its state-space model, poles, stability, damping, bandwidth and peak sensitivity.
*/
#include "analysis/analysis.h"

#include <algorithm>
#include <cmath>

#include "host/host.h"
#include "numeric/eigen.h"

namespace analysis {

namespace {

/* 1 + D closer to zero than this makes the loop algebraically ill-posed. */
const double ILL_POSED = 1e-12;
const double ON_BOUNDARY = 1e-9;

std::vector<Root> eigenvaluesOf(const Model &m)
{
    if (m.order == 0)
        return {};
    Matrix *a = matDecl(m.order, m.order);
    std::copy(m.a.begin(), m.a.end(), a->data);
    std::vector<Complex> roots(m.order);
    eigenValues(roots.data(), a, (int32_t)m.order);
    gfree(a);
    std::vector<Root> poles;
    for (const Complex &r : roots)
        poles.emplace_back(r.re, r.im);
    return poles;
}

/* Damping ratio and natural frequency of a pole, through s = ln(z)/T when sampled;
** none for a pole at s = 0 or z = 0. */
void addDamping(ClosedLoop &figures, Root pole, double samplePeriod)
{
    Root s = samplePeriod > 0.0 ? std::log(pole) / samplePeriod : pole;
    double wn = std::abs(s);
    if (!std::isfinite(wn) || wn == 0.0) {
        figures.damping.push_back(std::nullopt);
        figures.naturalFrequency.push_back(std::nullopt);
        return;
    }
    figures.damping.push_back(-s.real() / wn);
    figures.naturalFrequency.push_back(wn);
}

bool poleOnBoundary(Root pole, double samplePeriod)
{
    if (samplePeriod > 0.0)
        return std::fabs(std::abs(pole) - 1.0) <= ON_BOUNDARY;
    return std::fabs(pole.real()) <= ON_BOUNDARY * std::max(1.0, std::abs(pole));
}

double closedLoopMagnitude(const LoopValue &v)
{
    std::complex<double> l = v.value();
    return std::isinf(v.magnitude) ? 1.0 : std::abs(l / (1.0 + l));
}

double sensitivityMagnitude(const LoopValue &v)
{
    return std::isinf(v.magnitude) ? 0.0 : 1.0 / std::abs(1.0 + v.value());
}

std::optional<double> bandwidthOf(const Loop &loop, const std::vector<double> &grid,
                                  const std::vector<LoopValue> &values)
{
    double dc = closedLoopDcGain(loop);
    if (!(dc > 0.0) || !std::isfinite(dc))
        return std::nullopt;
    double level = dc / std::sqrt(2.0);
    auto excess = [&](double w) { return closedLoopMagnitude(loopAt(loop, w)) - level; };
    double previous = 0.0;
    for (size_t i = 0; i < grid.size(); i++) {
        if (closedLoopMagnitude(values[i]) < level)
            return bisectRoot(excess, previous, grid[i]);
        previous = grid[i];
    }
    return std::nullopt;
}

std::optional<double> peakSensitivityOf(const Loop &loop, const Model &closed, const std::vector<double> &grid,
                                        const std::vector<LoopValue> &values)
{
    auto sensitivity = [&](double w) { return sensitivityMagnitude(loopAt(loop, w)); };
    double peak = 0.0;
    size_t at = grid.size();
    for (size_t i = 0; i < grid.size(); i++) {
        double s = sensitivityMagnitude(values[i]);
        if (!(s <= peak)) {
            peak = s;
            at = i;
        }
    }
    if (at < grid.size() && std::isfinite(peak)) {
        double a = at > 0 ? grid[at - 1] : grid[at] / 2;
        double b = at + 1 < grid.size() ? grid[at + 1] : grid[at];
        peak = std::max(peak, sensitivity(goldenMaximum(sensitivity, a, b)));
    }
    /* The ends of the axis: S(0), and S = 1/(1 + D) = 1 - T(infinity) at infinite frequency. */
    if (loop.originExcess < 0)
        peak = std::max(peak, 1.0);
    else if (loop.originExcess == 0 && (loop.singular.empty() || loop.singular[0] != 0.0))
        peak = std::max(peak, sensitivityMagnitude(loopAt(loop, 0.0)));
    if (loop.samplePeriod <= 0.0)
        peak = std::max(peak, std::fabs(1.0 - closed.d));
    if (!std::isfinite(peak))
        return std::nullopt;
    return peak;
}

}

ClosedLoopModel closeLoop(const Model &open)
{
    ClosedLoopModel closed;
    double feedThrough = 1.0 + open.d;
    closed.wellPosed = std::fabs(feedThrough) > ILL_POSED;
    if (!closed.wellPosed)
        return closed;
    Model &m = closed.model;
    uint32_t n = open.order;
    m.order = n;
    m.samplePeriod = open.samplePeriod;
    m.a = open.a;
    for (uint32_t j = 0; j < n; j++)
        for (uint32_t i = 0; i < n; i++)
            m.a[(size_t)j * n + i] -= open.b[i] * open.c[j] / feedThrough;
    for (uint32_t i = 0; i < n; i++) {
        m.b.push_back(open.b[i] / feedThrough);
        m.c.push_back(open.c[i] / feedThrough);
    }
    m.d = open.d / feedThrough;
    return closed;
}

double closedLoopDcGain(const Loop &loop)
{
    if (loop.originExcess > 0)
        return 1.0;
    if (loop.originExcess < 0)
        return 0.0;
    std::complex<double> l = loopAt(loop, 0.0).value();
    return std::abs(l / (1.0 + l));
}

ClosedLoop closedLoopFigures(const ClosedLoopModel &closed, const Loop &loop, const std::vector<double> &grid,
                             const std::vector<LoopValue> &values)
{
    ClosedLoop figures;
    figures.wellPosed = closed.wellPosed;
    if (!closed.wellPosed)
        return figures;
    const Model &m = closed.model;
    figures.poles = eigenvaluesOf(m);
    figures.stable = true;
    bool onBoundary = false;
    for (Root p : figures.poles) {
        bool inside = m.samplePeriod > 0.0 ? std::abs(p) < 1.0 : p.real() < 0.0;
        figures.stable = figures.stable && inside && !poleOnBoundary(p, m.samplePeriod);
        onBoundary = onBoundary || poleOnBoundary(p, m.samplePeriod);
        addDamping(figures, p, m.samplePeriod);
    }
    if (figures.stable)
        figures.bandwidth = bandwidthOf(loop, grid, values);
    if (!onBoundary)
        figures.peakSensitivity = peakSensitivityOf(loop, m, grid, values);
    return figures;
}

}
