/*
** Matrix records: sizes requested from the heap, and the elementary operations
** with their dimension messages (texts, argument order, block error order).
*/
#include <gtest/gtest.h>

#include "numeric_support.h"

using namespace testing_numeric;

class MatrixOps : public ::testing::Test {
protected:
    void SetUp() override { resetMessages(); }
};

TEST_F(MatrixOps, DeclarationsRequestTheSizeRule)
{
    Matrix *v = matDecl(3, 0);
    EXPECT_EQ(hostapp::host().lastAllocationBytes, 48u);
    EXPECT_EQ(v->rows, 3u);
    EXPECT_EQ(v->cols, 0u);
    Matrix *e = matDecl(0, 0);
    EXPECT_EQ(hostapp::host().lastAllocationBytes, 24u);
    Matrix *m = matDecl(4, 5);
    EXPECT_EQ(hostapp::host().lastAllocationBytes, 24u + 8 * 20);
    m->data[19] = 7.0;
    m = matReDecl(m, 5, 4);
    EXPECT_EQ(hostapp::host().lastAllocationBytes, 24u + 8 * 20);
    EXPECT_EQ(m->rows, 5u);
    EXPECT_EQ(m->cols, 4u);
    EXPECT_EQ(m->data[19], 7.0);        /* bytes kept, not rearranged */
    Matrix *fresh = matReDecl(nullptr, 2, 2);
    EXPECT_EQ(hostapp::host().lastAllocationBytes, 56u);
    ComplexMatrix *c = cmatReDecl(nullptr, 2, 3);
    EXPECT_EQ(hostapp::host().lastAllocationBytes, 128u);
    EXPECT_EQ(c->rows, 2u);
    EXPECT_EQ(c->cols, 3u);
    c = cmatReDecl(c, 5, 0);
    EXPECT_EQ(hostapp::host().lastAllocationBytes, 16u * 7);
    for (void *p : {(void *)v, (void *)e, (void *)m, (void *)fresh, (void *)c})
        gfree(p);
    EXPECT_EQ(platform::transcript().size(), 0u);
}

TEST_F(MatrixOps, CopyTakesTheOverlappingBlock)
{
    Matrix *src = fromRows(3, 5, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15});
    Matrix *dst = fromRows(4, 2, {-1, -2, -3, -4, -5, -6, -7, -8});
    matCopy(dst, src);
    EXPECT_EQ(el(dst, 0, 0), 1);
    EXPECT_EQ(el(dst, 0, 1), 2);
    EXPECT_EQ(el(dst, 1, 0), 6);
    EXPECT_EQ(el(dst, 2, 1), 12);
    EXPECT_EQ(el(dst, 3, 0), -7);       /* row 3 of dst left alone */
    EXPECT_EQ(el(dst, 3, 1), -8);
    gfree(src);
    gfree(dst);
}

