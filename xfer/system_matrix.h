/*
** xfer/system_matrix.h: the system matrix [b A; d c] of a single-input single-output
** model and its Householder reduction to the order of the zeros.  Private to xfer/.
** S is (n + 1) x (n + 1): rows 0..n-1 hold (b, A), row n holds (d, c); state j sits
** in row j and in column j + 1.
*/
#ifndef PRAXA_XFER_SYSTEM_MATRIX_H
#define PRAXA_XFER_SYSTEM_MATRIX_H

#include <cstdint>

#include "numeric/matrix.h"

/* Reduces S in place, one state per pass, while the feed-through of the current output
** row is zero to within tolerance (relative, a multiple of the rounding unit; scaled by n
** and the norms of b, c and A).  Returns the order of the reduced system (0..n), which is
** the number of finite zeros; 0 when the output row vanishes (G identically 0). */
int32_t reduceSysMatrix(Matrix *S, int32_t n, double tolerance);

/* From a reduced S of order k (k >= 1): Ar = S(0..k-1, 1..k), br = S(0..k-1, 0),
** cr = S(k, 1..k), dr = S(k, 0), dr exactly 0.0 replaced by 1.0.  The outputs must be
** k x k, k x 1, 1 x k and 1 x 1. */
void extractReducedSys(const Matrix *S, Matrix *Ar, Matrix *br, Matrix *cr, Matrix *dr, int32_t k);

/* Reflection from the left, S <- H S on rows rowOffset..rowOffset+length-1 and columns
** firstColumn..lastColumn, with H = I - beta u u^T and u[0..length-1]. */
void householderLeft(Matrix *S, int32_t rowOffset, int32_t length, int32_t firstColumn,
                     int32_t lastColumn, const double *u, double beta);

/* Reflection from the right, S <- S H on rows 0..rowCount-1 and columns 1..length
** (the state columns), with H = I - beta u u^T and u[0..length-1]. */
void householderRight(Matrix *S, int32_t rowCount, int32_t length, const double *u, double beta);

#endif
