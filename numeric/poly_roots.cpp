/*
** numeric/poly_roots.cpp: the roots of a real polynomial as the eigenvalues of its
** companion matrix.  The companion is built directly in upper Hessenberg form, for a
** polynomial first scaled by a power of 2 so that its roots cluster around 1, and is
** balanced through its few nonzero entries, so the eigenvalue solver starts at once
** with the shifted QR iteration.
*/
#include <algorithm>
#include <cmath>

#include "host/host.h"
#include "numeric/eigen.h"

/* The same stopping rule as the dense balancing: sweeps end when one scales nothing,
** and this cap only bounds elements at the ends of the exponent range. */
static constexpr int MAX_BALANCE_SWEEPS = 1000;
/* Keeps the scaling factor and the scaled coefficients well inside the exponent range. */
static constexpr int MAX_SCALE_EXPONENT = 256;

/* The exponent e of the scaling s = 2^e t: 2^e is near the geometric mean of the root
** magnitudes (those at the origin left out), |c_low / c_d|^(1 / (d - low)). */
static int scaleExponent(const double *c, int32_t d)
{
    int32_t low = 0;
    while (low < d && c[low] == 0.0)
        ++low;
    if (low >= d)
        return 0;
    double meanLog = (std::log2(std::fabs(c[low])) - std::log2(std::fabs(c[d]))) / (d - low);
    if (!std::isfinite(meanLog))
        return 0;
    return (int)std::clamp(std::lround(meanLog), -(long)MAX_SCALE_EXPONENT, (long)MAX_SCALE_EXPONENT);
}

/* Balances the Hessenberg companion with ones below the diagonal (sub, d - 1 entries)
** and the last column (last, d entries; last[d - 1] on the diagonal) by powers of 2:
** the diagonal similarity of the dense balancing, whose row and column sums here
** take O(1) each, except the last column's, O(d) once a sweep. */
static void balanceCompanion(double *sub, double *last, int32_t d)
{
    for (int sweep = 0, scaled = 1; scaled && sweep < MAX_BALANCE_SWEEPS; ++sweep) {
        scaled = 0;
        for (int32_t i = 0; i < d; ++i) {
            double colNorm = 0.0, rowNorm = 0.0;
            if (i < d - 1) {
                colNorm = std::fabs(sub[i]);
                rowNorm = std::fabs(last[i]);
            } else {
                for (int32_t k = 0; k < d - 1; ++k)
                    colNorm += std::fabs(last[k]);
            }
            if (i > 0)
                rowNorm += std::fabs(sub[i - 1]);
            if (colNorm == 0.0 || rowNorm == 0.0 || !std::isfinite(colNorm) || !std::isfinite(rowNorm))
                continue;
            double s = colNorm + rowNorm, f = 1.0;
            while (colNorm < rowNorm / 2.0) {
                colNorm *= 4.0;
                f *= 2.0;
            }
            while (colNorm > rowNorm * 2.0) {
                colNorm /= 4.0;
                f /= 2.0;
            }
            if ((colNorm + rowNorm) / f >= 0.95 * s)
                continue;
            scaled = 1;
            /* Row i divided by f, column i multiplied by f. */
            if (i > 0)
                sub[i - 1] /= f;
            if (i < d - 1) {
                last[i] /= f;
                sub[i] *= f;
            } else {
                for (int32_t k = 0; k < d - 1; ++k)
                    last[k] *= f;
            }
        }
    }
}

int32_t polyRoots(Complex *roots, const double *c, int32_t n, Matrix *W)
{
    int32_t d = n;
    while (d >= 0 && c[d] == 0.0)       /* exact test: a NaN coefficient counts as present */
        --d;
    if (d < 1)
        return d;
    int e = scaleExponent(c, d);
    double *sub = (double *)galloc(sizeof(double) * (size_t)(4 * d + 2));
    double *last = sub + d, *wr = last + d, *wi = wr + d + 1;
    bool finite = true;
    for (int32_t k = 0; k < d; ++k) {
        last[k] = -std::ldexp(c[k] / c[d], e * (k - d));
        finite = finite && std::isfinite(last[k]);
    }
    std::fill(sub, sub + d, 1.0);
    if (finite)
        balanceCompanion(sub, last, d);

    uint32_t stride = W->rows;
    for (int32_t j = 0; j < d; ++j)
        std::fill(W->data + (size_t)j * stride, W->data + (size_t)j * stride + d, 0.0);
    for (int32_t j = 0; j + 1 < d; ++j)
        W->data[(size_t)j * stride + (size_t)(j + 1)] = sub[j];
    for (int32_t i = 0; i < d; ++i)
        W->data[(size_t)(d - 1) * stride + (size_t)i] = last[i];

    if (!finite) {
        /* The dense routine reports the unusable entries and returns NaN roots. */
        eigenValues(roots, W, d);
    } else {
        eigenSolver(W, d, wr, wi);
        double scale = std::ldexp(1.0, e);
        for (int32_t k = 0; k < d; ++k)
            roots[k] = Complex{wr[k + 1] * scale, wi[k + 1] * scale};
    }
    gfree(sub);
    return d;
}
