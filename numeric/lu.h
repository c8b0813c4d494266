/*
** numeric/lu.h: the solution of a square linear system by LU factorization with
** partial (row) pivoting.
*/
#ifndef PRAXA_LU_H
#define PRAXA_LU_H

#include <cstdint>

#include "numeric/matrix.h"

/* Solves a x = b for the top-left n x n block of a (column-major with a's own stride; a
** is overwritten by its factors) and the n values of b, which are replaced by x.  pivots
** holds n entries of scratch.  Returns 1, or 0 when a pivot is exactly zero or not finite
** (a singular or non-finite matrix); b is then left partly transformed. */
int luSolve(Matrix *a, int32_t n, double *b, int32_t *pivots);

#endif
