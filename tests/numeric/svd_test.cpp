/*
** Singular value decomposition against LAPACK (dgesvd) and its own definition
** (A = U W V^T, U and V orthonormal), also near the ends of the exponent range; its
** solves and inverses, and luSolve, against LAPACK's dgesv; then the hand-derived small
** cases (dropped singular values, singular matrices), bad shapes and non-finite input.
**
** Bounds.  The decomposition is backward stable, so ||A - U W V^T||_F and the
** departures from orthogonality are at most c(n) eps ||A||_F with c(n) = 10 n.
** Singular values are perfectly conditioned (Weyl): each differs from LAPACK's by at
** most 2 c(n) eps ||A||_2.
*/
#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>
#include <lapacke.h>

#include "numeric/lu.h"
#include "numeric/svd.h"
#include "numeric_support.h"

using namespace testing_numeric;

namespace {

const double eps = std::numeric_limits<double>::epsilon();

std::vector<double> lapackSingularValues(std::vector<double> a, int m, int n)
{
    std::vector<double> s(std::min(m, n)), superb(std::min(m, n));
    EXPECT_EQ(LAPACKE_dgesvd(LAPACK_COL_MAJOR, 'N', 'N', m, n, a.data(), m, s.data(), nullptr, 1,
                             nullptr, 1, superb.data()), 0);
    return s;
}

/* A = U W V^T, U and V orthonormal, W the singular values LAPACK finds. */
void expectDecomposition(const std::vector<double> &a, int m, int n)
{
    Matrix *u = toMatrix(a, m, n);
    Matrix *v = matDecl(n, n);
    std::vector<double> w(n + 1);
    EXPECT_EQ(svDecompose(u, w.data(), v), 1);
    double rec = 0, ov = 0, ou = 0;
    for (int i = 0; i < m; i++)
        for (int j = 0; j < n; j++) {
            double s = 0;
            for (int k = 0; k < n; k++)
                s += el(u, i, k) * w[k + 1] * el(v, j, k);
            rec += (a[(size_t)j * m + i] - s) * (a[(size_t)j * m + i] - s);
        }
    for (int i = 0; i < n; i++)
        for (int j = 0; j < n; j++) {
            double sv = 0, su = 0;
            for (int k = 0; k < n; k++)
                sv += el(v, k, i) * el(v, k, j);
            for (int k = 0; k < m; k++)
                su += el(u, k, i) * el(u, k, j);
            double id = i == j ? 1.0 : 0.0;
            ov += (sv - id) * (sv - id);
            ou += (su - id) * (su - id);
        }
    const double bound = 10.0 * n * eps;
    EXPECT_LE(std::sqrt(rec), bound * std::max(frobenius(a), 1e-300)) << m << "x" << n << " reconstruction";
    EXPECT_LE(std::sqrt(ov), bound) << m << "x" << n << " V orthogonal";
    EXPECT_LE(std::sqrt(ou), bound) << m << "x" << n << " U orthogonal";

    std::vector<double> ours(w.begin() + 1, w.end()), ref = lapackSingularValues(a, m, n);
    std::sort(ours.rbegin(), ours.rend());
    for (int k = 0; k < n; k++) {
        EXPECT_GE(ours[k], 0.0);
        EXPECT_LE(std::fabs(ours[k] - ref[k]), 2 * bound * ref[0]) << m << "x" << n << " value " << k;
    }
    gfree(u);
    gfree(v);
}

}

using Svd = PluginTest;

/* Also one matrix scaled by factors near the ends of the exponent range (singular values
** only: the checks of the factors would overflow there themselves). */
TEST_F(Svd, SquareAndTallRandomMatricesAndExtremeScales)
{
    std::mt19937_64 rng(314159);
    for (int trial = 0; trial < 200; trial++) {
        int n = 1 + trial % 40;
        int m = trial % 4 == 3 ? n + 1 + trial % 7 : n;
        std::vector<double> a = randomMatrix(rng, m, n);
        if (trial % 5 == 2 && n > 2)        /* rank deficient: two equal columns */
            std::copy(a.begin(), a.begin() + m, a.begin() + m);
        expectDecomposition(a, m, n);
    }
    rng.seed(7);
    const std::vector<double> unit = randomMatrix(rng, 6, 6);
    for (double scale : {1e-300, 1e-165, 1e-160, 1e-155, 1e154, 1e155, 1e200, 1e300}) {
        std::vector<double> a(unit);
        for (double &x : a)
            x *= scale;
        Matrix *u = toMatrix(a, 6, 6), *v = matDecl(6, 6);
        std::vector<double> w(7);
        EXPECT_EQ(svDecompose(u, w.data(), v), 1);
        std::vector<double> ours(w.begin() + 1, w.end()), ref = lapackSingularValues(a, 6, 6);
        std::sort(ours.rbegin(), ours.rend());
        for (int k = 0; k < 6; k++)
            EXPECT_LE(std::fabs(ours[k] - ref[k]), 1e-12 * scale) << scale;
        gfree(u);
        gfree(v);
    }
    EXPECT_EQ(platform::transcript().size(), 0u) << platform::transcriptText();
}

