/*
** freq/margins.cpp: the crossover tracker of a Bode run, the gain and phase margins it
** yields, and the "Phase and Gain Margins" dialog (PRX_MARGINS) that shows them.
** Crossovers are taken at grid points: no extra evaluations, no interpolation.
*/
#include "freq/margins.h"

#include <cmath>

#include "resources/prxdlg.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "shell/text.h"

MarginResults marginResults = {0.0, 0.0, 0.0, 0.0};

static const double PI = 3.141592653589793;
static const double DEGREES_PER_RADIAN = 57.29577951308232;
static const double PHASE_LEVEL = -PI;      /* on the radian phases of the loop */
static const double GAIN_LEVEL = 1.0;       /* on the magnitude ratios */
enum { MARGINS_HELP_TOPIC = 1185 };

/* Tracker state of the run in progress: crossover points counted from 1 (-1: none yet)
** and the previous point's values. */
static struct {
    int32_t phaseCrossover;
    int32_t gainCrossover;
    double previousPhase;
    double previousMagnitude;
} tracker;

double gridFrequency(const BodeGrid *grid, int32_t k)
{
    return std::pow(10.0, grid->log10Start + (k - 1) * grid->step) * grid->unitFactor;
}

/* A step from prev to cur crosses level when it passes it either way or starts on it. */
static bool crosses(double prev, double cur, double level)
{
    return (prev > level && cur <= level) || prev == level || (prev < level && cur >= level);
}

void marginTrackerStart()
{
    tracker.phaseCrossover = -1;
    tracker.gainCrossover = -1;
}

/* The point before a crossing is its crossover point; the last crossing on the grid wins. */
void marginTrackerPoint(int32_t i, double magnitude, double phase)
{
    if (i >= 2) {
        if (crosses(tracker.previousPhase, phase, PHASE_LEVEL))
            tracker.phaseCrossover = i - 1;
        if (crosses(tracker.previousMagnitude, magnitude, GAIN_LEVEL))
            tracker.gainCrossover = i - 1;
    }
    tracker.previousPhase = phase;
    tracker.previousMagnitude = magnitude;
}

/* Missing values show as MISSING_MARGIN_VALUE, the convention of a missing phase
** crossover: without a gain crossover both its frequency and the phase margin are
** missing; without a phase crossover there is no point to read the gain margin at.
** The gain margin is read at the phase crossover whether or not the gain crosses 1. */
void marginTrackerFinish(const BodeGrid *grid, const double *magnitude, const double *phase)
{
    int32_t iP = tracker.phaseCrossover, iG = tracker.gainCrossover;
    marginResults.phaseCrossoverFreq = iP >= 1 ? gridFrequency(grid, iP) : MISSING_MARGIN_VALUE;
    marginResults.gainMargin = iP >= 1 ? magnitude[iP - 1] : MISSING_MARGIN_VALUE;
    if (iG >= 1) {
        marginResults.gainCrossoverFreq = gridFrequency(grid, iG);
        double p = phase[iG - 1];
        double pm = p <= 0.0 ? p + PI : p - PI;
        marginResults.phaseMargin = phaseUnit.selected == PHASE_UNIT_DEGREES ? pm * DEGREES_PER_RADIAN : pm;
    } else {
        marginResults.gainCrossoverFreq = MISSING_MARGIN_VALUE;
        marginResults.phaseMargin = MISSING_MARGIN_VALUE;
    }
}

void showMargins()
{
    runDialog("PRX_MARGINS", displayMarginsDlg);
}

/* Dialog procedure of PRX_MARGINS: shows marginResults in its four disabled edits; OK
** and Cancel both close it, Help opens topic 1185. */
INT_PTR displayMarginsDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG) {
        SetDlgItemTextA(dialog, IDC_MARGIN_PHASE_CROSSOVER, numberToText(marginResults.phaseCrossoverFreq));
        SetDlgItemTextA(dialog, IDC_MARGIN_GAIN, numberToText(marginResults.gainMargin));
        SetDlgItemTextA(dialog, IDC_MARGIN_GAIN_CROSSOVER, numberToText(marginResults.gainCrossoverFreq));
        SetDlgItemTextA(dialog, IDC_MARGIN_PHASE, numberToText(marginResults.phaseMargin));
        return 0;
    }
    if (message != WM_COMMAND)
        return 0;
    return displayDialogCommand(dialog, LOWORD(wParam), MARGINS_HELP_TOPIC);
}
