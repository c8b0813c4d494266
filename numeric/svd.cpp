/*
** numeric/svd.cpp: singular value decomposition a = U W V^T (Householder
** bidiagonalization, then the implicitly shifted QR of Golub, Kahan and Reinsch),
** the inverse built on it, and the least-squares solve or pseudo-inverse.
*/
#include "numeric/svd.h"

#include <cmath>
#include <limits>

#include "host/host.h"

/* Held work blocks: resized with grealloc on every call, never released. */
static double *superdiagonal;           /* rv1 of svDecompose, n + 2 doubles, 1-based */
static double *rowWork;                 /* row sums and a row's copy, m + n + 2 doubles */
static double *solveValues;             /* singular values of singularValueDecomp */
static Matrix *solveRightFactor;        /* V of singularValueDecomp */
static double *backSubstituteWork;      /* svBackSubstitute, rows + 1 doubles, 1-based */
static double *inverseValues;           /* singular values of matInvert */
static Matrix *inverseRightFactor;      /* V of matInvert */
static Matrix *inverseLeftTransposed;   /* U^T of matInvert */

/* Element (i, j), 1-based, of matrix mat, stepping columns by its own rows. */
#define EL(mat, i, j) ((mat)->data[(uint64_t)((j) - 1) * (mat)->rows + (uint64_t)((i) - 1)])

static const int MAX_SVD_PASSES = 30;

static double *resizeDoubles(double *block, uint64_t count)
{
    return (double *)grealloc(block, count * sizeof(double));
}

static bool allFinite(const Matrix *a)
{
    for (uint64_t k = 0; k < (uint64_t)a->rows * a->cols; k++)
        if (!std::isfinite(a->data[k]))
            return false;
    return true;
}

