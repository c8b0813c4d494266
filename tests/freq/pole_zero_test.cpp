/*
** tests/freq/pole_zero_test.cpp: the factored evaluation K prod(s - z) / prod(s - p)
** against complex arithmetic of the standard library, its angle convention (plain sum of
** atan2 angles, the sign of K in the angle), points on roots, and the root magnitudes.
*/
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <random>
#include <vector>

#include "freq/pole_zero.h"
#include "support/plugin_plot.h"

namespace {

using cd = std::complex<double>;
using testing_support::PI;

TEST(EvalPoleZero, AgreesWithComplexArithmeticOnRandomRoots)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> u(-5.0, 5.0);
    for (int trial = 0; trial < 200; trial++) {
        std::vector<Complex> zeros(trial % 4), poles(1 + trial % 5);
        for (Complex &z : zeros)
            z = {u(random), u(random)};
        for (Complex &p : poles)
            p = {u(random), u(random)};
        double K = u(random);
        Complex s = {u(random), u(random)};
        PoleZeroValue v = evalPoleZero(s, zeros.data(), (int32_t)zeros.size(), poles.data(), (int32_t)poles.size(), K);
        cd expected = testing_support::poleZeroResponse(cd(s.re, s.im), zeros, poles, K);
        SCOPED_TRACE(trial);
        EXPECT_NEAR(v.magnitude, std::abs(expected), 1e-10 * std::abs(expected));
        /* The angle is not wrapped, but it points the same way. */
        EXPECT_LT(std::abs(std::polar(1.0, v.angle) - expected / std::abs(expected)), 1e-9);
        double denominator = 1.0;
        for (const Complex &p : poles)
            denominator *= std::abs(cd(s.re, s.im) - cd(p.re, p.im));
        EXPECT_NEAR(v.denominatorMagnitude, denominator, 1e-10 * denominator);
    }
}

/* Exact values: the angle is the plain sum of the factor angles (three poles at -1 seen
** from 10j give -3 atan 10, beyond -pi: no wrapping), a factor on a root adds atan2(0, 0) = 0
** and its modulus 0, and a negative K turns the angle by pi. */
TEST(EvalPoleZero, ExactValuesOnAndOffTheRoots)
{
    const std::vector<Complex> triple = {{-1, 0}, {-1, 0}, {-1, 0}}, zeros = {{0, 2}}, poles = {{0, 5}, {-1, 0}};
    const std::vector<Complex> none;
    const struct {
        Complex s;
        const std::vector<Complex> &zeros, &poles;
        double K, magnitude, angle, denominator;
    } rows[] = {
        {{0, 10}, none, triple, 2.0, 2.0 / std::pow(101.0, 1.5), -3.0 * std::atan(10.0), std::pow(101.0, 1.5)},
        {{0, 2}, zeros, poles, 1.0, 0.0, PI / 2 - std::atan2(2.0, 1.0), 3.0 * std::sqrt(5.0)},
        {{0, 5}, zeros, poles, 1.0, INFINITY, PI / 2 - std::atan2(5.0, 1.0), 0.0},
        {{0.3, 7}, none, none, -3.0, 3.0, PI, 1.0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.s.im);
        PoleZeroValue v = evalPoleZero(row.s, row.zeros.data(), (int32_t)row.zeros.size(), row.poles.data(),
                                       (int32_t)row.poles.size(), row.K);
        EXPECT_DOUBLE_EQ(v.magnitude, row.magnitude);
        EXPECT_DOUBLE_EQ(v.angle, row.angle);
        EXPECT_DOUBLE_EQ(v.denominatorMagnitude, row.denominator);
    }
}

TEST(RootMagnitudes, LargestAndSmallestOverBothLists)
{
    std::vector<Complex> poles = {{3, 4}, {-1, 0}, {0, 0.75}}, zeros = {{0, 0.5}, {-12, 0}};
    EXPECT_EQ(maxRootMagnitude(poles.data(), zeros.data(), 3, 2), 12.0);
    EXPECT_EQ(minRootMagnitude(poles.data(), zeros.data(), 3, 2), 0.5);
    EXPECT_EQ(maxRootMagnitude(poles.data(), zeros.data(), 3, 0), 5.0);
    EXPECT_EQ(minRootMagnitude(poles.data(), zeros.data(), 3, 0), 0.75);
    EXPECT_EQ(minRootMagnitude(poles.data(), zeros.data(), 0, 2), 0.5);
    std::vector<Complex> origin = {{0, 0}};
    EXPECT_EQ(minRootMagnitude(origin.data(), zeros.data(), 1, 2), 0.0);
    EXPECT_EQ(maxRootMagnitude(nullptr, nullptr, 0, 0), 0.0);
    EXPECT_EQ(minRootMagnitude(nullptr, nullptr, 0, 0), 0.0);
}

}
