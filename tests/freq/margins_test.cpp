/*
** tests/freq/margins_test.cpp: the gain and phase margins of Bode runs, read from the
** "Phase and Gain Margins" dialog: textbook loops on the default grid against values
** derived by hand, crossings exactly on the levels, missing crossovers, units, buttons.
*/
#include "freq_fixture.h"

#include "freq/margins.h"

using namespace freqtest;
using platform::ActionKind;
using platform::DialogAction;

namespace {

/* K / (s + 1)^3: |G| = K / (1 + w^2)^1.5, phase = -3 atan w. */
double tripleMagnitude(double K, double w) { return K / std::pow(1.0 + w * w, 1.5); }
double triplePhase(double w) { return -3.0 * std::atan(w); }

/* The last grid step whose ends lie on both sides of (or on) the level, as a point number. */
int crossoverPoint(double (*f)(double), double level)
{
    int found = -1;
    for (int k = 2; k <= 50; k++) {
        double a = f(gridPoint(k - 1, 50, 0.1, 100)), b = f(gridPoint(k, 50, 0.1, 100));
        if ((a > level && b <= level) || a == level || (a < level && b >= level))
            found = k - 1;
    }
    return found;
}

class Margins : public FreqTest {};

TEST_F(Margins, GainTwoWithThreePolesAtMinusOne)
{
    bode(2.0, {}, {{-1, 0}, {-1, 0}, {-1, 0}});
    ASSERT_EQ(marginDialogCount(), 1) << platform::transcriptText();
    /* Phase -3 atan w crosses -pi between points 21 and 22, |G| crosses 1 between 15 and 16. */
    ASSERT_EQ(crossoverPoint(triplePhase, -PI), 21);
    ASSERT_EQ(crossoverPoint([](double w) { return tripleMagnitude(2.0, w); }, 1.0), 15);
    double w21 = gridPoint(21, 50, 0.1, 100), w15 = gridPoint(15, 50, 0.1, 100);
    EXPECT_EQ(marginField(IDC_MARGIN_PHASE_CROSSOVER), "1.67683");
    EXPECT_EQ(marginField(IDC_MARGIN_GAIN), ".268745");
    EXPECT_EQ(marginField(IDC_MARGIN_GAIN_CROSSOVER), ".719686");
    EXPECT_EQ(marginField(IDC_MARGIN_PHASE), "72.7739");
    EXPECT_NEAR(marginResults.phaseCrossoverFreq, w21, 1e-12);
    EXPECT_NEAR(marginResults.gainMargin, tripleMagnitude(2.0, w21), 1e-12);
    EXPECT_NEAR(marginResults.gainCrossoverFreq, w15, 1e-12);
    EXPECT_NEAR(marginResults.phaseMargin, (triplePhase(w15) + PI) * 180.0 / PI, 1e-9);
}

TEST_F(Margins, GainTenWithThreePolesCrossesBothLevelsInOneStep)
{
    bode(10.0, {}, {{-1, 0}, {-1, 0}, {-1, 0}});
    double w21 = gridPoint(21, 50, 0.1, 100);
    EXPECT_EQ(marginField(IDC_MARGIN_PHASE_CROSSOVER), "1.67683");
    EXPECT_EQ(marginField(IDC_MARGIN_GAIN), "1.34372");
    EXPECT_EQ(marginField(IDC_MARGIN_GAIN_CROSSOVER), "1.67683");
    EXPECT_EQ(marginField(IDC_MARGIN_PHASE), "2.43077");
    EXPECT_NEAR(marginResults.gainMargin, tripleMagnitude(10.0, w21), 1e-12);
    EXPECT_NEAR(marginResults.phaseMargin, (triplePhase(w21) + PI) * 180.0 / PI, 1e-9);
}

TEST_F(Margins, OnePoleNeverReachesMinusPiSoThePhaseSideIsMissing)
{
    bode(10.0, {}, {{-1, 0}});
    double w33 = gridPoint(33, 50, 0.1, 100);
    EXPECT_EQ(marginField(IDC_MARGIN_PHASE_CROSSOVER), "1e+006");
    EXPECT_EQ(marginField(IDC_MARGIN_GAIN), "1e+006");
    EXPECT_EQ(marginField(IDC_MARGIN_GAIN_CROSSOVER), "9.10298");
    EXPECT_EQ(marginField(IDC_MARGIN_PHASE), "96.269");
    EXPECT_EQ(marginResults.phaseCrossoverFreq, 1000000.0);
    EXPECT_EQ(marginResults.gainMargin, 1000000.0);
    EXPECT_NEAR(marginResults.gainCrossoverFreq, w33, 1e-12);
    EXPECT_NEAR(marginResults.phaseMargin, (PI - std::atan(w33)) * 180.0 / PI, 1e-9);
    /* |G| at 33 is above 1 and at 34 below: the point before the crossing is taken. */
    EXPECT_GT(10.0 / std::sqrt(1 + w33 * w33), 1.0);
    double w34 = gridPoint(34, 50, 0.1, 100);
    EXPECT_LT(10.0 / std::sqrt(1 + w34 * w34), 1.0);
}

TEST_F(Margins, WithoutAGainCrossoverTheGainMarginIsStillReadAtThePhaseCrossover)
{
    bode(0.1, {}, {{-1, 0}, {-1, 0}, {-1, 0}});
    double w21 = gridPoint(21, 50, 0.1, 100);
    EXPECT_NEAR(marginResults.phaseCrossoverFreq, w21, 1e-12);
    EXPECT_NEAR(marginResults.gainMargin, tripleMagnitude(0.1, w21), 1e-15);
    EXPECT_EQ(marginField(IDC_MARGIN_GAIN_CROSSOVER), "1e+006");
    EXPECT_EQ(marginField(IDC_MARGIN_PHASE), "1e+006");
}

TEST_F(Margins, MagnitudeExactlyOneAtAGridPointCountsOnBothSteps)
{
    /* 10/s on 1, 3.16, 10, 31.6, 100: |G| is 10, 3.16, exactly 1, .316, .1. The step into
    ** 1 crosses (point 2), and so does the step out of it (point 3), which wins. */
    frequencyRange = {5, 1.0, 100.0};
    ASSERT_EQ(gridPoint(3, 5, 1.0, 100.0), 10.0);
    bode(10.0, {}, {{0, 0}});
    ASSERT_EQ(magnitudes().at(2), 1.0);
    EXPECT_EQ(marginResults.gainCrossoverFreq, 10.0);
    EXPECT_EQ(marginField(IDC_MARGIN_GAIN_CROSSOVER), "10");
    EXPECT_EQ(marginField(IDC_MARGIN_PHASE), "90");
    /* The phase is -90 degrees throughout: no phase crossover. */
    EXPECT_EQ(marginField(IDC_MARGIN_PHASE_CROSSOVER), "1e+006");
}

TEST_F(Margins, MarkerOnTheFirstPointReachesTheTrackerBeforePointOneIsReplaced)
{
    /* 1e5 / (s^2 + 1) on 1, 3.16, 10, 31.6, 100: point 1 lies on the pole j1 and is handed
    ** over as -1000; at point 2 (|G| = 1e5 / 9) it takes point 2's magnitude, but the step
    ** from -1000 up to 11111 has already crossed 1. |G| stays above 1 afterwards. */
    frequencyRange = {5, 1.0, 100.0};
    bode(1e5, {}, {{0, 1}, {0, -1}});
    EXPECT_EQ(magnitudes().at(0), magnitudes().at(1));
    EXPECT_EQ(marginResults.gainCrossoverFreq, 1.0);
    /* Phase at point 1: atan2(0, 0) - atan2(2, 0) = -pi/2, so the margin is +90 degrees. */
    EXPECT_NEAR(marginResults.phaseMargin, 90.0, 1e-12);
    /* Every later phase is exactly -pi: the last step wins, at point 4. */
    double w4 = gridPoint(4, 5, 1.0, 100.0);
    EXPECT_EQ(marginResults.phaseCrossoverFreq, w4);
    EXPECT_NEAR(marginResults.gainMargin, 1e5 / (w4 * w4 - 1), 1e-9);
}

TEST_F(Margins, PhaseExactlyMinusPiAtAGridPointCounts)
{
    /* 1 / s^2: the phase is exactly -pi (two times atan2(w, 0)) on every point. */
    frequencyRange = {5, 1.0, 100.0};
    bode(1.0, {}, {{0, 0}, {0, 0}});
    /* prev = -pi on every step: the last step wins. */
    EXPECT_EQ(marginResults.phaseCrossoverFreq, gridPoint(4, 5, 1.0, 100.0));
    EXPECT_NEAR(marginResults.gainMargin, 1.0 / std::pow(gridPoint(4, 5, 1.0, 100.0), 2), 1e-15);
}

TEST_F(Margins, PhaseMarginFollowsThePhaseUnitFrequenciesStayInRadiansPerSecond)
{
    phaseUnit.selected = PHASE_UNIT_RADIANS;
    bode(2.0, {}, {{-1, 0}, {-1, 0}, {-1, 0}});
    double w15 = gridPoint(15, 50, 0.1, 100);
    EXPECT_EQ(marginField(IDC_MARGIN_PHASE), "1.27014");
    EXPECT_NEAR(marginResults.phaseMargin, triplePhase(w15) + PI, 1e-12);
    EXPECT_EQ(marginField(IDC_MARGIN_GAIN_CROSSOVER), ".719686");

    /* Hertz: the grid is 0.1 ... 100 Hz, the results are its rad/s values. */
    platform::clearTranscript();
    phaseUnit.selected = PHASE_UNIT_DEGREES;
    frequencyUnit.selected = FREQUENCY_UNIT_HERTZ;
    bode(2.0, {}, {{-1, 0}, {-1, 0}, {-1, 0}});
    int k = -1;
    for (int i = 2; i <= 50; i++) {
        double a = tripleMagnitude(2.0, 2 * PI * gridPoint(i - 1, 50, 0.1, 100));
        double b = tripleMagnitude(2.0, 2 * PI * gridPoint(i, 50, 0.1, 100));
        if ((a > 1 && b <= 1) || a == 1 || (a < 1 && b >= 1))
            k = i - 1;
    }
    ASSERT_GE(k, 1);
    double w = 2 * PI * gridPoint(k, 50, 0.1, 100);
    EXPECT_NEAR(marginResults.gainCrossoverFreq, w, 1e-12);
    EXPECT_NEAR(marginResults.phaseMargin, (triplePhase(w) + PI) * 180.0 / PI, 1e-9);
}

TEST_F(Margins, PhaseAboveZeroAtTheGainCrossoverLosesPi)
{
    /* The differentiator 2s: phase +90 degrees, |G| = 2w crosses 1 near 0.5. */
    bode(2.0, {{0, 0}}, {});
    EXPECT_NEAR(marginResults.phaseMargin, -90.0, 1e-9);
    int k = crossoverPoint([](double w) { return 2.0 * w; }, 1.0);
    EXPECT_NEAR(marginResults.gainCrossoverFreq, gridPoint(k, 50, 0.1, 100), 1e-12);

    /* (s + 1)/(s + 1): |G| = 1 at every point, the last one taken; phase exactly 0 gains pi. */
    bode(1.0, {{-1, 0}}, {{-1, 0}});
    EXPECT_NEAR(marginResults.phaseMargin, 180.0, 1e-9);
    EXPECT_NEAR(marginResults.gainCrossoverFreq, gridPoint(49, 50, 0.1, 100), 1e-12);
}

TEST_F(Margins, StepLandingExactlyOnALevelAtTheLastPointIsACrossing)
{
    /* Points 0.1, 1 and 10: |G| steps from 1.5 onto 1 and the phase from -2 onto -pi. */
    const BodeGrid grid{-1.0, 1.0, 1.0};
    const double magnitude[] = {2.0, 1.5, 1.0}, phase[] = {-1.0, -2.0, -PI};
    marginTrackerStart();
    for (int i = 1; i <= 3; i++)
        marginTrackerPoint(i, magnitude[i - 1], phase[i - 1]);
    marginTrackerFinish(&grid, magnitude, phase);
    EXPECT_DOUBLE_EQ(marginResults.gainCrossoverFreq, 1.0);
    EXPECT_DOUBLE_EQ(marginResults.phaseCrossoverFreq, 1.0);
    EXPECT_EQ(marginResults.gainMargin, 1.5);
    EXPECT_NEAR(marginResults.phaseMargin, (PI - 2.0) * 180.0 / PI, 1e-9);
}

TEST_F(Margins, DialogShowsFourDisabledFieldsAndBothButtonsCloseIt)
{
    platform::queueDialogAction(DialogAction{"PRX_MARGINS", ActionKind::Click, 9, "", 0});
    platform::queueDialogAction(DialogAction{"PRX_MARGINS", ActionKind::Type, IDC_MARGIN_GAIN, "5", 0});
    platform::queueDialogAction(DialogAction{"PRX_MARGINS", ActionKind::Click, IDCANCEL, "", 0});
    bode(2.0, {}, {{-1, 0}, {-1, 0}, {-1, 0}});
    std::string text = platform::transcriptText();
    const char *expected = "[dialog] Phase and Gain Margins\n"
                           "  static -1 \"Phase Crossover Frequency:\"\n"
                           "  edit 1032 \"1.67683\" (disabled)\n"
                           "  static -1 \"Gain Margin:\"\n"
                           "  edit 1033 \".268745\" (disabled)\n"
                           "  static -1 \"Gain Crossover Frequency:\"\n"
                           "  edit 1034 \".719686\" (disabled)\n"
                           "  static -1 \"Phase Margin:\"\n"
                           "  edit 105 \"72.7739\" (disabled)\n"
                           "  default-button 1 \"&OK\"\n"
                           "  button 2 \"&Cancel\"\n"
                           "  button 9 \"Help\"\n";
    EXPECT_EQ(text.rfind(expected, 0), 0u) << text;
    EXPECT_NE(text.find("[help] file 43528 topic 1185\n"), std::string::npos) << text;
    EXPECT_EQ(platform::scriptErrorCount(), 1) << "a disabled edit cannot be typed into";
    EXPECT_NE(text.find("[end] Phase and Gain Margins: 2\n"), std::string::npos) << text;
    /* Cancel closes it like OK: the plots are finished afterwards all the same. */
    EXPECT_LT(text.find("[end] Phase and Gain Margins"), text.find("Bode-Magnitude.svg"));
    EXPECT_LT(text.find("Bode-Magnitude.svg"), text.find("Bode-Phase.svg"));
}

}
