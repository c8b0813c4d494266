/*
** numeric/svd.h: singular value decomposition (Householder bidiagonalization and
** Golub-Kahan-Reinsch QR), the inverse and the least-squares solve built on it.
*/
#ifndef PRAXA_SVD_H
#define PRAXA_SVD_H

#include <cstdint>

#include "numeric/matrix.h"

/* a (m x n, m >= n) = U W V^T: U overwrites a, w[1..n] the singular values (1-based),
** V n x n.  Returns 1, or 0 when a singular value did not converge in 30 passes. */
int svDecompose(Matrix *a, double *w, Matrix *v);
/* x = V W^-1 U^T b with the singular values and V held by singularValueDecomp. */
void svBackSubstitute(const Matrix *u, const double *b, double *x);
/* Replaces square a by its inverse (exactly zero singular values dropped). 1 or 0. */
int matInvert(Matrix *a);

extern "C" {
/* Least-squares solve of a x = b (b given) or in-place pseudo-inverse (b null), with
** singular values below 1e-12 of the largest set to zero; returns how many were. */
int32_t singularValueDecomp(Matrix *a, const Matrix *b, Matrix *x);
}

#endif
