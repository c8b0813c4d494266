/*
** Singular value decomposition: the hand-derived small cases (signs of the 1x1
** factors, dropped singular values, pseudo-inverse), held blocks, bad shapes and
** non-finite input.
*/
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "numeric/svd.h"
#include "numeric_support.h"

using namespace testing_numeric;

class SvdCases : public ::testing::Test {
protected:
    void SetUp() override { resetMessages(); }
};

TEST_F(SvdCases, SmallSolves)
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
        Matrix *a = matDecl(c.n, c.n), *b = matDecl(c.n, 1), *x = matDecl(c.n, 1);
        for (uint32_t i = 0; i < c.n; i++) {
            for (uint32_t j = 0; j < c.n; j++)
                el(a, i, j) = c.rows[i * c.n + j];
            b->data[i] = c.b[i];
            x->data[i] = 9.0;
        }
        Matrix *into = c.inPlace ? b : x;
        EXPECT_EQ(singularValueDecomp(a, b, into), c.dropped) << "n=" << c.n;
        for (uint32_t i = 0; i < c.n; i++) {
            if (c.x[i] == 0.0)
                EXPECT_EQ(into->data[i], 0.0) << "n=" << c.n << " x" << i;
            else
                EXPECT_NEAR(into->data[i], c.x[i], 1e-14 * std::fabs(c.x[i])) << "n=" << c.n << " x" << i;
        }
        for (Matrix *m : {a, b, x})
            gfree(m);
    }
}

TEST_F(SvdCases, SingularDiagonalInvertsWhereItCan)
{
    /* diag(2, 0) becomes diag(0.5, 0): the pseudo-inverse drops (and counts) the value
    ** below its threshold, the inverse the exactly zero one. */
    Matrix *pinv = fromRows(2, 2, {2, 0, 0, 0});
    EXPECT_EQ(singularValueDecomp(pinv, nullptr, nullptr), 1);
    Matrix *inv = fromRows(2, 2, {2, 0, 0, 0});
    EXPECT_EQ(matInvert(inv), 1);
    for (Matrix *a : {pinv, inv}) {
        EXPECT_DOUBLE_EQ(el(a, 0, 0), 0.5);
        EXPECT_EQ(el(a, 0, 1), 0.0);
        EXPECT_EQ(el(a, 1, 0), 0.0);
        EXPECT_EQ(el(a, 1, 1), 0.0);
        gfree(a);
    }
    EXPECT_EQ(platform::transcript().size(), 0u);
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
