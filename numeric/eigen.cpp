/*
** numeric/eigen.cpp: eigenvalues of a real square matrix: balancing by powers of 2,
** reduction to upper Hessenberg form by elimination with row pivoting, and the
** shifted double-step QR iteration that deflates eigenvalues from the bottom up.
*/
#include "numeric/eigen.h"

#include <cmath>
#include <limits>

#include "host/host.h"

/* Element (i, j), 1-based, of the work matrix, stepping columns by its own rows. */
#define A(i, j) (m->data[(uint64_t)((j) - 1) * m->rows + (uint64_t)((i) - 1)])

/* Balancing sweeps end when one scales nothing; finite input gets there within a few
** sweeps.  This cap only bounds pathological cases (elements at the ends of the
** exponent range) and is far above anything finite input needs. */
static const int MAX_BALANCE_SWEEPS = 1000;

/* Restarts of the QR count for one eigenvalue (each announced by the "over %d
** iterations" message) before the solver gives up.  Once the active block holds an
** infinite or NaN element the iteration cannot recover, so it gives up at the first
** restart; for finite input the specified restarts go on up to this many times. */
static const int MAX_QR_RESTARTS = 20;

void balanceMatrix(Matrix *m, int32_t n)
{
    const double radix = 2.0, squaredRadix = radix * radix;
    for (int sweep = 0, scaled = 1; scaled && sweep < MAX_BALANCE_SWEEPS; sweep++) {
        scaled = 0;
        for (int32_t i = 1; i <= n; i++) {
            double colNorm = 0.0, rowNorm = 0.0;
            for (int32_t j = 1; j <= n; j++)
                if (j != i) {
                    colNorm += std::fabs(A(j, i));
                    rowNorm += std::fabs(A(i, j));
                }
            if (colNorm == 0.0 || rowNorm == 0.0)
                continue;
            /* Non-finite norms (an infinite or NaN element, or a sum that overflows)
            ** would keep the scaling loops below going for ever; such a row is left
            ** alone and the QR stage reports the failure. */
            if (!std::isfinite(colNorm) || !std::isfinite(rowNorm))
                continue;
            double s = colNorm + rowNorm, f = 1.0;
            while (colNorm < rowNorm / radix) {
                colNorm *= squaredRadix;
                f *= radix;
            }
            while (colNorm > rowNorm * radix) {
                colNorm /= squaredRadix;
                f /= radix;
            }
            if ((colNorm + rowNorm) / f < 0.95 * s) {
                scaled = 1;
                double g = 1.0 / f;
                for (int32_t j = 1; j <= n; j++)
                    A(i, j) *= g;
                for (int32_t j = 1; j <= n; j++)
                    A(j, i) *= f;
            }
        }
    }
}

void hessenbergReduce(Matrix *m, int32_t n)
{
    for (int32_t k = 2; k < n; k++) {           /* k is the m of the textbook */
        double x = 0.0;
        int32_t pivot = k;
        for (int32_t j = k; j <= n; j++)
            if (std::fabs(A(j, k - 1)) > std::fabs(x)) {
                x = A(j, k - 1);
                pivot = j;
            }
        if (pivot != k) {
            for (int32_t j = k - 1; j <= n; j++) {
                double t = A(pivot, j);
                A(pivot, j) = A(k, j);
                A(k, j) = t;
            }
            for (int32_t j = 1; j <= n; j++) {
                double t = A(j, pivot);
                A(j, pivot) = A(j, k);
                A(j, k) = t;
            }
        }
        if (x != 0.0)
            for (int32_t i = k + 1; i <= n; i++) {
                double y = A(i, k - 1);
                if (y != 0.0) {
                    y /= x;
                    A(i, k - 1) = y;
                    for (int32_t j = k; j <= n; j++)
                        A(i, j) -= y * A(k, j);
                    for (int32_t j = 1; j <= n; j++)
                        A(j, k) += y * A(j, i);
                }
            }
    }
}

/* True when an element of the active block (rows and columns 1..nn) is not finite. */
static bool activeBlockNonFinite(const Matrix *m, int32_t nn)
{
    for (int32_t j = 1; j <= nn; j++)
        for (int32_t i = 1; i <= nn; i++)
            if (!std::isfinite(A(i, j)))
                return true;
    return false;
}

