/*
** xfer/gain.cpp: the gain K of G(s) = K N(s)/D(s), from one evaluation of
** C (sI - A)^-1 B + D at a real test point away from every pole and zero.
*/
#include <cmath>
#include <numbers>

#include "host/host.h"
#include "numeric/svd.h"
#include "xfer/work_matrix.h"
#include "xfer/xfer.h"

static const int TEST_POINT_TRIES = 100;
static const double TEST_POINT_STEP = 0.01;
static const double ROOT_CLEARANCE = 0.1;       /* least distance of a test point from a real part */
static const double USABLE_VALUE = 1e-9;        /* a value this large ends the search */
static const double ORIGIN_RADIUS = 1e-10;      /* roots left out of the factors at s = 0 */

static const double TWO_PI = 2.0 * std::numbers::pi;

static bool nearRealPart(double s, const Complex *roots, int32_t count)
{
    for (int32_t i = 0; i < count; i++)
        if (std::fabs(s - roots[i].re) < ROOT_CLEARANCE)
            return true;
    return false;
}

static double modulus(double re, double im)
{
    double squared = re * re + im * im;
    return squared == 0.0 ? 0.0 : std::sqrt(squared);
}

/* C (sI - A)^-1 B + D at the real point s; W, X, g are work matrices shaped as A, B and D. */
static double modelValue(Matrix *A, Matrix *B, Matrix *C, Matrix *D, double s, Matrix *W, Matrix *X,
                         Matrix *g)
{
    uint32_t n = A->rows;
    for (uint32_t j = 0; j < n; j++)
        for (uint32_t i = 0; i < n; i++)
            elementAt(W, i, j) = i == j ? s - elementAt(A, i, i) : -elementAt(A, i, j);
    matInvert(W);
    matMulInto(X, W, B);
    matMulInto(g, C, X);
    matAdd(g, g, D);
    return elementAt(g, 0, 0);
}

/* The product of |s - r| over the roots and the sum of their angles, roots at the origin
** left out when s is exactly 0. */
static void accumulateFactors(double s, const Complex *roots, int32_t count, double *product,
                              double *angle, double angleSign)
{
    for (int32_t i = 0; i < count; i++) {
        const Complex &r = roots[i];
        if (s == 0.0 && modulus(r.re, r.im) < ORIGIN_RADIUS)
            continue;
        *product *= modulus(s - r.re, -r.im);
        *angle += angleSign * std::atan2(-r.im, s - r.re);
    }
}

double xferGain(Matrix *A, Matrix *B, Matrix *C, Matrix *D, const Complex *poles,
                const Complex *zeros, int32_t zeroCount, int32_t poleCount)
{
    Matrix *W = newWorkMatrix(A->rows, A->cols);
    Matrix *X = newWorkMatrix(B->rows, B->cols);
    Matrix *g = newWorkMatrix(1, 1);

    /* Test points are accumulated sums of the step, as the search has always made them. */
    double s = 0.0, keptS = 0.0, keptValue = 0.0;
    for (int tries = 0; tries < TEST_POINT_TRIES; tries++, s += TEST_POINT_STEP) {
        if (nearRealPart(s, poles, poleCount) || nearRealPart(s, zeros, zeroCount))
            continue;
        double value = modelValue(A, B, C, D, s, W, X, g);
        if (std::fabs(value) > std::fabs(keptValue)) {
            keptValue = value;
            keptS = s;
        }
        if (s == 0.0 || std::fabs(value) > USABLE_VALUE)
            break;
    }

    double zeroProduct = 1.0, poleProduct = 1.0, angle = 0.0;
    accumulateFactors(keptS, zeros, zeroCount, &zeroProduct, &angle, 1.0);
    accumulateFactors(keptS, poles, poleCount, &poleProduct, &angle, -1.0);
    /* Each term lies in [-pi, pi], so these loops end after at most zeroCount + poleCount turns. */
    while (angle > TWO_PI)
        angle -= TWO_PI;
    while (angle < -TWO_PI)
        angle += TWO_PI;

    double gain = poleProduct / zeroProduct;
    /* Large models evaluated away from the origin keep the factor ratio alone. */
    if (!(poleCount >= 10 && keptS >= 0.25))
        gain *= keptValue;
    double degrees = std::fabs(angle) * 180.0 / std::numbers::pi;
    if (degrees >= 10.0 && degrees <= 350.0)
        gain = -gain;

    gfree(g);
    gfree(X);
    gfree(W);
    return gain;
}
