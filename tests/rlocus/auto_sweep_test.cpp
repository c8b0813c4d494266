/*
** The automatic mode: adapted steps that still sit on the closed-loop roots, the first
** step kept small, the gain held once the locus has spread, the break-away snap (only
** within a hundredth of the box), and the branches recorded at each zero.
*/
#include <numbers>

#include "locus_fixture.h"

using namespace locustest;

namespace {

class AutoSweep : public LocusTest {
protected:
    void SetUp() override
    {
        LocusTest::SetUp();
        optionsMemory.autoRange = 1;
    }

    /* A zeroed PlotParamInfo on a fresh n-trace plot, as the sweep attaches it. */
    void plotWithParamInfo(int traces)
    {
        newPlot(traces);
        plot->paramInfo = (PlotParamInfo *)galloc(sizeof(PlotParamInfo));
        *plot->paramInfo = PlotParamInfo{};
    }
    std::vector<int32_t> zeroBranches(int nZ) const
    {
        return std::vector<int32_t>(plot->paramInfo->zeroBranches, plot->paramInfo->zeroBranches + nZ);
    }
};

TEST_F(AutoSweep, AdaptedStepsSitOnTheRootsOfTheirGainsUntilTheGainIsHeld)
{
    /* K/(s(s+1)(s+2)): S = 4; from step 20 on the extent is tracked, and once a step takes
    ** it beyond 8 every remaining step repeats the gain already advanced to, so the
    ** branches stop growing. */
    useLoop({1}, {0, 2, 3});
    gainRange.start = 5.0;
    double extreme = run();
    EXPECT_EQ(gainRange.start, 0.0) << "the automatic range starts at 0, in memory";
    std::vector<double> K = gains();
    EXPECT_EQ(K[0], 0.0);
    for (int s = 1; s < 50; ++s) {
        EXPECT_GE(K[s], K[s - 1]) << s;
        expectStepMatchesLapack(s, 1e-7 * std::max(1.0, std::cbrt(K[s])));
    }
    /* The first step is halved until no root moves more than max(1, S)/100. */
    for (int j = 0; j < 3; ++j)
        EXPECT_LE(distance(branch(j)[1], branch(j)[0]), 0.04);

    int crossed = 49;
    while (crossed > 0 && K[crossed - 1] == K[49])
        --crossed;
    ASSERT_LT(crossed, 49) << "the gain is held over the last steps";
    ASSERT_GT(crossed, 20);
    double before = 0.0, through = 0.0;
    for (int s = 19; s < crossed; ++s)
        for (int j = 0; j < 3; ++j) {
            Complex p = branch(j)[s];
            double spread = std::max(std::fabs(p.re), std::fabs(p.im));
            through = std::max(through, spread);
            if (s < crossed - 1)
                before = std::max(before, spread);
        }
    EXPECT_GT(through, 8.0) << "the step before the held ones crossed twice the box";
    EXPECT_LE(before, 8.0);
    EXPECT_GT(K[crossed], K[crossed - 1]) << "the held gain is the one already advanced to";
    for (int j = 0; j < 3; ++j)
        for (int s = crossed; s < 50; ++s)
            EXPECT_EQ(branch(j)[s], branch(j)[crossed]);
    /* The returned extreme is the real branch at the held gain, signed. */
    double leftmost = INFINITY;
    for (cplx root : lapackRoots(closedLoop(K[49])))
        leftmost = std::min(leftmost, root.real());
    EXPECT_NEAR(extreme, leftmost, 1e-9 * std::fabs(leftmost));
    EXPECT_LT(extreme, -8.0);
}

TEST_F(AutoSweep, StepThatHardlyMovesTheRootsGrowsByHalfItsGain)
{
    /* 1/(s + 1): the root -1 - K moves as far as the gain does.  With steps 0 and 1 at
    ** K = 0 and 1 and a box of 10, a step moving less than 10/500 grows K by half, and one
    ** that moves at most 10/100 along a straight branch is kept. */
    useLoop({1}, {1});
    newPlot(1);
    beginLocusRun(num, den, n, gain);
    /* Rows marked turned put the branch's previous point 10 degrees off its direction:
    ** such a step is halved until it moves at most 10/100, whether it moved more than
    ** 10/500 or not. */
    const double tenDegrees = std::numbers::pi / 18.0;
    const struct {
        double K, adapted;
        bool turned;
    } cases[] = {{1.01, 1.515, false}, {1.019, 1.5285, false}, {1.05, 1.05, false}, {1.3, 1.3, false},
                 {3.0, 1.0625, true}, {1.15, 1.075, true}};
    for (const auto &c : cases) {
        rootLocusStep(plot, 0, 0.0);
        rootLocusStep(plot, 1, 1.0);
        if (c.turned)
            storeLocusPoint(plot, 0, 0, {-2.0 + 0.1 * std::cos(tenDegrees), -0.1 * std::sin(tenDegrees)});
        double K = c.K;
        adaptLocusGain(plot, n, 3, &K, 1.0, 10.0);
        EXPECT_DOUBLE_EQ(K, c.adapted) << c.K;
    }
    endLocusRun();
}

TEST_F(AutoSweep, BranchesLeaveTheRealAxisVerticallyFromTheBreakAwayPoint)
{
    /* 1/((s+1)(s+2)) meets at -1.5.  With 51 steps a step lands just past the break-away
    ** gain; its previous points move onto the break-away value so both branches rise
    ** vertically from the same real value. */
    useLoop({1}, {2, 3});
    gainRange.steps = 51;
    run();
    std::vector<Complex> a = branch(0), b = branch(1);
    int split = 0;
    while (split < 51 && a[split].im == 0.0)
        ++split;
    ASSERT_GT(split, 1);
    ASSERT_LT(split, 51);
    EXPECT_NE(b[split].im, 0.0);
    EXPECT_EQ(a[split - 1], (Complex{a[split].re, 0.0})) << "branch 0 rises vertically";
    EXPECT_EQ(b[split - 1], (Complex{b[split].re, 0.0})) << "branch 1 rises vertically";
    EXPECT_EQ(a[split].re, b[split].re);
    EXPECT_NEAR(a[split].re, -1.5, 1e-9);
    EXPECT_LE(std::fabs(a[split].im), 4.0 / 100);
    /* Before the snap the two were still apart on the axis. */
    EXPECT_NE(a[split - 2].re, b[split - 2].re);
}

TEST_F(AutoSweep, BreakAwaySnapsOnlyWithinAHundredthOfTheBox)
{
    /* (s+1)(s+2) + K: -1.5 +- sqrt(1/4 - K), leaving the axis at K = 1/4.  Each row holds
    ** branches 0 and 1 at steps 0-2, then adapts step 3 from K0 after the gain of step 2.  A
    ** small step whose branch has just left the axis, by at most a hundredth of the box,
    ** moves the points of step 2 onto its real part; a step further off is halved. */
    const struct {
        const char *what;
        Complex first[3], second[3];
        double K0, previousK, box, adapted;
        double atStep2[2];      /* the real parts of the branches at step 2 afterwards */
        bool realAtStep3;
    } rows[] = {
        /* Steps at K = 0, 0.24, 0.2491 (the last at -1.5 +- 0.03), K0 = 0.2491 + 16 d, box 1;
        ** four halvings make the step small (below a tenth of 16 d).  d = 0.000936: at
        ** 0.250036, 0.006 off the axis, snapped and kept. */
        {"within a hundredth", {{-1, 0}, {-1.4, 0}, {-1.47, 0}}, {{-2, 0}, {-1.6, 0}, {-1.53, 0}},
         0.2491 + 16 * 0.000936, 0.2491, 1.0, 0.250036, {-1.5, -1.5}, false},
        /* d = 0.0013: at 0.2504, 0.02 off the axis, halved once more, back onto the axis */
        {"further off", {{-1, 0}, {-1.4, 0}, {-1.47, 0}}, {{-2, 0}, {-1.6, 0}, {-1.53, 0}},
         0.2491 + 16 * 0.0013, 0.2491, 1.0, 0.2491 + 0.0013 / 2, {-1.47, -1.53}, true},
        /* Branch 1 holds the -1 side at K = 0, 0.2 and 0.24 (-1.4); branch 0 lies beyond the
        ** tracking's reach (1e101), so at step 3 both roots of the pair land on branch 1 and
        ** no branch is its mirror image.  Step 3 from 0.5 is halved to 0.25625 (-1.5 +-
        ** j 0.079), a small enough step: branch 1's point at step 2 moves to -1.5 all the
        ** same, and the halving goes on below the break-away gain (five times). */
        {"without a mirror image", {{3e101, 0}, {2e101, 0}, {1e101, 0}},
         {{-1, 0}, {-1.5 + std::sqrt(0.05), 0}, {-1.4, 0}}, 0.5, 0.24, 100.0, 0.24 + 0.26 / 32, {1e101, -1.5},
         true},
    };
    double numerator[3] = {1, 0, 0}, denominator[3] = {2, 3, 1};
    gainRange.steps = 10;
    for (const auto &row : rows) {
        newPlot(2);
        beginLocusRun(numerator, denominator, 2, 1.0);
        for (int s = 0; s < 3; ++s) {
            storeLocusPoint(plot, 0, s, row.first[s]);
            storeLocusPoint(plot, 1, s, row.second[s]);
        }
        storeLocusPoint(plot, 0, 3, {0, 0});
        double K = row.K0;
        adaptLocusGain(plot, 2, 4, &K, row.previousK, row.box);
        endLocusRun();
        EXPECT_DOUBLE_EQ(K, row.adapted) << row.what;
        for (int j = 0; j < 2; ++j)
            EXPECT_EQ(branch(j).at(2), (Complex{row.atStep2[j], 0.0})) << row.what << ", branch " << j;
        EXPECT_EQ(branch(1).at(3).im == 0.0, row.realAtStep3) << row.what;
    }
}

TEST_F(AutoSweep, ZeroBranchesPairEndpointsInsideTheBoxGreedily)
{
    struct Row {
        const char *name;
        double box;
        std::vector<Complex> zeros, endpoints;
        std::vector<int32_t> branches;
    } rows[] = {
        /* Endpoints outside the box (|re| or |im| >= S) are no zero's branch. */
        {"inside the box, in branch order", 4.0, {{-2, 0}}, {{-30, 0}, {-2.001, 0}, {5, 40}}, {1}},
        /* Three endpoints inside (one branch should be outside): the closest pair of all,
        ** endpoint 0.6 with zero 1, goes first, although zero 0 taken first would also
        ** have chosen endpoint 0.6. */
        {"greedy by distance", 10.0, {{0, 0}, {1, 0}}, {{0.6, 0}, {1.5, 0}, {5, 0}}, {1, 0}},
        {"ties: first endpoint, then first zero", 10.0, {{0, 0}, {1, 0}}, {{0.5, 0}, {0.5, 0}, {5, 0}}, {0, 1}},
        {"a zero without an endpoint is -1", 10.0, {{-1, 0}, {-3, 0}}, {{-2.9, 0}, {50, 0}, {-50, 0}}, {-1, 0}},
    };
    for (const Row &row : rows) {
        plotWithParamInfo(3);
        int32_t nZ = (int32_t)row.zeros.size();
        assignZeroBranches(plot, row.endpoints.data(), row.box, 3, 3, nZ, row.zeros.data());
        EXPECT_EQ(zeroBranches(nZ), row.branches) << row.name;
    }
    /* A whole run of (s+1)(s+2)/((s+10)(s+20)): biproper, every branch ends on a zero, and
    ** with as many zeros as poles the branches are numbered from one. */
    useLoop({2 - 200, 3 - 30}, {200, 30}, 1.0);
    run();
    ASSERT_EQ(plot->paramInfo->zeroCount, 2);
    ASSERT_EQ(plot->paramInfo->poleCount, 2);
    EXPECT_EQ(zeroBranches(2), (std::vector<int32_t>{1, 2}));
}

}
