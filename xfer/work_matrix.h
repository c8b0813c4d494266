/*
** xfer/work_matrix.h: temporary matrices of the transfer-function computations,
** taken from the host heap by the shared sizing rule.  Private to xfer/.
*/
#ifndef PRAXA_XFER_WORK_MATRIX_H
#define PRAXA_XFER_WORK_MATRIX_H

#include <cstdint>

#include "host/host.h"
#include "numeric/matrix.h"

/* A rows x cols matrix from galloc, elements as the heap gives them; release with gfree. */
inline Matrix *newWorkMatrix(uint32_t rows, uint32_t cols)
{
    Matrix *m = (Matrix *)galloc(matrixBytes(rows, cols));
    m->rows = rows;
    m->cols = cols;
    return m;
}

/* Element (i, j), 0-based, column-major with the record's own stride. */
inline double &elementAt(Matrix *m, uint32_t i, uint32_t j) { return m->data[(size_t)j * m->rows + i]; }
inline double elementAt(const Matrix *m, uint32_t i, uint32_t j) { return m->data[(size_t)j * m->rows + i]; }

#endif