static int decompose(Matrix *a, double *w, Matrix *v)
{
    const int32_t m = (int32_t)a->rows, n = (int32_t)a->cols;
    /* The left-hand transformations address rows up to n, and V must hold n x n:
    ** other shapes are refused with a message (result 0, nothing changed). */
    if (a->rows < a->cols) {
        debMsg("svDecompose: needs at least as many rows as columns (%d,%d)", m, n);
        return 0;
    }
    if (v->rows < a->cols || v->cols < a->cols) {
        debMsg("svDecompose: right factor (%d,%d) smaller than %dx%d", (int)v->rows,
               (int)v->cols, n, n);
        return 0;
    }
    /* Infinite or NaN elements are refused with a message: the iteration could only
    ** spread them.  w[1..n] and V (n x n) are set to NaN so that callers that go on
    ** regardless compute with NaN, not with stale values; a is left as it was. */
    if (!allFinite(a)) {
        debMsg("svDecompose: infinite or NaN element in the %dx%d matrix", m, n);
        const double nan = std::numeric_limits<double>::quiet_NaN();
        for (int32_t j = 1; j <= n; j++) {
            w[j] = nan;
            for (int32_t i = 1; i <= n; i++)
                EL(v, i, j) = nan;
        }
        return 0;
    }
    rowWork = resizeDoubles(rowWork, (uint64_t)m + (uint64_t)n + 2);
    double *rowSums = rowWork;                  /* 1-based, m */
    double *rowCopy = rowWork + m + 1;          /* 1-based, n */
    superdiagonal = resizeDoubles(superdiagonal, (uint64_t)n + 2);
    double *rv1 = superdiagonal;
    double g = 0.0, scale = 0.0, anorm = 0.0, s, f, h, c, x, y, z;
    int32_t l = 1, nm;

    for (int32_t i = 1; i <= n; i++) {
        l = i + 1;
        rv1[i] = scale * g;
        g = s = scale = 0.0;
        if (i <= m) {
            for (int32_t k = i; k <= m; k++)
                scale += std::fabs(EL(a, k, i));
            if (scale != 0.0) {
                for (int32_t k = i; k <= m; k++) {
                    EL(a, k, i) /= scale;
                    s += EL(a, k, i) * EL(a, k, i);
                }
                f = EL(a, i, i);
                g = f >= 0.0 ? -std::sqrt(s) : std::sqrt(s);
                h = f * g - s;
                EL(a, i, i) = f - g;
                for (int32_t j = l; j <= n; j++) {
                    s = 0.0;
                    for (int32_t k = i; k <= m; k++)
                        s += EL(a, k, i) * EL(a, k, j);
                    f = s / h;
                    for (int32_t k = i; k <= m; k++)
                        EL(a, k, j) += f * EL(a, k, i);
                }
                for (int32_t k = i; k <= m; k++)
                    EL(a, k, i) *= scale;
            }
        }
        w[i] = scale * g;
        g = s = scale = 0.0;
        if (i <= m && i != n) {
            for (int32_t k = l; k <= n; k++)
                scale += std::fabs(EL(a, i, k));
            if (scale != 0.0) {
                for (int32_t k = l; k <= n; k++) {
                    EL(a, i, k) /= scale;
                    s += EL(a, i, k) * EL(a, i, k);
                }
                f = EL(a, i, l);
                g = f >= 0.0 ? -std::sqrt(s) : std::sqrt(s);
                h = f * g - s;
                EL(a, i, l) = f - g;
                for (int32_t k = l; k <= n; k++)
                    rv1[k] = EL(a, i, k) / h;
                /* Rows l..m against row i, a column at a time: the same sums in the same
                ** order as row by row, but through contiguous memory. */
                for (int32_t j = l; j <= m; j++)
                    rowSums[j] = 0.0;
                for (int32_t k = l; k <= n; k++) {
                    double aik = EL(a, i, k);
                    double *column = &EL(a, 1, k);
                    for (int32_t j = l; j <= m; j++)
                        rowSums[j] += column[j - 1] * aik;
                }
                for (int32_t k = l; k <= n; k++) {
                    double r = rv1[k];
                    double *column = &EL(a, 1, k);
                    for (int32_t j = l; j <= m; j++)
                        column[j - 1] += rowSums[j] * r;
                }
                for (int32_t k = l; k <= n; k++)
                    EL(a, i, k) *= scale;
            }
        }
        double span = std::fabs(w[i]) + std::fabs(rv1[i]);
        if (span > anorm)
            anorm = span;
    }

    for (int32_t i = n; i >= 1; i--) {
        if (i < n) {
            if (g != 0.0) {
                for (int32_t j = l; j <= n; j++)
                    EL(v, j, i) = (EL(a, i, j) / EL(a, i, l)) / g;
                for (int32_t k = l; k <= n; k++)
                    rowCopy[k] = EL(a, i, k);   /* row i, contiguous */
                const double *vi = &EL(v, 1, i);
                for (int32_t j = l; j <= n; j++) {
                    double *vj = &EL(v, 1, j);
                    s = 0.0;
                    for (int32_t k = l; k <= n; k++)
                        s += rowCopy[k] * vj[k - 1];
                    for (int32_t k = l; k <= n; k++)
                        vj[k - 1] += s * vi[k - 1];
                }
            }
            for (int32_t j = l; j <= n; j++)
                EL(v, i, j) = EL(v, j, i) = 0.0;
        }
        EL(v, i, i) = 1.0;
        g = rv1[i];
        l = i;
    }

    for (int32_t i = n; i >= 1; i--) {
        l = i + 1;
        g = w[i];
        if (i < n)
            for (int32_t j = l; j <= n; j++)
                EL(a, i, j) = 0.0;
        if (g != 0.0) {
            g = 1.0 / g;
            if (i != n)
                for (int32_t j = l; j <= n; j++) {
                    s = 0.0;
                    for (int32_t k = l; k <= m; k++)
                        s += EL(a, k, i) * EL(a, k, j);
                    f = (s / EL(a, i, i)) * g;
                    for (int32_t k = i; k <= m; k++)
                        EL(a, k, j) += f * EL(a, k, i);
                }
            for (int32_t j = i; j <= m; j++)
                EL(a, j, i) *= g;
        } else {
            for (int32_t j = i; j <= m; j++)
                EL(a, j, i) = 0.0;
        }
        EL(a, i, i) += 1.0;
    }

    for (int32_t k = n; k >= 1; k--) {
        for (int its = 1; its <= MAX_SVD_PASSES; its++) {
            bool cancel = true;
            for (l = k; l >= 1; l--) {
                nm = l - 1;
                if (std::fabs(rv1[l]) + anorm == anorm) {
                    cancel = false;
                    break;
                }
                /* rv1[1] is always 0, so only a NaN anorm gets here with l = 1;
                ** stopping keeps the search from reading below the arrays. */
                if (l == 1) {
                    cancel = false;
                    break;
                }
                if (std::fabs(w[nm]) + anorm == anorm)
                    break;
            }
            if (cancel) {
                c = 0.0;
                s = 1.0;
                for (int32_t i = l; i <= k; i++) {
                    f = s * rv1[i];
                    if (std::fabs(f) + anorm != anorm) {
                        g = w[i];
                        h = std::sqrt(f * f + g * g);
                        w[i] = h;
                        h = 1.0 / h;
                        c = g * h;
                        s = -f * h;
                        for (int32_t j = 1; j <= m; j++) {
                            y = EL(a, j, nm);
                            z = EL(a, j, i);
                            EL(a, j, nm) = y * c + z * s;
                            EL(a, j, i) = z * c - y * s;
                        }
                    }
                }
            }
            z = w[k];
            if (l == k) {
                if (z < 0.0) {
                    w[k] = -z;
                    for (int32_t j = 1; j <= n; j++)
                        EL(v, j, k) = -EL(v, j, k);
                }
                break;
            }
            if (its == MAX_SVD_PASSES)
                return 0;
            x = w[l];
            nm = k - 1;
            y = w[nm];
            g = rv1[nm];
            h = rv1[k];
            f = ((y - z) * (y + z) + (g - h) * (g + h)) / ((h + h) * y);
            g = std::sqrt(f * f + 1.0);
            f = ((x - z) * (x + z) + h * (y / (f + (f >= 0.0 ? g : -g)) - h)) / x;
            c = s = 1.0;
            for (int32_t j = l; j <= nm; j++) {
                int32_t i = j + 1;
                g = rv1[i];
                y = w[i];
                h = s * g;
                g = c * g;
                z = std::sqrt(f * f + h * h);
                rv1[j] = z;
                c = f / z;
                s = h / z;
                f = x * c + g * s;
                g = g * c - x * s;
                h = y * s;
                y = y * c;
                for (int32_t r = 1; r <= n; r++) {
                    double p = EL(v, r, j), q = EL(v, r, i);
                    EL(v, r, j) = p * c + q * s;
                    EL(v, r, i) = q * c - p * s;
                }
                z = std::sqrt(f * f + h * h);
                w[j] = z;
                if (z != 0.0) {
                    z = 1.0 / z;
                    c = f * z;
                    s = h * z;
                }
                f = c * g + s * y;
                x = c * y - s * g;
                for (int32_t r = 1; r <= m; r++) {
                    double p = EL(a, r, j), q = EL(a, r, i);
                    EL(a, r, j) = p * c + q * s;
                    EL(a, r, i) = q * c - p * s;
                }
            }
            rv1[l] = 0.0;
            rv1[k] = f;
            w[k] = x;
        }
    }
    return 1;
}

