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

TEST(NumberToText, TableAtPrecisionSix)
{
    PrecisionScope precision(6);
    const struct { double value; const char *text; } table[] = {
        {0.1, ".1"},                /* leading 0 removed */
        {100, "100"},               /* trailing point removed */
        {-0.5, "-.5"},              /* leading 0 after the sign removed */
        {-0.25, "-.25"},
        {0, "0"},                   /* "0." -> "." -> "" -> "0" */
        {-0.0, "0"},
        {1e10, "1e+010"},           /* point before the e removed */
        {1.5e-7, "1.5e-007"},       /* exponent digits kept */
        {-2e-20, "-2e-020"},
        {1234567, "1.23457e+006"},
        {2.5, "2.5"},
        {10, "10"},
        {0.01, ".01"},
        {-100000, "-100000"},
        {1.0 / 3.0, ".333333"},
        {INFINITY, "inf"},
        {NAN, "nan"},
    };
    for (const auto &row : table)
        EXPECT_EQ(std::string(numberToText(row.value)), row.text) << row.value;
}

TEST(NumberToText, OtherPrecisions)
{
    {
        PrecisionScope precision(3);
        EXPECT_STREQ(numberToText(3.14159), "3.14");
        EXPECT_STREQ(numberToText(0.0314159), ".0314");
        EXPECT_STREQ(numberToText(31415.9), "3.14e+004");
    }
    {
        PrecisionScope precision(1);
        EXPECT_STREQ(numberToText(0.96), "1");
        EXPECT_STREQ(numberToText(-7.4), "-7");
    }
    {
        PrecisionScope precision(15);
        EXPECT_STREQ(numberToText(0.1 + 0.2), ".3");
        EXPECT_STREQ(numberToText(-123456.789), "-123456.789");
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
