/*
** tests/nyquist/nyquist_curve_test.cpp: the Nyquist curve against the transfer function:
** automatic range and point counts, the mirror half, detours around an integrator and
** around a pair of poles on the imaginary axis (R∞ crossings worked out by hand, and in
** Hertz as the run finds them), the sampled model with and without a pole on the circle.
*/
#include <algorithm>
#include <cmath>
#include <string>

#include "tests/nyquist/nyquist_fixture.h"

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
    /* G(s) = 2 / ((s + 1)(s + 2)): static gain 1, roots of magnitude 1 and 2.  With negative
    ** frequencies the grid has half the points, and the conjugate half follows them from the
    ** negative top towards 0. */
    poles = {{-1, 0}, {-2, 0}};
    for (int negative : {0, 1}) {
        SCOPED_TRACE(negative ? "with negative frequencies" : "positive frequencies only");
        frequencyRange = {50, 0.1, 100.0};
        negativeFrequencies = negative;
        arcPointCount = 77;
        gfree(W);
        run(1.0, 2.0);
        EXPECT_EQ(frequencyRange.steps, 1000);      /* 50 raised to 1000 */
        EXPECT_DOUBLE_EQ(frequencyRange.start, 1e-5);
        EXPECT_DOUBLE_EQ(frequencyRange.stop, 20.0);
        EXPECT_EQ(plot->pointCount, 1000u);
        ASSERT_EQ(count(), 1000u);
        EXPECT_EQ(plot->traces[1].points.count, 1000u);
        EXPECT_EQ(arcPointCount, 77);               /* only set when there are detours */
        EXPECT_EQ(nyquistInfinity, 10.0);
        EXPECT_EQ(transcript(), "");                /* no notice, no dialog */

        const int half = negative ? 500 : 1000;
        EXPECT_EQ(W[0], 0.0);
        EXPECT_EQ(X(1), 1.0);
        EXPECT_EQ(Y(1), 0.0);
        double step = (std::log10(20.0) + 5.0) / half;
        EXPECT_DOUBLE_EQ(W[1], 1e-5);
        EXPECT_NEAR(W[half], 20.0 / std::pow(10.0, step), 1e-9);   /* one step below stop */
        for (int p = 1; p <= 1000; p++)
            expectPointAt(p, {0.0, W[p - 1]}, 2.0);
        /* At the top of the grid, ω ≈ 19.7: G ≈ −2/ω², just left of the origin. */
        EXPECT_LT(X(half), 0.0);
        EXPECT_LT(std::hypot(X(half), Y(half)), 2.0 / (W[half - 1] * W[half - 1]));
        EXPECT_GT(std::hypot(X(half), Y(half)), 0.98 * 2.0 / (W[half - 1] * W[half - 1]));
        if (negative) {
            EXPECT_EQ(W[half + 1], -W[half]);
            EXPECT_EQ(W[2 * half], -W[1]);
            expectAscending(W, half + 1, 2 * half);
            for (int j = 1; j < half; j++) {
                EXPECT_EQ(X(half + 1 + j), X(half + 2 - j)) << j;
                EXPECT_EQ(Y(half + 1 + j), -Y(half + 2 - j)) << j;
            }
        }
    }
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

