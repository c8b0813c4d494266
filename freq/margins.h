/*
** freq/margins.h: the gain and phase margins of a Bode run: the crossover tracker that
** walks the Bode grid with the response, the four results, and the PRX_MARGINS dialog.
*/
#ifndef PRAXA_MARGINS_H
#define PRAXA_MARGINS_H

#include <cstdint>

#include "platform/winapi.h"

/* The results of the last Bode run (all 0 at load; kept between runs). */
struct MarginResults {
    double phaseCrossoverFreq;  /* rad/s, grid frequency where the phase crosses -pi */
    double gainMargin;          /* plain ratio |G| at the phase crossover point */
    double gainCrossoverFreq;   /* rad/s, grid frequency where |G| crosses 1 */
    double phaseMargin;         /* phase at the gain crossover +/- pi, in the phase unit */
};
extern MarginResults marginResults;

/* Shown for a crossover (or a value read at one) that the grid does not contain. */
inline constexpr double MISSING_MARGIN_VALUE = 1000000.0;

/* The grid of one Bode run: frequency k (k = 1 ... N) is
** 10^(log10Start + (k - 1) step) unitFactor, in rad/s. */
struct BodeGrid {
    double log10Start;
    double step;
    double unitFactor;          /* 2 pi when the range is in Hertz, else 1 */
};
double gridFrequency(const BodeGrid *grid, int32_t k);

/* The tracker hooks, called by bodeResponse: start before its loop; point for each point
** i = 1 ... N with the magnitude after its marker value was replaced and the phase in
** radians; finish after the loop, while magnitude and phase (points 1 ... N at elements
** 0 ... N-1) still hold ratios and radians: it fills marginResults, converting only the
** phase margin to the phase unit. */
void marginTrackerStart();
void marginTrackerPoint(int32_t i, double magnitude, double phase);
void marginTrackerFinish(const BodeGrid *grid, const double *magnitude, const double *phase);

/* Shows marginResults modally in PRX_MARGINS. */
void showMargins();

extern "C" INT_PTR displayMarginsDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

#endif
