/*
** xfer/zeros.cpp: the finite zeros of a single-input single-output model, by
** Householder reduction of the system matrix [b A; d c] to a model with nonzero
** feed-through, whose zeros are the eigenvalues of Ar - br cr / dr.
*/
#include <cfloat>
#include <cmath>

#include "host/host.h"
#include "numeric/eigen.h"
#include "xfer/system_matrix.h"
#include "xfer/work_matrix.h"
#include "xfer/xfer.h"

/* The reduction's tolerance in units of the rounding unit, times the order: a
** feed-through or output row that small against the data is a rounding residue of one
** that is exactly zero.  (An absolute tolerance near 1e-270 took such a residue for a
** real feed-through, divided by it and produced a huge spurious zero and a wrong zero
** count.) */
static const double RESIDUE_FACTOR = 64.0 * DBL_EPSILON;

void householderLeft(Matrix *S, int32_t rowOffset, int32_t length, int32_t firstColumn,
                     int32_t lastColumn, const double *u, double beta)
{
    for (int32_t j = firstColumn; j <= lastColumn; j++) {
        double s = 0.0;
        for (int32_t i = 0; i < length; i++)
            s += elementAt(S, rowOffset + i, j) * u[i];
        for (int32_t i = 0; i < length; i++)
            elementAt(S, rowOffset + i, j) -= beta * s * u[i];
    }
}

void householderRight(Matrix *S, int32_t rowCount, int32_t length, const double *u, double beta)
{
    for (int32_t i = 0; i < rowCount; i++) {
        double s = 0.0;
        for (int32_t j = 1; j <= length; j++)
            s += elementAt(S, i, j) * u[j - 1];
        for (int32_t j = 1; j <= length; j++)
            elementAt(S, i, j) -= beta * s * u[j - 1];
    }
}

static double columnNorm(const Matrix *S, int32_t column, int32_t firstRow, int32_t lastRow)
{
    double sum = 0.0;
    for (int32_t i = firstRow; i <= lastRow; i++)
        sum += elementAt(S, i, column) * elementAt(S, i, column);
    return std::sqrt(sum);
}

static double rowNorm(const Matrix *S, int32_t row, int32_t firstColumn, int32_t lastColumn)
{
    double sum = 0.0;
    for (int32_t j = firstColumn; j <= lastColumn; j++)
        sum += elementAt(S, row, j) * elementAt(S, row, j);
    return std::sqrt(sum);
}

/* Each pass removes the state that the output reads directly and replaces the output by
** its derivative; the zeros stay.  At most n passes.
**
** What counts as zero is measured against the data (Frobenius norms).  The feed-through
** of a later pass is an entry of b turned by the reflections so far; each reflection is
** computed from an output row of norm sigma_i whose entries carry errors of order
** eps |A|, so its direction errs by eps |A| / sigma_i and the feed-through by
** eps |b| |A| / sigma_i.  A feed-through within the tolerance of |b| (1 + sum of
** |A| / sigma_i) is a residue of one that is exactly zero.  D itself is compared with
** |c| |b| / |A|, a size with the units of D.  An output row that vanishes (below
** tolerance |A|) means G(s) = 0 identically: such a model has no zeros, and 0 is
** returned. */
int32_t reduceSysMatrix(Matrix *S, int32_t n, double tolerance)
{
    if (n < 1)
        return 0;
    double scale = tolerance * n;
    double normB = columnNorm(S, 0, 0, n - 1);
    double normA = 0.0;
    for (int32_t j = 1; j <= n; j++) {
        double c = columnNorm(S, j, 0, n - 1);
        normA += c * c;
    }
    normA = std::sqrt(normA);
    double normC = rowNorm(S, n, 1, n);
    double amplification = 1.0;         /* 1 + sum |A| / sigma_i over the passes after the first */

    double *u = (double *)galloc(sizeof(double) * (size_t)n);
    int32_t order = n;
    while (order > 0) {
        double feedThrough = elementAt(S, order, 0);
        double bound = order == n ? (normA > 0.0 ? scale * normB * normC / normA : 0.0)
                                  : scale * normB * amplification;
        if (!(std::fabs(feedThrough) <= bound))       /* also a NaN: taken as present */
            break;
        double sumOfSquares = 0.0;
        for (int32_t j = 1; j <= order; j++)
            sumOfSquares += elementAt(S, order, j) * elementAt(S, order, j);
        double sigma = std::sqrt(sumOfSquares);
        if (sigma == 0.0 || (order < n && sigma <= scale * normA)) {
            order = 0;
            break;
        }
        if (order < n)
            amplification += normA / sigma;
        /* H = I - beta u u^T maps the output row c to (0, ..., 0, alpha);
        ** |u|^2 = 2 (sigma^2 - c_last alpha). */
        for (int32_t j = 1; j <= order; j++)
            u[j - 1] = elementAt(S, order, j);
        double last = elementAt(S, order, order);
        double alpha = last > 0.0 ? -sigma : sigma;
        u[order - 1] = last - alpha;
        double beta = 1.0 / (sumOfSquares - last * alpha);
        if (order > 1) {
            householderRight(S, order + 1, order, u, beta);
            householderLeft(S, 0, order, 0, order, u, beta);
        }
        order--;
    }
    gfree(u);
    return order;
}