/* a is scaled by a power of two so that its largest element lies in [0.5, 1), and the
** singular values by the inverse: exact, and the sums of squares and the rotations then
** neither overflow nor underflow for elements near the ends of the exponent range.  U and
** V do not change; for other matrices the result is the same to the last bit.  Shapes
** decompose refuses, and non-finite elements, go to it unscaled for its messages. */
int svDecompose(Matrix *a, double *w, Matrix *v)
{
    uint64_t count = (uint64_t)a->rows * a->cols;
    double largest = 0.0;
    for (uint64_t k = 0; k < count; k++) {
        double magnitude = std::fabs(a->data[k]);
        if (magnitude > largest || std::isnan(magnitude))
            largest = magnitude;
    }
    int exponent = 0;
    if (largest > 0.0 && std::isfinite(largest) && a->rows >= a->cols && v->rows >= a->cols &&
        v->cols >= a->cols)
        std::frexp(largest, &exponent);
    for (uint64_t k = 0; exponent != 0 && k < count; k++)
        a->data[k] = std::ldexp(a->data[k], -exponent);
    int result = decompose(a, w, v);
    for (uint32_t j = 1; exponent != 0 && j <= a->cols; j++)
        w[j] = std::ldexp(w[j], exponent);
    return result;
}

void svBackSubstitute(const Matrix *u, const double *b, double *x)
{
    const uint32_t n = u->rows;
    backSubstituteWork = resizeDoubles(backSubstituteWork, (uint64_t)n + 1);
    double *tmp = backSubstituteWork;
    const double *w = solveValues;
    const Matrix *v = solveRightFactor;
    for (uint32_t j = 1; j <= n; j++) {
        double s = 0.0;
        if (w[j] != 0.0) {
            for (uint32_t i = 1; i <= n; i++)
                s += EL(u, i, j) * b[i - 1];
            s /= w[j];
        }
        tmp[j] = s;
    }
    for (uint32_t j = 1; j <= n; j++) {
        double s = 0.0;
        for (uint32_t jj = 1; jj <= n; jj++)
            s += EL(v, j, jj) * tmp[jj];
        x[j - 1] = s;
    }
}

