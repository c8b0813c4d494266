/*
** tests/nyquist/nyquist_curve_test.cpp: the Nyquist curve against hand-derived values of
** the transfer function: automatic range and point counts, the mirror half, detours
** around an integrator and around a pair of poles on the imaginary axis (with their
** R∞ crossings worked out by hand), segment ends at or below zero, the sampled model.
*/
#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/nyquist/nyquist_fixture.h"

using platform::ActionKind;

namespace {

const double PI = 3.141592653589793;

/* W non-decreasing over positions first … last; where a segment meets a detour the two
** ends, one from a logarithm and one from a sine, may differ in the last bits. */
void expectAscending(const double *W, int first, int last)
{
    for (int p = first; p < last; p++)
        ASSERT_LE(W[p], W[p + 1] + 1e-14 * std::fabs(W[p])) << "positions " << p << " and " << p + 1;
}

}

/* ---- Without imaginary-axis poles -------------------------------------------- */

TEST_F(NyquistTest, StableSystemRunsFromTheStaticGainOverTheAutomaticRange)
{
    /* G(s) = 2 / ((s + 1)(s + 2)): static gain 1, roots of magnitude 1 and 2. */
    poles = {{-1, 0}, {-2, 0}};
    arcPointCount = 77;
    run(1.0, 2.0);

    EXPECT_EQ(frequencyRange.steps, 1000);      /* 50 raised to 1000 */
    EXPECT_DOUBLE_EQ(frequencyRange.start, 1e-5);
    EXPECT_DOUBLE_EQ(frequencyRange.stop, 20.0);
    EXPECT_EQ(plot->pointCount, 1000u);
    EXPECT_EQ(count(), 1000u);
    EXPECT_EQ(plot->traces[1].points.count, 1000u);
    EXPECT_EQ(arcPointCount, 77);               /* only set when there are detours */
    EXPECT_EQ(nyquistInfinity, 10.0);
    EXPECT_EQ(transcript(), "");                /* no notice, no dialog */

    EXPECT_EQ(W[0], 0.0);
    EXPECT_EQ(X(1), 1.0);
    EXPECT_EQ(Y(1), 0.0);
    double step = (std::log10(20.0) + 5.0) / 1000;
    EXPECT_DOUBLE_EQ(W[1], 1e-5);
    EXPECT_NEAR(W[500], std::pow(10.0, -5.0 + 499 * step), 1e-12);
    EXPECT_NEAR(W[1000], 20.0 / std::pow(10.0, step), 1e-9);   /* one step below stop */
    for (int p = 1; p <= 1000; p++)
        expectPointAt(p, {0.0, W[p - 1]}, 2.0);
    /* At the top of the grid, ω ≈ 19.7: G ≈ −2/ω², just left of the origin. */
    EXPECT_LT(X(1000), 0.0);
    EXPECT_LT(std::hypot(X(1000), Y(1000)), 2.0 / (W[999] * W[999]));
    EXPECT_GT(std::hypot(X(1000), Y(1000)), 0.98 * 2.0 / (W[999] * W[999]));
}

TEST_F(NyquistTest, NegativeGainTurnsTheCurveByHalfATurnAndLongerRangesAreKept)
{
    poles = {{-1, 0}, {-2, 0}};
    frequencyRange.steps = 2000;
    run(1.0, -2.0);
    EXPECT_EQ(count(), 2000u);
    EXPECT_EQ(frequencyRange.steps, 2000);
    EXPECT_DOUBLE_EQ(X(1), -1.0);
    EXPECT_NEAR(Y(1), 0.0, 1e-15);
    for (int p = 1; p <= 2000; p += 37)
        expectPointAt(p, {0.0, W[p - 1]}, -2.0);
}

TEST_F(NyquistTest, NegativeFrequenciesDrawTheConjugateHalfFromTheNegativeTop)
{
    poles = {{-1, 0}, {-2, 0}};
    negativeFrequencies = 1;
    run(1.0, 2.0);
    ASSERT_EQ(count(), 1000u);
    const int half = 500;
    double step = (std::log10(20.0) + 5.0) / half;
    EXPECT_NEAR(W[half], 20.0 / std::pow(10.0, step), 1e-9);
    EXPECT_EQ(W[half + 1], -W[half]);
    EXPECT_EQ(W[2 * half], -W[1]);
    expectAscending(W, half + 1, 2 * half);     /* from the negative top towards 0 */
    for (int j = 1; j < half; j++) {
        EXPECT_EQ(X(half + 1 + j), X(half + 2 - j)) << j;
        EXPECT_EQ(Y(half + 1 + j), -Y(half + 2 - j)) << j;
    }
    for (int p = 1; p <= 1000; p += 13)
        expectPointAt(p, {0.0, W[p - 1]}, 2.0);
    EXPECT_EQ(transcript(), "");
}

