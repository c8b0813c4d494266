/*
** shell/settings.h: the user settings, their defaults, and the settings file.
** Persisted keys live in section "tervan" of the host's settings file; the display
** precision and the zero thresholds live in memory only.
*/
#ifndef PRAXA_SETTINGS_H
#define PRAXA_SETTINGS_H

#include <cstdint>

/* A sweep range: number of points, first and last value (frequency in the
** frequency unit, or loop gain). ORDER: steps, start, stop. */
struct RangeSettings {
    int32_t steps;
    double start;
    double stop;
};

/* A radio group: the selected id among count ids from first. */
struct RadioGroup {
    int32_t selected;
    int32_t first;
    int32_t count;
};

/* What the range options dialog last showed and accepted, whichever range it edited. */
struct OptionsDialogMemory {
    int32_t steps;
    double start;
    double stop;
    int32_t autoRange;          /* nonzero: automatic root locus gain range */
};

enum : int32_t {
    FREQUENCY_UNIT_HERTZ = 210,
    FREQUENCY_UNIT_RADIANS = 211,
    PHASE_UNIT_DEGREES = 212,
    PHASE_UNIT_RADIANS = 213,
    MAGNITUDE_UNIT_DECIBELS = 215,
    MAGNITUDE_UNIT_LOG10 = 216,
};

inline constexpr const char *SETTINGS_SECTION = "tervan";

extern RangeSettings frequencyRange;
extern RangeSettings gainRange;
extern OptionsDialogMemory optionsMemory;
extern RadioGroup frequencyUnit;
extern RadioGroup phaseUnit;
extern RadioGroup magnitudeUnit;
extern uint8_t reusePlots;
extern uint8_t negativeFrequencies;
extern int displayPrecision;                /* significant digits of numberToText */
extern double numeratorZeroThreshold;
extern double denominatorZeroThreshold;

/* Reads phaseUnits, magUnits, freqUnits, prxReusePlots and
** useNegativeFrequenciesInNyquistPlot (done once, by praxaInit). */
void loadUnitSettings();
/* Reads the rloc keys into optionsMemory and the freq keys into frequencyRange. */
void loadRangeSettings();
/* Write one key of section "tervan": integers as decimal text, doubles as numberToText. */
void writeIntSetting(const char *key, int value);
void writeDoubleSetting(const char *key, double value);

#endif
