/*
** Eigenvalues: the hand-derived small cases, result order, the caller's matrix left
** alone, and non-finite input ending with the solver's message.
*/
#include <cmath>

#include <gtest/gtest.h>

#include "numeric/eigen.h"
#include "numeric_support.h"

using namespace testing_numeric;

class EigenCases : public ::testing::Test {
protected:
    void SetUp() override { resetMessages(); }
};

TEST_F(EigenCases, OneByOne)
{
    Matrix *a = fromRows(1, 1, {-2.5});
    Complex roots[1];
    eigenValues(roots, a, 1);
    EXPECT_EQ(roots[0].re, -2.5);
    EXPECT_EQ(roots[0].im, 0.0);
    gfree(a);
}

TEST_F(EigenCases, RealPairInSolverOrderWithoutBalancing)
{
    Matrix *a = fromRows(2, 2, {0, 1, -2, -3});
    Matrix *work = fromRows(2, 2, {0, 1, -2, -3});
    balanceMatrix(work, 2);
    for (int k = 0; k < 4; k++)
        EXPECT_EQ(work->data[k], a->data[k]);   /* nothing to balance */
    Complex roots[2];
    eigenValues(roots, a, 2);
    EXPECT_EQ(roots[0].re, -1.0);
    EXPECT_EQ(roots[0].im, 0.0);
    EXPECT_EQ(roots[1].re, -2.0);
    EXPECT_EQ(roots[1].im, 0.0);
    gfree(a);
    gfree(work);
}

TEST_F(EigenCases, ComplexPairNegativeImaginaryFirst)
{
    Matrix *a = fromRows(2, 2, {0, 1, -1, 0});
    Complex roots[2];
    eigenValues(roots, a, 2);
    EXPECT_EQ(roots[0].re, 0.0);
    EXPECT_EQ(roots[0].im, -1.0);
    EXPECT_EQ(roots[1].re, 0.0);
    EXPECT_EQ(roots[1].im, 1.0);
    gfree(a);
}

TEST_F(EigenCases, CompanionOfCubicInDeflationOrder)
{
    Matrix *a = fromRows(3, 3, {0, 1, 0, 0, 0, 1, -6, -11, -6});
    Complex roots[3];
    eigenValues(roots, a, 3);
    EXPECT_NEAR(roots[0].re, -1.0, 1e-12);
    EXPECT_NEAR(roots[1].re, -2.0, 1e-12);
    EXPECT_NEAR(roots[2].re, -3.0, 1e-12);
    for (const Complex &r : roots)
        EXPECT_EQ(r.im, 0.0);
    EXPECT_EQ(platform::transcript().size(), 0u);
    gfree(a);
}

TEST_F(EigenCases, ZeroMatrixGivesZerosWithoutIteration)
{
    for (int n : {1, 2, 5, 12}) {
        Matrix *a = matDecl(n, n);
        for (int k = 0; k < n * n; k++)
            a->data[k] = 0.0;
        std::vector<Complex> roots(n, Complex{9, 9});
        eigenValues(roots.data(), a, n);
        for (const Complex &r : roots) {
            EXPECT_EQ(r.re, 0.0);
            EXPECT_EQ(r.im, 0.0);
        }
        gfree(a);
    }
    EXPECT_EQ(platform::transcript().size(), 0u);
}

TEST_F(EigenCases, TopLeftBlockOfLargerMatrixAndInputUntouched)
{
    /* 4x4 whose top-left 2x2 is [[0,1],[-2,-3]]; the rest is noise. */
    Matrix *a = fromRows(4, 4, {0, 1, 7, 8, -2, -3, 9, 1, 5, 6, 3, 2, 4, 4, 4, 4});
    std::vector<double> before(a->data, a->data + 16);
    Complex roots[2];
    eigenValues(roots, a, 2);
    EXPECT_EQ(roots[0].re, -1.0);
    EXPECT_EQ(roots[1].re, -2.0);
    for (int k = 0; k < 16; k++)
        EXPECT_EQ(a->data[k], before[k]);
    gfree(a);
}

TEST_F(EigenCases, OrderBelowOneWritesNothing)
{
    Matrix *a = fromRows(1, 1, {3});
    Complex roots[1] = {{9, 9}};
    eigenValues(roots, a, 0);
    eigenValues(roots, a, -4);
    EXPECT_EQ(roots[0].re, 9);
    EXPECT_EQ(roots[0].im, 9);
    EXPECT_EQ(platform::transcript().size(), 0u);
    gfree(a);
}

TEST_F(EigenCases, OrderBeyondTheMatrixIsRefused)
{
    Matrix *a = fromRows(2, 2, {1, 2, 3, 4});
    Complex roots[3] = {{9, 9}, {9, 9}, {9, 9}};
    eigenValues(roots, a, 3);
    EXPECT_EQ(linesWith("EigenValues: order 3 exceeds the 2x2 matrix"), 1);
    for (const Complex &r : roots)
        EXPECT_EQ(r.re, 0.0);
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

TEST_F(EigenCases, BalancingWithInfiniteElementEnds)
{
    const double inf = INFINITY;
    Matrix *a = fromRows(3, 3, {1, inf, 0, 1e-300, 2, 1, 0, 1, inf});
    balanceMatrix(a, 3);                /* returns: rows with non-finite norms are skipped */
    EXPECT_EQ(a->data[3], inf);
    gfree(a);
}

TEST_F(EigenCases, SolverGivesUpOnNaNHessenbergAfterOneRestart)
{
    /* Hessenberg 4x4 whose subdiagonal never becomes small: NaN throughout. */
    Matrix *a = matDecl(4, 4);
    for (int k = 0; k < 16; k++)
        a->data[k] = NAN;
    double wr[5], wi[5];
    eigenSolver(a, 4, wr, wi);
    EXPECT_EQ(linesWith("EigenSolver: over 20 iterations and only 0 roots"), 1);
    for (int i = 1; i <= 4; i++)
        EXPECT_TRUE(std::isnan(wr[i]));
    gfree(a);
}

TEST_F(EigenCases, SolverReportsFoundRootsWhenGivingUp)
{
    /* The bottom root 5 splits off; the rest is NaN and never converges. */
    Matrix *a = matDecl(4, 4);
    for (int k = 0; k < 16; k++)
        a->data[k] = NAN;
    el(a, 3, 2) = 0.0;                  /* a(4,3) = 0: the bottom root splits off */
    el(a, 3, 3) = 5.0;
    el(a, 2, 2) = 1.0;                  /* a finite neighbour for the deflation test */
    double wr[5], wi[5];
    eigenSolver(a, 4, wr, wi);
    EXPECT_EQ(wr[4], 5.0);
    EXPECT_EQ(wi[4], 0.0);
    EXPECT_EQ(linesWith("EigenSolver: over 20 iterations and only 1 roots"), 1);
    gfree(a);
}

TEST_F(EigenCases, WorkArraysHoldOrderPlusOneDoubles)
{
    Matrix *a = fromRows(4, 5, {1, 2, 0, 0, 0, 3, 4, 0, 0, 0, 0, 0, 5, 0, 0, 0, 0, 0, 6, 0});
    Complex roots[3];
    eigenValues(roots, a, 3);
    EXPECT_EQ(hostapp::host().lastAllocationBytes, 8u * 4);     /* wi: n + 1 doubles */
    EXPECT_DOUBLE_EQ(roots[0].re + roots[1].re + roots[2].re, 10.0);
    gfree(a);
}
