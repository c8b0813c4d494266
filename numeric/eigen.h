/*
** numeric/eigen.h: all eigenvalues of a real square matrix (balancing, Hessenberg
** reduction by elimination, shifted double-step QR).  Also the polynomial root
** finder, through companion matrices.
*/
#ifndef PRAXA_EIGEN_H
#define PRAXA_EIGEN_H

#include <cstdint>

#include "numeric/matrix.h"

/* Eigenvalues of the top-left n x n block of a (a is not modified) into roots[0..n-1],
** in deflation order, complex pairs adjacent with the negative imaginary part first.
** n < 1: nothing is written.  Slow convergence is reported with debMsg ("EigenSolver:
** over %d iterations and only %d roots") and the iteration goes on; if it still fails
** after 20 such restarts, or the matrix holds an infinite or NaN element, the roots not
** found are NaN; no status is returned besides.  n beyond a's rows or columns: refused
** with a message, roots set to 0. */
void eigenValues(Complex *roots, const Matrix *a, int32_t n);
/* The steps of eigenValues, on its work copy (1-based indices in the algorithms). */
void balanceMatrix(Matrix *a, int32_t n);
void hessenbergReduce(Matrix *a, int32_t n);
/* wr, wi: 1-based arrays of n + 1 doubles. Destroys a. */
void eigenSolver(Matrix *a, int32_t n, double *wr, double *wi);

/* The roots of c_0 + c_1 s + ... + c_n s^n (ascending, n + 1 coefficients) as the
** eigenvalues of its companion matrix, built in Hessenberg form in the top-left of W (at
** least n x n).  Returns the degree d (highest nonzero coefficient; -1 when all are 0)
** and writes d roots in the eigenvalue solver's order; nothing is written when d < 1.
** (numeric/poly_roots.cpp) */
int32_t polyRoots(Complex *roots, const double *c, int32_t n, Matrix *W);

#endif
