/*
** xfer/gain.cpp: the gain K of G(s) = K N(s)/D(s), from one evaluation of
** C (sI - A)^-1 B + D (an LU solve) at a real test point clear of every pole and zero.
*/
#include <algorithm>
#include <cmath>
#include <complex>

#include "host/host.h"
#include "numeric/lu.h"
#include "xfer/work_matrix.h"
#include "xfer/xfer.h"

/* Candidate test points, as multiples of the largest root modulus R.  2R keeps a distance
** of at least R from every root; the smaller ones avoid the cancellation that a high
** relative degree brings far out (C x sums terms much larger than G there).  The one with
** the smallest estimated error is taken.  (A search in [0, 1) with an absolute threshold
** on |G|, and the model's value left out for ten or more poles, gave wrong gains for a
** tiny |G| and for high orders.) */
static const double TEST_POINT_FACTORS[] = {2.0, 1.0, 0.25, 1.0 / 16, 1.0 / 64};

struct ModelValue {
    double value;               /* C (sI - A)^-1 B + D */
    double magnitude;           /* |D| + sum |c_j x_j|, the size of the terms summed */
};

/* C (sI - A)^-1 B + D at the real point s; NaN when sI - A is singular. */
static ModelValue modelValue(Matrix *A, Matrix *B, Matrix *C, Matrix *D, double s)
{
    uint32_t n = A->rows;
    Matrix *W = newWorkMatrix(n, n);
    double *x = (double *)galloc(sizeof(double) * (n ? n : 1));
    int32_t *pivots = (int32_t *)galloc(sizeof(int32_t) * (n ? n : 1));
    for (uint32_t j = 0; j < n; j++)
        for (uint32_t i = 0; i < n; i++)
            elementAt(W, i, j) = i == j ? s - elementAt(A, i, i) : -elementAt(A, i, j);
    for (uint32_t i = 0; i < n; i++)
        x[i] = elementAt(B, i, 0);
    ModelValue v{std::nan(""), std::nan("")};
    if (luSolve(W, (int32_t)n, x, pivots)) {
        v.value = elementAt(D, 0, 0);
        v.magnitude = std::fabs(v.value);
        for (uint32_t j = 0; j < n; j++) {
            double term = elementAt(C, 0, j) * x[j];
            v.value += term;
            v.magnitude += std::fabs(term);
        }
    }
    gfree(pivots);
    gfree(x);
    gfree(W);
    return v;
}

static double largestModulus(const Complex *roots, int32_t count, double largest)
{
    for (int32_t i = 0; i < count; i++) {
        double m = std::hypot(roots[i].re, roots[i].im);
        if (m > largest || std::isnan(m))
            largest = m;
    }
    return largest;
}

/* prod (s - a_i) / prod (s - b_j), kept as mantissa and binary exponent so that a long
** product of large factors does not overflow before the quotient is formed. */
struct ScaledProduct {
    std::complex<double> mantissa{1.0, 0.0};
    long exponent = 0;
    void times(std::complex<double> f)
    {
        mantissa *= f;
        int e = 0;
        double big = std::max(std::fabs(mantissa.real()), std::fabs(mantissa.imag()));
        if (big != 0.0 && std::isfinite(big)) {
            std::frexp(big, &e);
            mantissa = std::complex<double>(std::ldexp(mantissa.real(), -e), std::ldexp(mantissa.imag(), -e));
            exponent += e;
        }
    }
};

/* Relative error to expect from K at s: the cancellation in C x, and each factor of N and
** D, whose root carries an error of order eps |root|. */
static double factorError(double s, const Complex *roots, int32_t count)
{
    double estimate = 0.0;
    for (int32_t i = 0; i < count; i++) {
        double distance = std::hypot(s - roots[i].re, roots[i].im);
        estimate += std::hypot(roots[i].re, roots[i].im) / distance;
    }
    return estimate;
}

double xferGain(Matrix *A, Matrix *B, Matrix *C, Matrix *D, const Complex *poles,
                const Complex *zeros, int32_t zeroCount, int32_t poleCount)
{
    double R = largestModulus(zeros, zeroCount, largestModulus(poles, poleCount, 0.0));
    if (!(R > 0.0) || !std::isfinite(R))
        R = 1.0;
    double s = 0.0, value = 0.0, best = INFINITY;
    for (double factor : TEST_POINT_FACTORS) {
        double candidate = factor * R;
        ModelValue v = modelValue(A, B, C, D, candidate);
        if (v.value == 0.0 || !std::isfinite(v.value))
            continue;
        double estimate = v.magnitude / std::fabs(v.value) + factorError(candidate, poles, poleCount) +
                          factorError(candidate, zeros, zeroCount);
        if (estimate < best) {
            best = estimate;
            s = candidate;
            value = v.value;
        }
    }
    /* G identically 0, or a model the solve cannot take (infinite or NaN elements): 0. */
    if (value == 0.0)
        return 0.0;
    /* K = G(s) D(s) / N(s).  Root lists of a real model hold conjugate pairs, so the
    ** product is real up to rounding; its real part is K. */
    ScaledProduct ratio;
    for (int32_t i = 0; i < poleCount; i++)
        ratio.times(std::complex<double>(s - poles[i].re, -poles[i].im));
    for (int32_t i = 0; i < zeroCount; i++)
        ratio.times(1.0 / std::complex<double>(s - zeros[i].re, -zeros[i].im));
    double m = ratio.mantissa.real() * value;
    long e = ratio.exponent;
    if (e > 4096)
        e = 4096;
    if (e < -4096)
        e = -4096;
    return std::ldexp(m, (int)e);
}
