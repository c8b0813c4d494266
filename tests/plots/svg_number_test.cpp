/*
** The coordinates of a picture: written as C's printf writes "%.2f", including the
** values whose hundredths sit on or next to a tie, negative zero and magnitudes past
** the short way.
*/
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>

#include "hostapp/svg_text.h"

namespace {

std::string printed(double v)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.2f", v);
    return text;
}

std::string written(double v)
{
    std::string text;
    hostapp::appendSvgNumber(text, v);
    return text;
}

TEST(SvgNumber, TwoDecimalsAsPrintfWritesThem)
{
    const struct {
        double value;
        const char *text;
    } cases[] = {
        {0.125, "0.12"},                /* an exact tie: to even */
        {0.375, "0.38"},
        {-0.125, "-0.12"},
        {2.675, "2.67"},                /* just below the tie in binary */
        {1.005, "1.00"},
        {0.995, "0.99"},
        {0.015, "0.01"},
        {-0.004, "-0.00"},
        {-0.0, "-0.00"},
        {9.999, "10.00"},
        {-345.678, "-345.68"},
        {1e-300, "0.00"},
        {12345678.125, "12345678.12"},  /* past the short way */
    };
    for (const auto &c : cases) {
        EXPECT_EQ(written(c.value), c.text) << c.value;
        EXPECT_EQ(written(c.value), printed(c.value)) << c.value;
    }
    /* Multiples of 1/200 a few units of rounding either side: the hundredths next to ties. */
    std::mt19937_64 rng(13);
    std::uniform_int_distribution<int> halfCents(-400000, 400000), nudge(-3, 3);
    for (int i = 0; i < 100000; ++i) {
        double v = halfCents(rng) / 200.0;
        for (int k = nudge(rng); k != 0; k += k > 0 ? -1 : 1)
            v = std::nextafter(v, k > 0 ? INFINITY : -INFINITY);
        ASSERT_EQ(written(v), printed(v)) << v;
    }
    EXPECT_EQ(written(NAN), printed(NAN));
}

}
