/*
** numberToText and complexToText: the clean-up of the _gcvt text step by step, at
** ordinary and absurd display precisions.
*/
#include <cmath>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "shell/text.h"
#include "text_support.h"

using namespace testing_text;

TEST(NumberToText, TableOfPrecisions)
{
    const struct { int digits; double value; const char *text; } table[] = {
        {6, 0.1, ".1"},             /* leading 0 removed */
        {6, 100, "100"},            /* trailing point removed */
        {6, -0.5, "-.5"},           /* leading 0 after the sign removed */
        {6, -0.25, "-.25"},
        {6, 0, "0"},                /* "0." -> "." -> "" -> "0" */
        {6, -0.0, "0"},
        {6, 1e10, "1e+010"},        /* point before the e removed */
        {6, 1.5e-7, "1.5e-007"},    /* exponent digits kept */
        {6, -2e-20, "-2e-020"},
        {6, 1234567, "1.23457e+006"},
        {6, 2.5, "2.5"},
        {6, 10, "10"},
        {6, 0.01, ".01"},
        {6, -100000, "-100000"},
        {6, 1.0 / 3.0, ".333333"},
        {6, INFINITY, "inf"},
        {6, NAN, "nan"},
        {3, 3.14159, "3.14"},
        {3, 0.0314159, ".0314"},
        {3, 31415.9, "3.14e+004"},
        {1, 0.96, "1"},
        {1, -7.4, "-7"},
        {15, 0.1 + 0.2, ".3"},
        {15, -123456.789, "-123456.789"},
    };
    for (const auto &row : table) {
        PrecisionScope precision(row.digits);
        EXPECT_EQ(std::string(numberToText(row.value)), row.text) << row.value << " at " << row.digits;
    }
}

TEST(NumberToText, AbsurdPrecisionsGiveSaneTextsInTheBuffers)
{
    for (int digits : {0, -1, -2147483647 - 1, 51, 500, 2147483647}) {
        PrecisionScope precision(digits);
        for (double value : {-1.0 / 3.0, 1e300, -4.9406564584124654e-324, 100.0, 0.0}) {
            const char *text = numberToText(value);
            size_t length = std::strlen(text);
            EXPECT_GT(length, 0u);
            EXPECT_LT(length, 64u);
            EXPECT_NEAR(std::atof(text), value, std::fabs(value) * 0.5 + 1e-300)
                << digits << " " << text;
        }
    }
    {
        PrecisionScope precision(0);
        EXPECT_STREQ(numberToText(0.0), "0");
        EXPECT_STREQ(numberToText(100.0), "1e+002");
        EXPECT_STREQ(numberToText(0.5), ".5");
    }
    /* The complex buffer holds the two longest parts. */
    PrecisionScope precision(500);
    Complex z{-1.0 / 3.0, -2.0 / 3.0 * 1e-300};
    std::string text = complexToText(&z);
    EXPECT_LT(text.size(), 128u);
    EXPECT_EQ(text.front(), '(');
    EXPECT_EQ(text.back(), ')');
    EXPECT_NE(text.find(","), std::string::npos);
}

TEST(ComplexToText, PairInParentheses)
{
    PrecisionScope precision(6);
    Complex z{-1.0, 0.5};
    EXPECT_STREQ(complexToText(&z), "(-1,.5)");
    Complex zero{0.0, -0.0};
    EXPECT_STREQ(complexToText(&zero), "(0,0)");
    Complex big{1e10, -1.5e-7};
    EXPECT_STREQ(complexToText(&big), "(1e+010,-1.5e-007)");
    Complex pole{-0.70710678118654757, 0.70710678118654757};
    EXPECT_STREQ(complexToText(&pole), "(-.707107,.707107)");
}
