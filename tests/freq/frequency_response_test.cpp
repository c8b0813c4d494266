/*
** tests/freq/frequency_response_test.cpp: Bode runs point by point against hand-derived
** responses: the logarithmic grid in both frequency units, the sign of K, the feed-through
** substitute, the range checks and their messages, the plot titles and labels, and the
** sampled models through the menu commands.
*/
#include "freq_fixture.h"

#include <complex>
#include <cstring>

#include "freq/margins.h"

using namespace freqtest;

namespace {

const char *NEGATIVE_RANGE_MESSAGE =
    "Start and End frequencies must be positive non-zero values.\n"
    "Please change them in the Tervan/Praxa Frequency Range settings.";
const char *ZERO_RANGE_MESSAGE =
    "You are starting (OR) ending at a frequency of zero.\n"
    "Instead, try using small values such as 1.0E-4 in the Tervan/Praxa Frequency Range settings.\n";

/* A transcript that holds just the host's message box with this text, byte for byte. */
std::vector<std::string> messageOnly(const char *text) { return {std::string("[Tervan] ") + text}; }

const std::vector<Complex> TRIPLE_POLE = {{-1, 0}, {-1, 0}, {-1, 0}};

class FrequencyResponse : public FreqTest {};

/* Runs that cannot be swept: the plots are set up and titled, nothing is computed, and a
** negative end is reported before a zero one; no states or fewer than two steps say nothing. */
TEST_F(FrequencyResponse, RangesThatCannotBeSweptComputeNothing)
{
    const struct {
        RangeSettings range;
        const char *message;            /* null: no message */
        int32_t order = 1;
    } rows[] = {
        {{50, 0.1, 100.0}, nullptr, 0}, /* no states */
        {{1, 0.1, 100.0}, nullptr},
        {{-4, 0.1, 100.0}, nullptr},    /* reserves nothing */
        {{50, -1.0, 0.0}, NEGATIVE_RANGE_MESSAGE},
        {{50, 0.1, -100.0}, NEGATIVE_RANGE_MESSAGE},
        {{50, 0.0, 100.0}, ZERO_RANGE_MESSAGE},
        {{50, 0.1, 0.0}, ZERO_RANGE_MESSAGE},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.range.steps);
        platform::clearTranscript();
        frequencyPlotCount = 0;
        frequencyRange = row.range;
        bode(2.0, {}, TRIPLE_POLE, row.order);
        EXPECT_EQ(platform::transcript(), row.message ? messageOnly(row.message) : std::vector<std::string>{});
        PlotRecord *phase = plotRecordOf(phasePlot), *magnitude = plotRecordOf(magnitudePlot);
        EXPECT_STREQ(phase->title, "Bode-Phase1");
        EXPECT_STREQ(magnitude->title, "Bode-Magnitude1");
        EXPECT_STREQ(phase->yLabel, "Phase, (Deg)");
        EXPECT_STREQ(phase->traces[0].label, "Phase");
        EXPECT_STREQ(magnitude->traces[0].label, "Magnitude");
        if (row.range.steps > 0) {
            EXPECT_EQ(magnitude->traces[0].points.count, (uint32_t)row.range.steps);
            EXPECT_TRUE(std::isnan(magnitudes().at(0))) << "nothing is written";
        }
    }
}

