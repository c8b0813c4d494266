/*
** analysis/loop_response.cpp: the open loop's frequency response, its frequency grid,
** and the bracketed refinements of roots and maxima.
*/
#include "analysis/loop_response.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "freq/pole_zero.h"

namespace analysis {

namespace {

const double ON_AXIS = 1e-9;            /* relative distance from the axis or circle */
const int POINTS_PER_DECADE = 60;
const int MAX_GRID_POINTS = 20000;
const int MAX_EXTENSIONS = 60;          /* decades a range may grow to reach a crossing */

/* The root as a continuous-time frequency point: s itself, or ln(z)/T. */
std::complex<double> continuousEquivalent(const Loop &loop, const Complex &r)
{
    std::complex<double> root(r.re, r.im);
    if (loop.samplePeriod <= 0.0)
        return root;
    return std::log(root) / loop.samplePeriod;
}

bool onBoundary(const Loop &loop, const Complex &r)
{
    if (loop.samplePeriod <= 0.0)
        return std::fabs(r.re) <= ON_AXIS * std::max(1.0, std::hypot(r.re, r.im));
    return std::fabs(std::hypot(r.re, r.im) - 1.0) <= ON_AXIS;
}

bool atOrigin(const Loop &loop, const Complex &r)
{
    if (loop.samplePeriod <= 0.0)
        return std::hypot(r.re, r.im) <= ON_AXIS;
    return std::hypot(r.re - 1.0, r.im) <= ON_AXIS;
}

}

Loop makeLoop(const TransferFunction &tf, double samplePeriod)
{
    Loop loop;
    loop.gain = tf.gain;
    loop.samplePeriod = samplePeriod > 0.0 ? samplePeriod : 0.0;
    for (const Root &z : tf.zeros)
        loop.zeros.push_back({z.real(), z.imag()});
    for (const Root &p : tf.poles)
        loop.poles.push_back({p.real(), p.imag()});
    for (const auto *roots : {&loop.zeros, &loop.poles}) {
        for (const Complex &r : *roots) {
            if (onBoundary(loop, r))
                loop.singular.push_back(std::fabs(continuousEquivalent(loop, r).imag()));
            if (atOrigin(loop, r))
                loop.originExcess += roots == &loop.poles ? 1 : -1;
        }
    }
    std::sort(loop.singular.begin(), loop.singular.end());
    return loop;
}

LoopValue loopAt(const Loop &loop, double w)
{
    Complex s = {0.0, w};
    if (loop.samplePeriod > 0.0)
        s = {std::cos(w * loop.samplePeriod), std::sin(w * loop.samplePeriod)};
    PoleZeroValue v = evalPoleZero(s, loop.zeros.data(), (int32_t)loop.zeros.size(), loop.poles.data(),
                                   (int32_t)loop.poles.size(), loop.gain);
    return {v.magnitude, v.angle};
}

double topFrequency(const Loop &loop)
{
    return loop.samplePeriod > 0.0 ? std::numbers::pi / loop.samplePeriod : INFINITY;
}

std::vector<double> frequencyGrid(const Loop &loop)
{
    double smallest = INFINITY, largest = 0.0;
    for (const auto *roots : {&loop.zeros, &loop.poles})
        for (const Complex &r : *roots) {
            double m = std::abs(continuousEquivalent(loop, r));
            if (std::isfinite(m) && m > ON_AXIS) {
                smallest = std::min(smallest, m);
                largest = std::max(largest, m);
            }
        }
    double top = topFrequency(loop);
    if (!(largest > 0.0))
        smallest = largest = std::isfinite(top) ? top / 10 : 1.0;
    double lo = smallest / 1000, hi = std::min(largest * 1000, top);

    /* Beyond the roots |L| follows c w^-k; walk out to where it has crossed 1. */
    int relativeDegree = (int)loop.poles.size() - (int)loop.zeros.size();
    for (int i = 0; i < MAX_EXTENSIONS && std::isinf(top) && relativeDegree != 0; ++i) {
        double m = loopAt(loop, hi).magnitude;
        if (!std::isfinite(m) || (relativeDegree > 0 ? m <= 1.0 : m >= 1.0))
            break;
        hi *= 10;
    }
    for (int i = 0; i < MAX_EXTENSIONS && loop.originExcess != 0; ++i) {
        double m = loopAt(loop, lo).magnitude;
        if (!std::isfinite(m) || m == 0.0 || (loop.originExcess > 0 ? m >= 1.0 : m <= 1.0))
            break;
        lo /= 10;
    }

    std::vector<double> grid;
    double decades = std::log10(hi / lo);
    int count = (int)std::min<double>(MAX_GRID_POINTS, std::ceil(decades * POINTS_PER_DECADE) + 1);
    for (int k = 0; k < count; ++k)
        grid.push_back(lo * std::pow(10.0, decades * k / (count - 1)));
    /* Lightly damped roots turn the response within a few damping widths. */
    for (const auto *roots : {&loop.zeros, &loop.poles})
        for (const Complex &r : *roots) {
            std::complex<double> s = continuousEquivalent(loop, r);
            double w0 = std::fabs(s.imag()), sigma = std::fabs(s.real());
            if (!(w0 > 0.0) || !std::isfinite(w0) || sigma >= w0)
                continue;
            double width = std::max(sigma, 1e-8 * w0);
            for (double t : {-4.0, -2.0, -1.0, -0.5, -0.25, -0.1, 0.0, 0.1, 0.25, 0.5, 1.0, 2.0, 4.0})
                grid.push_back(w0 + t * width);
        }
    if (std::isfinite(top))
        grid.push_back(top);
    std::sort(grid.begin(), grid.end());
    auto unusable = [&](double w) {
        if (!(w >= lo && w <= hi))
            return true;
        for (double s : loop.singular)
            if (std::fabs(w - s) <= 1e-12 * s)
                return true;
        return false;
    };
    grid.erase(std::remove_if(grid.begin(), grid.end(), unusable), grid.end());
    grid.erase(std::unique(grid.begin(), grid.end()), grid.end());
    return grid;
}

bool spansSingularity(const Loop &loop, double a, double b)
{
    auto first = std::lower_bound(loop.singular.begin(), loop.singular.end(), a);
    return first != loop.singular.end() && *first <= b;
}

double bisectRoot(const std::function<double(double)> &f, double a, double b)
{
    double fa = f(a);
    for (int i = 0; i < 200 && b - a > 1e-10 * b; ++i) {
        double m = a > 0.0 ? std::sqrt(a * b) : (a + b) / 2;
        double fm = f(m);
        if (fm == 0.0)
            return m;
        if ((fm < 0.0) == (fa < 0.0)) {
            a = m;
            fa = fm;
        } else {
            b = m;
        }
    }
    return a > 0.0 ? std::sqrt(a * b) : (a + b) / 2;
}

double goldenMaximum(const std::function<double(double)> &f, double a, double b)
{
    const double ratio = (std::sqrt(5.0) - 1) / 2;
    double x1 = b - ratio * (b - a), x2 = a + ratio * (b - a);
    double f1 = f(x1), f2 = f(x2);
    for (int i = 0; i < 200 && b - a > 1e-10 * b; ++i) {
        if (f1 < f2) {
            a = x1;
            x1 = x2;
            f1 = f2;
            x2 = a + ratio * (b - a);
            f2 = f(x2);
        } else {
            b = x2;
            x2 = x1;
            f2 = f1;
            x1 = b - ratio * (b - a);
            f1 = f(x1);
        }
    }
    return f1 > f2 ? x1 : x2;
}

}