TEST_F(NyquistTest, RangeIsClampedAndTheFrequencyUnitScalesTheGrid)
{
    /* Ten times the largest root, 2e5, is held at 100000; in Hertz every frequency is 2π·f. */
    poles = {{-20000, 0}, {-1, 0}};
    run(2 * PI, 20000.0);
    EXPECT_EQ(frequencyRange.stop, 100000.0);
    EXPECT_DOUBLE_EQ(frequencyRange.start, 1e-5);
    EXPECT_DOUBLE_EQ(W[1], 2 * PI * 1e-5);
    EXPECT_LT(W[1000], 2 * PI * 100000.0);
    EXPECT_GT(W[1000], 2 * PI * 95000.0);
    expectPointAt(1, 0.0, 20000.0);
    expectPointAt(1000, {0.0, W[999]}, 20000.0);
}

TEST_F(NyquistTest, RangeEndsAtTheirClampsForSmallRootsAndAZeroAtTheOrigin)
{
    /* G(s) = s / (s + 0.01): stop 10·0.01 raised to 1, start 1e-5·0 raised to 1e-6. */
    zeros = {{0, 0}};
    poles = {{-0.01, 0}};
    run(1.0, 1.0);
    EXPECT_EQ(frequencyRange.stop, 1.0);
    EXPECT_EQ(frequencyRange.start, 1e-6);
    EXPECT_EQ(X(1), 0.0);
    EXPECT_EQ(Y(1), 0.0);
    for (int p = 2; p <= 1000; p += 111)
        expectPointAt(p, {0.0, W[p - 1]}, 1.0);

    /* A bare gain: no roots at all, both ends from the clamps, a single point K. */
    zeros.clear();
    poles.clear();
    gfree(W);
    run(1.0, 3.0);
    EXPECT_EQ(frequencyRange.start, 1e-6);
    EXPECT_EQ(frequencyRange.stop, 1.0);
    for (int p = 1; p <= 1000; p += 111) {
        EXPECT_EQ(X(p), 3.0);
        EXPECT_EQ(Y(p), 0.0);
    }

    /* A NaN root (a failed root computation) gives NaN ends, which no clamp compares
    ** with: the curve is undefined, but the run draws its 1000 points and ends. */
    poles = {{std::numeric_limits<double>::quiet_NaN(), 0}, {-1, 0}};
    gfree(W);
    run(1.0, 1.0);
    EXPECT_TRUE(std::isnan(frequencyRange.start));
    EXPECT_TRUE(std::isnan(frequencyRange.stop));
    EXPECT_EQ(count(), 1000u);
    EXPECT_TRUE(std::isnan(X(1000)));
}

/* ---- Detours around imaginary-axis poles ------------------------------------- */

