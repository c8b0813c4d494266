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
const double PI = 3.141592653589793;

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
        cd direction = std::polar(1.0, v.angle);
        EXPECT_NEAR(direction.real(), expected.real() / std::abs(expected), 1e-9);
        EXPECT_NEAR(direction.imag(), expected.imag() / std::abs(expected), 1e-9);
        double denominator = 1.0;
        for (const Complex &p : poles)
            denominator *= std::abs(cd(s.re, s.im) - cd(p.re, p.im));
        EXPECT_NEAR(v.denominatorMagnitude, denominator, 1e-10 * denominator);
    }
}

TEST(EvalPoleZero, AngleIsThePlainSumOfTheFactorAngles)
{
    /* Three poles at -1 at s = 10j: -3 atan 10, beyond -pi (no wrapping). */
    std::vector<Complex> poles = {{-1, 0}, {-1, 0}, {-1, 0}};
    PoleZeroValue v = evalPoleZero({0, 10}, nullptr, 0, poles.data(), 3, 2.0);
    EXPECT_DOUBLE_EQ(v.angle, -3.0 * std::atan(10.0));
    EXPECT_LT(v.angle, -PI);
    EXPECT_DOUBLE_EQ(v.magnitude, 2.0 / std::pow(101.0, 1.5));
    EXPECT_DOUBLE_EQ(v.denominatorMagnitude, std::pow(101.0, 1.5));
}

TEST(EvalPoleZero, PointsOnRootsAndEmptyLists)
{
    std::vector<Complex> zeros = {{0, 2}}, poles = {{0, 5}, {-1, 0}};
    PoleZeroValue onZero = evalPoleZero({0, 2}, zeros.data(), 1, poles.data(), 2, 1.0);
    EXPECT_EQ(onZero.magnitude, 0.0);
    PoleZeroValue onPole = evalPoleZero({0, 5}, zeros.data(), 1, poles.data(), 2, 1.0);
    EXPECT_EQ(onPole.denominatorMagnitude, 0.0);
    /* The factor on the pole adds atan2(0, 0) = 0 to the angle. */
    EXPECT_DOUBLE_EQ(onPole.angle, PI / 2 - std::atan2(5.0, 1.0));

    PoleZeroValue constant = evalPoleZero({0.3, 7}, nullptr, 0, nullptr, 0, -3.0);
    EXPECT_EQ(constant.magnitude, 3.0);
    EXPECT_EQ(constant.angle, PI);
    EXPECT_EQ(constant.denominatorMagnitude, 1.0);
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
