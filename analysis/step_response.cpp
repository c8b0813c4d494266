/*
** analysis/step_response.cpp: the unit step response of the stable closed loop,
** sampled through the exact discretization of its state-space model (the matrix
** exponential of the model augmented with its input), over a horizon set by the
** slowest pole, and the figures read from it.
*/
#include "analysis/analysis.h"

#include <algorithm>
#include <cmath>

#include "host/host.h"
#include "numeric/matrix_exponential.h"
#include "numeric/svd.h"

namespace analysis {

namespace {

const int CONTINUOUS_SAMPLES = 4000;
const double TIME_CONSTANTS = 10.0;         /* horizon in slowest time constants */
const int MAX_SAMPLED_STEPS = 100000;
const double SETTLING_BAND = 0.02;

struct Response {
    double step = 0.0;                      /* seconds between samples */
    std::vector<double> y;
};

/* The steady state y = C x + D with x solving (I - Φ) x = Γ, or A x = -B when continuous. */
std::optional<double> steadyState(const Model &m)
{
    uint32_t n = m.order;
    if (n == 0)
        return m.d;
    Matrix *a = matDecl(n, n);
    Matrix *rhs = matDecl(n, 1);
    Matrix *x = matDecl(n, 1);
    for (size_t k = 0; k < (size_t)n * n; k++)
        a->data[k] = m.samplePeriod > 0.0 ? -m.a[k] : m.a[k];
    for (uint32_t i = 0; i < n; i++) {
        if (m.samplePeriod > 0.0)
            a->data[(size_t)i * n + i] += 1.0;
        rhs->data[i] = m.samplePeriod > 0.0 ? m.b[i] : -m.b[i];
    }
    singularValueDecomp(a, rhs, x);
    double y = m.d;
    for (uint32_t i = 0; i < n; i++)
        y += m.c[i] * x->data[i];
    gfree(x);
    gfree(rhs);
    gfree(a);
    if (!std::isfinite(y))
        return std::nullopt;
    return y;
}

/* x[k+1] = Φ x[k] + Γ, y[k] = C x[k] + D from x[0] = 0. */
void iterate(Response &r, const Model &m, const std::vector<double> &phi, const std::vector<double> &gamma,
             int steps)
{
    uint32_t n = m.order;
    std::vector<double> x(n, 0.0), next(n);
    r.y.reserve((size_t)steps + 1);
    for (int k = 0; k <= steps; k++) {
        double y = m.d;
        for (uint32_t i = 0; i < n; i++)
            y += m.c[i] * x[i];
        r.y.push_back(y);
        for (uint32_t i = 0; i < n; i++) {
            double sum = gamma[i];
            for (uint32_t j = 0; j < n; j++)
                sum += phi[(size_t)j * n + i] * x[j];
            next[i] = sum;
        }
        x.swap(next);
    }
}

bool simulateContinuous(Response &r, const Model &m, double horizon)
{
    uint32_t n = m.order, size = n + 1;
    r.step = horizon / CONTINUOUS_SAMPLES;
    Matrix *augmented = matDecl(size, size);
    Matrix *exponential = matDecl(size, size);
    std::fill(augmented->data, augmented->data + (size_t)size * size, 0.0);
    for (uint32_t j = 0; j < n; j++)
        for (uint32_t i = 0; i < n; i++)
            augmented->data[(size_t)j * size + i] = m.a[(size_t)j * n + i] * r.step;
    for (uint32_t i = 0; i < n; i++)
        augmented->data[(size_t)n * size + i] = m.b[i] * r.step;
    bool ok = matExponential(exponential, augmented);
    std::vector<double> phi((size_t)n * n), gamma(n);
    for (uint32_t j = 0; j < n; j++)
        for (uint32_t i = 0; i < n; i++)
            phi[(size_t)j * n + i] = exponential->data[(size_t)j * size + i];
    for (uint32_t i = 0; i < n; i++)
        gamma[i] = exponential->data[(size_t)n * size + i];
    gfree(exponential);
    gfree(augmented);
    if (ok)
        iterate(r, m, phi, gamma, CONTINUOUS_SAMPLES);
    return ok;
}

/* The time at which v crosses level between samples k - 1 and k (linear). */
double crossingTime(const std::vector<double> &v, size_t k, double level, double step)
{
    if (k == 0)
        return 0.0;
    double a = v[k - 1], b = v[k];
    double fraction = b == a ? 0.0 : (level - a) / (b - a);
    return ((double)(k - 1) + fraction) * step;
}

StepFigures figuresOf(const Response &r, double finalValue)
{
    StepFigures f;
    f.finalValue = finalValue;
    size_t last = r.y.size() - 1;
    if (finalValue == 0.0) {
        size_t peak = 0;
        for (size_t k = 0; k <= last; k++)
            if (std::fabs(r.y[k]) > std::fabs(r.y[peak]))
                peak = k;
        f.peakTime = (double)peak * r.step;
        return f;
    }
    /* The response scaled to end at 1, so that one rule serves both signs. */
    std::vector<double> u(r.y.size());
    for (size_t k = 0; k <= last; k++)
        u[k] = r.y[k] / finalValue;
    size_t peak = (size_t)(std::max_element(u.begin(), u.end()) - u.begin());
    /* The parabola through the highest sample and its neighbours places the peak between samples. */
    double offset = 0.0, height = u[peak];
    if (peak > 0 && peak < last) {
        double before = u[peak - 1], after = u[peak + 1], curvature = before - 2 * u[peak] + after;
        if (curvature < 0.0) {
            offset = 0.5 * (before - after) / curvature;
            height = u[peak] - 0.25 * (before - after) * offset;
        }
    }
    f.peakTime = ((double)peak + offset) * r.step;
    f.overshootPercent = std::max(0.0, (height - 1.0) * 100.0);
    auto reach = [&](double level) {
        return (size_t)(std::find_if(u.begin(), u.end(), [&](double v) { return v >= level; }) - u.begin());
    };
    size_t k10 = reach(0.1), k90 = reach(0.9);
    if (k90 <= last)
        f.riseTime = crossingTime(u, k90, 0.9, r.step) - crossingTime(u, k10, 0.1, r.step);
    std::vector<double> excess(u.size());
    for (size_t k = 0; k <= last; k++)
        excess[k] = std::fabs(u[k] - 1.0) - SETTLING_BAND;
    size_t outside = last + 1;
    for (size_t k = last + 1; k-- > 0;)
        if (excess[k] > 0.0) {
            outside = k;
            break;
        }
    if (outside > last)
        f.settlingTime = 0.0;
    else if (outside < last)
        f.settlingTime = crossingTime(excess, outside + 1, 0.0, r.step);
    return f;
}

}

std::optional<StepFigures> stepFigures(const ClosedLoop &figures, const ClosedLoopModel &closed)
{
    if (!closed.wellPosed || !figures.stable)
        return std::nullopt;
    const Model &m = closed.model;
    std::optional<double> finalValue = steadyState(m);
    if (!finalValue)
        return std::nullopt;
    Response r;
    if (m.samplePeriod > 0.0) {
        double radius = 0.0;
        for (Root p : figures.poles)
            radius = std::max(radius, std::abs(p));
        double steps = radius > 0.0 ? TIME_CONSTANTS / -std::log(radius) + m.order : m.order + TIME_CONSTANTS;
        r.step = m.samplePeriod;
        iterate(r, m, m.a, m.b, (int)std::clamp(std::ceil(steps), 20.0, (double)MAX_SAMPLED_STEPS));
    } else {
        double slowest = INFINITY;
        for (Root p : figures.poles)
            slowest = std::min(slowest, -p.real());
        if (m.order == 0)
            slowest = 1.0;
        if (!(slowest > 0.0) || !simulateContinuous(r, m, TIME_CONSTANTS / slowest))
            return std::nullopt;
    }
    return figuresOf(r, *finalValue);
}

}
