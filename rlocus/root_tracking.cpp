/*
** rlocus/root_tracking.cpp: following the closed-loop roots from one gain step to the
** next.  Each branch's root is refined by Newton's iteration on den + K g num, started
** from its point at the step before moved along the branch's tangent, in O(n) per root
** and iteration.  The result is taken only when every root is a root to rounding level
** and lies so close to its own branch's previous point that the nearest-neighbour
** sorting of the sweep could not have given it to another branch; otherwise the step is
** left to the eigenvalue solver.
*/
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "host/host.h"
#include "rlocus/locus_state.h"

/* A root within this fraction of the distance from its branch's previous point to the
** nearest other one is nearest to its own branch's point, with room for the rounding of
** both solvers, without comparing it with every other point. */
static constexpr double REACH = 0.45;
/* Newton converges quadratically from the tangent's prediction; a root still not found
** after this many iterations is left to the eigenvalue solver. */
static constexpr int MAX_NEWTON_ITERATIONS = 12;
/* The root-sum checks allow this many times the roots' error bounds, plus rounding
** relative to the magnitudes summed. */
static constexpr double SUM_SLACK = 10.0;
static constexpr double SUM_TOLERANCE = 1e-13;
static constexpr double EPSILON = std::numeric_limits<double>::epsilon();

/* p(x), p'(x) and the error scale sum |c_k| |x|^k of the ascending c_0 ... c_n. */
static void evaluateReal(const double *c, int32_t n, double x, double *p, double *dp, double *scale)
{
    double value = c[n], derivative = 0.0, bound = std::fabs(c[n]), ax = std::fabs(x);
    for (int32_t k = n - 1; k >= 0; --k) {
        derivative = derivative * x + value;
        value = value * x + c[k];
        bound = bound * ax + std::fabs(c[k]);
    }
    *p = value;
    *dp = derivative;
    *scale = bound;
}

static void evaluateComplex(const double *c, int32_t n, Complex z, Complex *p, Complex *dp, double *scale)
{
    double pr = c[n], pi = 0.0, dr = 0.0, di = 0.0, bound = std::fabs(c[n]);
    double az = std::hypot(z.re, z.im);
    for (int32_t k = n - 1; k >= 0; --k) {
        double t = dr * z.re - di * z.im + pr;
        di = dr * z.im + di * z.re + pi;
        dr = t;
        t = pr * z.re - pi * z.im + c[k];
        pi = pr * z.im + pi * z.re;
        pr = t;
        bound = bound * az + std::fabs(c[k]);
    }
    *p = {pr, pi};
    *dp = {dr, di};
    *scale = bound;
}

static Complex divide(Complex a, Complex b)
{
    double d = b.re * b.re + b.im * b.im;
    return {(a.re * b.re + a.im * b.im) / d, (a.im * b.re - a.re * b.im) / d};
}

/* Below this residual, relative to its error scale, p(z) is rounding noise: the
** evaluation by Horner's rule is exact to about 2n units of the last place. */
static double noiseLevel(int32_t n)
{
    return 4.0 * (n + 1) * EPSILON;
}

/* Newton's iteration on a real root; false when it does not settle.  *error: the
** first-order bound of the root's error that rounding leaves, noise scale / |p'|. */
static bool refineReal(const double *c, int32_t n, double *x, double *error)
{
    double noise = noiseLevel(n);
    for (int iteration = 0; iteration < MAX_NEWTON_ITERATIONS; ++iteration) {
        double p, dp, scale;
        evaluateReal(c, n, *x, &p, &dp, &scale);
        if (!std::isfinite(p) || !std::isfinite(scale))
            return false;
        if (std::fabs(p) <= noise * scale) {
            *error = noise * scale / std::fabs(dp);
            return std::isfinite(*error);
        }
        double step = p / dp;
        if (!std::isfinite(step))
            return false;
        *x -= step;
    }
    return false;
}

static bool refineComplex(const double *c, int32_t n, Complex *z, double *error)
{
    double noise = noiseLevel(n);
    for (int iteration = 0; iteration < MAX_NEWTON_ITERATIONS; ++iteration) {
        Complex p, dp;
        double scale;
        evaluateComplex(c, n, *z, &p, &dp, &scale);
        double residual = std::hypot(p.re, p.im);
        if (!std::isfinite(residual) || !std::isfinite(scale))
            return false;
        if (residual <= noise * scale) {
            *error = noise * scale / std::hypot(dp.re, dp.im);
            return std::isfinite(*error);
        }
        Complex step = divide(p, dp);
        if (!std::isfinite(step.re) || !std::isfinite(step.im))
            return false;
        z->re -= step.re;
        z->im -= step.im;
    }
    return false;
}