TEST_F(MatrixOps, TransposeCopiesAndWorksInPlaceOnSquares)
{
    Matrix *a = fromRows(2, 3, {1, 2, 3, 4, 5, 6});
    Matrix *t = matDecl(3, 2);
    EXPECT_EQ(transpose2(t, a), t);
    EXPECT_EQ(el(t, 0, 0), 1);
    EXPECT_EQ(el(t, 2, 0), 3);
    EXPECT_EQ(el(t, 0, 1), 4);
    EXPECT_EQ(el(t, 2, 1), 6);

    Matrix *sq = fromRows(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(transpose2(sq, sq), sq);
    Matrix *expected = fromRows(3, 3, {1, 4, 7, 2, 5, 8, 3, 6, 9});
    for (int k = 0; k < 9; k++)
        EXPECT_EQ(sq->data[k], expected->data[k]);
    EXPECT_EQ(platform::transcript().size(), 0u);

    /* In place on a 2x3: refused, block error first, then the message. */
    EXPECT_EQ(transpose2(a, a), a);
    EXPECT_EQ(el(a, 0, 1), 2);
    EXPECT_EQ(el(a, 1, 0), 4);
    EXPECT_EQ(hostapp::host().blockErrors, 1);
    int err = lineIndexOf("[block error]");
    int msg = lineIndexOf("Bad args to transpose2 (2,3)=(2,3)");
    ASSERT_GE(err, 0);
    ASSERT_GE(msg, 0);
    EXPECT_LT(err, msg);
    for (Matrix *m : {a, t, sq, expected})
        gfree(m);
}

TEST_F(MatrixOps, AddReportsMismatchAfterwardsMarksAndSumsCommonBlock)
{
    Matrix *a = fromRows(2, 2, {1, 2, 3, 4});
    Matrix *b = fromRows(3, 2, {10, 20, 30, 40, 50, 60});
    Matrix *dst = fromRows(2, 2, {0, 0, 0, 0});
    matAdd(dst, a, b);
    int msg = lineIndexOf("Error: dimension mismatch (2,2)x(3,2) in Matrix Add!");
    int err = lineIndexOf("[block error]");
    ASSERT_GE(msg, 0);
    ASSERT_GE(err, 0);
    EXPECT_LT(msg, err);                /* message first, then the block error */
    EXPECT_EQ(el(dst, 0, 0), 11);
    EXPECT_EQ(el(dst, 0, 1), 22);
    EXPECT_EQ(el(dst, 1, 0), 33);
    EXPECT_EQ(el(dst, 1, 1), 44);       /* b(1,1) is 40: b is addressed with its own stride */

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
    EXPECT_EQ(hostapp::host().lastAllocationBytes, 24u + 8 * 4);
    EXPECT_EQ(el(p, 0, 0), 58);
    EXPECT_EQ(el(p, 0, 1), 64);
    EXPECT_EQ(el(p, 1, 0), 139);
    EXPECT_EQ(el(p, 1, 1), 154);
    Matrix *again = matMul(b, a);       /* the held buffer is resized and reused */
    EXPECT_EQ(again->rows, 3u);
    EXPECT_EQ(again->cols, 3u);
    EXPECT_EQ(el(again, 2, 2), 11 * 3 + 12 * 6);

    Matrix *sq = fromRows(2, 2, {1, 0, 0, 1});
    hostapp::host().lastAllocationBytes = 0;
    EXPECT_EQ(matMul(a, sq), a);        /* 2x3 by 2x2: the left operand itself */
    EXPECT_EQ(hostapp::host().lastAllocationBytes, 0u);
    EXPECT_EQ(linesWith("Non conformable matMul!"), 1);
    EXPECT_EQ(hostapp::host().blockErrors, 0);

    resetMessages();
    Matrix *wide = fromRows(3, 4, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    Matrix *dst = fromRows(2, 3, {-1, -1, -1, -1, -1, -1});
    matMulInto(dst, a, wide);
    int err = lineIndexOf("[block error]");
    int msg = lineIndexOf("Error: dimension mismatch (3,2)x(4,3) in matmul!");
    ASSERT_GE(err, 0);
    ASSERT_GE(msg, 0);
    EXPECT_LT(err, msg);
    for (int k = 0; k < 6; k++)
        EXPECT_EQ(dst->data[k], -1);

    resetMessages();
    Matrix *big = fromRows(3, 3, {0, 0, 0, 0, 0, 0, 0, 0, -5});
    matMulInto(big, a, b);              /* top-left 2x2 written, the rest stays */
    EXPECT_EQ(el(big, 1, 1), 154);
    EXPECT_EQ(el(big, 2, 2), -5);
    EXPECT_EQ(big->rows, 3u);
    EXPECT_EQ(platform::transcript().size(), 0u);
    for (Matrix *m : {a, b, sq, wide, dst, big})
        gfree(m);
}

TEST_F(MatrixOps, MatMulXMultipliesSubBlocks)
{
    Matrix *a = fromRows(3, 3, {1, 2, 9, 3, 4, 9, 9, 9, 9});
    Matrix *b = fromRows(3, 3, {5, 6, 9, 7, 8, 9, 9, 9, 9});
    Matrix *dst = fromRows(2, 2, {0, 0, 0, 0});
    matMulX(dst, a, b, 2, 2, 2, 2);
    EXPECT_EQ(el(dst, 0, 0), 19);
    EXPECT_EQ(el(dst, 0, 1), 22);
    EXPECT_EQ(el(dst, 1, 0), 43);
    EXPECT_EQ(el(dst, 1, 1), 50);

    matMulX(dst, a, b, 2, 3, 2, 2);
    EXPECT_EQ(linesWith("Error: dimension mismatch (3,2)x(2,2) in matmul!"), 1);
    EXPECT_EQ(hostapp::host().blockErrors, 0);
    EXPECT_EQ(el(dst, 1, 1), 50);
    /* A block larger than its operand is refused the same way. */
    matMulX(dst, a, b, 2, 4, 4, 2);
    EXPECT_EQ(linesWith("Error: dimension mismatch (4,2)x(2,4) in matmul!"), 1);
    for (Matrix *m : {a, b, dst})
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
    for (int k = 0; k < 6; k++)
        EXPECT_EQ(p->data[k], 0.0);
    Matrix *dst = fromRows(2, 3, {-1, -1, -1, -1, -1, -1});
    matMulInto(dst, a, b);
    for (int k = 0; k < 6; k++)
        EXPECT_EQ(dst->data[k], 0.0);

    Matrix *src = fromRows(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    Matrix *small = fromRows(2, 2, {0, 0, 0, 0});
    EXPECT_EQ(matScale(small, src, -2.0), small);
    EXPECT_EQ(el(small, 0, 0), -2);
    EXPECT_EQ(el(small, 1, 0), -8);     /* src addressed with its own stride */
    EXPECT_EQ(el(small, 0, 1), -4);
    EXPECT_EQ(el(small, 1, 1), -10);
    matScale(src, src, 0.5);
    EXPECT_EQ(el(src, 2, 2), 4.5);
    EXPECT_EQ(platform::transcript().size(), 0u);
    for (Matrix *m : {a, b, dst, src, small})
        gfree(m);
}
