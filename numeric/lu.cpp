/*
** numeric/lu.cpp: Gaussian elimination with partial pivoting (Doolittle form, the row
** with the largest remaining entry of each column as pivot) and the two triangular
** solves.
*/
#include "numeric/lu.h"

#include <cmath>

#define EL(i, j) (a->data[(uint64_t)(j) * a->rows + (uint64_t)(i)])

int luSolve(Matrix *a, int32_t n, double *b, int32_t *pivots)
{
    for (int32_t k = 0; k < n; k++) {
        int32_t pivot = k;
        for (int32_t i = k + 1; i < n; i++)
            if (std::fabs(EL(i, k)) > std::fabs(EL(pivot, k)))
                pivot = i;
        pivots[k] = pivot;
        double p = EL(pivot, k);
        if (p == 0.0 || !std::isfinite(p))
            return 0;
        if (pivot != k)
            for (int32_t j = 0; j < n; j++) {
                double t = EL(k, j);
                EL(k, j) = EL(pivot, j);
                EL(pivot, j) = t;
            }
        for (int32_t i = k + 1; i < n; i++)
            EL(i, k) /= p;
        for (int32_t j = k + 1; j < n; j++) {
            double f = EL(k, j);
            if (f != 0.0)
                for (int32_t i = k + 1; i < n; i++)
                    EL(i, j) -= EL(i, k) * f;
        }
    }
    /* The rows were exchanged whole, so L is in the final row order: b takes every
    ** exchange first, then the forward substitution. */
    for (int32_t k = 0; k < n; k++) {
        double t = b[pivots[k]];
        b[pivots[k]] = b[k];
        b[k] = t;
    }
    for (int32_t k = 0; k < n; k++) {
        for (int32_t i = k + 1; i < n; i++)
            b[i] -= EL(i, k) * b[k];
    }
    for (int32_t k = n - 1; k >= 0; k--) {
        b[k] /= EL(k, k);
        for (int32_t i = 0; i < k; i++)
            b[i] -= EL(i, k) * b[k];
    }
    return 1;
}