TEST_F(NyquistTest, IntegratorGetsOneHalfCircleAroundTheOriginAfterTheNoticeAndTheDialog)
{
    /* G(s) = 1 / (s (s + 1)): on the axis X = −1/(1 + ω²), Y = −1/(ω (1 + ω²)).  The
    ** crossing search from ωmid = 5 halves to 0.078125 (|Y| 12.7, too close), steps out
    ** to 0.1171875 (8.4, too far), back to 0.09765625 (10.14, within 10 %): ρ. */
    poles = {{0, 0}, {-1, 0}};
    run(1.0, 1.0);
    EXPECT_EQ(transcript(),
              "[ JW-Poles]  Poles detected on the imaginary axis, There will be circles at infinity\n"
              "[dialog] Nyquist\n"
              "  static -1 \"Nyquist Infinity:\"\n"
              "  edit 901 \"10\"\n"
              "  default-button 1 \"&Ok\"\n"
              "  button 9 \"Help\"\n"
              "  > default 1\n"
              "[end] Nyquist: 1\n");
    const int M = 500, total = 1000;            /* M = 2·1·⌊1000/4⌋, N′ = 2·nJ·M */
    EXPECT_EQ(arcPointCount, M);
    EXPECT_EQ(count(), (uint32_t)total);
    EXPECT_EQ(plot->pointCount, (uint32_t)total);
    EXPECT_EQ(frequencyRange.steps, total);
    EXPECT_EQ(frequencyRange.start, 1e-6);
    EXPECT_EQ(frequencyRange.stop, 10.0);

    const double rho = 0.09765625;
    /* Sorted: upper segment mirrored (1 … 250), the half circle (251 … 750), the upper segment. */
    expectAscending(W, 1, total);
    EXPECT_NEAR(W[1], -10.0, 1e-9);
    EXPECT_NEAR(W[250], -rho, 1e-15);
    EXPECT_EQ(W[251], -rho);
    EXPECT_NEAR(W[750], rho, 1e-15);
    EXPECT_NEAR(W[751], rho, 1e-15);
    EXPECT_NEAR(W[total], 10.0, 1e-9);
    for (int j = 0; j < M; j++) {
        double phi = j * PI / (M - 1) - PI / 2;
        EXPECT_NEAR(W[251 + j], rho * std::sin(phi), 1e-15);
        expectPointAt(251 + j, {rho * std::cos(phi), rho * std::sin(phi)}, 1.0);
    }
    for (int p : {1, 100, 250, 751, 900, 1000})
        expectPointAt(p, {0.0, W[p]}, 1.0);
    /* The half circle starts just below the pole: the conjugate of G(jρ). */
    EXPECT_NEAR(X(251), -0.990553347138042, 1e-9);
    EXPECT_NEAR(Y(251), 10.14326627469355, 1e-9);
    EXPECT_NEAR(Y(750), -10.14326627469355, 1e-9);
}

TEST_F(NyquistTest, InfinityEnteredInTheDialogSizesTheDetour)
{
    /* With R∞ = 20 the search ends at 0.048828125, where |Y| ≈ 20.4. */
    poles = {{0, 0}, {-1, 0}};
    platform::queueDialogAction({"NYQUISTINFINITI", ActionKind::Type, 901, "20"});
    platform::queueDialogAction({"NYQUISTINFINITI", ActionKind::Click, 1, ""});
    run(1.0, 1.0);
    EXPECT_EQ(nyquistInfinity, 20.0);
    EXPECT_EQ(W[251], -0.048828125);
    EXPECT_NEAR(W[750], 0.048828125, 1e-15);
    EXPECT_EQ(platform::pendingDialogActions(), 0u);

    /* The next run starts from 10 again, whatever the last run's value was. */
    gfree(W);
    platform::clearTranscript();
    frequencyRange.steps = 50;
    run(1.0, 1.0);
    EXPECT_NE(transcript().find("  edit 901 \"10\"\n"), std::string::npos);
    EXPECT_EQ(W[251], -0.09765625);
}

TEST_F(NyquistTest, PolePairOnTheAxisIsPassedOnBothSidesAndTheCurveIsSortedByFrequency)
{
    /* G(s) = 1 / (s² + 4): real on the axis, 1/(4 − ω²).  From ωmid = 11 the search halves
    ** down to 2.017578125 (|X| 14.2, too close) and steps out to 2.0263671875 (9.42): ρ. */
    poles = {{0, 2}, {0, -2}};
    run(1.0, 1.0);
    EXPECT_NE(transcript().find("[ JW-Poles]  Poles detected"), std::string::npos);
    const int M = 500, h = 250, total = 1500;   /* N′ = (2·nJ + 1)·M */
    EXPECT_EQ(arcPointCount, M);
    ASSERT_EQ(count(), (uint32_t)total);
    EXPECT_EQ(frequencyRange.steps, total);
    EXPECT_DOUBLE_EQ(frequencyRange.start, 2e-5);
    EXPECT_EQ(frequencyRange.stop, 20.0);

    const double rho = 2.0263671875, r = rho - 2.0;
    expectAscending(W, 1, total);
    /* Blocks of h: upper mirrored, detour at −j2, lower mirrored, lower, detour at +j2, upper. */
    EXPECT_NEAR(W[1], -20.0, 1e-9);
    EXPECT_EQ(W[2 * h - h + 1], -2.0 - r);
    EXPECT_NEAR(W[2 * h], -2.0 + r, 1e-15);
    EXPECT_NEAR(W[3 * h], -2e-5, 1e-15);
    EXPECT_NEAR(W[3 * h + 1], 2e-5, 1e-15);
    EXPECT_NEAR(W[4 * h], 2.0 - r, 1e-12);
    EXPECT_EQ(W[4 * h + 1], 2.0 - r);
    EXPECT_NEAR(W[5 * h], 2.0 + r, 1e-15);
    EXPECT_NEAR(W[5 * h + 1], rho, 1e-12);
    EXPECT_NEAR(W[total], 20.0, 1e-9);

    for (int p = 1; p <= total; p++) {
        bool below = p > h && p <= 2 * h, above = p > 4 * h && p <= 5 * h;
        if (below || above) {
            int j = (p - 1) % h;
            double phi = j * PI / (h - 1) - PI / 2;
            expectPointAt(p, {r * std::cos(phi), (above ? 2.0 : -2.0) + r * std::sin(phi)}, 1.0);
        } else {
            expectPointAt(p, {0.0, W[p]}, 1.0);
        }
    }
    /* Static gain 1/4 at the lowest frequencies; on the detour the response reaches ±1/(2r·2). */
    EXPECT_NEAR(X(3 * h + 1), 0.25, 1e-9);
    EXPECT_NEAR(std::hypot(X(4 * h + h / 2), Y(4 * h + h / 2)), 1.0 / (r * (4.0 + r)), 0.5);
}

