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

/* Each loop on its grid against the margins derived by hand: the crossover frequency is
** the last grid point before a step that meets the level (1e6 where there is none), the
** gain margin |G| there, and the phase margin the phase at the gain crossover plus pi
** (minus pi where it is above zero). */
TEST_F(Margins, TextbookLoopsAgainstHandDerivedValues)
{
    const double w15 = gridPoint(15, 50, 0.1, 100), w21 = gridPoint(21, 50, 0.1, 100),
                 w33 = gridPoint(33, 50, 0.1, 100), w4 = gridPoint(4, 5, 1.0, 100.0);
    const int differentiator = crossoverPoint([](double w) { return 2.0 * w; }, 1.0);
    const double degrees = 180.0 / PI, none = 1e6, skip = NAN;
    const struct {
        const char *name;
        double K;
        std::vector<Complex> zeros, poles;
        RangeSettings range;
        double phaseCrossover, gainMargin, gainCrossover, phaseMargin; /* NaN: not checked */
        const char *fields[4];          /* as the dialog shows them; null: not checked */
    } rows[] = {
        /* -3 atan w crosses -pi after point 21, |G| crosses 1 after point 15 */
        {"2/(s+1)^3", 2.0, {}, {{-1, 0}, {-1, 0}, {-1, 0}}, {50, 0.1, 100}, w21, tripleMagnitude(2.0, w21), w15,
         (triplePhase(w15) + PI) * degrees, {"1.67683", ".268745", ".719686", "72.7739"}},
        /* both levels are met in the same step */
        {"10/(s+1)^3", 10.0, {}, {{-1, 0}, {-1, 0}, {-1, 0}}, {50, 0.1, 100}, w21, tripleMagnitude(10.0, w21), w21,
         (triplePhase(w21) + PI) * degrees, {"1.67683", "1.34372", "1.67683", "2.43077"}},
        /* one pole never reaches -pi; |G| is above 1 at point 33 and below at 34 */
        {"10/(s+1)", 10.0, {}, {{-1, 0}}, {50, 0.1, 100}, none, none, w33, (PI - std::atan(w33)) * degrees,
         {"1e+006", "1e+006", "9.10298", "96.269"}},
        /* no gain crossover: the gain margin is still read at the phase crossover */
        {"0.1/(s+1)^3", 0.1, {}, {{-1, 0}, {-1, 0}, {-1, 0}}, {50, 0.1, 100}, w21, tripleMagnitude(0.1, w21), none,
         none, {nullptr, nullptr, "1e+006", "1e+006"}},
        /* 10/s on 1 ... 100: |G| is exactly 1 at point 3; the step out of it wins */
        {"10/s", 10.0, {}, {{0, 0}}, {5, 1.0, 100.0}, none, none, 10.0, 90.0, {"1e+006", nullptr, "10", "90"}},
        /* 1/s^2: the phase is exactly -pi everywhere; the last step wins */
        {"1/s^2", 1.0, {}, {{0, 0}, {0, 0}}, {5, 1.0, 100.0}, w4, 1.0 / (w4 * w4), skip, skip,
         {nullptr, nullptr, nullptr, nullptr}},
        /* phase +90 degrees at the gain crossover loses pi */
        {"2s", 2.0, {{0, 0}}, {}, {50, 0.1, 100}, none, none, gridPoint(differentiator, 50, 0.1, 100), -90.0,
         {nullptr, nullptr, nullptr, nullptr}},
        /* |G| = 1 everywhere, the last point taken; phase exactly 0 gains pi */
        {"(s+1)/(s+1)", 1.0, {{-1, 0}}, {{-1, 0}}, {50, 0.1, 100}, none, none, gridPoint(49, 50, 0.1, 100), 180.0,
         {nullptr, nullptr, nullptr, nullptr}},
    };
    ASSERT_EQ(crossoverPoint(triplePhase, -PI), 21);
    ASSERT_EQ(crossoverPoint([](double w) { return tripleMagnitude(2.0, w); }, 1.0), 15);
    const int ids[4] = {IDC_MARGIN_PHASE_CROSSOVER, IDC_MARGIN_GAIN, IDC_MARGIN_GAIN_CROSSOVER, IDC_MARGIN_PHASE};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        platform::clearTranscript();
        frequencyRange = row.range;
        bode(row.K, row.zeros, row.poles);
        ASSERT_EQ(marginDialogCount(), 1) << platform::transcriptText();
        EXPECT_NEAR(marginResults.phaseCrossoverFreq, row.phaseCrossover, 1e-12 * row.phaseCrossover);
        EXPECT_NEAR(marginResults.gainMargin, row.gainMargin, 1e-12 * row.gainMargin);
        if (!std::isnan(row.gainCrossover)) {
            EXPECT_NEAR(marginResults.gainCrossoverFreq, row.gainCrossover, 1e-12 * row.gainCrossover);
            EXPECT_NEAR(marginResults.phaseMargin, row.phaseMargin, 1e-9);
        }
        for (int f = 0; f < 4; f++) {
            if (row.fields[f]) {
                EXPECT_EQ(marginField(ids[f]), row.fields[f]) << "field " << ids[f];
            }
        }
    }
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
