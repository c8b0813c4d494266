/*
** Root tracking: on a table of loops, the sweep that follows the roots from step to step
** visits the same gains and draws the same points, branch for branch, as the sweep that
** solves every step as an eigenvalue problem; and it does follow most steps.
*/
#include <complex>

#include "locus_fixture.h"

using namespace locustest;

namespace {

/* How far z is from being a root of the ascending c, relatively: the smaller of the
** backward error |c(z)| / sum |c_k| |z|^k and the Newton correction |c(z) / c'(z)| over
** max(1, |z|) (the first fails near a root at 0, the second where two roots meet). */
double rootError(const std::vector<double> &c, Complex z)
{
    std::complex<double> value = 0.0, derivative = 0.0, w(z.re, z.im);
    double scale = 0.0;
    for (size_t k = c.size(); k-- > 0;) {
        derivative = derivative * w + value;
        value = value * w + c[k];
        scale = scale * std::abs(w) + std::fabs(c[k]);
    }
    if (value == 0.0)
        return 0.0;
    return std::min(std::abs(value) / scale, std::abs(value / derivative) / std::max(1.0, std::abs(w)));
}

struct LoopCase {
    const char *name;
    std::vector<double> numerator;      /* ascending */
    std::vector<double> denominator;    /* ascending, monic without the leading one */
    double direct;
    bool automatic;
    RangeSettings range;
};

struct Sweep {
    std::vector<double> gains;
    std::vector<std::vector<Complex>> branches;
    int32_t tracked;
    int32_t solved;
};

class RootTracking : public LocusTest {
protected:
    Sweep sweepOf(const LoopCase &loop, bool tracking)
    {
        useLoop(loop.numerator, loop.denominator, loop.direct);
        gainRange = loop.range;
        optionsMemory.autoRange = loop.automatic ? 1 : 0;
        rootLocusState.trackingOff = !tracking;
        run();
        rootLocusState.trackingOff = false;
        Sweep sweep{gains(), {}, rootLocusState.trackedSteps, rootLocusState.solvedSteps};
        for (int j = 0; j < n; ++j)
            sweep.branches.push_back(branch(j));
        return sweep;
    }
};

TEST_F(RootTracking, TrackedLocusEqualsTheSolvedLocusPointForPoint)
{
    /* (s+1)(s+2)...(s+8), ascending, without its leading s^8 */
    const std::vector<double> eightLags = {40320, 109584, 118124, 67284, 22449, 4536, 546, 36};
    const LoopCase loops[] = {
        {"K/(s(s+1)(s+2)), break-away", {1}, {0, 2, 3}, 0.0, true, {300, 0.0, 100.0}},
        {"K/(s(s+1)(s+2)), manual", {1}, {0, 2, 3}, 0.0, false, {200, 0.0, 20.0}},
        {"(s+3)/(s(s+1)(s+2)(s+4)), a branch to the zero", {3, 1}, {0, 8, 14, 7}, 0.0, false, {400, 0.0, 80.0}},
        {"(s+3)/(s(s+1)(s+2)(s+4)), coarse steps", {3, 1}, {0, 8, 14, 7}, 0.0, false, {6, 0.0, 40.0}},
        {"(s+1)/((s^2+2s+5)(s+3)(s+6)), complex poles", {1, 1}, {90, 63, 35, 11}, 0.0, false, {300, 0.0, 500.0}},
        {"(s-1)/(s(s+2)(s+5)), into the right half-plane", {-1, 1}, {0, 10, 7}, 0.0, false, {250, 0.0, 40.0}},
        {"(s^2+s+4)/((s+1)(s+2)(s+3)), biproper", {4, 1, 1}, {6, 11, 6}, 1.0, false, {200, 0.0, 30.0}},
        {"(s+1.5)(s+4.5)/((s+1)...(s+8)), order 8", {6.75, 6, 1}, eightLags, 0.0, false, {300, 0.0, 3000.0}},
        {"order 8, coarse steps", {6.75, 6, 1}, eightLags, 0.0, false, {10, 0.0, 3000.0}},
    };
    for (const LoopCase &loop : loops) {
        SCOPED_TRACE(loop.name);
        Sweep solved = sweepOf(loop, false);
        Sweep tracked = sweepOf(loop, true);
        EXPECT_EQ(solved.tracked, 0);
        if (loop.range.steps >= 30) {
            EXPECT_GT(tracked.tracked, 2 * tracked.solved) << "most steps are followed, not solved";
        }
        ASSERT_EQ(tracked.gains.size(), solved.gains.size());
        for (size_t s = 0; s < solved.gains.size(); ++s)
            ASSERT_NEAR(tracked.gains[s], solved.gains[s], 1e-12 * std::max(1.0, std::fabs(solved.gains[s])))
                << "gain of step " << s;
        for (int j = 0; j < n; ++j) {
            ASSERT_EQ(tracked.branches[j].size(), solved.branches[j].size());
            for (size_t s = 0; s < solved.branches[j].size(); ++s) {
                Complex a = tracked.branches[j][s], b = solved.branches[j][s];
                /* A break-away point is snapped to the real part of the branch's next point. */
                const std::vector<Complex> &points = tracked.branches[j];
                bool snapped = s + 1 < points.size() && points[s + 1].re == a.re && a.im == 0.0 &&
                               points[s + 1].im != 0.0;
                if (!snapped) {
                    ASSERT_LT(rootError(closedLoop(tracked.gains[s]), a), 1e-9)
                        << "branch " << j << " step " << s << ": (" << a.re << ", " << a.im << ")";
                }
                /* Where two roots nearly meet, any solver's roots move by the square root
                ** of the rounding: the same point, not the same digits. */
                ASSERT_LT(distance(a, b), 1e-6 * std::max(1.0, std::hypot(b.re, b.im)))
                    << "branch " << j << " step " << s << ": (" << a.re << ", " << a.im << ") against (" << b.re
                    << ", " << b.im << ")";
            }
        }
    }
}

}
