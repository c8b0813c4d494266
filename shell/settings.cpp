/*
** shell/settings.cpp: the settings, their defaults, loading and writing.
*/
#include "shell/settings.h"

#include <cstdlib>

#include "host/host.h"
#include "platform/winapi.h"
#include "shell/text.h"

RangeSettings frequencyRange = {50, 0.1, 100.0};
RangeSettings gainRange = {50, 0.0, 100.0};
/* Before any settings file exists the options dialog shows these placeholder values. */
OptionsDialogMemory optionsMemory = {102, 103.0, 104.0, 1029};
RadioGroup frequencyUnit = {FREQUENCY_UNIT_RADIANS, FREQUENCY_UNIT_HERTZ, 2};
RadioGroup phaseUnit = {PHASE_UNIT_DEGREES, PHASE_UNIT_DEGREES, 2};
RadioGroup magnitudeUnit = {MAGNITUDE_UNIT_LOG10, MAGNITUDE_UNIT_DECIBELS, 2};
uint8_t reusePlots = 0;
uint8_t negativeFrequencies = 0;
int displayPrecision = 6;
double numeratorZeroThreshold = 1e-55;
double denominatorZeroThreshold = 1e-60;

/* A missing or empty key leaves the setting as it was. */
static void readInt(const char *key, int32_t *value)
{
    char text[32];
    if (GetPrivateProfileStringA(SETTINGS_SECTION, key, "", text, sizeof text, getIniFileName()))
        *value = std::atoi(text);
}

static void readFlag(const char *key, uint8_t *flag)
{
    int32_t value = *flag;
    readInt(key, &value);
    *flag = (uint8_t)value;
}

static void readDouble(const char *key, double *value)
{
    char text[64];
    if (GetPrivateProfileStringA(SETTINGS_SECTION, key, "", text, sizeof text, getIniFileName()))
        *value = std::atof(text);
}

void loadUnitSettings()
{
    readInt("phaseUnits", &phaseUnit.selected);
    readInt("magUnits", &magnitudeUnit.selected);
    readInt("freqUnits", &frequencyUnit.selected);
    readFlag("prxReusePlots", &reusePlots);
    readFlag("useNegativeFrequenciesInNyquistPlot", &negativeFrequencies);
}

void loadRangeSettings()
{
    readDouble("rlocStart", &optionsMemory.start);
    readDouble("rlocStop", &optionsMemory.stop);
    readInt("rlocSteps", &optionsMemory.steps);
    readInt("rlocAutoRange", &optionsMemory.autoRange);
    readDouble("freqStart", &frequencyRange.start);
    readDouble("freqStop", &frequencyRange.stop);
    readInt("freqSteps", &frequencyRange.steps);
}

void writeIntSetting(const char *key, int value)
{
    char text[34];
    _itoa_s(value, text, sizeof text, 10);
    WritePrivateProfileStringA(SETTINGS_SECTION, key, text, getIniFileName());
}

void writeDoubleSetting(const char *key, double value)
{
    WritePrivateProfileStringA(SETTINGS_SECTION, key, numberToText(value), getIniFileName());
}
