/*
** tests/compensator/replot_test.cpp: Replot: the Bode plots and the root locus of the
** whole compensated loop against the loop evaluated here (the compensator's gain with its
** sign, the loop's roots sizing the box, a complex root typed without its conjugate
** completed and said so, more zeros than poles refused a locus), the plots remembered and
** reused, and the lists kept after Cancel.
*/
#include <cmath>
#include <complex>
#include <set>

#include "tests/compensator/compensator_fixture.h"

using namespace comptest;

namespace {

using cd = std::complex<double>;

cd product(cd s, const std::vector<Complex> &roots) { return poleZeroResponse(s, roots, {}, 1.0); }

int marginDialogs() { return transcriptCount("[dialog] Phase and Gain Margins"); }

}

/* Each row types a compensator for the plant 1/(s (s + 1)), presses Replot, then OK. The
** Bode plots must be the loop L = K g prod(s - z) / prod(s - p) at every grid point, and the
** locus (manual range 0 ... 100 in 50 steps) start at the loop's poles, every later point
** a root of prod(s - p) + k K g prod(s - z) at the gain k of its step (g: the plant's gain). */
TEST_F(CompensatorTest, ReplotDrawsTheWholeLoop)
{
    double plantGain = 0.0;
    stateToXferFunc(plant->A, plant->B, plant->C, plant->D, nullptr, nullptr, &plantGain);
    ASSERT_NEAR(plantGain, 1.0, 1e-12);
    const std::vector<Complex> lead = {{-1, 0}}, leadLoop = {{-10, 0}, {0, 0}, {-1, 0}}, plantPoles = {{0, 0}, {-1, 0}},
                               complexPair = {{-2, 3}, {-2, -3}};
    const struct {
        const char *name, *gain;
        std::vector<std::string> zeros, poles;      /* as typed */
        double K;                                   /* the compensator's gain */
        std::vector<Complex> loopZeros, loopPoles;
        const char *message;                        /* null: none */
    } rows[] = {
        {"lead", "10", {"-1"}, {"-10"}, 10.0, lead, leadLoop, nullptr},
        /* a negative gain: the locus of negative gains, the phase half a turn further round */
        {"negative lead", "-10", {"-1"}, {"-10"}, -10.0, lead, leadLoop, nullptr},
        {"complex zero alone", "1", {"(-2,3)"}, {}, 1.0, complexPair, plantPoles,
         "The zero (-2,3) has no conjugate; (-2,-3) is added to the loop."},
        {"conjugate pair", "1", {"(-2,3)", "(-2,-3)"}, {}, 1.0, complexPair, plantPoles, nullptr},
        /* after the Bode plots, the message and no root locus */
        {"three zeros", "1", {"-1", "-2", "-3"}, {}, 1.0, {{-1, 0}, {-2, 0}, {-3, 0}}, plantPoles,
         "The loop has 3 zeros but only 2 poles: no root locus is drawn."},
        {"five zeros", "1", {"-1", "-2", "-3", "-4", "-5"}, {}, 1.0, {{-1, 0}, {-2, 0}, {-3, 0}, {-4, 0}, {-5, 0}},
         plantPoles, "The loop has 5 zeros but only 2 poles: no root locus is drawn."},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        platform::clearTranscript();
        type(IDC_COMP_GAIN, row.gain);
        queueRoots(IDC_COMP_ZERO_EDIT, row.zeros);
        queueRoots(IDC_COMP_POLE_EDIT, row.poles);
        click(IDC_COMP_REPLOT);
        click(IDOK);
        design();
        EXPECT_EQ(marginDialogs(), 1);
        EXPECT_EQ(currentXfer.gain, plantGain) << "the plant gain is back once Replot is done";
        EXPECT_EQ(currentCompensator.zeroCount, (int32_t)row.zeros.size()) << "the compensator keeps what was typed";

        std::vector<double> magnitude = tracePoints(plotRecordOf(bodeMagnitudePlot)),
                            phase = tracePoints(plotRecordOf(bodePhasePlot));
        ASSERT_EQ(magnitude.size(), 50u);
        ASSERT_EQ(phase.size(), 50u);
        const double K = row.K * plantGain;
        for (int k = 1; k <= 50; k++) {
            cd jw(0.0, gridPoint(k)), L = K * product(jw, row.loopZeros) / product(jw, row.loopPoles);
            EXPECT_NEAR(magnitude[k - 1], std::abs(L), 1e-12 * std::abs(L)) << "point " << k;
            EXPECT_NEAR(std::remainder(phase[k - 1] - std::arg(L) * 180.0 / PI, 360.0), 0.0, 1e-9) << "point " << k;
        }
        bool locus = row.loopZeros.size() <= row.loopPoles.size();
        if (row.message) {
            int at = transcriptLine(std::string("[Tervan] ") + row.message);
            EXPECT_GE(at, 0) << platform::transcriptText();
            if (!locus) {
                EXPECT_GT(at, transcriptLine("[end] Phase and Gain Margins: 1")) << platform::transcriptText();
            }
        }
        ASSERT_EQ(rootLocusPlot != nullptr, locus);
        if (locus) {
            PlotRecord *plot = plotRecordOf(rootLocusPlot);
            const int branches = (int)row.loopPoles.size();
            EXPECT_EQ(plot->lastTraceIndex, branches - 1);
            ASSERT_NE(plot->paramInfo, nullptr);
            const double *gains = plot->paramInfo->parameters;
            EXPECT_EQ(gains[1], 2.0);
            EXPECT_EQ(gains[49], 100.0);
            std::multiset<std::pair<double, double>> start, poles;
            for (const Complex &p : row.loopPoles)
                poles.insert({p.re, p.im});
            for (int j = 0; j < branches; j++) {
                std::vector<Complex> points = branchPoints(plot, j);
                start.insert({std::round(points.at(0).re * 1e9) / 1e9, std::round(points[0].im * 1e9) / 1e9});
                for (int step : {10, 49}) {
                    cd s(points.at(step).re, points[step].im);
                    cd value = product(s, row.loopPoles) + gains[step] * K * product(s, row.loopZeros);
                    EXPECT_LT(std::abs(value), 1e-9 * (1.0 + std::pow(std::abs(s), branches)))
                        << "branch " << j << " step " << step;
                }
            }
            EXPECT_EQ(start, poles);
        }
        resetCompensator();
        bodePhasePlot = bodeMagnitudePlot = rootLocusPlot = nullptr;
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
        highest = std::max(highest, std::fabs(branchPoints(plotRecordOf(rootLocusPlot), branch).at(99).im));
    EXPECT_GT(highest, 10.0);
}

/* Replot draws into the plots it made before, whatever the reuse setting, with as many
** locus branches as the loop has poles; after Cancel the dialog reopens with the lists as
** the last Replot read them. */
TEST_F(CompensatorTest, ReplotReusesItsPlotsAndCancelKeepsWhatItRead)
{
    queueLead("10");
    click(IDC_COMP_REPLOT);
    queueRoots(IDC_COMP_POLE_EDIT, {"-20"});
    click(IDC_COMP_REPLOT);
    queueRoots(IDC_COMP_POLE_EDIT, {"-30"});    /* added after the last Replot: not read */
    platform::queueDialogAction(escape(DIALOG));
    design();
    EXPECT_TRUE(hostCommands.empty());
    EXPECT_EQ(reusePlots, 0);
    EXPECT_EQ(marginDialogs(), 2);
    ASSERT_NE(rootLocusPlot, nullptr);
    EXPECT_EQ(plotRecordOf(rootLocusPlot)->lastTraceIndex, 3);     /* 4 loop poles */
    EXPECT_STREQ(plotRecordOf(bodePhasePlot)->title, "Bode-Phase2");
    EXPECT_STREQ(plotRecordOf(rootLocusPlot)->title, "Root Locus-1");
    HostBlock *phaseBefore = bodePhasePlot, *locusBefore = rootLocusPlot;

    platform::clearTranscript();
    click(IDC_COMP_REPLOT);
    click(IDOK);
    design();
    EXPECT_EQ(shownDesign(), "  edit 1023 \"10\"\n  listbox 107: \"(-1,0)\"\n"
                             "  listbox 108: \"(-10,0)\" | \"(-20,0)\"\n");
    EXPECT_EQ(bodePhasePlot, phaseBefore);
    EXPECT_EQ(rootLocusPlot, locusBefore);
}
