/*
** tests/numeric/matrix_exponential_test.cpp: e^A against closed forms: a rotation
** (also one that needs many squarings), a Jordan block, a stiff diagonal, a norm just
** below a power of 2; refusals, without a message.
*/
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "host/host.h"
#include "numeric/matrix_exponential.h"
#include "platform/driver.h"
#include "support.h"

using testing_support::matrixFromRows;

TEST(MatrixExponential, ClosedForms)
{
    const double e = std::exp(1.0);
    struct Case {
        const char *name;
        double a[4];        /* rows */
        double expected[4]; /* rows */
    } cases[] = {
        {"rotation", {0, 1, -1, 0}, {std::cos(1.0), std::sin(1.0), -std::sin(1.0), std::cos(1.0)}},
        {"rotation by 40 rad", {0, 40, -40, 0}, {std::cos(40.0), std::sin(40.0), -std::sin(40.0), std::cos(40.0)}},
        {"Jordan block", {-3, 5, 0, -3}, {std::exp(-3.0), 5 * std::exp(-3.0), 0, std::exp(-3.0)}},
        {"stiff diagonal", {-50, 0, 0, 2}, {std::exp(-50.0), 0, 0, e * e}},
        /* scaled by 2^-4 to 0.49, where the approximant is exact to rounding; at 0.99 it is not */
        {"norm just below 8", {7.9, 0, 0, -3.9}, {std::exp(7.9), 0, 0, std::exp(-3.9)}},
        {"zero", {0, 0, 0, 0}, {1, 0, 0, 1}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        Matrix *a = matrixFromRows(2, 2, {c.a[0], c.a[1], c.a[2], c.a[3]});
        Matrix *result = matDecl(2, 2);
        ASSERT_EQ(matExponential(result, a), 1);
        for (int i = 0; i < 2; i++)
            for (int j = 0; j < 2; j++) {
                double want = c.expected[i * 2 + j];
                EXPECT_NEAR(result->data[j * 2 + i], want, 1e-13 * std::fmax(1.0, std::fabs(want))) << i << "," << j;
            }
        gfree(result);
        gfree(a);
    }
}

TEST(MatrixExponential, RefusesNonFiniteAndNonSquare)
{
    platform::clearTranscript();
    Matrix *result = matDecl(2, 2);
    result->data[0] = 7.0;
    Matrix *withNan = matrixFromRows(2, 2, {0, std::numeric_limits<double>::quiet_NaN(), 0, 0});
    Matrix *wide = matrixFromRows(1, 2, {1, 2});
    EXPECT_EQ(matExponential(result, withNan), 0);
    EXPECT_EQ(matExponential(result, wide), 0);
    EXPECT_EQ(result->data[0], 7.0);
    EXPECT_EQ(platform::transcriptText(), "");
    gfree(wide);
    gfree(withNan);
    gfree(result);
}
