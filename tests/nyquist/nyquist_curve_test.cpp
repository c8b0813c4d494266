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

TEST_F(NyquistTest, CurveRunsFromTheStaticGainOverTheAutomaticRange)
{
    const struct {
        const char *name;
        Roots poles;
        double K, unitFactor;
        int negative;
        double start, stop;     /* the automatic range, in the unit's numbers */
    } rows[] = {
        /* G(s) = 2 / ((s + 1)(s + 2)): static gain 1, roots of magnitude 1 and 2. */
        {"2/((s+1)(s+2))", {{-1, 0}, {-2, 0}}, 2.0, 1.0, 0, 1e-5, 20.0},
        /* Half the points on the grid; the conjugate half follows them from the negative top
        ** towards 0. */
        {"with negative frequencies", {{-1, 0}, {-2, 0}}, 2.0, 1.0, 1, 1e-5, 20.0},
        /* Ten times the largest root, 2e5, is held at 100000; in Hertz every frequency is 2π·f. */
        {"in Hertz, stop held", {{-20000, 0}, {-1, 0}}, 20000.0, 2 * PI, 0, 1e-5, 100000.0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        poles = row.poles;
        frequencyRange = {50, 0.1, 100.0};
        negativeFrequencies = row.negative;
        arcPointCount = 77;
        run(row.unitFactor, row.K);
        EXPECT_EQ(frequencyRange.steps, 1000);      /* 50 raised to 1000 */
        EXPECT_DOUBLE_EQ(frequencyRange.start, row.start);
        EXPECT_DOUBLE_EQ(frequencyRange.stop, row.stop);
        ASSERT_EQ(count(), 1000u);
        EXPECT_EQ(plot->traces[1].points.count, 1000u);
        EXPECT_EQ(arcPointCount, 77);               /* only set when there are detours */
        EXPECT_EQ(nyquistInfinity, 10.0);
        EXPECT_EQ(platform::transcriptText(), "");                /* no notice, no dialog */

        /* W from 0, then from start up to one step below stop, in rad/s. */
        const int half = row.negative ? 500 : 1000;
        double top = row.stop * row.unitFactor / std::pow(row.stop / row.start, 1.0 / half);
        EXPECT_EQ(W[0], 0.0);
        EXPECT_DOUBLE_EQ(W[1], row.start * row.unitFactor);
        EXPECT_NEAR(W[half], top, 1e-12 * top);
        for (int p = 1; p <= 1000; p++)
            expectPointAt(p, {0.0, W[p - 1]}, row.K);
        if (row.negative) {
            expectAscending(W, half + 1, 2 * half);
            for (int j = 1; j <= half; j++)
                EXPECT_EQ(W[half + j], -W[half + 1 - j]) << j;
        }
    }
}

/* ---- Detours around imaginary-axis poles ------------------------------------- */

/* Each row: the poles, the unit, the counts, the range, ρ (where the response crosses R∞ =
** 10), W at the ends of the blocks the curve is sorted into, and the first half circle
** (positions 251 on), point by point.  (The notice and the dialog before the curve are the
** dialog test's.) */
TEST_F(NyquistTest, DetoursGoAroundAxisPolesAndTheCurveIsSortedByFrequency)
{
    const double r = 2.0263671875 - 2.0, top = 20 * PI;
    const struct {
        const char *name;
        Roots poles;
        double unitFactor;
        int M, total, arcCount;
        double start, stop, omega0, rho;    /* ρ 0: as the run's own search finds it */
        std::vector<std::pair<int, double>> ends;
    } rows[] = {
        /* G(s) = 1 / (s (s + 1)): on the axis X = −1/(1 + ω²), Y = −1/(ω (1 + ω²)).  The
        ** crossing search from ωmid = 5 halves to 0.078125 (|Y| 12.7, too close), steps out
        ** to 0.1171875 (8.4, too far), back to 0.09765625 (10.14, within 10 %): ρ.
        ** M = 2·1·⌊1000/4⌋, N′ = 2·nJ·M; the upper segment mirrored (1 … 250), the half
        ** circle (251 … 750), the upper segment. */
        {"integrator", {{0, 0}, {-1, 0}}, 1.0, 500, 1000, 500, 1e-6, 10.0, 0.0, 0.09765625,
         {{1, -10.0}, {250, -0.09765625}, {251, -0.09765625}, {750, 0.09765625}, {751, 0.09765625}, {1000, 10.0}}},
        /* G(s) = 1 / (s² + 4): real on the axis, 1/(4 − ω²).  From ωmid = 11 the search halves
        ** down to 2.017578125 (|X| 14.2, too close) and steps out to 2.0263671875 (9.42): ρ.
        ** N′ = (2·nJ + 1)·M in blocks of 250: upper mirrored, detour at −j2, lower mirrored,
        ** lower, detour at +j2, upper. */
        {"pole pair", {{0, 2}, {0, -2}}, 1.0, 500, 1500, 250, 2e-5, 20.0, 2.0, 2.0263671875,
         {{1, -20.0}, {251, -2.0 - r}, {500, -2.0 + r}, {750, -2e-5}, {751, 2e-5}, {1000, 2.0 - r}, {1001, 2.0 - r},
          {1250, 2.0 + r}, {1251, 2.0 + r}, {1500, 20.0}}},
        /* In Hertz the range's numbers are scaled by 2π, the poles and detours stay in rad/s
        ** (the origin's detour as the others). */
        {"pole pair in Hertz", {{0, -1}, {0, 1}}, 2 * PI, 500, 1500, 250, 1e-5, 10.0, 1.0, 0.0,
         {{1, -top}, {750, -2 * PI * 1e-5}, {751, 2 * PI * 1e-5}, {1500, top}}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        poles = row.poles;
        frequencyRange = {50, 0.1, 100.0};
        run(row.unitFactor, 1.0);
        EXPECT_EQ(arcPointCount, row.M);
        ASSERT_EQ(count(), (uint32_t)row.total);
        EXPECT_EQ(plot->pointCount, (uint32_t)row.total);
        EXPECT_EQ(frequencyRange.steps, row.total);
        EXPECT_DOUBLE_EQ(frequencyRange.start, row.start);
        EXPECT_EQ(frequencyRange.stop, row.stop);
        expectAscending(W, 1, row.total);
        for (auto [p, w] : row.ends)
            EXPECT_NEAR(W[p], w, 1e-13 * std::fabs(w)) << "position " << p;
        NyquistSystem system{nullptr, 0, poles.data(), (int32_t)poles.size(), 1.0};
        double rr = (row.rho > 0.0 ? row.rho : infinityCrossing(row.omega0, (row.omega0 + top) / 2, system)) -
                    row.omega0;
        for (int j = 0; j < row.arcCount; j++) {
            double phi = j * PI / (row.arcCount - 1) - PI / 2;
            EXPECT_NEAR(W[251 + j], -row.omega0 + rr * std::sin(phi), 1e-15) << j;
            expectPointAt(251 + j, {rr * std::cos(phi), -row.omega0 + rr * std::sin(phi)}, 1.0);
        }
        /* The M arc points, but for ends on the axis or segment ends within rounding of ρ. */
        EXPECT_NEAR(expectOnDetouredPath(row.omega0, rr, 1.0), row.M, 4);
    }
}

/* ---- The sampled model ------------------------------------------------------- */

TEST_F(NyquistTest, SampledModelIsEvaluatedOnTheUnitCircle)
{
    /* G(z) = 1 / (z − 0.95) from 1e-5 rad/s, raised to 1e-4, where |G| is 20: with no pole on
    ** the circle no point is held to R∞, which a run resets to 10.  The command handler has
    ** lowered stop to 2π rad/s. */
    poles = {{0.95, 0}};
    frequencyRange = {50, 1e-5, 2 * PI};
    nyquistInfinity = 3.0;
    prepareSampledNyquist(plot);
    EXPECT_EQ(nyquistInfinity, 10.0);
    EXPECT_EQ(frequencyRange.start, 1e-4);
    ASSERT_EQ(count(), 1000u);
    nyquistResponseSampled(0, 1, poles.data(), nullptr, (double *)plot->traces[0].points.items,
                           (double *)plot->traces[1].points.items, 1.0, 1.0);
    EXPECT_EQ(expectSampledCurve(1.0, 1.0), 0);
    EXPECT_GT(std::hypot(X(1), Y(1)), 19.9);
    EXPECT_EQ(platform::transcriptText(), "");

    /* 0.1 (z + 0.5)/((z - 1)(z - 0.5)) in Hertz up to 1 Hz: θ = 2π lands on the pole z = 1. */
    zeros = {{-0.5, 0}};
    poles = {{1, 0}, {0.5, 0}};
    frequencyRange = {1000, 1e-4, 1.0};
    prepareSampledNyquist(plot);
    nyquistResponseSampled(1, 2, poles.data(), zeros.data(), (double *)plot->traces[0].points.items,
                           (double *)plot->traces[1].points.items, 2 * PI, 0.1);
    EXPECT_GT(expectSampledCurve(2 * PI, 0.1), 100);
}
