/*
** tests/xfer/model.h: state-space models for the transfer-function tests, built on
** the host heap the way the linearizer leaves them (A n x n, B n x 1, C 1 x n, D 1 x 1).
*/
#ifndef PRAXA_TESTS_XFER_MODEL_H
#define PRAXA_TESTS_XFER_MODEL_H

#include <cstdint>
#include <vector>

#include "host/host.h"
#include "numeric/matrix.h"

namespace xfertest {

/* A rows x cols matrix filled from values given row by row. */
inline Matrix *matrixFromRows(uint32_t rows, uint32_t cols, const std::vector<double> &rowMajor)
{
    Matrix *m = (Matrix *)galloc(matrixBytes(rows, cols));
    m->rows = rows;
    m->cols = cols;
    for (uint32_t i = 0; i < rows; i++)
        for (uint32_t j = 0; j < cols; j++)
            m->data[j * rows + i] = rowMajor.at(i * cols + j);
    return m;
}

inline double element(const Matrix *m, uint32_t i, uint32_t j) { return m->data[j * m->rows + i]; }

struct Model {
    Matrix *A, *B, *C, *D;
    int32_t n;
    Model(int32_t order, const std::vector<double> &a, const std::vector<double> &b,
          const std::vector<double> &c, double d)
        : A(matrixFromRows(order, order, a)), B(matrixFromRows(order, 1, b)),
          C(matrixFromRows(1, order, c)), D(matrixFromRows(1, 1, {d})), n(order) {}
    Model(const Model &) = delete;
    Model &operator=(const Model &) = delete;
    ~Model() { gfree(A); gfree(B); gfree(C); gfree(D); }
};

/* Controllable canonical form of N(s)/D(s): den = (d0, ..., d_{n-1}) of the monic
** denominator, num = (n0, ..., n_{n-1}) with deg N < n; ascending powers. */
inline Model *controllableForm(const std::vector<double> &num, const std::vector<double> &den)
{
    int32_t n = (int32_t)den.size();
    std::vector<double> a(n * n, 0.0), b(n, 0.0), c(n, 0.0);
    for (int32_t i = 0; i + 1 < n; i++)
        a[i * n + i + 1] = 1.0;
    for (int32_t j = 0; j < n; j++)
        a[(n - 1) * n + j] = -den[j];
    b[n - 1] = 1.0;
    for (size_t j = 0; j < num.size(); j++)
        c[j] = num[j];
    return new Model(n, a, b, c, 0.0);
}

}

#endif