TEST_F(NyquistTest, PolesOnTheAxisAreFoundOnceEachAndInAscendingOrder)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    Roots list = {{0, 5},      {0, -5},   {1e-5, 5.0005}, {0, 5.0009}, {0, 2},  {-1e-4, 3},
                  {5e-5, -5e-5}, {0, -2e-4}, {nan, 1},      {-1, 0},    {0, 2.0011}};
    double out[16];
    ASSERT_EQ(findJwPoles(list.data(), (int32_t)list.size(), out), 4);
    EXPECT_EQ(out[0], -5e-5);      /* the pole at the origin, |ω| < 1e-4 */
    EXPECT_EQ(out[1], 2.0);
    EXPECT_EQ(out[2], 2.0011);     /* more than 1e-3 from 2 */
    EXPECT_EQ(out[3], 5.0);        /* 5.0005 and 5.0009 lie within 1e-3 of it */
    EXPECT_TRUE(isOriginPole(out[0]));
    EXPECT_FALSE(isOriginPole(1e-4));
}

TEST_F(NyquistTest, TwoPolePairsGetTwoDetoursAndTheSegmentBetweenThem)
{
    /* G(s) = 1 / ((s² + 1)(s² + 9)), real on the axis.  Worked crossings: 1.005859375
    ** (searched up to the midpoint 2) and 3.0020599365234375 (up to (3 + 30)/2). */
    poles = {{0, 1}, {0, -1}, {0, 3}, {0, -3}};
    run(1.0, 1.0);
    const int M = 1000, h = 500, total = 5000;      /* M = 2·2·250, N′ = 5·M */
    EXPECT_EQ(arcPointCount, M);
    ASSERT_EQ(count(), (uint32_t)total);
    EXPECT_EQ(frequencyRange.stop, 30.0);
    const double omega[2] = {1.0, 3.0}, rho[2] = {1.005859375, 3.0020599365234375};
    expectAscending(W, 1, total);
    EXPECT_NEAR(W[1], -30.0, 1e-9);
    EXPECT_NEAR(W[total], 30.0, 1e-9);
    /* Blocks of h: −30…−ρ2, detour −j3, −e2…−ρ1, detour −j1, −e1…−start, start…e1,
    ** detour j1, ρ1…e2, detour j3, ρ2…30, where e_k = 2ω_k − ρ_k. */
    double e2 = 2 * 3.0 - rho[1], e1 = 2 * 1.0 - rho[0];
    EXPECT_NEAR(W[2 * h], -e2, 1e-12);
    EXPECT_NEAR(W[2 * h + 1], -e2, 1e-12);
    EXPECT_NEAR(W[3 * h], -rho[0], 1e-12);
    EXPECT_NEAR(W[4 * h], -e1, 1e-12);
    EXPECT_NEAR(W[5 * h + 1], frequencyRange.start, 1e-15);
    EXPECT_NEAR(W[6 * h + 1], e1, 1e-12);
    EXPECT_NEAR(W[7 * h + 1], rho[0], 1e-12);
    EXPECT_NEAR(W[8 * h], e2, 1e-12);
    for (int p = 1; p <= total; p++) {
        /* A point inside a detour's band lies on its half circle, right of the axis. */
        double re = 0.0;
        for (int k = 0; k < 2; k++) {
            double r = rho[k] - omega[k], offset = std::fabs(W[p]) - omega[k];
            if (std::fabs(offset) < r)
                re = std::sqrt(r * r - offset * offset);
        }
        std::complex<double> g = reference({re, W[p]}, zeros, poles, 1.0);
        ASSERT_NEAR(X(p), g.real(), 1e-6 * std::max(1.0, std::abs(g))) << p;
        ASSERT_NEAR(Y(p), g.imag(), 1e-6 * std::max(1.0, std::abs(g))) << p;
    }
}

