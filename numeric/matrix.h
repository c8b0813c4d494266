/*
** numeric/matrix.h: the dense matrix records and their elementary operations.
** Elements are column-major: element (i, j) is data[j * rows + i], 0-based.
** A record with cols == 0 is a vector of `rows` values.
*/
#ifndef PRAXA_MATRIX_H
#define PRAXA_MATRIX_H

#include <cstddef>
#include <cstdint>

#include "host/records.h"

struct Matrix {
    uint32_t lead;              /* present in the record; never read or written */
    uint32_t rows;              /* also the stride between columns */
    uint32_t cols;              /* 0 for a vector */
    uint32_t alignment;
    double data[];
};
static_assert(offsetof(Matrix, rows) == 4);
static_assert(offsetof(Matrix, cols) == 8);
static_assert(offsetof(Matrix, data) == 16);

struct ComplexMatrix {
    uint32_t lead;
    uint32_t rows;
    uint32_t cols;
    uint32_t alignment;
    Complex data[];
};
static_assert(offsetof(ComplexMatrix, data) == 16);

/* Bytes requested from the heap for a rows x cols matrix (cols 0: a vector). */
inline uint64_t matrixBytes(uint32_t rows, uint32_t cols)
{
    return 24 + 8 * (uint64_t)rows * (cols ? cols : 1);
}
inline uint64_t complexMatrixBytes(uint32_t rows, uint32_t cols)
{
    return 16 * ((uint64_t)rows * (cols ? cols : 1) + 2);
}

/* Dimension errors are reported with the host's debMsg (some also with setBlockErr)
** and the operation then does what its comment says; nothing is returned as an error.
** Products sum a(i,k) b(k,j) over k in increasing order from 0.0. */
extern "C" {
/* New rows x cols matrix from galloc (matrixBytes); elements uninitialised.  The
** caller owns it and releases it with gfree. */
Matrix *matDecl(uint32_t rows, uint32_t cols);
/* m (may be null) resized with grealloc to rows x cols; use the returned pointer.
** Bytes kept by the heap are not rearranged. */
Matrix *matReDecl(Matrix *m, uint32_t rows, uint32_t cols);
ComplexMatrix *cmatReDecl(ComplexMatrix *m, uint32_t rows, uint32_t cols);
/* dst = top-left aRows x aCols of a times top-left bRows x bCols of b, into dst's
** top-left; each operand stepped by its own rows.  Refused ("Error: dimension
** mismatch (%d,%d)x(%d,%d) in matmul!" with aCols, aRows, bCols, bRows; dst unchanged)
** when dst is too small, aCols != bRows, or a block reaches past its operand.
** dst must not be a or b. */
void matMulX(Matrix *dst, const Matrix *a, const Matrix *b,
             uint32_t aRows, uint32_t aCols, uint32_t bRows, uint32_t bCols);
}

/* dst(i,j) = src(i,j) over the overlapping top-left block; the rest of dst stays. */
void matCopy(Matrix *dst, const Matrix *src);
/* dst = src^T, in place when dst == src (square).  Shapes that do not match: block
** error, then "Bad args to transpose2 (%d,%d)=(%d,%d)"; dst unchanged.  Returns dst. */
Matrix *transpose2(Matrix *dst, Matrix *src);
/* dst = a + b (dst may be a or b, and must be at least a's size).  Different shapes:
** "Error: dimension mismatch ... in Matrix Add!", block error, sum of the common block. */
void matAdd(Matrix *dst, const Matrix *a, const Matrix *b);
/* a b in a held buffer, valid until the next matMul; b.rows != a.cols: "Non
** conformable matMul!" and a itself is returned. */
Matrix *matMul(Matrix *a, const Matrix *b);
/* a b into dst's top-left a.rows x b.cols (dst must not be a or b; dst keeps its
** shape).  Refused with a block error and the matmul message when it does not fit. */
void matMulInto(Matrix *dst, const Matrix *a, const Matrix *b);
/* dst(i,j) = k src(i,j) over dst's own size (src must be at least as large).
** Returns dst. */
Matrix *matScale(Matrix *dst, const Matrix *src, double k);

#endif
