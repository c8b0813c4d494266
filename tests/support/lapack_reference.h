/*
** tests/support/lapack_reference.h: LAPACK's answers for the tests of roots and
** eigenvalues: random matrices, a matrix's eigenvalues (dgeevx, balanced) with their
** condition numbers, a polynomial's roots through its companion matrix, and the pairing of
** two root sets.
*/
#ifndef PRAXA_TESTS_LAPACK_REFERENCE_H
#define PRAXA_TESTS_LAPACK_REFERENCE_H

#include <gtest/gtest.h>
#include <lapacke.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <random>
#include <vector>

#include "host/host.h"

namespace testing_support {

using cplx = std::complex<double>;

/* rows x cols matrix of independent normal entries, column-major. */
inline std::vector<double> randomMatrix(std::mt19937_64 &rng, int rows, int cols)
{
    std::normal_distribution<double> normal;
    std::vector<double> values((size_t)rows * cols);
    for (double &v : values)
        v = normal(rng);
    return values;
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

/* The ascending coefficients of the monic polynomial with these roots (conjugate pairs
** give real ones; the real parts are kept). */
inline std::vector<double> polynomialOf(const std::vector<cplx> &roots)
{
    std::vector<cplx> c{1.0};
    for (const cplx &r : roots) {
        std::vector<cplx> next(c.size() + 1, 0.0);
        for (size_t k = 0; k < c.size(); k++) {
            next[k + 1] += c[k];
            next[k] -= r * c[k];
        }
        c = next;
    }
    std::vector<double> real;
    for (const cplx &x : c)
        real.push_back(x.real());
    return real;
}

/* The companion matrix (column-major) of the ascending coefficients c, of degree
** c.size() - 1 with the leading one nonzero: ones above the diagonal, the last row
** -c[j] / c[n]. */
inline std::vector<double> companionMatrix(const std::vector<double> &c)
{
    int n = (int)c.size() - 1;
    std::vector<double> a((size_t)n * n, 0.0);
    for (int i = 0; i + 1 < n; i++)
        a[(size_t)(i + 1) * n + i] = 1.0;
    for (int j = 0; j < n; j++)
        a[(size_t)j * n + (n - 1)] = -c[j] / c[n];
    return a;
}

/* The roots of the ascending coefficients c by LAPACK on the companion matrix. */
inline std::vector<cplx> lapackRoots(const std::vector<double> &c)
{
    return lapackEigen(companionMatrix(c), (int)c.size() - 1).values;
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