/* Each row: the poles, the counts, the range, ρ worked out by hand (where the response
** crosses R∞ = 10), W at the ends of the blocks it is sorted into, and the first half
** circle, point by point.  (The notice and the dialog before the curve are the dialog test's.) */
TEST_F(NyquistTest, DetoursGoAroundAxisPolesAndTheCurveIsSortedByFrequency)
{
    const double r = 2.0263671875 - 2.0;
    const struct {
        const char *name;
        Roots poles;
        int M, total;
        double start, stop, omega0, rho;
        std::vector<std::pair<int, double>> ends;
        int arcFirst, arcCount;
    } rows[] = {
        /* G(s) = 1 / (s (s + 1)): on the axis X = −1/(1 + ω²), Y = −1/(ω (1 + ω²)).  The
        ** crossing search from ωmid = 5 halves to 0.078125 (|Y| 12.7, too close), steps out
        ** to 0.1171875 (8.4, too far), back to 0.09765625 (10.14, within 10 %): ρ.
        ** M = 2·1·⌊1000/4⌋, N′ = 2·nJ·M; the upper segment mirrored (1 … 250), the half
        ** circle (251 … 750), the upper segment. */
        {"integrator", {{0, 0}, {-1, 0}}, 500, 1000, 1e-6, 10.0, 0.0, 0.09765625,
         {{1, -10.0}, {250, -0.09765625}, {251, -0.09765625}, {750, 0.09765625}, {751, 0.09765625}, {1000, 10.0}},
         251, 500},
        /* G(s) = 1 / (s² + 4): real on the axis, 1/(4 − ω²).  From ωmid = 11 the search halves
        ** down to 2.017578125 (|X| 14.2, too close) and steps out to 2.0263671875 (9.42): ρ.
        ** N′ = (2·nJ + 1)·M in blocks of 250: upper mirrored, detour at −j2, lower mirrored,
        ** lower, detour at +j2, upper. */
        {"pole pair", {{0, 2}, {0, -2}}, 500, 1500, 2e-5, 20.0, 2.0, 2.0263671875,
         {{1, -20.0}, {251, -2.0 - r}, {500, -2.0 + r}, {750, -2e-5}, {751, 2e-5}, {1000, 2.0 - r}, {1001, 2.0 - r},
          {1250, 2.0 + r}, {1251, 2.0 + r}, {1500, 20.0}},
         251, 250},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        poles = row.poles;
        frequencyRange = {50, 0.1, 100.0};
        gfree(W);
        run(1.0, 1.0);
        EXPECT_EQ(arcPointCount, row.M);
        ASSERT_EQ(count(), (uint32_t)row.total);
        EXPECT_EQ(plot->pointCount, (uint32_t)row.total);
        EXPECT_EQ(frequencyRange.steps, row.total);
        EXPECT_DOUBLE_EQ(frequencyRange.start, row.start);
        EXPECT_EQ(frequencyRange.stop, row.stop);
        expectAscending(W, 1, row.total);
        for (auto [p, w] : row.ends)
            EXPECT_NEAR(W[p], w, 1e-13 * std::fabs(w)) << "position " << p;
        /* The first half circle, around −jω0, from just below the pole. */
        double rr = row.rho - row.omega0;
        for (int j = 0; j < row.arcCount; j++) {
            double phi = j * PI / (row.arcCount - 1) - PI / 2;
            EXPECT_NEAR(W[row.arcFirst + j], -row.omega0 + rr * std::sin(phi), 1e-15) << j;
            expectPointAt(row.arcFirst + j, {rr * std::cos(phi), -row.omega0 + rr * std::sin(phi)}, 1.0);
        }
        EXPECT_EQ(expectOnDetouredPath(row.omega0, rr, 1.0), row.M - 2) << "the M arc points but two ends on the axis";
    }
}

TEST_F(NyquistTest, DetoursInHertzGoAroundThePolesWhereTheyAre)
{
    /* ρ as the run finds it: between the pole and halfway to stop, all in rad/s. */
    const struct {
        Roots poles;
        double omega0;      /* the detoured pole on the non-negative axis, rad/s */
    } rows[] = {{{{0, -1}, {0, 1}}, 1.0}, {{{0, 0}, {-1, 0}}, 0.0}};
    for (const auto &row : rows) {
        SCOPED_TRACE("pole at j" + std::to_string(row.omega0));
        poles = row.poles;
        frequencyRange = {1000, 0.1, 100.0};
        gfree(W);
        run(2 * PI, 1.0);
        double stop = frequencyRange.stop * 2 * PI;
        NyquistSystem system{nullptr, 0, poles.data(), (int32_t)poles.size(), 1.0};
        double r = infinityCrossing(row.omega0, (row.omega0 + stop) / 2, system) - row.omega0;
        EXPECT_GT(expectOnDetouredPath(row.omega0, r, 1.0), 400);
    }
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
    EXPECT_EQ(expectSampledCurve(1.0, 1.0), 0);
    /* The image of the unit circle: the circle through 2 (z = 1) and −2/3 (z = −1). */
    for (int p = 1; p <= 1000; p++)
        EXPECT_NEAR(std::hypot(X(p) - 2.0 / 3.0, Y(p)), 4.0 / 3.0, 1e-12);
    EXPECT_EQ(plot->paramInfo, nullptr);
    EXPECT_EQ(transcript(), "");

    /* 0.1 (z + 0.5)/((z - 1)(z - 0.5)) in Hertz up to 1 Hz: θ = 2π lands on the pole z = 1. */
    zeros = {{-0.5, 0}};
    poles = {{1, 0}, {0.5, 0}};
    frequencyRange = {1000, 1e-4, 1.0};
    prepareSampledNyquist(plot);
    nyquistResponseSampled(1, 2, poles.data(), zeros.data(), (double *)plot->traces[0].points.items,
                           (double *)plot->traces[1].points.items, 2 * PI, 0.1);
    EXPECT_GT(expectSampledCurve(2 * PI, 0.1), 100);
}
