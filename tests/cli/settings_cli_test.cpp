/*
** Settings through the command line: the range and preferences dialogs filled as a
** user would, refused entries, and the settings file before and after.
*/
#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

class SettingsCommands : public ::testing::Test {
protected:
    TempDir dir;
    std::string settings = dir.file("tervan.ini");
    RunResult praxa(const std::string &arguments) { return runPraxa("--settings " + settings + " " + arguments); }
};

TEST_F(SettingsCommands, FirstRangeDialogShowsThePlaceholderValuesAndOkStoresThem)
{
    RunResult run = praxa("frequency-range");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("[dialog] Bode Frequency Range\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("  edit 102 \"103\"\n"), std::string::npos);
    EXPECT_NE(run.out.find("  edit 103 \"104\"\n"), std::string::npos);
    EXPECT_NE(run.out.find("  edit 104 \"102\"\n"), std::string::npos);
    std::string text = readFile(settings);
    EXPECT_NE(text.find("freqStart=103\nfreqStop=104\n"), std::string::npos) << text;
    EXPECT_NE(text.find("freqSteps=102\n"), std::string::npos) << text;
    EXPECT_NE(text.find("rlocAutoRange=0\n"), std::string::npos) << text;
}

TEST_F(SettingsCommands, StartNotBelowStopIsRefusedAndNothingIsWritten)
{
    RunResult run = praxa("frequency-range --start 10 --stop 1 --steps 20");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.out.find("[Tervan] Start must be less than Stop\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("[refused] Bode Frequency Range"), std::string::npos) << run.out;
    EXPECT_EQ(readFile(settings), "");
}

TEST_F(SettingsCommands, RootLocusOptionsShowWhatFrequencyRangeLastTook)
{
    praxa("frequency-range --start 1 --stop 10 --steps 20");
    RunResult run = praxa("rlocus-options");
    EXPECT_NE(run.out.find("[dialog] Root Locus Gain Range\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("  edit 102 \"1\"\n  static -1 \"End:\"\n  edit 103 \"10\"\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("  edit 104 \"20\"\n"), std::string::npos);
    EXPECT_NE(run.out.find("checkbox 1029 \"Auto Range\" [ ]\n"), std::string::npos) << run.out;
}

TEST_F(SettingsCommands, HandEditedRangeKeysTakeEffectAtTheNextCommand)
{
    praxa("frequency-range --start 1 --stop 10 --steps 20");
    writeFile(settings, "[tervan]\nrlocStart=5\nrlocStop=50\nrlocSteps=7\nrlocAutoRange=1\n");
    RunResult run = praxa("rlocus-options");
    EXPECT_NE(run.out.find("  edit 102 \"5\"\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("  edit 104 \"7\"\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("checkbox 1029 \"Auto Range\" [x]\n"), std::string::npos) << run.out;
}

TEST_F(SettingsCommands, PreferencesWriteTheUnitsAndFlags)
{
    RunResult run = praxa("preferences --frequency-unit hertz --phase-unit radians --magnitude-unit db --negative-frequencies");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(readFile(settings), "[tervan]\nphaseUnits=213\nmagUnits=215\nfreqUnits=210\nprxReusePlots=0\n"
                                  "useNegativeFrequenciesInNyquistPlot=1\n");
    run = praxa("preferences");
    EXPECT_NE(run.out.find("  radio 210 \"Hertz\" [x]\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("checkbox 1035 \"Negative Frequencies in Nyquist Plot\" [x]\n"), std::string::npos);
}

}
