/*
** Eigenvalues: against LAPACK (dgeevx) on random and companion matrices, matched as
** multisets, also near the ends of the exponent range; the hand-derived small cases in
** the order they deflate; the caller's matrix left alone; orders outside the matrix
** and non-finite input.
**
** Error bound.  Both solvers are backward stable: each returns the exact eigenvalues
** of A + E with ||E||_F <= c(n) eps ||A||_F.  For a simple eigenvalue with condition
** number 1/s (s = |y^H x| for unit left and right eigenvectors, LAPACK's RCONDE),
** first-order perturbation theory gives |mu - lambda| <= ||E|| / s.  We take
** c(n) = 10 n (observed backward errors are around sqrt(n)), and since both results
** carry such an error, two answers may differ by twice that:
**     tol = 2 * 10 n eps ||A||_F / s.
*/
#include <algorithm>
#include <cmath>
#include <complex>
#include <vector>

#include <gtest/gtest.h>

#include "numeric/eigen.h"
#include "numeric_support.h"

using namespace testing_numeric;

namespace {

const double eps = std::numeric_limits<double>::epsilon();

std::vector<cplx> ourEigen(const std::vector<double> &a, int n)
{
    Matrix *m = toMatrix(a, n, n);
    std::vector<Complex> roots(n);
    eigenValues(roots.data(), m, n);
    gfree(m);
    return toCplx(roots);
}

/* Complex pairs come out adjacent, with equal real parts and the negative imaginary
** part first. */
void expectPairLayout(const std::vector<cplx> &ours)
{
    for (size_t k = 0; k < ours.size(); k++)
        if (ours[k].imag() != 0.0) {
            ASSERT_LT(k + 1, ours.size());
            EXPECT_LT(ours[k].imag(), 0.0);
            EXPECT_EQ(ours[k].real(), ours[k + 1].real());
            EXPECT_EQ(ours[k].imag(), -ours[k + 1].imag());
            k++;
        }
}

/* Checks every eigenvalue against LAPACK within the first-order bound, and the layout
** of the pairs. */
void expectMatchesLapack(const std::vector<double> &a, int n, const char *what)
{
    LapackEigen ref = lapackEigen(a, n);
    std::vector<cplx> ours = ourEigen(a, n);
    std::vector<double> dist = matchDistances(ours, ref.values);
    double norm = std::max(frobenius(a), 1e-300);
    for (int j = 0; j < n; j++)
        EXPECT_LE(dist[j], 2 * 10 * n * eps * norm / std::max(ref.rcond[j], 1e-300))
            << what << " n=" << n << " value " << ref.values[j];
    expectPairLayout(ours);
}

}

using Eigenvalues = PluginTest;

/* Also one matrix scaled by factors near the ends of the exponent range, where LAPACK is
** still exact to rounding and the routine must neither overflow nor underflow of its own. */
TEST_F(Eigenvalues, RandomMatricesOfOrderOneToSixtyAndExtremeScales)
{
    std::mt19937_64 rng(20240611);
    for (int trial = 0; trial < 240; trial++) {
        int n = 1 + trial % 60;
        std::vector<double> a = randomMatrix(rng, n, n);
        if (trial % 3 == 1)                 /* mixed scales exercise the balancing */
            for (int j = 0; j < n; j++)
                for (int i = 0; i < n; i++)
                    a[(size_t)j * n + i] *= std::ldexp(1.0, (i - j) * 3);
        expectMatchesLapack(a, n, "random");
    }
    rng.seed(7);
    const std::vector<double> unit = randomMatrix(rng, 6, 6);
    for (double scale : {1e-300, 1e-165, 1e-160, 1e-155, 1e154, 1e155, 1e200, 1e300}) {
        std::vector<double> a(unit);
        for (double &x : a)
            x *= scale;
        for (double d : matchDistances(ourEigen(a, 6), lapackEigen(a, 6).values))
            EXPECT_LE(d, 1e-12 * scale) << scale;
    }
    EXPECT_EQ(platform::transcript().size(), 0u) << platform::transcriptText();
}

TEST_F(Eigenvalues, CompanionMatrices)
{
    std::mt19937_64 rng(77);
    std::uniform_real_distribution<double> uni(-3, 3);
    for (int degree = 2; degree <= 24; degree++) {
        std::vector<cplx> roots;
        while ((int)roots.size() < degree) {
            if ((int)roots.size() + 2 <= degree && uni(rng) > 0) {
                cplx r(uni(rng), std::fabs(uni(rng)) + 0.1);
                roots.push_back(r);
                roots.push_back(std::conj(r));
            } else {
                roots.emplace_back(uni(rng), 0.0);
            }
        }
        expectMatchesLapack(companionMatrix(polynomialOf(roots)), degree, "companion");
    }
    /* Roots of a Wilkinson-like product, against the exact roots 1 .. 10. */
    std::vector<cplx> wilkinson;
    for (int k = 1; k <= 10; k++)
        wilkinson.emplace_back(k, 0.0);
    std::vector<double> a = companionMatrix(polynomialOf(wilkinson));
    expectMatchesLapack(a, 10, "wilkinson");
    for (double d : matchDistances(ourEigen(a, 10), wilkinson))
        EXPECT_LT(d, 1e-6);
}

