/*
** numeric/svd.h: singular value decomposition (Householder bidiagonalization and
** Golub-Kahan-Reinsch QR), the inverse and the least-squares solve built on it.
*/
#ifndef PRAXA_SVD_H
#define PRAXA_SVD_H

#include <cstdint>

#include "numeric/matrix.h"

/* a (m x n, m >= n) = U W V^T: U overwrites a, w[1..n] the singular values (1-based,
** so w has n + 1 slots; non-negative, unsorted), V at least n x n.  Returns 1, or 0
** when a singular value did not converge in 30 passes (no message).  Also 0, with a
** debMsg, for m < n, a V too small, or an infinite or NaN element (w and V then NaN). */
int svDecompose(Matrix *a, double *w, Matrix *v);
/* x = V W^-1 U^T b with the singular values and V held by singularValueDecomp
** (call it first).  b and x: arrays of u.rows doubles, 0-based; x may be b. */
void svBackSubstitute(const Matrix *u, const double *b, double *x);
/* Replaces square a by its inverse (exactly zero singular values dropped). 1, or 0
** when the decomposition failed (a then holds intermediate values) or a is not square
** (refused with a message, a unchanged).  Uses held work blocks: not reentrant. */
int matInvert(Matrix *a);

extern "C" {
/* Least-squares solve of a x = b (b given; b and x columns of n values) or in-place
** pseudo-inverse (b null), with singular values below 1e-12 of the largest set to
** zero; returns how many were.  a is overwritten (by U, or by the pseudo-inverse).
** A non-square a, or b or x shorter than n: message, nothing changed, result -1. */
int32_t singularValueDecomp(Matrix *a, const Matrix *b, Matrix *x);
}

#endif