void prepareTracking(const Complex *from, int32_t n, double fromGain, bool hasGain)
{
    RootLocusState &st = rootLocusState;
    std::memcpy(st.frame, from, sizeof(Complex) * (size_t)n);
    for (int32_t i = 0; i < n; ++i) {
        st.partner[i] = -1;
        st.reach[i] = INFINITY;
    }
    for (int32_t i = 0; i < n; ++i)
        for (int32_t j = i + 1; j < n; ++j) {
            double dx = from[i].re - from[j].re, dy = from[i].im - from[j].im;
            double squared = dx * dx + dy * dy;
            if (!(squared >= st.reach[i]))
                st.reach[i] = squared;
            if (!(squared >= st.reach[j]))
                st.reach[j] = squared;
            /* The upper root of an exact conjugate pair is followed for both. */
            if (from[i].im != 0.0 && from[i].re == from[j].re && from[i].im == -from[j].im &&
                st.partner[i] < 0 && st.partner[j] < 0) {
                int32_t upper = from[i].im > 0.0 ? i : j;
                st.partner[upper] = upper == i ? j : i;
                st.partner[st.partner[upper]] = -2;
            }
        }
    for (int32_t i = 0; i < n; ++i)
        st.reach[i] *= REACH * REACH;

    /* The tangent dz/dK = -g num(z) / p'(z) of each root at the gain of the step before. */
    for (int32_t k = 0; k <= n; ++k)
        st.closedLoop[k] = st.denominator[k] + fromGain * st.gain * st.numerator[k];
    for (int32_t i = 0; i < n; ++i) {
        Complex slope{0.0, 0.0};
        if (hasGain && st.partner[i] != -2) {
            Complex p, dp, q, dq;
            double scale;
            evaluateComplex(st.closedLoop, n, from[i], &p, &dp, &scale);
            evaluateComplex(st.numerator, n, from[i], &q, &dq, &scale);
            slope = divide(q, dp);
            slope = {-st.gain * slope.re, -st.gain * slope.im};
            if (from[i].im == 0.0)
                slope.im = 0.0;
            if (!std::isfinite(slope.re) || !std::isfinite(slope.im))
                slope = {0.0, 0.0};
        }
        st.slope[i] = slope;
    }
}

/* True when root z of branch i is nearer to that branch's previous point than to any
** other, by more than the root's error bound: the sorting then gives it to branch i
** whatever root the eigenvalue solver would have listed first. */
static bool nearestToOwnBranch(Complex z, int32_t i, int32_t n, double error)
{
    const RootLocusState &st = rootLocusState;
    double dx = z.re - st.frame[i].re, dy = z.im - st.frame[i].im;
    double squared = dx * dx + dy * dy;
    if (squared < st.reach[i])
        return true;                    /* well inside half the gap to the nearest other */
    double own = std::sqrt(squared) + SUM_SLACK * error;
    if (!std::isfinite(own))
        return false;
    for (int32_t j = 0; j < n; ++j)
        if (j != i && !(std::hypot(z.re - st.frame[j].re, z.im - st.frame[j].im) > own))
            return false;
    return true;
}

/* The power sums of the roots against those of the coefficients (Newton's identities):
** a root found twice and another one missed cannot pass both.  error: the sum of the
** roots' error bounds, which an ill-conditioned polynomial makes large for any solver. */
static bool rootSumsMatch(const Complex *roots, const double *c, int32_t n, double error)
{
    double sumRe = 0.0, sumIm = 0.0, squareRe = 0.0, squareIm = 0.0, magnitude = 0.0, squareMagnitude = 0.0;
    for (int32_t i = 0; i < n; ++i) {
        Complex r = roots[i];
        sumRe += r.re;
        sumIm += r.im;
        squareRe += r.re * r.re - r.im * r.im;
        squareIm += 2.0 * r.re * r.im;
        magnitude = std::max(magnitude, std::hypot(r.re, r.im));
    }
    squareMagnitude = magnitude * magnitude;
    double a1 = c[n - 1] / c[n];
    double sumTolerance = SUM_SLACK * error + SUM_TOLERANCE * n * (magnitude + std::fabs(a1));
    if (!(std::hypot(sumRe + a1, sumIm) <= sumTolerance))
        return false;
    if (n < 2)
        return true;
    double a2 = c[n - 2] / c[n];
    double expectedSquares = a1 * a1 - 2.0 * a2;
    double squareTolerance = SUM_SLACK * 2.0 * magnitude * error +
                             SUM_TOLERANCE * n * (squareMagnitude + a1 * a1 + 2.0 * std::fabs(a2));
    return std::hypot(squareRe - expectedSquares, squareIm) <= squareTolerance;
}

bool trackRoots(Complex *roots, const double *c, int32_t n, double dK)
{
    RootLocusState &st = rootLocusState;
    if (!(c[n] != 0.0) || !std::isfinite(c[n]))
        return false;
    double errorSum = 0.0;
    for (int32_t i = 0; i < n; ++i) {
        if (st.partner[i] == -2)
            continue;                   /* the conjugate of its partner, set below */
        Complex z = {st.frame[i].re + dK * st.slope[i].re, st.frame[i].im + dK * st.slope[i].im};
        bool found;
        double error = 0.0;
        if (st.frame[i].im == 0.0) {
            found = refineReal(c, n, &z.re, &error);
            z.im = 0.0;
        } else {
            found = refineComplex(c, n, &z, &error);
        }
        if (!found || !nearestToOwnBranch(z, i, n, error))
            return false;
        roots[i] = z;
        errorSum += error;
        int32_t mirror = st.partner[i];
        if (mirror >= 0) {
            roots[mirror] = {z.re, -z.im};
            if (!nearestToOwnBranch(roots[mirror], mirror, n, error))
                return false;
            errorSum += error;
        }
    }
    return rootSumsMatch(roots, c, n, errorSum);
}