void eigenSolver(Matrix *m, int32_t n, double *wr, double *wi)
{
    if (n < 1)
        return;
    double anorm = std::fabs(A(1, 1));
    for (int32_t i = 2; i <= n; i++)
        for (int32_t j = i - 1; j <= n; j++)
            anorm += std::fabs(A(i, j));

    const int32_t limit = 5 * n > 30 ? 5 * n : 30;
    int32_t nn = n, l;
    double t = 0.0;
    double p = 0, q = 0, r = 0, s, w, x, y, z = 0;
    while (nn >= 1) {
        int32_t its = 0, restarts = 0;
        for (;;) {
            for (l = nn; l >= 2; l--) {
                s = std::fabs(A(l - 1, l - 1)) + std::fabs(A(l, l));
                if (s == 0.0)
                    s = anorm;
                if (std::fabs(A(l, l - 1)) + s == s)
                    break;
            }
            x = A(nn, nn);
            if (l == nn) {
                wr[nn] = x + t;
                wi[nn] = 0.0;
                nn--;
                break;
            }
            y = A(nn - 1, nn - 1);
            w = A(nn, nn - 1) * A(nn - 1, nn);
            if (l == nn - 1) {
                p = 0.5 * (y - x);
                q = p * p + w;
                z = std::sqrt(std::fabs(q));
                x += t;
                if (q >= 0.0) {
                    z = p >= 0.0 ? p + z : p - z;
                    wr[nn - 1] = wr[nn] = x + z;
                    if (z != 0.0)
                        wr[nn] = x - w / z;
                    wi[nn - 1] = wi[nn] = 0.0;
                } else {
                    wr[nn - 1] = wr[nn] = x + p;
                    wi[nn - 1] = -z;
                    wi[nn] = z;
                }
                nn -= 2;
                break;
            }
            if (its > limit) {
                debMsg("EigenSolver: over %d iterations and only %d roots", (int)(5 * n),
                       (int)(n - nn));
                its = 0;
                /* Bounded give-up: the roots not found are returned as NaN. */
                if (++restarts >= MAX_QR_RESTARTS || activeBlockNonFinite(m, nn)) {
                    const double nan = std::numeric_limits<double>::quiet_NaN();
                    for (int32_t i = 1; i <= nn; i++)
                        wr[i] = wi[i] = nan;
                    return;
                }
            } else if (its == 10 || its == 20) {
                t += x;
                for (int32_t i = 1; i <= nn; i++)
                    A(i, i) -= x;
                s = std::fabs(A(nn, nn - 1)) + std::fabs(A(nn - 1, nn - 2));
                x = y = 0.75 * s;
                w = -0.4375 * s * s;
            }
            its++;

            int32_t mm;                         /* the m of the textbook */
            for (mm = nn - 2; mm >= l; mm--) {
                z = A(mm, mm);
                r = x - z;
                s = y - z;
                p = (r * s - w) / A(mm + 1, mm) + A(mm, mm + 1);
                q = A(mm + 1, mm + 1) - z - r - s;
                r = A(mm + 2, mm + 1);
                s = std::fabs(p) + std::fabs(q) + std::fabs(r);
                p /= s;
                q /= s;
                r /= s;
                if (mm == l)
                    break;
                double u = std::fabs(A(mm, mm - 1)) * (std::fabs(q) + std::fabs(r));
                double v = std::fabs(p) * (std::fabs(A(mm - 1, mm - 1)) + std::fabs(z)
                                           + std::fabs(A(mm + 1, mm + 1)));
                if (u + v == v)
                    break;
            }
            for (int32_t i = mm + 2; i <= nn; i++) {
                A(i, i - 2) = 0.0;
                if (i != mm + 2)
                    A(i, i - 3) = 0.0;
            }
            for (int32_t k = mm; k <= nn - 1; k++) {
                if (k != mm) {
                    p = A(k, k - 1);
                    q = A(k + 1, k - 1);
                    r = 0.0;
                    if (k != nn - 1)
                        r = A(k + 2, k - 1);
                    x = std::fabs(p) + std::fabs(q) + std::fabs(r);
                    if (x != 0.0) {
                        p /= x;
                        q /= x;
                        r /= x;
                    }
                }
                s = std::sqrt(p * p + q * q + r * r);
                if (p < 0.0)
                    s = -s;
                if (s == 0.0)
                    continue;
                if (k == mm) {
                    if (l != mm)
                        A(k, k - 1) = -A(k, k - 1);
                } else {
                    A(k, k - 1) = -s * x;
                }
                p += s;
                x = p / s;
                y = q / s;
                z = r / s;
                q /= p;
                r /= p;
                for (int32_t j = k; j <= nn; j++) {
                    p = A(k, j) + q * A(k + 1, j);
                    if (k != nn - 1) {
                        p += r * A(k + 2, j);
                        A(k + 2, j) -= p * z;
                    }
                    A(k + 1, j) -= p * y;
                    A(k, j) -= p * x;
                }
                int32_t last = nn < k + 3 ? nn : k + 3;
                for (int32_t i = l; i <= last; i++) {
                    p = x * A(i, k) + y * A(i, k + 1);
                    if (k != nn - 1) {
                        p += z * A(i, k + 2);
                        A(i, k + 2) -= p * r;
                    }
                    A(i, k + 1) -= p * q;
                    A(i, k) -= p;
                }
            }
        }
    }
}

