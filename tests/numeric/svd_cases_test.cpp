/*
** Singular value decomposition: the hand-derived small cases (signs of the 1x1
** factors, dropped singular values, pseudo-inverse), held blocks, bad shapes and
** non-finite input.
*/
#include <cmath>

#include <gtest/gtest.h>

#include "numeric/svd.h"
#include "numeric_support.h"

using namespace testing_numeric;

class SvdCases : public ::testing::Test {
protected:
    void SetUp() override { resetMessages(); }
};

TEST_F(SvdCases, OneByOneSigns)
{
    for (double value : {3.0, -3.0}) {
        Matrix *a = fromRows(1, 1, {value});
        Matrix *v = matDecl(1, 1);
        double w[2];
        ASSERT_EQ(svDecompose(a, w, v), 1);
        EXPECT_EQ(w[1], 3.0);
        EXPECT_EQ(a->data[0], -1.0);
        EXPECT_EQ(v->data[0], value > 0 ? -1.0 : 1.0);
        EXPECT_EQ(hostapp::host().lastAllocationBytes, 8u * 3);   /* rv1: n + 2 doubles */
        gfree(a);
        gfree(v);
    }
}

TEST_F(SvdCases, SolveWithIdentity)
{
    Matrix *a = fromRows(2, 2, {1, 0, 0, 1});
    Matrix *b = fromRows(2, 1, {1, 2});
    Matrix *x = fromRows(2, 1, {0, 0});
    EXPECT_EQ(singularValueDecomp(a, b, x), 0);
    EXPECT_DOUBLE_EQ(x->data[0], 1.0);
    EXPECT_DOUBLE_EQ(x->data[1], 2.0);
    EXPECT_EQ(hostapp::host().lastAllocationBytes, 8u * 3);       /* back-substitution work */
    for (Matrix *m : {a, b, x})
        gfree(m);
}

TEST_F(SvdCases, SolveDropsTinySingularValue)
{
    Matrix *a = fromRows(2, 2, {1, 0, 0, 1e-13});
    Matrix *b = fromRows(2, 1, {3, 4});
    Matrix *x = fromRows(2, 1, {9, 9});
    EXPECT_EQ(singularValueDecomp(a, b, x), 1);
    EXPECT_DOUBLE_EQ(x->data[0], 3.0);
    EXPECT_EQ(x->data[1], 0.0);
    for (Matrix *m : {a, b, x})
        gfree(m);
}

TEST_F(SvdCases, SolveInPlaceWhenXIsB)
{
    Matrix *a = fromRows(2, 2, {2, 1, 1, 3});
    Matrix *b = fromRows(2, 1, {3, 5});
    EXPECT_EQ(singularValueDecomp(a, b, b), 0);
    EXPECT_NEAR(b->data[0], 0.8, 1e-14);
    EXPECT_NEAR(b->data[1], 1.4, 1e-14);
    gfree(a);
    gfree(b);
}

TEST_F(SvdCases, PseudoInverseOfSingularDiagonal)
{
    Matrix *a = fromRows(2, 2, {2, 0, 0, 0});
    EXPECT_EQ(singularValueDecomp(a, nullptr, nullptr), 1);
    EXPECT_DOUBLE_EQ(el(a, 0, 0), 0.5);
    EXPECT_EQ(el(a, 0, 1), 0.0);
    EXPECT_EQ(el(a, 1, 0), 0.0);
    EXPECT_EQ(el(a, 1, 1), 0.0);
    EXPECT_EQ(hostapp::host().lastAllocationBytes, 24u + 8 * 4);  /* the product V a^T */
    EXPECT_EQ(platform::transcript().size(), 0u);
    gfree(a);
}

TEST_F(SvdCases, InvertDropsExactlySingularDirection)
{
    Matrix *a = fromRows(2, 2, {2, 0, 0, 0});
    EXPECT_EQ(matInvert(a), 1);
    EXPECT_DOUBLE_EQ(el(a, 0, 0), 0.5);
    EXPECT_EQ(el(a, 0, 1), 0.0);
    EXPECT_EQ(el(a, 1, 0), 0.0);
    EXPECT_EQ(el(a, 1, 1), 0.0);
    EXPECT_EQ(hostapp::host().lastAllocationBytes, 24u + 8 * 4);  /* transposed left factor */
    gfree(a);
}

TEST_F(SvdCases, InvertTwoByTwo)
{
    Matrix *a = fromRows(2, 2, {4, 7, 2, 6});
    ASSERT_EQ(matInvert(a), 1);
    EXPECT_NEAR(el(a, 0, 0), 0.6, 1e-15);
    EXPECT_NEAR(el(a, 0, 1), -0.7, 1e-15);
    EXPECT_NEAR(el(a, 1, 0), -0.2, 1e-15);
    EXPECT_NEAR(el(a, 1, 1), 0.4, 1e-15);
    gfree(a);
}

TEST_F(SvdCases, ZeroMatrixDropsNothing)
{
    Matrix *a = fromRows(3, 3, {0, 0, 0, 0, 0, 0, 0, 0, 0});
    Matrix *b = fromRows(3, 1, {1, 2, 3});
    Matrix *x = fromRows(3, 1, {9, 9, 9});
    EXPECT_EQ(singularValueDecomp(a, b, x), 0);
    for (int k = 0; k < 3; k++)
        EXPECT_EQ(x->data[k], 0.0);
    for (Matrix *m : {a, b, x})
        gfree(m);
}

TEST_F(SvdCases, ShapesThatCannotWorkAreRefused)
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

TEST_F(SvdCases, NonFiniteInputIsReportedAndFails)
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
