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

extern "C" {
Matrix *matDecl(uint32_t rows, uint32_t cols);
Matrix *matReDecl(Matrix *m, uint32_t rows, uint32_t cols);
ComplexMatrix *cmatReDecl(ComplexMatrix *m, uint32_t rows, uint32_t cols);
void matMulX(Matrix *dst, const Matrix *a, const Matrix *b,
             uint32_t aRows, uint32_t aCols, uint32_t bRows, uint32_t bCols);
}

void matCopy(Matrix *dst, const Matrix *src);
Matrix *transpose2(Matrix *dst, Matrix *src);
void matAdd(Matrix *dst, const Matrix *a, const Matrix *b);
Matrix *matMul(Matrix *a, const Matrix *b);
void matMulInto(Matrix *dst, const Matrix *a, const Matrix *b);
Matrix *matScale(Matrix *dst, const Matrix *src, double k);

#endif
