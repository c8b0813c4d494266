/*
** numeric/matrix_exponential.h: e^A of a real square matrix (scaling and squaring
** with a diagonal Padé approximant).
*/
#ifndef PRAXA_MATRIX_EXPONENTIAL_H
#define PRAXA_MATRIX_EXPONENTIAL_H

#include "numeric/matrix.h"

/* result (n x n, not a) = e^a for square a.  Returns 1, or 0 when a is not square,
** result is too small, or a holds an infinite or NaN element (result then unchanged). */
int matExponential(Matrix *result, const Matrix *a);

#endif
