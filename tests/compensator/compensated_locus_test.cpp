/*
** tests/compensator/compensated_locus_test.cpp: the root locus that Replot draws is the
** locus of the whole compensated loop, the one its Bode plots show: the compensator's
** gain with its sign, the loop's roots sizing the box and the top gain, and a complex
** root typed without its conjugate completed (and said so) in both.
*/
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <string>

#include "compensator_fixture.h"

using namespace comptest;

namespace {

bool transcriptHas(const std::string &text)
{
    return platform::transcriptText().find(text) != std::string::npos;
}

}

TEST_F(CompensatorTest, ReplotDrawsTheLocusOfTheWholeLoop)
{
    /* Plant 1/(s (s + 1)) (gain 1), compensator K (s + 1)/(s + 10) with K = -10 (10 is
    ** Replot's own test): den = s (s + 1)(s + 10), num = s + 1.  Every drawn point solves
    ** den + k K num = 0 at the gain k of its step. */
    {
        const double K = -10.0;
        queueLead("-10");
        click(IDC_COMP_REPLOT);
        click(IDOK);
        design();
        ASSERT_NE(rootLocusPlot, nullptr);
        const double *gains = plotRecordOf(rootLocusPlot)->paramInfo->parameters;
        for (int step : {10, 49})
            for (int branch = 0; branch < 3; branch++) {
                Complex r = branchPoint(rootLocusPlot, branch, step);
                std::complex<double> s(r.re, r.im);
                std::complex<double> value = s * (s + 1.0) * (s + 10.0) + gains[step] * K * (s + 1.0);
                EXPECT_LT(std::abs(value), 1e-9 * (1.0 + std::pow(std::abs(s), 3))) << "step " << step;
            }
        rootLocusPlot = nullptr;
        resetCompensator();
    }

    /* Automatic range: the box comes from the loop's poles 0, -1, -10 (S = 20), so the pair
    ** that breaks away near -5 is followed far up, not stopped below 1 as the plant's box
    ** (S = 2) stopped it. */
    optionsMemory.autoRange = 1;
    gainRange = {100, 0.0, 1.0};
    queueLead("10");
    click(IDC_COMP_REPLOT);
    click(IDOK);
    design();
    ASSERT_NE(rootLocusPlot, nullptr);
    double highest = 0.0;
    for (int branch = 0; branch < 3; branch++)
        highest = std::max(highest, std::fabs(branchPoint(rootLocusPlot, branch, 99).im));
    EXPECT_GT(highest, 10.0);
}

TEST_F(CompensatorTest, AComplexRootWithoutItsConjugateIsCompletedInBothPlots)
{
    type(IDC_COMP_ZERO_EDIT, "(-2,3)");
    click(IDC_COMP_ADD);
    click(IDC_COMP_REPLOT);
    click(IDOK);
    design();
    EXPECT_TRUE(transcriptHas("The zero (-2,3) has no conjugate; (-2,-3) is added to the loop.\n"))
        << platform::transcriptText();
    /* Bode: |(jw + 2 - 3j)(jw + 2 + 3j)| / |jw (jw + 1)| at w = 0.1 */
    double w = 0.1;
    std::complex<double> jw(0.0, w);
    double expected = std::abs((jw + std::complex<double>(2, -3)) * (jw + std::complex<double>(2, 3)) /
                               (jw * (jw + 1.0)));
    EXPECT_NEAR(tracePoints(bodeMagnitudePlot).at(0), expected, 1e-9 * expected);
    /* Locus: every point solves s (s + 1) + k (s^2 + 4s + 13) = 0. */
    ASSERT_NE(rootLocusPlot, nullptr);
    const double *gains = plotRecordOf(rootLocusPlot)->paramInfo->parameters;
    for (int branch = 0; branch < 2; branch++) {
        Complex r = branchPoint(rootLocusPlot, branch, 49);
        std::complex<double> s(r.re, r.im);
        EXPECT_LT(std::abs(s * (s + 1.0) + gains[49] * (s * s + 4.0 * s + 13.0)), 1e-9 * (1.0 + std::norm(s)));
    }
    /* the compensator keeps what was typed */
    EXPECT_EQ(currentCompensator.zeroCount, 1);
}
