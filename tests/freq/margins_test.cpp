/*
** tests/freq/margins_test.cpp: the gain and phase margins of Bode runs, read from the
** "Phase and Gain Margins" dialog: textbook loops on the default grid against values
** derived by hand, crossings exactly on the levels, missing crossovers, both units, buttons,
** and the bode command of the praxa executable on the servo example with its plot files.
*/
#include "freq_fixture.h"

#include <cstdlib>

#include "freq/margins.h"

using namespace freqtest;

namespace {

/* K / (s + 1)^3: |G| = K / (1 + w^2)^1.5, phase = -3 atan w. */
double tripleMagnitude(double K, double w) { return K / std::pow(1.0 + w * w, 1.5); }
double triplePhase(double w) { return -3.0 * std::atan(w); }

class Margins : public FreqTest {};

/* Each loop on its grid against the margins derived by hand: the crossover frequency is
** the last grid point before a step that meets the level (1e6 where there is none), the
** gain margin |G| there, and the phase margin the phase at the gain crossover plus pi
** (minus pi where it is above zero), in the phase unit; frequencies stay in rad/s. */
TEST_F(Margins, TextbookLoopsAgainstHandDerivedValues)
{
    const double w15 = gridPoint(15), w21 = gridPoint(21), w33 = gridPoint(33), w4 = gridPoint(4, 5, 1.0, 100.0);
    const int differentiator = crossoverPoint([](double w) { return 2.0 * w; }, 1.0);
    const double degrees = 180.0 / PI, none = 1e6, skip = NAN;
    /* In Hertz the grid is 0.1 ... 100 Hz, evaluated at 2 pi f. */
    const int hertzP = crossoverPoint([](double f) { return triplePhase(2 * PI * f); }, -PI),
              hertzG = crossoverPoint([](double f) { return tripleMagnitude(2.0, 2 * PI * f); }, 1.0);
    ASSERT_GE(hertzP, 1);
    ASSERT_GE(hertzG, 1);
    const double hP = 2 * PI * gridPoint(hertzP), hG = 2 * PI * gridPoint(hertzG);
    const struct {
        const char *name;
        double K;
        std::vector<Complex> zeros, poles;
        RangeSettings range;
        double phaseCrossover, gainMargin, gainCrossover, phaseMargin; /* NaN: not checked */
        const char *fields[4] = {};     /* as the dialog shows them; null: not checked */
        int phaseUnit = PHASE_UNIT_DEGREES, frequencyUnit = FREQUENCY_UNIT_RADIANS;
    } rows[] = {
        /* -3 atan w crosses -pi after point 21, |G| crosses 1 after point 15 */
        {"2/(s+1)^3", 2.0, {}, {{-1, 0}, {-1, 0}, {-1, 0}}, {50, 0.1, 100}, w21, tripleMagnitude(2.0, w21), w15,
         (triplePhase(w15) + PI) * degrees, {"1.67683", ".268745", ".719686", "72.7739"}},
        {"2/(s+1)^3 in radians", 2.0, {}, {{-1, 0}, {-1, 0}, {-1, 0}}, {50, 0.1, 100}, w21, tripleMagnitude(2.0, w21),
         w15, triplePhase(w15) + PI, {"1.67683", ".268745", ".719686", "1.27014"}, PHASE_UNIT_RADIANS},
        {"2/(s+1)^3 in Hertz", 2.0, {}, {{-1, 0}, {-1, 0}, {-1, 0}}, {50, 0.1, 100}, hP, tripleMagnitude(2.0, hP), hG,
         (triplePhase(hG) + PI) * degrees, {}, PHASE_UNIT_DEGREES, FREQUENCY_UNIT_HERTZ},
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
        {"1/s^2", 1.0, {}, {{0, 0}, {0, 0}}, {5, 1.0, 100.0}, w4, 1.0 / (w4 * w4), skip, skip},
        /* phase +90 degrees at the gain crossover loses pi */
        {"2s", 2.0, {{0, 0}}, {}, {50, 0.1, 100}, none, none, gridPoint(differentiator), -90.0},
        /* |G| = 1 everywhere, the last point taken; phase exactly 0 gains pi */
        {"(s+1)/(s+1)", 1.0, {{-1, 0}}, {{-1, 0}}, {50, 0.1, 100}, none, none, gridPoint(49), 180.0},
        /* 1e5/(s^2 + 1) on 1, 3.16, 10, 31.6, 100: point 1 lies on the pole j1 and reaches the
        ** tracker as -1000 before it takes point 2's magnitude, so the step up from it crosses 1;
        ** its phase is atan2(0, 0) - atan2(2, 0) = -pi/2, every later one exactly -pi. */
        {"1e5/(s^2+1)", 1e5, {}, {{0, 1}, {0, -1}}, {5, 1.0, 100.0}, w4, 1e5 / (w4 * w4 - 1), 1.0, 90.0},
        /* on two points the gain margin is read at point 1, which took point 2's 1e5/99 */
        {"1e5/(s^2+1) on two points", 1e5, {}, {{0, 1}, {0, -1}}, {2, 1.0, 10.0}, 1.0, 1e5 / 99, 1.0, 90.0},
    };
    ASSERT_EQ(crossoverPoint(triplePhase, -PI), 21);
    ASSERT_EQ(crossoverPoint([](double w) { return tripleMagnitude(2.0, w); }, 1.0), 15);
    const int ids[4] = {IDC_MARGIN_PHASE_CROSSOVER, IDC_MARGIN_GAIN, IDC_MARGIN_GAIN_CROSSOVER, IDC_MARGIN_PHASE};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        platform::clearTranscript();
        frequencyRange = row.range;
        phaseUnit.selected = row.phaseUnit;
        frequencyUnit.selected = row.frequencyUnit;
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
                EXPECT_EQ(shownControl("Phase and Gain Margins", "edit", ids[f]),
                          "  edit " + std::to_string(ids[f]) + " \"" + row.fields[f] + "\" (disabled)");
            }
        }
    }
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
    queueActions({press(9, "PRX_MARGINS"), typed(IDC_MARGIN_GAIN, "5", "PRX_MARGINS"), press(IDCANCEL, "PRX_MARGINS")});
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

