/*
** numeric/matrix.cpp: creation and resizing of the matrix records and their
** elementary operations (copy, transpose, sum, products, scalar multiple).
** Products accumulate in index order from 0.0, so results are reproducible to the bit.
*/
#include "numeric/matrix.h"

#include "host/host.h"

/* The product held by matMul between calls; resized per call, never released. */
static Matrix *mulResultBuffer;

/* Element (i, j), 0-based, of m, stepping columns by m's own rows. */
static inline double &at(Matrix *m, uint64_t i, uint64_t j)
{
    return m->data[j * m->rows + i];
}
static inline double at(const Matrix *m, uint64_t i, uint64_t j)
{
    return m->data[j * m->rows + i];
}

/* dst(i, j) = sum over k < inner of a(i, k) * b(k, j), for i < rows, j < cols. */
static void multiplyBlocks(Matrix *dst, const Matrix *a, const Matrix *b,
                           uint32_t rows, uint32_t inner, uint32_t cols)
{
    for (uint64_t j = 0; j < cols; j++)
        for (uint64_t i = 0; i < rows; i++) {
            double sum = 0.0;
            for (uint64_t k = 0; k < inner; k++)
                sum += at(a, i, k) * at(b, k, j);
            at(dst, i, j) = sum;
        }
}

/* Heap exhaustion: galloc and grealloc never return null here; the host stops the
** program with its own message when the heap is exhausted, so results are used as given. */

extern "C" Matrix *matDecl(uint32_t rows, uint32_t cols)
{
    Matrix *m = (Matrix *)galloc(matrixBytes(rows, cols));
    m->rows = rows;
    m->cols = cols;
    return m;
}

extern "C" Matrix *matReDecl(Matrix *m, uint32_t rows, uint32_t cols)
{
    m = (Matrix *)grealloc(m, matrixBytes(rows, cols));
    m->rows = rows;
    m->cols = cols;
    return m;
}

extern "C" ComplexMatrix *cmatReDecl(ComplexMatrix *m, uint32_t rows, uint32_t cols)
{
    m = (ComplexMatrix *)grealloc(m, complexMatrixBytes(rows, cols));
    m->rows = rows;
    m->cols = cols;
    return m;
}

void matCopy(Matrix *dst, const Matrix *src)
{
    uint32_t rows = dst->rows < src->rows ? dst->rows : src->rows;
    uint32_t cols = dst->cols < src->cols ? dst->cols : src->cols;
    for (uint64_t j = 0; j < cols; j++)
        for (uint64_t i = 0; i < rows; i++)
            at(dst, i, j) = at(src, i, j);
}

Matrix *transpose2(Matrix *dst, Matrix *src)
{
    if (src->rows != dst->cols || src->cols != dst->rows) {
        setBlockErr();
        debMsg("Bad args to transpose2 (%d,%d)=(%d,%d)",
               (int)src->rows, (int)src->cols, (int)dst->rows, (int)dst->cols);
        return dst;
    }
    if (dst != src) {
        for (uint64_t i = 0; i < src->rows; i++)
            for (uint64_t j = 0; j < src->cols; j++)
                at(dst, j, i) = at(src, i, j);
        return dst;
    }
    for (uint64_t i = 0; i < src->rows; i++)
        for (uint64_t j = i + 1; j < src->cols; j++) {
            double t = at(src, i, j);
            at(src, i, j) = at(src, j, i);
            at(src, j, i) = t;
        }
    return src;
}

void matAdd(Matrix *dst, const Matrix *a, const Matrix *b)
{
    uint32_t rows = a->rows, cols = a->cols;
    if (a->rows != b->rows || a->cols != b->cols) {
        debMsg("Error: dimension mismatch (%d,%d)x(%d,%d) in Matrix Add!",
               (int)a->rows, (int)a->cols, (int)b->rows, (int)b->cols);
        setBlockErr();
        rows = a->rows < b->rows ? a->rows : b->rows;
        cols = a->cols < b->cols ? a->cols : b->cols;
    }
    for (uint64_t j = 0; j < cols; j++)
        for (uint64_t i = 0; i < rows; i++)
            at(dst, i, j) = at(a, i, j) + at(b, i, j);
}

Matrix *matMul(Matrix *a, const Matrix *b)
{
    if (b->rows != a->cols) {
        debMsg("Non conformable matMul!");
        return a;
    }
    mulResultBuffer = matReDecl(mulResultBuffer, a->rows, b->cols);
    multiplyBlocks(mulResultBuffer, a, b, a->rows, a->cols, b->cols);
    return mulResultBuffer;
}

void matMulInto(Matrix *dst, const Matrix *a, const Matrix *b)
{
    if (dst->rows < a->rows || dst->cols < b->cols || a->cols != b->rows) {
        setBlockErr();
        debMsg("Error: dimension mismatch (%d,%d)x(%d,%d) in matmul!",
               (int)a->cols, (int)a->rows, (int)b->cols, (int)b->rows);
        return;
    }
    multiplyBlocks(dst, a, b, a->rows, a->cols, b->cols);
}

/* Columns of storage a record has: a vector (cols 0) has one. */
static uint32_t storedColumns(const Matrix *m)
{
    return m->cols ? m->cols : 1;
}

extern "C" void matMulX(Matrix *dst, const Matrix *a, const Matrix *b,
                        uint32_t aRows, uint32_t aCols, uint32_t bRows, uint32_t bCols)
{
    /* Besides the documented conformity check, blocks that reach past their operand's
    ** storage are refused with the same message, since this entry is open to other
    ** modules and must not read past a record. */
    if (dst->rows < aRows || dst->cols < bCols || aCols != bRows
        || aRows > a->rows || aCols > storedColumns(a)
        || bRows > b->rows || bCols > storedColumns(b)) {
        debMsg("Error: dimension mismatch (%d,%d)x(%d,%d) in matmul!",
               (int)aCols, (int)aRows, (int)bCols, (int)bRows);
        return;
    }
    multiplyBlocks(dst, a, b, aRows, aCols, bCols);
}

Matrix *matScale(Matrix *dst, const Matrix *src, double k)
{
    for (uint64_t j = 0; j < dst->cols; j++)
        for (uint64_t i = 0; i < dst->rows; i++)
            at(dst, i, j) = k * at(src, i, j);
    return dst;
}