/* K/(s+1)^3 on the default grid 0.1 ... 100, point by point: in Hertz evaluated at 2 pi f
** (the axis staying in Hertz), a negative K half a turn further round in either phase unit. */
TEST_F(FrequencyResponse, LogarithmicGridInBothUnitsAndTheSignOfK)
{
    const struct {
        int unit, phase;
        double factor, K, perRadian;
        const char *label, *phaseLabel;
    } rows[] = {
        {FREQUENCY_UNIT_RADIANS, PHASE_UNIT_DEGREES, 1.0, 2.0, 180.0 / PI, "Frequency, (Rad/sec)", "Phase, (Deg)"},
        {FREQUENCY_UNIT_HERTZ, PHASE_UNIT_DEGREES, 2 * PI, 2.0, 180.0 / PI, "Frequency, (Hz)", "Phase, (Deg)"},
        {FREQUENCY_UNIT_RADIANS, PHASE_UNIT_DEGREES, 1.0, -2.0, 180.0 / PI, "Frequency, (Rad/sec)", "Phase, (Deg)"},
        {FREQUENCY_UNIT_RADIANS, PHASE_UNIT_RADIANS, 1.0, -2.0, 1.0, "Frequency, (Rad/sec)", "Phase, (Radians)"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(std::string(row.label) + " K = " + std::to_string(row.K));
        frequencyUnit.selected = row.unit;
        phaseUnit.selected = row.phase;
        bode(row.K, {}, TRIPLE_POLE);
        std::vector<double> m = magnitudes(), p = phases();
        ASSERT_EQ(m.size(), 50u);
        ASSERT_EQ(p.size(), 50u);
        PlotRecord *plot = plotRecordOf(magnitudePlot);
        EXPECT_STREQ(plot->xLabel, row.label);
        EXPECT_STREQ(plotRecordOf(phasePlot)->yLabel, row.phaseLabel);
        EXPECT_EQ(plot->pointCount, 50u);
        EXPECT_EQ(plot->sweepStart, 0.1);
        EXPECT_EQ(plot->sweepStop, 100.0);
        for (int k = 1; k <= 50; k++) {
            double w = row.factor * gridPoint(k);
            EXPECT_NEAR(m[k - 1], 2.0 / std::pow(1 + w * w, 1.5), 1e-12 * m[k - 1]) << k;
            EXPECT_NEAR(p[k - 1], (-3.0 * std::atan(w) + (row.K < 0 ? PI : 0.0)) * row.perRadian, 1e-9) << k;
        }
    }
}

TEST_F(FrequencyResponse, WithoutAPathThroughTheStatesTheResponseIsTheFeedThrough)
{
    for (double d : {3.0, -3.0, 0.0}) {
        SCOPED_TRACE(d);
        platform::clearTranscript();
        testing_support::releasePluginRecords();
        stateSpaceModel = {matrixFromRows(2, 2, {-1, 0, 0, -2}), matrixFromRows(2, 1, {0, 0}),
                           matrixFromRows(1, 2, {0, 0}), matrixFromRows(1, 1, {d})};
        bode(1.0, {}, {}, 2);
        for (double v : magnitudes())
            EXPECT_DOUBLE_EQ(v, std::fabs(d));
        for (double v : phases())
            EXPECT_NEAR(v, d < 0 ? 180.0 : 0.0, 1e-12);
        EXPECT_EQ(platform::transcriptText().find("Zero C"), std::string::npos) << "no zeros are computed";
        EXPECT_EQ(marginDialogCount(), 1);
    }
}

/* The sampled speed loop through the menu commands: its open loop (0.5 z - 0.4)/(z - 1) *
** b/(z - a), a = e^-0.1, b = 1 - a, on the unit circle in Bode; a Nyquist curve of at least
** a thousand points and no frequencies. */
TEST_F(FreqTest, SampledModelsThroughTheMenuCommands)
{
    ASSERT_TRUE(testing_support::loadExample("sampled_loop.json"));
    ASSERT_EQ(praxaCmd(242), 1);
    std::vector<double> m = points(bodeMagnitudePlot);
    ASSERT_EQ(m.size(), 50u);
    const double a = std::exp(-0.1), b = 1 - a;
    for (int k : {1, 25, 50}) {
        std::complex<double> z = std::polar(1.0, gridPoint(k) * 0.1);
        std::complex<double> g = (0.5 * z - 0.4) / (z - 1.0) * b / (z - a);
        EXPECT_NEAR(m[k - 1], std::abs(g), 1e-6 * std::abs(g)) << k;
    }

    testing_support::writeFile(dir.file("tervan.ini"), "[tervan]\nfreqStart=0.00001\nfreqSteps=20\n");
    ASSERT_EQ(praxaCmd(250), 1);
    EXPECT_EQ(frequencyRange.start, 1e-4);
    EXPECT_EQ(frequencyRange.stop, 2 * PI);
    EXPECT_EQ(frequencyRange.steps, 1000);
    PlotRecord *plot = plotRecordOf(nyquistPlot);
    EXPECT_EQ(plot->pointCount, 1000u);
    EXPECT_EQ(plot->traces[1].points.count, 1000u);
    EXPECT_EQ(plot->paramInfo, nullptr);
}

}
