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
    EXPECT_EQ(plot->traces[1].points.count, 1000u);
    EXPECT_EQ(arcPointCount, 77);               /* only set when there are detours */
    EXPECT_EQ(nyquistInfinity, 10.0);
    EXPECT_EQ(transcript(), "");                /* no notice, no dialog */

    EXPECT_EQ(W[0], 0.0);
    EXPECT_EQ(X(1), 1.0);
    EXPECT_EQ(Y(1), 0.0);
    double step = (std::log10(20.0) + 5.0) / 1000;
    EXPECT_DOUBLE_EQ(W[1], 1e-5);
    EXPECT_NEAR(W[1000], 20.0 / std::pow(10.0, step), 1e-9);   /* one step below stop */
    for (int p = 1; p <= 1000; p++)
        expectPointAt(p, {0.0, W[p - 1]}, 2.0);
    /* At the top of the grid, ω ≈ 19.7: G ≈ −2/ω², just left of the origin. */
    EXPECT_LT(X(1000), 0.0);
    EXPECT_LT(std::hypot(X(1000), Y(1000)), 2.0 / (W[999] * W[999]));
    EXPECT_GT(std::hypot(X(1000), Y(1000)), 0.98 * 2.0 / (W[999] * W[999]));
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