void extractReducedSys(const Matrix *S, Matrix *Ar, Matrix *br, Matrix *cr, Matrix *dr, int32_t k)
{
    for (int32_t i = 0; i < k; i++) {
        for (int32_t j = 0; j < k; j++)
            elementAt(Ar, i, j) = elementAt(S, i, j + 1);
        elementAt(br, i, 0) = elementAt(S, i, 0);
        elementAt(cr, 0, i) = elementAt(S, k, i + 1);
    }
    double feedThrough = elementAt(S, k, 0);
    /* The reduction may stop on a vanished output row with no feed-through; 1.0 keeps
    ** the division by dr defined. */
    elementAt(dr, 0, 0) = feedThrough == 0.0 ? 1.0 : feedThrough;
}

static bool allElementsZero(const Matrix *m)
{
    size_t count = (size_t)m->rows * (m->cols ? m->cols : 1);
    for (size_t i = 0; i < count; i++)
        if (m->data[i] != 0.0)        /* a NaN counts as nonzero */
            return false;
    return true;
}

static Matrix *buildSystemMatrix(const Matrix *A, const Matrix *B, const Matrix *C, const Matrix *D)
{
    uint32_t n = A->rows;
    Matrix *S = newWorkMatrix(n + 1, n + 1);
    for (uint32_t i = 0; i < n; i++) {
        elementAt(S, i, 0) = elementAt(B, i, 0);
        for (uint32_t j = 0; j < n; j++)
            elementAt(S, i, j + 1) = elementAt(A, i, j);
    }
    elementAt(S, n, 0) = elementAt(D, 0, 0);
    for (uint32_t j = 0; j < n; j++)
        elementAt(S, n, j + 1) = C->data[(size_t)j * C->rows];
    return S;
}

/* The zeros of the reduced model of order k, the eigenvalues of Ar - br cr / dr, into zerosOut. */
static void reducedSystemZeros(const Matrix *S, int32_t k, Complex *zerosOut)
{
    Matrix *Ar = newWorkMatrix(k, k);
    Matrix *br = newWorkMatrix(k, 1);
    Matrix *cr = newWorkMatrix(1, k);
    Matrix *dr = newWorkMatrix(1, 1);
    Matrix *Z = newWorkMatrix(k, k);
    extractReducedSys(S, Ar, br, cr, dr, k);
    Matrix *product = matMul(br, cr);
    matScale(Z, product, -1.0 / elementAt(dr, 0, 0));
    matAdd(Z, Ar, Z);
    eigenValues(zerosOut, Z, k);
    gfree(Z);
    gfree(dr);
    gfree(cr);
    gfree(br);
    gfree(Ar);
}

void stateToZeros(Matrix *A, Matrix *B, Matrix *C, Matrix *D, Complex *zerosOut, Polynomial *numerator)
{
    int32_t n = (int32_t)A->rows;
    int32_t zeroCount = 0;
    if (allElementsZero(C)) {
        winMsg("Zero C matrix means no connection to output. Check for delay blocks.");
    } else {
        Matrix *S = buildSystemMatrix(A, B, C, D);
        zeroCount = reduceSysMatrix(S, n, RESIDUE_FACTOR);
        if (zeroCount > 0)
            reducedSystemZeros(S, zeroCount, zerosOut);
        gfree(S);
    }
    if (zeroCount > 0) {
        Complex *scratch = (Complex *)galloc(sizeof(Complex) * (size_t)(zeroCount + 2));
        polyFromRoots(numerator->coefficients, scratch, zerosOut, zeroCount);
        gfree(scratch);
    } else {
        numerator->coefficients[0] = 1.0;
    }
    numerator->count = zeroCount + 1;
    for (int32_t i = numerator->count; i <= n + 1; i++)
        numerator->coefficients[i] = 0.0;
}
