/*
** The gain sweep: manual gains, branch tracking on K/(s(s+1)(s+2)) against LAPACK, the
** imaginary-axis crossing, the signed extreme, the tie rule, a degree drop, and refused or
** unusable input.
*/
#include "locus_fixture.h"

using namespace locustest;

namespace {

class Sweep : public LocusTest {};

/* Also: at K = 6 the loop crosses the imaginary axis at +-j sqrt(2), the third root at -3. */
TEST_F(Sweep, ManualRangeStepsLinearlyAndLandsOnTheStopGain)
{
    useLoop({1}, {0, 2, 3});
    run();
    std::vector<double> expected;
    for (int i = 0; i < 49; ++i)
        expected.push_back(2.0 * i);
    expected.push_back(100.0);
    EXPECT_EQ(gains(), expected);
    EXPECT_EQ(plot->paramInfo->poleCount, 3);
    EXPECT_EQ(plot->paramInfo->zeroCount, 0);
    EXPECT_EQ(plot->paramInfo->zeroBranches, nullptr) << "manual mode assigns no zero branches";
    for (int j = 0; j < 3; ++j)
        EXPECT_EQ(branch(j).size(), 50u);

    /* Each root at K = 6 lies on a branch (so no two on one). */
    ASSERT_EQ(gains()[3], 6.0);
    for (Complex root : {Complex{0.0, -std::sqrt(2.0)}, Complex{-3.0, 0.0}, Complex{0.0, std::sqrt(2.0)}})
        EXPECT_TRUE(distance(branch(0)[3], root) < 1e-12 || distance(branch(1)[3], root) < 1e-12 ||
                    distance(branch(2)[3], root) < 1e-12)
            << root.re << " " << root.im;
}

TEST_F(Sweep, BranchesOfTheTextbookLoopAreTheClosedLoopRootsAndStayContinuous)
{
    useLoop({1}, {0, 2, 3});
    gainRange = {101, 0.0, 1.0};
    run();
    for (int s = 0; s < 101; ++s)
        expectStepMatchesLapack(s, 1e-7);

    /* The branch from -2 stays on the real axis and heads left; the two from 0 and -1 meet
    ** at the break-away point -1 + 1/sqrt(3) and leave the axis as a conjugate pair, each
    ** keeping the side it left on. */
    std::vector<std::vector<Complex>> b = {branch(0), branch(1), branch(2)};
    std::sort(b.begin(), b.end(), [](const auto &x, const auto &y) { return x.at(0).re < y.at(0).re; });
    const std::vector<Complex> &fromTwo = b[0], &fromOne = b[1], &fromZero = b[2];
    const double breakAway = -1.0 + 1.0 / std::sqrt(3.0);
    double upperSign = 0.0;
    for (int s = 1; s < 101; ++s) {
        EXPECT_EQ(fromTwo[s].im, 0.0);
        EXPECT_LT(fromTwo[s].re, fromTwo[s - 1].re);
        if (fromZero[s].im == 0.0) {
            /* Still real: both approach the break-away point from either side. */
            EXPECT_EQ(fromOne[s].im, 0.0);
            EXPECT_LE(fromZero[s].re, fromZero[s - 1].re);
            EXPECT_GE(fromOne[s].re, fromOne[s - 1].re);
            EXPECT_GT(fromZero[s].re, breakAway - 1e-6);
            EXPECT_LT(fromOne[s].re, breakAway + 1e-6);
        } else {
            EXPECT_NEAR(fromZero[s].im, -fromOne[s].im, 1e-12);
            EXPECT_NEAR(fromZero[s].re, fromOne[s].re, 1e-12);
            double sign = fromZero[s].im > 0 ? 1.0 : -1.0;
            if (upperSign == 0.0)
                upperSign = sign;
            EXPECT_EQ(sign, upperSign) << "the branch from 0 changed sides at step " << s;
            /* Gains 0.01 apart move a root by far less than the distance between the pair. */
            EXPECT_LT(distance(fromZero[s], fromZero[s - 1]), distance(fromZero[s], fromOne[s]) + 0.05);
        }
    }
    EXPECT_NE(upperSign, 0.0) << "the pair left the real axis within K <= 1";
}

TEST_F(Sweep, ReturnsTheSignedExtremeCoordinate)
{
    /* 1/(s + 1): the single root is -1 - K, so 11.3 takes it to -12.3. */
    useLoop({1}, {1});
    gainRange = {2, 0.0, 11.3};
    EXPECT_DOUBLE_EQ(run(), -12.3);
    EXPECT_DOUBLE_EQ(branch(0)[1].re, -12.3);

    /* K/(s^2 + 1): roots +-j sqrt(1 + K), an imaginary extreme. */
    useLoop({1}, {1, 0});
    gainRange = {2, 0.0, 15.0};
    EXPECT_DOUBLE_EQ(run(), 4.0);
}

TEST_F(Sweep, EquidistantRootGoesToTheLowerBranch)
{
    /* Roots -2 and -2.9 in the finder's order; the first lies midway between the two
    ** previous points, the second is nearer to branch 0's.  The tie goes to branch 0,
    ** which is then taken, so the second root must go to branch 1. */
    double numerator[3] = {0, 0, 0}, denominator[3] = {5.8, 4.9, 1};
    newPlot(2);
    beginLocusRun(numerator, denominator, 2, 1.0);
    Complex found[2];
    Matrix *work = matDecl(2, 2);
    ASSERT_EQ(polyRoots(found, denominator, 2, work), 2);
    gfree(work);
    double other = found[1].re;
    double side = other < found[0].re ? -1.0 : 1.0;
    storeLocusPoint(plot, 0, 0, {found[0].re + side, 0});
    storeLocusPoint(plot, 1, 0, {found[0].re - side, 0});
    double moved = rootLocusStep(plot, 1, 0.0);
    endLocusRun();
    EXPECT_DOUBLE_EQ(branch(0)[1].re, found[0].re);
    EXPECT_DOUBLE_EQ(branch(1)[1].re, other);
    EXPECT_NEAR(moved, 1.0 + 0.9, 1e-12) << "the second root moved from branch 1's point";
}

TEST_F(Sweep, ADegreeDropKeepsTheRootsEarlierStepsFound)
{
    /* (s+1)(s+2) + K s^2: at K = -1 the closed loop is 3 s + 2, one root only; the other
    ** branch keeps the root buffer's entry of the step before. */
    double numerator[3] = {0, 0, 1}, denominator[3] = {2, 3, 1};
    newPlot(2);
    beginLocusRun(numerator, denominator, 2, 1.0);
    rootLocusStep(plot, 0, 0.0);
    Complex stale = rootLocusState.roots[1];
    rootLocusStep(plot, 1, -1.0);
    endLocusRun();
    std::vector<double> atDrop = {branch(0)[1].re, branch(1)[1].re};
    std::sort(atDrop.begin(), atDrop.end());
    std::vector<double> expected = {-2.0 / 3.0, stale.re};
    std::sort(expected.begin(), expected.end());
    EXPECT_NEAR(atDrop[0], expected[0], 1e-12);
    EXPECT_NEAR(atDrop[1], expected[1], 1e-12);

    /* The buffer is kept from run to run: a run whose first step drops the degree gives
    ** branch 1 the entry the run before left there. */
    ASSERT_NE(stale.re, 0.0);
    beginLocusRun(numerator, denominator, 2, 1.0);
    rootLocusStep(plot, 0, -1.0);
    endLocusRun();
    EXPECT_NEAR(branch(0)[0].re, -2.0 / 3.0, 1e-12);
    EXPECT_EQ(branch(1)[0], stale);
}

/* Runs refused before any step: nothing drawn, no gains recorded, and the whole transcript
** (nothing for too few steps or no poles). */
TEST_F(Sweep, RefusedRunsDrawNothing)
{
    const struct {
        const char *name;
        int32_t steps, order;
        bool unconnected;
        const char *message;
    } rows[] = {
        {"fewer than two steps", 1, 3, false, ""},
        {"no closed-loop poles", 50, 0, false, ""},
        {"input not connected", 50, 3, true,
         "[Tervan Debug] Input not connected to output. Check for delay or saturated limit.\n"},
        {"more branches than tracked", 50, 1025, false,
         "[Tervan] Root locus: 1025 closed-loop poles are more than the 1024 branches that can be tracked.\n"},
    };
    std::vector<double> coefficients(1026, 1.0);
    for (const auto &row : rows) {
        useLoop({1}, {0, 2, 3});
        if (row.unconnected)
            loop->B->data[2] = loop->C->data[0] = 0.0;
        gainRange.steps = row.steps;
        newPlot(3);
        platform::clearTranscript();
        bool many = row.order > 3;
        EXPECT_EQ(rootLocus(plot, many ? coefficients.data() : num, many ? coefficients.data() : den, row.order), 0.0)
            << row.name;
        EXPECT_EQ(platform::transcriptText(), row.message) << row.name;
        EXPECT_EQ(plot->paramInfo, nullptr) << row.name;
        EXPECT_TRUE(std::isnan(branch(0)[0].re)) << row.name;
    }
}

TEST_F(Sweep, UnusableNumbersEndTheSweep)
{
    /* NaN coefficients: the finder gives NaN roots; both modes still end. */
    useLoop({1}, {0, 2, 3});
    num[0] = NAN;
    for (int32_t automatic : {0, 1}) {
        optionsMemory.autoRange = automatic;
        run();
        EXPECT_EQ(plot->paramInfo->poleCount, 3);
    }
    /* Gains up to the largest double overflow the closed loop; the sweep still ends. */
    useLoop({1}, {0, 2, 3});
    optionsMemory.autoRange = 0;
    gainRange = {20, 0.0, 1.7e308};
    run();
    EXPECT_EQ(gains().back(), 1.7e308);
    expectStepMatchesLapack(1, 1e-3 * std::cbrt(gains()[1]));
    /* A loop gain near the largest double in the automatic mode: every product overflows
    ** at some step, and the sweep still ends with a gain for every step. */
    useLoop({1e300}, {0, 2, 3});
    optionsMemory.autoRange = 1;
    run();
    EXPECT_EQ(gains().size(), 20u);
}

}
