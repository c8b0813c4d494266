/*
** tests/compensator/replot_test.cpp: Replot: the Bode plots and the root locus of the
** whole compensated loop against hand-derived values (the compensator's gain with its
** sign, the loop's roots sizing the box, a complex root typed without its conjugate
** completed and said so), the plots remembered and reused, the lists kept after Cancel,
** and loops that cannot be drawn.
*/
#include <cmath>
#include <complex>
#include <set>

#include "tests/compensator/compensator_fixture.h"

using namespace comptest;

namespace {

const double PI = 3.141592653589793;

double gridPoint(int k, int n, double start, double stop)
{
    double step = (std::log10(stop) - std::log10(start)) / (n - 1);
    return std::pow(10.0, std::log10(start) + (k - 1) * step);
}

/* The text of a message box line, whatever its caption. */
int messageLine(const std::string &text)
{
    for (size_t i = 0; i < lines().size(); i++) {
        const std::string &line = lines()[i];
        if (line.size() > text.size() && line[0] == '[' &&
            line.compare(line.size() - text.size(), text.size(), text) == 0)
            return (int)i;
    }
    return -1;
}

int marginDialogs() { return countLines("[dialog] Phase and Gain Margins"); }


}

TEST_F(CompensatorTest, ReplotDrawsTheLoopsBodePlotsAndThreeBranchRootLocus)
{
    queueLead("10");
    click(IDC_COMP_REPLOT);
    click(IDOK);
    double plantGain = 0.0;
    stateToXferFunc(plant->A, plant->B, plant->C, plant->D, nullptr, nullptr, &plantGain);
    EXPECT_NEAR(plantGain, 1.0, 1e-12);
    design();

    /* 10 (s + 1)/((s + 10) s (s + 1)) with K = 10 times the plant gain:
    ** |L(jw)| = 10 / (w sqrt(w^2 + 100)), arg L(jw) = -90 deg - atan(w / 10) */
    ASSERT_NE(bodeMagnitudePlot, nullptr);
    ASSERT_NE(bodePhasePlot, nullptr);
    std::vector<double> magnitude = tracePoints(plotRecordOf(bodeMagnitudePlot)), phase = tracePoints(plotRecordOf(bodePhasePlot));
    ASSERT_EQ(magnitude.size(), 50u);
    ASSERT_EQ(phase.size(), 50u);
    for (int k = 1; k <= 50; k++) {
        double w = gridPoint(k, 50, 0.1, 100.0);
        double expected = 10.0 * plantGain / (w * std::sqrt(w * w + 100.0));
        EXPECT_NEAR(magnitude[k - 1], expected, 1e-12 * expected) << "point " << k;
        EXPECT_NEAR(phase[k - 1], -90.0 - std::atan(w / 10.0) * 180.0 / PI, 1e-9) << "point " << k;
    }
    EXPECT_EQ(marginDialogs(), 1);
    EXPECT_STREQ(plotRecordOf(bodePhasePlot)->title, "Bode-Phase1");

    /* Root locus of den + K g num with den = s (s + 1)(s + 10), num = s + 1, g = the loop
    ** gain, 10 times the plant gain; manual range 0 ... 100 in 50 steps */
    ASSERT_NE(rootLocusPlot, nullptr);
    PlotRecord *locus = plotRecordOf(rootLocusPlot);
    EXPECT_EQ(locus->lastTraceIndex, 2);
    ASSERT_NE(locus->paramInfo, nullptr);
    EXPECT_EQ(locus->paramInfo->parameters[1], 2.0);
    EXPECT_EQ(locus->paramInfo->parameters[49], 100.0);
    std::multiset<double> start;
    for (int j = 0; j < 3; j++) {
        Complex p = branchPoint(rootLocusPlot, j, 0);
        EXPECT_NEAR(p.im, 0.0, 1e-12);
        start.insert(std::round(p.re * 1e9) / 1e9);
    }
    EXPECT_EQ(start, (std::multiset<double>{-10.0, -1.0, 0.0}));
    for (int j = 0; j < 3; j++) {
        /* every end point solves s^3 + 11 s^2 + (10 + 100 g) s + 100 g = 0 */
        Complex r = branchPoint(rootLocusPlot, j, 49);
        std::complex<double> s(r.re, r.im);
        double g = 10.0 * plantGain;
        std::complex<double> p = s * s * s + 11.0 * s * s + (10.0 + 100.0 * g) * s + 100.0 * g;
        EXPECT_LT(std::abs(p), 1e-9 * (1.0 + std::pow(std::abs(s), 3))) << "branch " << j;
    }
    /* the plant gain is back once Replot is done */
    EXPECT_EQ(currentXfer.gain, plantGain);
    EXPECT_EQ(currentCompensator.gain, 10.0);
}

