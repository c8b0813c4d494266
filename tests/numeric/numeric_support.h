/*
** tests/numeric/numeric_support.h: building matrices from literals, reading the
** message transcript, and random matrices for the comparisons against LAPACK.
*/
#ifndef PRAXA_TESTS_NUMERIC_SUPPORT_H
#define PRAXA_TESTS_NUMERIC_SUPPORT_H

#include <cmath>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include "host/host.h"
#include "hostapp/host_state.h"
#include "numeric/matrix.h"
#include "support.h"
#include "platform/driver.h"

namespace testing_numeric {

/* A rows x cols matrix from its rows, as written on paper; freed by the caller (gfree). */
inline Matrix *fromRows(uint32_t rows, uint32_t cols, std::initializer_list<double> values)
{
    return testing_support::matrixFromRows(rows, cols, values);
}

inline double &el(Matrix *m, uint32_t i, uint32_t j) { return m->data[j * m->rows + i]; }

/* Transcript lines that contain text. */
inline int linesWith(const std::string &text)
{
    int count = 0;
    for (const std::string &line : platform::transcript())
        if (line.find(text) != std::string::npos)
            count++;
    return count;
}

/* Index of the first transcript line that contains text, or -1. */
inline int lineIndexOf(const std::string &text)
{
    const auto &lines = platform::transcript();
    for (size_t i = 0; i < lines.size(); i++)
        if (lines[i].find(text) != std::string::npos)
            return (int)i;
    return -1;
}

inline void resetMessages()
{
    platform::clearTranscript();
    hostapp::host().blockErrors = 0;
}

/* rows x cols matrix of independent normal entries, column-major. */
inline std::vector<double> randomMatrix(std::mt19937_64 &rng, int rows, int cols)
{
    std::normal_distribution<double> normal;
    std::vector<double> values((size_t)rows * cols);
    for (double &v : values)
        v = normal(rng);
    return values;
}
inline std::vector<double> randomSquare(std::mt19937_64 &rng, int n) { return randomMatrix(rng, n, n); }

/* Factors that take a unit matrix near the ends of the exponent range, where LAPACK is
** still exact to rounding and a routine must neither overflow nor underflow of its own. */
inline const double EXTREME_SCALES[] = {1e-300, 1e-165, 1e-160, 1e-155, 1e154, 1e155, 1e200, 1e300};

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