int matInvert(Matrix *a)
{
    /* Only square matrices have an inverse here: another shape is refused with a
    ** message before anything is touched (result 0). */
    if (a->rows != a->cols) {
        debMsg("matInvert: matrix not square (%d,%d)", (int)a->rows, (int)a->cols);
        return 0;
    }
    const uint32_t n = a->rows;
    inverseValues = resizeDoubles(inverseValues, (uint64_t)n + 1);
    inverseRightFactor = matReDecl(inverseRightFactor, a->rows, a->cols);
    for (uint64_t k = 0; k < (uint64_t)n * n; k++)
        inverseRightFactor->data[k] = 0.0;
    for (uint64_t k = 0; k <= n; k++)
        inverseValues[k] = 0.0;
    if (!svDecompose(a, inverseValues, inverseRightFactor))
        return 0;
    for (uint32_t j = 1; j <= n; j++)
        for (uint32_t i = 1; i <= n; i++) {
            if (inverseValues[j] == 0.0)
                EL(inverseRightFactor, i, j) = 0.0;
            else
                EL(inverseRightFactor, i, j) /= inverseValues[j];
        }
    inverseLeftTransposed = matReDecl(inverseLeftTransposed, a->rows, a->cols);
    transpose2(inverseLeftTransposed, a);
    matMulInto(a, inverseRightFactor, inverseLeftTransposed);
    return 1;
}

/* Values of a column record (a vector or n x 1 matrix) that its storage holds. */
static uint64_t columnCapacity(const Matrix *m)
{
    return (uint64_t)m->rows * (m->cols ? m->cols : 1);
}

extern "C" int32_t singularValueDecomp(Matrix *a, const Matrix *b, Matrix *x)
{
    /* Shapes the solve cannot take (a not square, b or x shorter than n values) are
    ** refused with a message and the result -1; nothing is changed. */
    if (a->rows != a->cols) {
        debMsg("singularValueDecomp: matrix not square (%d,%d)", (int)a->rows, (int)a->cols);
        return -1;
    }
    const uint32_t n = a->cols;
    if (b && (!x || columnCapacity(b) < n || columnCapacity(x) < n)) {
        debMsg("singularValueDecomp: right-hand side or solution shorter than %d", (int)n);
        return -1;
    }
    solveValues = resizeDoubles(solveValues, (uint64_t)n + 1);
    solveRightFactor = matReDecl(solveRightFactor, n, n);
    /* A failed decomposition is reported; the solve then carries on with the values
    ** it left, as callers only look at the count. */
    if (!svDecompose(a, solveValues, solveRightFactor))
        debMsg("singularValueDecomp: decomposition failed, results not reliable");

    double *w = solveValues;
    double wmax = 0.0;
    for (uint32_t j = 1; j <= n; j++)
        if (w[j] > wmax)
            wmax = w[j];
    const double threshold = wmax * 1e-12;
    int32_t dropped = 0;
    for (uint32_t j = 1; j <= n; j++)
        if (w[j] < threshold) {
            w[j] = 0.0;
            dropped++;
        }

    if (b) {
        svBackSubstitute(a, b->data, x->data);
        return dropped;
    }
    for (uint32_t j = 1; j <= n; j++) {
        if (w[j] != 0.0)
            w[j] = 1.0 / w[j];
        for (uint32_t i = 1; i <= n; i++)
            EL(solveRightFactor, i, j) *= w[j];
    }
    transpose2(a, a);
    Matrix *product = matMul(solveRightFactor, a);
    matCopy(a, product);
    return dropped;
}