TEST_F(CompensatorTest, ReplotReusesItsPlotsWhateverTheReuseSettingAndTheLocusFollowsThePoleCount)
{
    queueLead("10");
    click(IDC_COMP_REPLOT);
    type(IDC_COMP_POLE_EDIT, "-20");
    click(IDC_COMP_ADD);
    click(IDC_COMP_REPLOT);
    click(IDOK);
    EXPECT_EQ(reusePlots, 0);
    HostBlock *phaseBefore = nullptr, *locusBefore = nullptr;
    design();
    EXPECT_EQ(marginDialogs(), 2);
    phaseBefore = bodePhasePlot;
    locusBefore = rootLocusPlot;
    ASSERT_NE(locusBefore, nullptr);
    EXPECT_EQ(plotRecordOf(rootLocusPlot)->lastTraceIndex, 3);     /* 4 loop poles */
    EXPECT_STREQ(plotRecordOf(bodePhasePlot)->title, "Bode-Phase2");
    EXPECT_STREQ(plotRecordOf(rootLocusPlot)->title, "Root Locus-1");

    /* a later invocation draws into the same blocks */
    click(IDC_COMP_REPLOT);
    click(IDOK);
    design();
    EXPECT_EQ(bodePhasePlot, phaseBefore);
    EXPECT_EQ(rootLocusPlot, locusBefore);
}

TEST_F(CompensatorTest, AfterReplotAndCancelTheDialogReopensWithTheListsAsReplotReadThem)
{
    queueLead("10");
    click(IDC_COMP_REPLOT);
    type(IDC_COMP_POLE_EDIT, "-30");    /* added after the Replot: not read */
    click(IDC_COMP_ADD);
    platform::queueDialogAction(DialogAction{DIALOG, ActionKind::Cancel, 0, "", 0});
    design();
    EXPECT_TRUE(hostCommands.empty());
    platform::clearTranscript();
    design();
    EXPECT_EQ(shownControl("edit", IDC_COMP_GAIN), "  edit 1023 \"10\"");
    EXPECT_EQ(shownControl("listbox", IDC_COMP_ZEROS), "  listbox 107: \"(-1,0)\"");
    EXPECT_EQ(shownControl("listbox", IDC_COMP_POLES), "  listbox 108: \"(-10,0)\"");
}

/* One and three zeros more than poles: the Bode plots, then the message, no root locus. */
TEST_F(CompensatorTest, MoreZerosThanPolesGetTheirBodePlotsButNoRootLocus)
{
    for (int zeros : {3, 5}) {
        platform::clearTranscript();
        for (int k = 1; k <= zeros; k++) {
            type(IDC_COMP_ZERO_EDIT, std::to_string(-k));
            click(IDC_COMP_ADD);
        }
        click(IDC_COMP_REPLOT);
        click(IDOK);
        design();
        EXPECT_EQ(marginDialogs(), 1);
        std::string message = "The loop has " + std::to_string(zeros) + " zeros but only 2 poles: no root locus is drawn.";
        EXPECT_GT(messageLine(message), lineOf("[end] Phase and Gain Margins: 1")) << platform::transcriptText();
        EXPECT_EQ(rootLocusPlot, nullptr);
        EXPECT_EQ(currentXfer.gain, currentXfer.gain);      /* not NaN */
        if (zeros == 3) {
            /* |L(jw)| = |(jw + 1)(jw + 2)(jw + 3)| / |jw (jw + 1)| at the first point, w = 0.1 */
            std::vector<double> magnitude = tracePoints(plotRecordOf(bodeMagnitudePlot));
            ASSERT_EQ(magnitude.size(), 50u);
            double w = 0.1;
            EXPECT_NEAR(magnitude[0], std::sqrt((w * w + 4) * (w * w + 9)) / w, 1e-9);
        }
        resetCompensator();
        bodePhasePlot = bodeMagnitudePlot = nullptr;
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
    EXPECT_GE(messageLine("The zero (-2,3) has no conjugate; (-2,-3) is added to the loop."), 0) << platform::transcriptText();
    /* Bode: |(jw + 2 - 3j)(jw + 2 + 3j)| / |jw (jw + 1)| at w = 0.1 */
    double w = 0.1;
    std::complex<double> jw(0.0, w);
    double expected = std::abs((jw + std::complex<double>(2, -3)) * (jw + std::complex<double>(2, 3)) /
                               (jw * (jw + 1.0)));
    EXPECT_NEAR(tracePoints(plotRecordOf(bodeMagnitudePlot)).at(0), expected, 1e-9 * expected);
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