/* The binary exponent e of the largest |element| of the top-left n x n block
** (largest = m 2^e, m in [0.5, 1)); 0 for an all-zero block. */
static int largestElementExponent(const Matrix *m, int32_t n)
{
    double largest = 0.0;
    for (int32_t j = 1; j <= n; j++)
        for (int32_t i = 1; i <= n; i++)
            largest = std::fmax(largest, std::fabs(A(i, j)));
    int exponent = 0;
    if (largest > 0.0)
        std::frexp(largest, &exponent);
    return exponent;
}

static void scaleBlock(Matrix *m, int32_t n, int exponent)
{
    for (int32_t j = 1; j <= n; j++)
        for (int32_t i = 1; i <= n; i++)
            A(i, j) = std::ldexp(A(i, j), exponent);
}

void eigenValues(Complex *roots, const Matrix *a, int32_t n)
{
    /* Nothing to compute for n < 1; no work storage is taken. */
    if (n < 1)
        return;
    /* An order beyond the matrix would address past its storage: refused with a
    ** message, and the roots are set to 0 so that callers read defined values. */
    if ((uint32_t)n > a->rows || (uint32_t)n > a->cols) {
        debMsg("EigenValues: order %d exceeds the %dx%d matrix", (int)n, (int)a->rows,
               (int)a->cols);
        for (int32_t k = 0; k < n; k++)
            roots[k] = Complex{0.0, 0.0};
        return;
    }
    /* An infinite or NaN element makes every eigenvalue meaningless: reported with the
    ** solver's own message (no roots found) and every root set to NaN. */
    for (int32_t j = 0; j < n; j++)
        for (int32_t i = 0; i < n; i++)
            if (!std::isfinite(a->data[(uint64_t)j * a->rows + i])) {
                debMsg("EigenSolver: over %d iterations and only %d roots", (int)(5 * n), 0);
                const double nan = std::numeric_limits<double>::quiet_NaN();
                for (int32_t k = 0; k < n; k++)
                    roots[k] = Complex{nan, nan};
                return;
            }
    Matrix *work = (Matrix *)galloc(matrixBytes(a->rows, a->cols));
    work->rows = a->rows;
    work->cols = a->cols;
    double *wr = (double *)galloc(sizeof(double) * ((uint64_t)n + 1));
    double *wi = (double *)galloc(sizeof(double) * ((uint64_t)n + 1));
    matCopy(work, a);
    balanceMatrix(work, n);
    /* The balanced copy is scaled by a power of two so that its largest element lies in
    ** [0.5, 1), and the roots by the inverse: exact, and the iteration's squares and
    ** products then neither overflow nor underflow for elements near the ends of the
    ** exponent range.  For other matrices the result is the same to the last bit.  (After
    ** balancing, so that a wide spread of magnitudes, which balancing evens out, does not
    ** push the small elements below the exponent range.) */
    int exponent = largestElementExponent(work, n);
    scaleBlock(work, n, -exponent);
    hessenbergReduce(work, n);
    eigenSolver(work, n, wr, wi);
    for (int32_t k = 0; k < n; k++)
        roots[k] = Complex{std::ldexp(wr[k + 1], exponent), std::ldexp(wi[k + 1], exponent)};
    gfree(wi);
    gfree(wr);
    gfree(work);
}
