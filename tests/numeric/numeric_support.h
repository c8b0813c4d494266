/*
** tests/numeric/numeric_support.h: building matrices from literals and reading the
** message transcript, for the comparisons against LAPACK (tests/support/lapack_reference.h).
*/
#ifndef PRAXA_TESTS_NUMERIC_SUPPORT_H
#define PRAXA_TESTS_NUMERIC_SUPPORT_H

#include <algorithm>
#include <cmath>
#include <complex>
#include <random>
#include <string>
#include <vector>

#include "host/host.h"
#include "hostapp/host_state.h"
#include "numeric/matrix.h"
#include "support.h"
#include "support/lapack_reference.h"
#include "platform/driver.h"

namespace testing_numeric {

using namespace testing_support;

/* A rows x cols matrix from its rows, as written on paper; freed by the caller (gfree). */
constexpr auto fromRows = testing_support::matrixFromRows;

inline double &el(Matrix *m, uint32_t i, uint32_t j) { return m->data[j * m->rows + i]; }

/* The first count stored values of m, column after column. */
inline std::vector<double> stored(const Matrix *m, size_t count) { return {m->data, m->data + count}; }

/* How many transcript lines are the debug message `text`. */
inline int linesWith(const std::string &text) { return transcriptCount("[Tervan Debug] " + text); }

inline void resetMessages()
{
    platform::clearTranscript();
    hostapp::host().blockErrors = 0;
}

inline double frobenius(const std::vector<double> &a)
{
    double s = 0;
    for (double v : a)
        s += v * v;
    return std::sqrt(s);
}

inline Matrix *toMatrix(const std::vector<double> &columnMajor, uint32_t rows, uint32_t cols)
{
    Matrix *m = matDecl(rows, cols);
    for (size_t k = 0; k < (size_t)rows * cols; k++)
        m->data[k] = columnMajor[k];
    return m;
}

}

#endif
