/*
** hostapp/locus_marks.cpp: the open-loop poles and zeros of a root locus and its
** closed-loop poles at one gain, from the branch points (see the header), and the
** imaginary-axis crossings of its branches.  The polynomials are multiplied out and
** solved by the numerical core (polyFromRoots, polyRoots).
*/
#include "hostapp/locus_marks.h"

#include <algorithm>
#include <cmath>

#include "host/host.h"
#include "numeric/eigen.h"
#include "xfer/xfer.h"

namespace hostapp {

namespace {

using Point = std::complex<double>;
using Polynomial = std::vector<double>;   /* ascending powers */

/* The monic polynomial with the given roots (a step's branch points: conjugate pairs). */
Polynomial fromRoots(const std::vector<Point> &roots)
{
    std::vector<Complex> points, scratch(roots.size() + 2);
    for (const Point &r : roots)
        points.push_back({r.real(), r.imag()});
    Polynomial p(roots.size() + 1, 0.0);
    p[0] = 1.0;
    polyFromRoots(p.data(), scratch.data(), points.data(), (int32_t)points.size());
    return p;
}

double valueAt(const Polynomial &p, double s)
{
    double v = 0.0;
    for (size_t k = p.size(); k-- > 0;)
        v = v * s + p[k];
    return v;
}

/* The roots of p; none when its coefficients are not all finite (the eigenvalue solver
** would report them) or it is constant. */
std::vector<Point> rootsOf(const Polynomial &p)
{
    for (double c : p)
        if (!std::isfinite(c))
            return {};
    int32_t n = (int32_t)p.size() - 1;
    if (n < 1)
        return {};
    std::vector<Complex> roots((size_t)n);
    Matrix *work = matDecl((uint32_t)n, (uint32_t)n);
    int32_t degree = polyRoots(roots.data(), p.data(), n, work);
    gfree(work);
    std::vector<Point> found;
    for (int32_t k = 0; k < degree; ++k)
        found.push_back({roots[(size_t)k].re, roots[(size_t)k].im});
    return found;
}

Polynomial derivative(const Polynomial &p)
{
    Polynomial d;
    for (size_t k = 1; k < p.size(); ++k)
        d.push_back(p[k] * (double)k);
    return d.empty() ? Polynomial{0.0} : d;
}

/* a * b - c * d. */
Polynomial crossDifference(const Polynomial &a, const Polynomial &b, const Polynomial &c, const Polynomial &d)
{
    Polynomial result(std::max(a.size() + b.size(), c.size() + d.size()) - 1, 0.0);
    auto add = [&](const Polynomial &x, const Polynomial &y, double sign) {
        for (size_t i = 0; i < x.size(); ++i)
            for (size_t j = 0; j < y.size(); ++j)
                result[i + j] += sign * x[i] * y[j];
    };
    add(a, b, 1.0);
    add(c, d, -1.0);
    return result;
}

/* Where branches meet on the real axis and part (or join): the real roots of
** N D' - N' D, at which the gain -D/N is one the locus was drawn for. */
std::vector<Point> breakawayPoints(const Polynomial &denominator, const Polynomial &numerator,
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
    for (double c : p)
        largest = std::max(largest, std::fabs(c));
    while (p.size() > 1 && std::fabs(p.back()) <= 1e-10 * largest)
        p.pop_back();
    std::vector<Point> points;
    for (const Point &s : rootsOf(p)) {
        if (std::fabs(s.imag()) > 1e-6 * std::max(1.0, std::abs(s)))
            continue;
        double n = valueAt(numerator, s.real());
        if (n == 0.0)
            continue;
        double gain = -valueAt(denominator, s.real()) / n;
        double slack = 1e-9 * std::max(1.0, std::fabs(highest));
        if (gain >= lowest - slack && gain <= highest + slack)
            points.push_back({s.real(), 0.0});
    }
    return points;
}

std::vector<Point> pointsAt(const std::vector<PlotSeries> &branches, size_t step)
{
    std::vector<Point> points;
    for (const PlotSeries &b : branches) {
        if (step >= b.x.size() || !std::isfinite(b.x[step]) || !std::isfinite(b.y[step]))
            return {};
        points.push_back({b.x[step], b.y[step]});
    }
    return points;
}

std::vector<Point> axisCrossings(const std::vector<PlotSeries> &branches)
{
    std::vector<Point> crossings;
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
    std::vector<Point> first = pointsAt(branches, 0);
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
    marks.poles = k0 == 0.0 ? first : rootsOf(denominator);
    Polynomial zeroPolynomial{numerator.front()};
    if (zeroCount > 0 && (size_t)zeroCount < c0.size()) {
        zeroPolynomial.assign(numerator.begin(), numerator.begin() + zeroCount + 1);
        marks.zeros = rootsOf(zeroPolynomial);
    }
    marks.breakaways = breakawayPoints(denominator, zeroPolynomial, std::vector<double>(gains.begin(), gains.begin() + steps));

    Polynomial closedLoop(c0.size());
    for (size_t k = 0; k < c0.size(); ++k)
        closedLoop[k] = denominator[k] + gain * numerator[k];
    marks.atGain = rootsOf(closedLoop);
    return marks;
}

}