TEST_F(NyquistTest, ThousandsOfPolesOnTheAxisLeaveNoRoomForDetours)
{
    /* (2·nJ + 1)·2·nJ points per quarter step exceed the most a run draws: the curve
    ** goes without detours instead of asking for billions of points. */
    for (int k = 1; k <= 1100; k++) {
        poles.push_back({0, (double)k});
        poles.push_back({0, -(double)k});
    }
    arcPointCount = 5;
    run(1.0, 1.0);
    EXPECT_EQ(count(), 1000u);
    EXPECT_EQ(frequencyRange.steps, 1000);
    EXPECT_EQ(arcPointCount, 5);
    EXPECT_EQ(transcript(), "");
    expectPointAt(1, 0.0, 1.0);
}

TEST_F(NyquistTest, StepCountFromTheSettingsFileIsHeldToTheMostPointsARunDraws)
{
    poles = {{-1, 0}};
    frequencyRange.steps = std::numeric_limits<int32_t>::max();
    run(1.0, 1.0);
    EXPECT_EQ(count(), 4194304u);
    EXPECT_EQ(frequencyRange.steps, 4194304);
    expectPointAt(4194304, {0.0, W[4194303]}, 1.0);

    frequencyRange = {std::numeric_limits<int32_t>::max(), 0.1, 1.0};
    prepareSampledNyquist(plot);
    EXPECT_EQ(count(), 4194304u);
    EXPECT_EQ(plot->pointCount, 4194304u);
}

TEST_F(NyquistTest, DetourWiderThanItsPoleFrequencyLeavesNoUndefinedPoint)
{
    /* G(s) = 1 / (s² + 1e-4): ρ = 0.319375 for the pole at j0.01, so the lower edge
    ** 2·0.01 − ρ is negative: that segment shrinks to the range start. */
    poles = {{0, 0.01}, {0, -0.01}};
    run(1.0, 1.0);
    ASSERT_EQ(count(), 1500u);
    for (int p = 1; p <= 1500; p++) {
        ASSERT_TRUE(std::isfinite(W[p])) << p;
        ASSERT_TRUE(std::isfinite(X(p)) && std::isfinite(Y(p))) << p;
    }
    EXPECT_EQ(std::count(W + 1, W + 1501, frequencyRange.start), 250);
    EXPECT_EQ(std::count(W + 1, W + 1501, -frequencyRange.start), 250);

    /* All roots at the origin: both ends from the clamps, the curve stays finite. */
    gfree(W);
    frequencyRange.steps = 50;
    poles = {{0, 0}, {0, 0}};
    run(1.0, 1.0);
    EXPECT_EQ(frequencyRange.start, 1e-6);
    EXPECT_EQ(frequencyRange.stop, 1.0);
    ASSERT_EQ(count(), 1000u);              /* the double pole counts once */
    for (int p = 1; p <= 1000; p++)
        ASSERT_TRUE(std::isfinite(W[p]) && std::isfinite(X(p)) && std::isfinite(Y(p))) << p;
    expectAscending(W, 1, 1000);

    /* Only zero or negative ends are taken as the start: a pole at j·infinity makes the
    ** detour and the ends beside it undefined (not the start), and the run still ends. */
    gfree(W);
    poles = {{0, std::numeric_limits<double>::infinity()}, {-1, 0}};
    run(1.0, 1.0);
    EXPECT_EQ(frequencyRange.start, 1e-5);
    ASSERT_EQ(count(), 1500u);
    EXPECT_EQ(std::count_if(W + 1, W + 1501, [](double w) { return std::isnan(w); }), 1500);
}

