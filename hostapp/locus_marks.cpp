/*
** hostapp/locus_marks.cpp: the open-loop poles and zeros of a root locus and its
** closed-loop poles at one gain, from the branch points (see the header), and the
** imaginary-axis crossings of its branches.
*/
#include "hostapp/locus_marks.h"

#include <algorithm>
#include <cmath>

namespace hostapp {

namespace {

using Complex = std::complex<double>;
using Polynomial = std::vector<Complex>;   /* descending powers */

constexpr int MAX_ITERATIONS = 500;

Polynomial fromRoots(const std::vector<Complex> &roots)
{
    Polynomial p = {1.0};
    for (const Complex &r : roots) {
        p.push_back(0.0);
        for (size_t k = p.size() - 1; k > 0; --k)
            p[k] -= r * p[k - 1];
    }
    return p;
}

Complex valueAt(const Polynomial &p, Complex s)
{
    Complex v = 0.0;
    for (const Complex &c : p)
        v = v * s + c;
    return v;
}

/* The roots of p (leading coefficient nonzero) by the Durand-Kerner iteration, from
** `start` when it has one guess per root; a bounded number of sweeps. */
std::vector<Complex> rootsOf(Polynomial p, std::vector<Complex> start)
{
    size_t degree = p.size() - 1;
    if (degree == 0 || p[0] == 0.0)
        return {};
    Complex lead = p[0];
    for (Complex &c : p)
        c /= lead;
    double bound = 1.0;
    for (size_t k = 1; k < p.size(); ++k)
        bound = std::max(bound, 1.0 + std::abs(p[k]));
    std::vector<Complex> z = start;
    if (z.size() != degree) {
        z.clear();
        for (size_t k = 0; k < degree; ++k)
            z.push_back(bound * 0.5 * std::pow(Complex(0.4, 0.9), (double)k));
    } else {
        /* Real guesses of a real polynomial stay real in this iteration and never reach
        ** complex roots: each is nudged off the axis. */
        for (size_t k = 0; k < degree; ++k)
            z[k] += 1e-3 * std::max(1.0, std::abs(z[k])) * std::pow(Complex(0.4, 0.9), (double)(k + 1));
    }
    for (int iteration = 0; iteration < MAX_ITERATIONS; ++iteration) {
        double moved = 0.0;
        for (size_t i = 0; i < degree; ++i) {
            Complex denominator = 1.0;
            for (size_t j = 0; j < degree; ++j)
                if (j != i)
                    denominator *= z[i] - z[j];
            if (denominator == 0.0)
                denominator = 1e-12;
            Complex step = valueAt(p, z[i]) / denominator;
            if (!std::isfinite(step.real()) || !std::isfinite(step.imag()))
                return {};
            z[i] -= step;
            moved = std::max(moved, std::abs(step) / std::max(1.0, std::abs(z[i])));
        }
        if (moved < 1e-14)
            break;
    }
    return z;
}

Polynomial derivative(const Polynomial &p)
{
    Polynomial d;
    for (size_t k = 0; k + 1 < p.size(); ++k)
        d.push_back(p[k] * (double)(p.size() - 1 - k));
    return d.empty() ? Polynomial{0.0} : d;
}

/* a * b - c * d, coefficients aligned at the constant term. */
Polynomial crossDifference(const Polynomial &a, const Polynomial &b, const Polynomial &c, const Polynomial &d)
{
    Polynomial result(std::max(a.size() + b.size(), c.size() + d.size()) - 1, 0.0);
    auto add = [&](const Polynomial &x, const Polynomial &y, double sign) {
        for (size_t i = 0; i < x.size(); ++i)
            for (size_t j = 0; j < y.size(); ++j)
                result[result.size() - (x.size() - i) - (y.size() - j) + 1] += sign * x[i] * y[j];
    };
    add(a, b, 1.0);
    add(c, d, -1.0);
    return result;
}

/* Where branches meet on the real axis and part (or join): the real roots of
** N D' - N' D, at which the gain -D/N is one the locus was drawn for. */
std::vector<Complex> breakawayPoints(const Polynomial &denominator, const Polynomial &numerator,
                                     const std::vector<double> &gains)
{
    double lowest = INFINITY, highest = -INFINITY;
    for (double k : gains)
        if (std::isfinite(k)) {
            lowest = std::min(lowest, k);
            highest = std::max(highest, k);
        }
    Polynomial p = crossDifference(numerator, derivative(denominator), derivative(numerator), denominator);
    /* The leading terms cancel when N and D have the same degree: drop what rounding left. */
    double largest = 0.0;
    for (const Complex &c : p)
        largest = std::max(largest, std::abs(c));
    while (p.size() > 1 && std::abs(p[0]) <= 1e-10 * largest)
        p.erase(p.begin());
    std::vector<Complex> points;
    for (const Complex &s : rootsOf(p, {})) {
        if (std::fabs(s.imag()) > 1e-6 * std::max(1.0, std::abs(s)))
            continue;
        Complex n = valueAt(numerator, s.real());
        if (n == 0.0)
            continue;
        double gain = (-valueAt(denominator, s.real()) / n).real();
        double slack = 1e-9 * std::max(1.0, std::fabs(highest));
        if (gain >= lowest - slack && gain <= highest + slack)
            points.push_back({s.real(), 0.0});
    }
    return points;
}

std::vector<Complex> pointsAt(const std::vector<PlotSeries> &branches, size_t step)
{
    std::vector<Complex> points;
    for (const PlotSeries &b : branches) {
        if (step >= b.x.size() || !std::isfinite(b.x[step]) || !std::isfinite(b.y[step]))
            return {};
        points.push_back({b.x[step], b.y[step]});
    }
    return points;
}

std::vector<Complex> axisCrossings(const std::vector<PlotSeries> &branches)
{
    std::vector<Complex> crossings;
    for (const PlotSeries &b : branches)
        for (size_t i = 1; i < b.x.size(); ++i) {
            double x0 = b.x[i - 1], x1 = b.x[i];
            if (!std::isfinite(x0) || !std::isfinite(x1) || !std::isfinite(b.y[i - 1]) || !std::isfinite(b.y[i]))
                continue;
            if ((x0 < 0 && x1 > 0) || (x0 > 0 && x1 < 0)) {
                double t = x0 / (x0 - x1);
                crossings.push_back({0.0, b.y[i - 1] + t * (b.y[i] - b.y[i - 1])});
            }
        }
    return crossings;
}

}

LocusMarks locusMarks(const std::vector<PlotSeries> &branches, const std::vector<double> &gains, int zeroCount,
                      double gain)
{
    LocusMarks marks;
    if (branches.empty())
        return marks;
    marks.axisCrossings = axisCrossings(branches);
    size_t steps = gains.size();
    for (const PlotSeries &b : branches)
        steps = std::min(steps, b.x.size());
    if (steps < 2 || !std::isfinite(gains[0]))
        return marks;
    std::vector<Complex> first = pointsAt(branches, 0);
    /* The second step: a gain well apart from the first, not so far that the roots run
    ** to where the polynomial's coefficients lose the zeros to rounding. */
    size_t second = 0;
    for (size_t i = 1; i < steps; ++i)
        if (std::isfinite(gains[i]) && gains[i] != gains[0] && !pointsAt(branches, i).empty()) {
            second = i;
            if (i >= steps / 4)
                break;
        }
    if (first.empty() || second == 0)
        return marks;
    Polynomial c0 = fromRoots(first), c1 = fromRoots(pointsAt(branches, second));
    double k0 = gains[0], dk = gains[second] - gains[0];
    Polynomial numerator(c0.size()), denominator(c0.size());
    for (size_t k = 0; k < c0.size(); ++k) {
        numerator[k] = (c1[k] - c0[k]) / dk;
        denominator[k] = c0[k] - k0 * numerator[k];
    }
    marks.poles = k0 == 0.0 ? first : rootsOf(denominator, first);
    Polynomial zeroPolynomial{numerator.back()};
    if (zeroCount > 0 && (size_t)zeroCount < c0.size()) {
        zeroPolynomial.assign(numerator.end() - zeroCount - 1, numerator.end());
        marks.zeros = rootsOf(zeroPolynomial, {});
    }
    marks.breakaways = breakawayPoints(denominator, zeroPolynomial, std::vector<double>(gains.begin(), gains.begin() + steps));

    /* Start from the branch points of the step whose gain is nearest. */
    size_t nearest = 0;
    for (size_t i = 0; i < steps; ++i)
        if (std::fabs(gains[i] - gain) < std::fabs(gains[nearest] - gain))
            nearest = i;
    Polynomial closedLoop(c0.size());
    for (size_t k = 0; k < c0.size(); ++k)
        closedLoop[k] = denominator[k] + gain * numerator[k];
    marks.atGain = rootsOf(closedLoop, pointsAt(branches, nearest));
    return marks;
}

}
