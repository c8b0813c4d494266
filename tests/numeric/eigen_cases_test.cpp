/*
** Eigenvalues: the hand-derived small cases, result order, the caller's matrix left
** alone, and non-finite input ending with the solver's message.
*/
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "numeric/eigen.h"
#include "numeric_support.h"

using namespace testing_numeric;

class EigenCases : public ::testing::Test {
protected:
    void SetUp() override { resetMessages(); }
};

/* The hand-derived cases: exact roots in the order in which they deflate, a complex
** pair with its negative imaginary part first. */
TEST_F(EigenCases, SmallCasesInDeflationOrder)
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
        {3, {0, 1, 0, 0, 0, 1, -6, -11, -6}, {{-1, 0}, {-2, 0}, {-3, 0}}, 1e-12},
    };
    for (const auto &c : cases) {
        Matrix *a = matDecl(c.n, c.n);
        for (uint32_t i = 0; i < c.n; i++)
            for (uint32_t j = 0; j < c.n; j++)
                el(a, i, j) = c.rows[i * c.n + j];
        std::vector<Complex> roots(c.n, Complex{9, 9});
        eigenValues(roots.data(), a, (int32_t)c.n);
        for (uint32_t k = 0; k < c.n; k++) {
            EXPECT_NEAR(roots[k].re, c.roots[k].re, c.tolerance) << "n=" << c.n << " root " << k;
            EXPECT_EQ(roots[k].im, c.roots[k].im) << "n=" << c.n << " root " << k;
        }
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

TEST_F(EigenCases, TopLeftBlockOfLargerMatrixAndInputUntouched)
{
    /* 4x5 whose top-left 2x2 is [[0,1],[-2,-3]]; the rest is noise.  Columns are
    ** stepped by the 4 rows, neither by the order nor by the 5 columns. */
    Matrix *a = fromRows(4, 5, {0, 1, 7, 8, 3, -2, -3, 9, 1, 2, 5, 6, 3, 2, 1, 4, 4, 4, 4, 0});
    std::vector<double> before(a->data, a->data + 20);
    Complex roots[2];
    eigenValues(roots, a, 2);
    EXPECT_EQ(roots[0].re, -1.0);
    EXPECT_EQ(roots[1].re, -2.0);
    for (int k = 0; k < 20; k++)
        EXPECT_EQ(a->data[k], before[k]);
    gfree(a);
}

TEST_F(EigenCases, OrdersOutsideTheMatrix)
{
    Matrix *a = fromRows(2, 2, {1, 2, 3, 4});
    Complex roots[3] = {{9, 9}, {9, 9}, {9, 9}};
    eigenValues(roots, a, 0);           /* below 1: nothing written, nothing said */
    eigenValues(roots, a, -4);
    EXPECT_EQ(roots[0].re, 9);
    EXPECT_EQ(roots[0].im, 9);
    EXPECT_EQ(platform::transcript().size(), 0u);

    eigenValues(roots, a, 3);           /* beyond the matrix: refused, roots 0 */
    EXPECT_EQ(linesWith("EigenValues: order 3 exceeds the 2x2 matrix"), 1);
    for (const Complex &r : roots) {
        EXPECT_EQ(r.re, 0.0);
        EXPECT_EQ(r.im, 0.0);
    }
    gfree(a);
}

TEST_F(EigenCases, NonFiniteInputReportsAndReturns)
{
    const double inf = INFINITY, nan = NAN;
    for (double bad : {inf, -inf, nan}) {
        resetMessages();
        Matrix *a = fromRows(3, 3, {1, 2, 3, 4, bad, 6, 7, 8, 9});
        Complex roots[3];
        eigenValues(roots, a, 3);
        EXPECT_EQ(linesWith("EigenSolver: over 15 iterations and only 0 roots"), 1);
        for (const Complex &r : roots)
            EXPECT_TRUE(std::isnan(r.re));
        gfree(a);
    }
}

TEST_F(EigenCases, SolverGivesUpOnNaNAtTheFirstRestart)
{
    /* Hessenberg 4x4 of NaN throughout: no subdiagonal ever becomes small. */
    Matrix *a = matDecl(4, 4);
    for (int k = 0; k < 16; k++)
        a->data[k] = NAN;
    double wr[5], wi[5];
    eigenSolver(a, 4, wr, wi);
    EXPECT_EQ(linesWith("EigenSolver: over 20 iterations and only 0 roots"), 1);
    for (int i = 1; i <= 4; i++)
        EXPECT_TRUE(std::isnan(wr[i]));

    /* The bottom root 5 splits off first: it is kept and counted; the rest is NaN. */
    resetMessages();
    for (int k = 0; k < 16; k++)
        a->data[k] = NAN;
    el(a, 3, 2) = 0.0;                  /* a(4,3) = 0 */
    el(a, 3, 3) = 5.0;
    el(a, 2, 2) = 1.0;                  /* a finite neighbour for the deflation test */
    eigenSolver(a, 4, wr, wi);
    EXPECT_EQ(wr[4], 5.0);
    EXPECT_EQ(wi[4], 0.0);
    EXPECT_EQ(linesWith("EigenSolver: over 20 iterations and only 1 roots"), 1);
    for (int i = 1; i <= 3; i++)
        EXPECT_TRUE(std::isnan(wr[i]));
    gfree(a);
}
