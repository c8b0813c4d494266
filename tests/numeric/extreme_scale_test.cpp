/*
** tests/numeric/extreme_scale_test.cpp: eigenvalues and singular values of matrices
** whose entries lie near the ends of the exponent range, against LAPACK (dgeev, dgesvd)
** on the same matrices.  One random matrix is scaled by each factor; LAPACK is exact to
** rounding there, and so must the routines be.
*/
#include <algorithm>
#include <cmath>
#include <complex>
#include <vector>

#include <gtest/gtest.h>
#include <lapacke.h>

#include "numeric/eigen.h"
#include "numeric/svd.h"
#include "numeric_support.h"

using namespace testing_numeric;

namespace {

const double SCALES[] = {1e-300, 1e-165, 1e-160, 1e-155, 1e154, 1e155, 1e200, 1e300};

bool byParts(std::complex<double> a, std::complex<double> b)
{
    return a.real() != b.real() ? a.real() < b.real() : a.imag() < b.imag();
}

}

TEST(ExtremeScale, EigenvaluesAndSingularValuesMatchLapack)
{
    const int n = 6;
    std::mt19937_64 rng(7);
    std::vector<double> unit = randomSquare(rng, n);
    for (double scale : SCALES) {
        SCOPED_TRACE(scale);
        platform::clearTranscript();
        std::vector<double> a(unit);
        for (double &x : a)
            x *= scale;

        std::vector<double> work(a), wr(n), wi(n);
        ASSERT_EQ(LAPACKE_dgeev(LAPACK_COL_MAJOR, 'N', 'N', n, work.data(), n, wr.data(), wi.data(), nullptr, 1,
                                nullptr, 1), 0);
        std::vector<std::complex<double>> expected, actual;
        for (int i = 0; i < n; i++)
            expected.emplace_back(wr[i], wi[i]);
        Matrix *m = toMatrix(a, n, n);
        std::vector<Complex> roots(n);
        eigenValues(roots.data(), m, n);
        for (const Complex &r : roots)
            actual.emplace_back(r.re, r.im);
        std::sort(expected.begin(), expected.end(), byParts);
        std::sort(actual.begin(), actual.end(), byParts);
        for (int i = 0; i < n; i++)
            EXPECT_LE(std::abs(actual[i] - expected[i]), 1e-12 * scale) << actual[i] << " against " << expected[i];

        work = a;
        std::vector<double> s(n), superb(n);
        ASSERT_EQ(LAPACKE_dgesvd(LAPACK_COL_MAJOR, 'N', 'N', n, n, work.data(), n, s.data(), nullptr, 1, nullptr, 1,
                                 superb.data()), 0);
        Matrix *v = matDecl(n, n);
        std::vector<double> w(n + 1);
        EXPECT_EQ(svDecompose(m, w.data(), v), 1);
        std::vector<double> values(w.begin() + 1, w.end());
        std::sort(values.begin(), values.end(), std::greater<double>());
        for (int i = 0; i < n; i++)
            EXPECT_LE(std::fabs(values[i] - s[i]), 1e-12 * scale) << values[i] << " against " << s[i];
        EXPECT_TRUE(platform::transcript().empty());
        gfree(v);
        gfree(m);
    }
}