/* Square systems against LAPACK's dgesv: luSolve (the same partial pivoting, so to a few
** roundings of |x|), and the SVD's solve, pseudo-inverse and inverse.  Each matrix is a
** random one plus a dominant anti-diagonal: well conditioned, and the pivots are found
** off the diagonal, so rows are exchanged. */
TEST_F(Svd, LinearSolvesMatchLapack)
{
    std::mt19937_64 rng(1);
    for (int n : {1, 2, 3, 5, 7, 12, 16, 25, 30, 40}) {
        std::vector<double> a = randomMatrix(rng, n, n), b = randomMatrix(rng, n, 1);
        for (int i = 0; i < n; i++)
            a[(size_t)(n - 1 - i) * n + i] += 2.0 * std::sqrt((double)n);
        std::vector<double> lu = a, ref = b;
        std::vector<lapack_int> piv(n);
        ASSERT_EQ(LAPACKE_dgesv(LAPACK_COL_MAJOR, n, 1, lu.data(), n, piv.data(), ref.data(), n), 0);
        double norm = 0.0;
        for (double v : ref)
            norm = std::max(norm, std::fabs(v));
        Matrix *factored = toMatrix(a, n, n);
        std::vector<double> x(b);
        std::vector<int32_t> pivots(n);
        ASSERT_EQ(luSolve(factored, n, x.data(), pivots.data()), 1);
        for (int i = 0; i < n; i++)
            EXPECT_NEAR(x[i], ref[i], 1e-12 * norm) << "n=" << n << " LU " << i;

        Matrix *am = toMatrix(a, n, n), *bm = toMatrix(b, n, 1), *xm = matDecl(n, 1);
        EXPECT_EQ(singularValueDecomp(am, bm, xm), 0);
        for (int i = 0; i < n; i++)
            EXPECT_NEAR(xm->data[i], ref[i], 1e3 * eps * (1 + std::fabs(ref[i])));
        Matrix *pinv = toMatrix(a, n, n), *inv = toMatrix(a, n, n);
        EXPECT_EQ(singularValueDecomp(pinv, nullptr, nullptr), 0);
        EXPECT_EQ(matInvert(inv), 1);
        for (Matrix *m : {pinv, inv})
            for (int i = 0; i < n; i++) {
                double s = 0;
                for (int k = 0; k < n; k++)
                    s += el(m, i, k) * b[k];
                EXPECT_NEAR(s, ref[i], 1e3 * eps * (1 + std::fabs(ref[i]))) << "n=" << n << (m == inv ? " inverse" : "");
            }
        for (Matrix *m : {factored, am, bm, xm, pinv, inv})
            gfree(m);
    }
}

TEST_F(Svd, SmallSolves)
{
    const struct {
        uint32_t n;
        std::vector<double> rows, b, x;
        int32_t dropped;
        bool inPlace;                   /* x is b */
    } cases[] = {
        {2, {1, 0, 0, 1}, {1, 2}, {1, 2}, 0, false},
        /* below 1e-12 of the largest: dropped; above it: kept */
        {2, {1, 0, 0, 1e-13}, {3, 4}, {3, 0}, 1, false},
        {2, {1, 0, 0, 1e-8}, {3, 4}, {3, 4e8}, 0, false},
        /* every value 0, the threshold 0: nothing is below it */
        {3, {0, 0, 0, 0, 0, 0, 0, 0, 0}, {1, 2, 3}, {0, 0, 0}, 0, false},
        {2, {2, 1, 1, 3}, {3, 5}, {0.8, 1.4}, 0, true},
    };
    for (const auto &c : cases) {
        Matrix *a = fromRows(c.n, c.n, c.rows), *b = fromRows(c.n, 1, c.b);
        Matrix *x = fromRows(c.n, 1, std::vector<double>(c.n, 9.0));
        Matrix *into = c.inPlace ? b : x;
        EXPECT_EQ(singularValueDecomp(a, b, into), c.dropped) << "n=" << c.n;
        for (uint32_t i = 0; i < c.n; i++)     /* a 0 exactly */
            EXPECT_NEAR(into->data[i], c.x[i], 1e-14 * std::fabs(c.x[i])) << "n=" << c.n << " x" << i;
        for (Matrix *m : {a, b, x})
            gfree(m);
    }
}