/* The hand-derived cases: exact roots in the order in which they deflate, a complex
** pair with its negative imaginary part first, a real one with +0 imaginary parts.  Each
** is the top-left block of a larger matrix of noise, which must stay as it was: columns
** are stepped by the matrix's rows, neither by the order nor by its columns. */
TEST_F(Eigenvalues, SmallCasesInDeflationOrder)
{
    const struct {
        uint32_t n;
        std::vector<double> rows;       /* as written on paper */
        std::vector<Complex> roots;
        double tolerance;               /* on the real parts; imaginary parts are exact */
    } cases[] = {
        {1, {-2.5}, {{-2.5, 0}}, 0},
        {2, {0, 1, -2, -3}, {{-1, 0}, {-2, 0}}, 0},
        {2, {0, 1, -1, 0}, {{0, -1}, {0, 1}}, 0},
        /* a double root: a real pair with +0 imaginary parts, which print as 0, not -0 */
        {2, {0, 1, -1, -2}, {{-1, 0}, {-1, 0}}, 0},
        {3, {0, 1, 0, 0, 0, 1, -6, -11, -6}, {{-1, 0}, {-2, 0}, {-3, 0}}, 1e-12},
    };
    for (const auto &c : cases) {
        Matrix *a = matDecl(c.n + 2, c.n + 3);
        for (uint32_t k = 0; k < (c.n + 2) * (c.n + 3); k++)
            a->data[k] = 3.0 + k % 7;
        for (uint32_t i = 0; i < c.n; i++)
            for (uint32_t j = 0; j < c.n; j++)
                el(a, i, j) = c.rows[i * c.n + j];
        std::vector<double> before = stored(a, (c.n + 2) * (c.n + 3));
        std::vector<Complex> roots(c.n, Complex{9, 9});
        eigenValues(roots.data(), a, (int32_t)c.n);
        for (uint32_t k = 0; k < c.n; k++) {
            EXPECT_NEAR(roots[k].re, c.roots[k].re, c.tolerance) << "n=" << c.n << " root " << k;
            EXPECT_EQ(roots[k].im, c.roots[k].im) << "n=" << c.n << " root " << k;
            EXPECT_EQ(std::signbit(roots[k].im), std::signbit(c.roots[k].im)) << "n=" << c.n << " root " << k;
        }
        EXPECT_EQ(stored(a, before.size()), before) << "n=" << c.n;
        gfree(a);
    }
    EXPECT_EQ(platform::transcript().size(), 0u);

    /* Balancing scales row i by 1/f and column i by f, f a power of 2, only where that
    ** shrinks the off-diagonal norms of the pair below 0.95 of their sum: [0 3; 1 0]
    ** takes f = 2 at i = 1 (sum 4 to 3.5), and the real pair's matrix nothing. */
    const struct {
        std::vector<double> rows, balanced;
    } balancing[] = {
        {{0, 1, -2, -3}, {0, 1, -2, -3}},
        {{0, 3, 1, 0}, {0, 1.5, 2, 0}},
    };
    for (const auto &c : balancing) {
        Matrix *work = fromRows(2, 2, {c.rows[0], c.rows[1], c.rows[2], c.rows[3]});
        balanceMatrix(work, 2);
        for (uint32_t k = 0; k < 4; k++)
            EXPECT_EQ(el(work, k / 2, k % 2), c.balanced[k]) << c.rows[1] << " element " << k;
        gfree(work);
    }
}

TEST_F(Eigenvalues, OrdersOutsideTheMatrixAndNonFiniteInput)
{
    Matrix *a = fromRows(2, 2, {1, 2, 3, 4});
    Complex roots[3] = {{9, 9}, {9, 9}, {9, 9}};
    eigenValues(roots, a, 0);           /* below 1: nothing written, nothing said */
    eigenValues(roots, a, -4);
    EXPECT_EQ(roots[0], (Complex{9, 9}));
    EXPECT_EQ(platform::transcript().size(), 0u);

    eigenValues(roots, a, 3);           /* beyond the matrix: refused, roots 0 */
    EXPECT_EQ(linesWith("EigenValues: order 3 exceeds the 2x2 matrix"), 1);
    for (const Complex &r : roots)
        EXPECT_EQ(r, (Complex{0, 0}));
    gfree(a);

    for (double bad : {INFINITY, -INFINITY, NAN}) {     /* reported, and NaN roots */
        resetMessages();
        a = fromRows(3, 3, {1, 2, 3, 4, bad, 6, 7, 8, 9});
        eigenValues(roots, a, 3);
        EXPECT_EQ(linesWith("EigenSolver: over 15 iterations and only 0 roots"), 1);
        for (const Complex &r : roots)
            EXPECT_TRUE(std::isnan(r.re));
        gfree(a);
    }
}

/* Hessenberg 4x4 of NaN throughout: no subdiagonal ever becomes small, and no root is
** found.  With a(4,3) = 0 the bottom root 5 splits off first: it is kept and counted. */
TEST_F(Eigenvalues, SolverGivesUpOnNaNAtTheFirstRestart)
{
    for (int kept : {0, 1}) {
        resetMessages();
        Matrix *a = matDecl(4, 4);
        for (int k = 0; k < 16; k++)
            a->data[k] = NAN;
        if (kept) {
            el(a, 3, 2) = 0.0;
            el(a, 3, 3) = 5.0;
            el(a, 2, 2) = 1.0;          /* a finite neighbour for the deflation test */
        }
        double wr[5], wi[5];
        eigenSolver(a, 4, wr, wi);
        EXPECT_EQ(linesWith("EigenSolver: over 20 iterations and only " + std::to_string(kept) + " roots"), 1);
        for (int i = 1; i <= 4 - kept; i++)
            EXPECT_TRUE(std::isnan(wr[i])) << kept << " kept, root " << i;
        if (kept) {
            EXPECT_EQ(wr[4], 5.0);
            EXPECT_EQ(wi[4], 0.0);
        }
        gfree(a);
    }
}
