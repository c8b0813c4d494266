/*
** The automatic gain range: the box size and the top gain found by doubling and
** bisection, against hand-derived and LAPACK values.
*/
#include "locus_fixture.h"

using namespace locustest;

namespace {

class GainRange : public LocusTest {
protected:
    double S = 0.0, Kauto = 0.0;

    /* The automatic range of den + K num (g = 1) for the given roots. */
    void autoRange(const std::vector<double> &numerator, const std::vector<double> &denominator,
                   const std::vector<Complex> &poles, const std::vector<Complex> &zeros, double g = 1.0)
    {
        int32_t order = (int32_t)denominator.size() - 1;
        beginLocusRun(numerator.data(), denominator.data(), order, g);
        rootLocusAutoGain(poles.data(), zeros.data(), (int32_t)poles.size(), (int32_t)zeros.size(), &S, &Kauto,
                          order);
        endLocusRun();
    }
};

/* Box S and top gain of loops without zeros, each derived by hand; a critical gain K*
** (where the roots leave the box) must lie in the last bracket below the top gain. */
TEST_F(GainRange, BoxAndTopGainOfLoopsWithoutZeros)
{
    const struct {
        const char *name;
        std::vector<double> numerator, denominator;
        std::vector<Complex> poles;
        double box, top, critical, bracket;     /* critical 0: none */
    } rows[] = {
        /* (s + 1)^3 + K: roots -1 + K^(1/3) e^(j pi (2k + 1)/3).  The complex pair leaves the
        ** square |Re|, |Im| <= 2 through its top side at K* = (4/sqrt 3)^3.  Doubling passes
        ** at 20 (10 fails); bisection 15, 12.5 pass, 11.25, 11.875 fail: the bracket
        ** [11.875, 12.5] is narrower than 1. */
        {"(s+1)^3", {1, 0, 0, 0}, {1, 3, 3, 1}, {{-1, 0}, {-1, 0}, {-1, 0}}, 2.0, 12.5,
         std::pow(4.0 / std::sqrt(3.0), 3.0), 1.0},
        /* Roots -15 +- j sqrt(K - 225) leave the box |Im| <= 60 above K = 3825: doubling
        ** passes at 5120 (2560 fails); bisection 3840 passes, then 3200, 3520, 3680, 3760, 3800
        ** and 3820 fail, leaving a bracket of 20, within 1 % of the last doubling step 2560. */
        {"s(s+30)", {1, 0, 0}, {0, 30, 1}, {{0, 0}, {-30, 0}}, 60.0, 3840.0, 3825.0, 25.6},
        /* -16 +- j sqrt(K - 256) leave |Im| <= 64 above K = 4352: 5120 passes, then 3840
        ** fails, 4480 passes, 4160 and 4320 fail, 4400 and 4360 pass, 4340 fails: a bracket
        ** of 20 (a bracket of 160 after 4320 is not yet within 1 % of 2560). */
        {"s(s+32)", {1, 0, 0}, {0, 32, 1}, {{0, 0}, {-32, 0}}, 64.0, 4360.0, 4352.0, 25.6},
        /* a loop that never gets there gives up at 20480; NaN roots keep the least box */
        {"1e-9/(s+1)^3", {1e-9, 0, 0, 0}, {1, 3, 3, 1}, {{-1, 0}, {-1, 0}, {-1, 0}}, 2.0, 20480.0, 0, 0},
        {"NaN", {1, 0, 0, 0}, {NAN, 3, 3, 1}, {{NAN, 0}, {-1, 0}, {-1, 0}}, 2.0, 20480.0, 0, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        autoRange(row.numerator, row.denominator, row.poles, {});
        EXPECT_EQ(S, row.box);
        EXPECT_EQ(Kauto, row.top);
        if (row.critical > 0) {
            EXPECT_GT(Kauto, row.critical);
            EXPECT_LT(Kauto - row.bracket - 1e-9, row.critical);
        }
    }
}

TEST_F(GainRange, OneZeroIsReachedWhileTwoBranchesLeave)
{
    /* (s + 1)^3 + K (s + 2): S = 2 |-2| = 4; two roots must leave the box, one must come
    ** within min(S/100, 0.1) = 0.04 of -2.  The least such gain, by bisection on LAPACK's
    ** roots, must lie at most 1 below the one found. */
    std::vector<double> numerator = {2, 1, 0, 0}, denominator = {1, 3, 3, 1};
    autoRange(numerator, denominator, {{-1, 0}, {-1, 0}, {-1, 0}}, {{-2, 0}});
    EXPECT_EQ(S, 4.0);
    auto satisfied = [&](double K) {
        std::vector<double> c(4);
        for (int k = 0; k < 4; ++k)
            c[k] = denominator[k] + K * numerator[k];
        int outside = 0;
        bool onZero = false;
        for (cplx r : lapackRoots(c)) {
            if (std::fabs(r.real()) > 4 || std::fabs(r.imag()) > 4)
                ++outside;
            else if (std::abs(r + 2.0) < 0.04)
                onZero = true;
        }
        return outside == 2 && onZero;
    };
    double lo = 0.0, hi = 1e4;
    ASSERT_TRUE(satisfied(hi));
    for (int i = 0; i < 200; ++i)
        (satisfied((lo + hi) / 2) ? hi : lo) = (lo + hi) / 2;
    EXPECT_TRUE(satisfied(Kauto));
    EXPECT_GE(Kauto, hi);
    EXPECT_LT(Kauto, hi + 1.0);
}

}