TEST_F(Svd, SingularMatrices)
{
    /* diag(2, 0) becomes diag(0.5, 0): the pseudo-inverse drops (and counts) the value
    ** below its threshold, the inverse the exactly zero one. */
    Matrix *pinv = fromRows(2, 2, {2, 0, 0, 0});
    EXPECT_EQ(singularValueDecomp(pinv, nullptr, nullptr), 1);
    Matrix *inv = fromRows(2, 2, {2, 0, 0, 0});
    EXPECT_EQ(matInvert(inv), 1);
    for (Matrix *a : {pinv, inv}) {
        EXPECT_EQ(stored(a, 4), (std::vector<double>{0.5, 0, 0, 0}));
        gfree(a);
    }
    /* LU refuses a matrix whose second pivot comes out exactly 0. */
    Matrix *singular = fromRows(2, 2, {1, 2, 2, 4});
    double b[2] = {1, 1};
    int32_t pivots[2];
    EXPECT_EQ(luSolve(singular, 2, b, pivots), 0);
    gfree(singular);
    EXPECT_EQ(platform::transcript().size(), 0u);
}

TEST_F(Svd, ShapesThatCannotWorkAreRefused)
{
    Matrix *wide = fromRows(2, 3, {1, 2, 3, 4, 5, 6});
    Matrix *v = matDecl(3, 3);
    double w[4];
    EXPECT_EQ(svDecompose(wide, w, v), 0);
    EXPECT_EQ(linesWith("svDecompose: needs at least as many rows as columns (2,3)"), 1);
    EXPECT_EQ(matInvert(wide), 0);
    EXPECT_EQ(linesWith("matInvert: matrix not square (2,3)"), 1);
    EXPECT_EQ(el(wide, 1, 2), 6);
    EXPECT_EQ(singularValueDecomp(wide, nullptr, nullptr), -1);
    EXPECT_EQ(linesWith("singularValueDecomp: matrix not square (2,3)"), 1);

    Matrix *tall = fromRows(3, 2, {1, 2, 3, 4, 5, 6});
    Matrix *smallV = matDecl(1, 1);
    EXPECT_EQ(svDecompose(tall, w, smallV), 0);
    EXPECT_EQ(linesWith("svDecompose: right factor (1,1) smaller than 2x2"), 1);

    Matrix *sq = fromRows(3, 3, {1, 0, 0, 0, 1, 0, 0, 0, 1});
    Matrix *shortB = fromRows(2, 1, {1, 2});
    Matrix *x = fromRows(3, 1, {0, 0, 0});
    EXPECT_EQ(singularValueDecomp(sq, shortB, x), -1);
    EXPECT_EQ(linesWith("singularValueDecomp: right-hand side or solution shorter than 3"), 1);
    for (Matrix *m : {wide, v, tall, smallV, sq, shortB, x})
        gfree(m);
}

TEST_F(Svd, NonFiniteInputIsReportedAndFails)
{
    for (double bad : {(double)INFINITY, (double)NAN}) {
        resetMessages();
        Matrix *a = fromRows(2, 2, {1, bad, 3, 4});
        EXPECT_EQ(matInvert(a), 0);
        EXPECT_EQ(linesWith("svDecompose: infinite or NaN element in the 2x2 matrix"), 1);

        Matrix *a2 = fromRows(2, 2, {1, 2, bad, 4});
        Matrix *b = fromRows(2, 1, {1, 1});
        Matrix *x = fromRows(2, 1, {0, 0});
        EXPECT_EQ(singularValueDecomp(a2, b, x), 0);
        EXPECT_EQ(linesWith("singularValueDecomp: decomposition failed, results not reliable"), 1);
        EXPECT_TRUE(std::isnan(x->data[0]));
        for (Matrix *m : {a, a2, b, x})
            gfree(m);
    }
}