/* ---- The sampled model ------------------------------------------------------- */

TEST_F(NyquistTest, SampledModelIsEvaluatedOnTheUnitCircle)
{
    /* G(z) = 1 / (z − 0.5); the command handler has lowered stop to 2π rad/s. */
    poles = {{0.5, 0}};
    frequencyRange = {50, 0.1, 2 * PI};
    nyquistInfinity = 3.0;
    prepareSampledNyquist(plot);
    EXPECT_EQ(nyquistInfinity, 10.0);
    EXPECT_EQ(frequencyRange.steps, 1000);
    EXPECT_EQ(frequencyRange.start, 0.1);
    EXPECT_EQ(plot->pointCount, 1000u);
    ASSERT_EQ(count(), 1000u);
    EXPECT_EQ(plot->traces[1].points.count, 1000u);
    nyquistResponseSampled(0, 1, poles.data(), nullptr, (double *)plot->traces[0].points.items,
                           (double *)plot->traces[1].points.items, 1.0, 1.0);
    EXPECT_NEAR(X(1), 1.9412245137954356, 1e-12);
    EXPECT_NEAR(Y(1), -0.3915099897834723, 1e-12);
    EXPECT_NEAR(X(1000), 2.0, 1e-12);           /* θ = 2π: z = 1 */
    EXPECT_NEAR(Y(1000), 0.0, 1e-12);
    double step = (std::log10(2 * PI) - std::log10(0.1)) / 999;
    for (int p = 1; p <= 1000; p += 9) {
        double theta = std::pow(10.0, std::log10(0.1) + (p - 1) * step);
        expectPointAt(p, std::polar(1.0, theta), 1.0);
        /* The image of the unit circle: the circle through 2 (z = 1) and −2/3 (z = −1). */
        EXPECT_NEAR(std::hypot(X(p) - 2.0 / 3.0, Y(p)), 4.0 / 3.0, 1e-12);
    }
    EXPECT_EQ(plot->paramInfo, nullptr);
    EXPECT_EQ(transcript(), "");
}

TEST_F(NyquistTest, SampledModelInHertzAndItsRangeClamps)
{
    poles = {{0.5, 0}};
    frequencyRange = {1200, 0.1, 1.0};          /* 1 Hz: θ runs up to 2π */
    prepareSampledNyquist(plot);
    ASSERT_EQ(count(), 1200u);
    nyquistResponseSampled(0, 1, poles.data(), nullptr, (double *)plot->traces[0].points.items,
                           (double *)plot->traces[1].points.items, 2 * PI, 1.0);
    EXPECT_NEAR(X(1), 0.7007458120453971, 1e-12);     /* θ = 0.2π */
    EXPECT_NEAR(Y(1), -1.3328977416246277, 1e-12);
    EXPECT_NEAR(X(1200), 2.0, 1e-12);

    frequencyRange = {10, 0.0, 5e-5};
    prepareSampledNyquist(plot);
    EXPECT_EQ(frequencyRange.start, 1e-4);
    EXPECT_EQ(frequencyRange.stop, 1.0);
    EXPECT_EQ(frequencyRange.steps, 1000);

    /* A NaN end is neither below 1e-4 nor raised: the curve is undefined, the run ends. */
    const double nan = std::numeric_limits<double>::quiet_NaN();
    frequencyRange = {10, nan, nan};
    prepareSampledNyquist(plot);
    EXPECT_TRUE(std::isnan(frequencyRange.start));
    EXPECT_TRUE(std::isnan(frequencyRange.stop));
    EXPECT_EQ(frequencyRange.steps, 1000);
    ASSERT_EQ(count(), 1000u);
    nyquistResponseSampled(0, 1, poles.data(), nullptr, (double *)plot->traces[0].points.items,
                           (double *)plot->traces[1].points.items, 1.0, 1.0);
    EXPECT_TRUE(std::isnan(X(1)) && std::isnan(Y(1000)));

    frequencyRange = {10, std::numeric_limits<double>::infinity(), 0.5};
    prepareSampledNyquist(plot);
    EXPECT_EQ(frequencyRange.start, std::numeric_limits<double>::infinity());
    EXPECT_EQ(frequencyRange.stop, 0.5);
}
