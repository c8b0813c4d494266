/*
** tests/numeric/numeric_support.h: building matrices from literals, reading the
** message transcript, random matrices, and LAPACK's eigenvalues (dgeevx) with their
** condition numbers and the pairing of two root sets, for the comparisons against LAPACK.
*/
#ifndef PRAXA_TESTS_NUMERIC_SUPPORT_H
#define PRAXA_TESTS_NUMERIC_SUPPORT_H

#include <lapacke.h>

#include <algorithm>
#include <cmath>
#include <complex>
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

using cplx = std::complex<double>;

/* A rows x cols matrix from its rows, as written on paper; freed by the caller (gfree). */
constexpr auto fromRows = testing_support::matrixFromRows;

inline double &el(Matrix *m, uint32_t i, uint32_t j) { return m->data[j * m->rows + i]; }

/* The first count stored values of m, column after column. */
inline std::vector<double> stored(const Matrix *m, size_t count) { return {m->data, m->data + count}; }

/* Transcript lines that contain text. */
inline int linesWith(const std::string &text)
{
    int count = 0;
    for (const std::string &line : platform::transcript())
        if (line.find(text) != std::string::npos)
            count++;
    return count;
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

/* Eigenvalues of the column-major n x n matrix by LAPACK (dgeevx, balanced), with the
** reciprocal condition number of each (RCONDE). */
struct LapackEigen {
    std::vector<cplx> values;
    std::vector<double> rcond;
};
inline LapackEigen lapackEigen(std::vector<double> a, int n)
{
    LapackEigen ref;
    std::vector<double> wr(n), wi(n), v((size_t)n * n), scale(n), rconde(n), rcondv(n);
    lapack_int ilo, ihi;
    double abnrm;
    EXPECT_EQ(LAPACKE_dgeevx(LAPACK_COL_MAJOR, 'B', 'V', 'V', 'E', n, a.data(), n, wr.data(), wi.data(), v.data(),
                             n, v.data(), n, &ilo, &ihi, scale.data(), &abnrm, rconde.data(), rcondv.data()), 0);
    for (int i = 0; i < n; i++) {
        ref.values.emplace_back(wr[i], wi[i]);
        ref.rcond.push_back(rconde[i]);
    }
    return ref;
}

/* Pairs ours with reference values, closest pairs first; returns for each reference
** index the distance to its partner (infinite for one left without). */
inline std::vector<double> matchDistances(const std::vector<cplx> &ours, const std::vector<cplx> &ref)
{
    struct Pair { double d; size_t i, j; };
    std::vector<Pair> pairs;
    for (size_t i = 0; i < ours.size(); i++)
        for (size_t j = 0; j < ref.size(); j++)
            pairs.push_back({std::abs(ours[i] - ref[j]), i, j});
    std::sort(pairs.begin(), pairs.end(), [](const Pair &x, const Pair &y) { return x.d < y.d; });
    std::vector<bool> usedOurs(ours.size()), usedRef(ref.size());
    std::vector<double> dist(ref.size(), INFINITY);
    for (const Pair &p : pairs)
        if (!usedOurs[p.i] && !usedRef[p.j]) {
            usedOurs[p.i] = usedRef[p.j] = true;
            dist[p.j] = p.d;
        }
    return dist;
}

inline std::vector<cplx> toCplx(const std::vector<Complex> &roots)
{
    std::vector<cplx> out;
    for (const Complex &r : roots)
        out.emplace_back(r.re, r.im);
    return out;
}

}

#endif
