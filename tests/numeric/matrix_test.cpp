/*
** Matrix records: the elementary operations (add, products, scaling) with their
** dimension messages (texts, argument order, block error order).
*/
#include <gtest/gtest.h>

#include "numeric_support.h"

using namespace testing_numeric;
using Lines = std::vector<std::string>;
using Values = std::vector<double>;

using MatrixOps = PluginTest;

TEST_F(MatrixOps, AddReportsMismatchAfterwardsMarksAndSumsCommonBlock)
{
    Matrix *a = fromRows(2, 2, {1, 2, 3, 4});
    Matrix *b = fromRows(3, 2, {10, 20, 30, 40, 50, 60});
    Matrix *dst = fromRows(2, 2, {0, 0, 0, 0});
    matAdd(dst, a, b);
    /* message first, then the block error */
    EXPECT_EQ(platform::transcript(),
              Lines({"[Tervan Debug] Error: dimension mismatch (2,2)x(3,2) in Matrix Add!", "[block error]"}));
    EXPECT_EQ(stored(dst, 4), Values({11, 33, 22, 44}));   /* b(1,1) is 40: b is addressed with its own stride */

    resetMessages();
    matAdd(a, a, a);                    /* dst may be an operand */
    EXPECT_EQ(el(a, 1, 1), 8);
    EXPECT_EQ(platform::transcript().size(), 0u);
    for (Matrix *m : {a, b, dst})
        gfree(m);
}

TEST_F(MatrixOps, ProductsAndTheirMessages)
{
    Matrix *a = fromRows(2, 3, {1, 2, 3, 4, 5, 6});
    Matrix *b = fromRows(3, 2, {7, 8, 9, 10, 11, 12});
    Matrix *p = matMul(a, b);
    EXPECT_EQ(p->rows, 2u);
    EXPECT_EQ(p->cols, 2u);
    EXPECT_EQ(stored(p, 4), Values({58, 139, 64, 154}));
    Matrix *again = matMul(b, a);       /* the held buffer is resized and reused */
    EXPECT_EQ(again->rows, 3u);
    EXPECT_EQ(again->cols, 3u);
    EXPECT_EQ(el(again, 2, 2), 11 * 3 + 12 * 6);

    Matrix *sq = fromRows(2, 2, {1, 0, 0, 1});
    EXPECT_EQ(matMul(a, sq), a);        /* 2x3 by 2x2: the left operand itself, and no block error */
    EXPECT_EQ(platform::transcript(), Lines({"[Tervan Debug] Non conformable matMul!"}));
    EXPECT_EQ(hostapp::host().blockErrors, 0);

    resetMessages();
    Matrix *wide = fromRows(3, 4, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    Matrix *dst = fromRows(2, 3, {-1, -1, -1, -1, -1, -1});
    matMulInto(dst, a, wide);           /* block error first, then the message; dst stays */
    EXPECT_EQ(platform::transcript(),
              Lines({"[block error]", "[Tervan Debug] Error: dimension mismatch (3,2)x(4,3) in matmul!"}));
    EXPECT_EQ(stored(dst, 6), Values(6, -1));

    resetMessages();
    Matrix *big = fromRows(3, 3, {0, 0, 0, 0, 0, 0, 0, 0, -5});
    matMulInto(big, a, b);              /* top-left 2x2 written, the rest stays */
    EXPECT_EQ(stored(big, 9), Values({58, 139, 0, 64, 154, 0, 0, 0, -5}));
    EXPECT_EQ(big->rows, 3u);
    EXPECT_EQ(platform::transcript().size(), 0u);
    for (Matrix *m : {a, b, sq, wide, dst, big})
        gfree(m);
}

TEST_F(MatrixOps, InnerDimensionZeroGivesZerosAndScaleUsesDstSize)
{
    Matrix *a = matDecl(2, 0);
    a->cols = 0;
    Matrix *b = matDecl(0, 3);
    Matrix *p = matMul(a, b);
    ASSERT_EQ(p->rows, 2u);
    ASSERT_EQ(p->cols, 3u);
    EXPECT_EQ(stored(p, 6), Values(6, 0.0));
    Matrix *dst = fromRows(2, 3, {-1, -1, -1, -1, -1, -1});
    matMulInto(dst, a, b);
    EXPECT_EQ(stored(dst, 6), Values(6, 0.0));

    Matrix *src = fromRows(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    Matrix *small = fromRows(2, 2, {0, 0, 0, 0});
    EXPECT_EQ(matScale(small, src, -2.0), small);
    EXPECT_EQ(stored(small, 4), Values({-2, -8, -4, -10}));   /* src addressed with its own stride */
    matScale(src, src, 0.5);
    EXPECT_EQ(el(src, 2, 2), 4.5);
    EXPECT_EQ(platform::transcript().size(), 0u);
    for (Matrix *m : {a, b, dst, src, small})
        gfree(m);
}