/* The servo example's open loop 20 / (s (s + 1) (s + 10)). */
double servoMagnitude(double w) { return 20.0 / (w * std::sqrt(1 + w * w) * std::sqrt(100 + w * w)); }
double servoPhase(double w) { return -PI / 2 - std::atan(w) - std::atan(w / 10); }

/* The number in `  edit ID "..."` of the printed transcript. */
double editValue(const std::string &out, int id)
{
    std::string prefix = "  edit " + std::to_string(id) + " \"";
    size_t at = out.find(prefix);
    return at == std::string::npos ? NAN : std::atof(out.c_str() + at + prefix.size());
}

TEST(BodeCommand, ServoMarginsAndPlotFiles)
{
    TempDir dir;
    RunResult run = runPraxaIn(dir, "{examples}servo.json bode");
    ASSERT_EQ(run.status, 0) << run.err << run.out;
    EXPECT_EQ(run.err, "");

    int phaseCrossover = crossoverPoint(servoPhase, -PI), gainCrossover = crossoverPoint(servoMagnitude, 1.0);
    ASSERT_EQ(phaseCrossover, 25);      /* the true one is at sqrt(10) = 3.162 */
    ASSERT_EQ(gainCrossover, 18);
    double wP = gridPoint(phaseCrossover), wG = gridPoint(gainCrossover);
    EXPECT_NEAR(editValue(run.out, 1032), wP, 1e-5);
    EXPECT_NEAR(editValue(run.out, 1033), servoMagnitude(wP), 1e-6);
    EXPECT_NEAR(editValue(run.out, 1034), wG, 1e-5);
    EXPECT_NEAR(editValue(run.out, 105), (servoPhase(wG) + PI) * 180 / PI, 1e-4);
    /* The dialog comes first, then the magnitude and the phase plot are shown. */
    EXPECT_TRUE(hasLinesInOrder(run.out, {"[dialog] Phase and Gain Margins", "  edit 1032 \"2.94705\" (disabled)",
                                          "  edit 105 \"36.0425\" (disabled)", "[plot] Bode-Magnitude.svg",
                                          "[plot] Bode-Phase.svg"}));

    /* The phase runs from -96 to -264 degrees: its axis spans -280 ... -80. */
    pugi::xml_document phase;
    ASSERT_TRUE(phase.load_file(dir.file("Bode-Phase.svg").c_str()));
    EXPECT_EQ(tickRange(phase, "y-tick"), std::make_pair(-280.0, -80.0));
}

}
