/*
** The break-away snap of the automatic step control: a small step whose branch has just
** left the real axis, by at most a hundredth of the box, moves the previous points onto
** its real part; a step further off is halved instead.
*/
#include "locus_fixture.h"

using namespace locustest;

namespace {

class BreakAway : public LocusTest {};

TEST_F(BreakAway, SnapsOnlyWithinAHundredthOfTheBox)
{
    /* (s+1)(s+2) + K: -1.5 +- sqrt(1/4 - K), leaving the axis at K = 1/4.  Steps 0-2 hold
    ** K = 0, 0.24, 0.2491 (the last at -1.5 +- 0.03); step 3 starts at K0 = 0.2491 + 16 d
    ** and the box is 1.  Four halvings make the step small (below a tenth of 16 d). */
    const struct {
        const char *what;
        double K0, adapted;
        bool snapped;
    } rows[] = {
        /* d = 0.000936: at 0.250036, 0.006 off the axis, snapped and kept */
        {"within a hundredth", 0.2491 + 16 * 0.000936, 0.250036, true},
        /* d = 0.0013: at 0.2504, 0.02 off the axis, halved once more, back onto the axis */
        {"further off", 0.2491 + 16 * 0.0013, 0.2491 + 0.0013 / 2, false},
    };
    double numerator[3] = {1, 0, 0}, denominator[3] = {2, 3, 1};
    const Complex upper[3] = {{-1, 0}, {-1.4, 0}, {-1.47, 0}}, lower[3] = {{-2, 0}, {-1.6, 0}, {-1.53, 0}};
    for (const auto &row : rows) {
        block = makeRootLocusPlot(2);
        plot = plotRecordOf(block);
        beginLocusRun(numerator, denominator, 2, 1.0);
        for (int s = 0; s < 3; ++s) {
            storeLocusPoint(plot, 0, s, upper[s]);
            storeLocusPoint(plot, 1, s, lower[s]);
        }
        double K = row.K0;
        adaptLocusGain(plot, 2, 4, &K, 0.2491, 1.0);
        endLocusRun();
        EXPECT_DOUBLE_EQ(K, row.adapted) << row.what;
        for (int j = 0; j < 2; ++j) {
            double kept = (j == 0 ? upper : lower)[2].re;
            EXPECT_NEAR(branch(j).at(2).re, row.snapped ? -1.5 : kept, 1e-12) << row.what << ", branch " << j;
            EXPECT_EQ(branch(j).at(2).im, 0.0) << row.what;
        }
    }
}

}
