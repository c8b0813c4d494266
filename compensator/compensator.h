/*
** compensator/compensator.h: the persistent series compensator (gain, zeros, poles)
** that the compensator design edits and that is handed to the host, the loop root
** lists built from it and the plant, and the COMPENSATORDESIGN dialog.
*/
#ifndef PRAXA_COMPENSATOR_H
#define PRAXA_COMPENSATOR_H

#include <cstdint>

#include "host/records.h"
#include "platform/winapi.h"

/* All zero at load: gain 0.0, no zeros, no poles, null arrays. */
extern Compensator currentCompensator;

/* Gain 1.0, no zeros, no poles; the arrays are kept (host event 256). */
void resetCompensator();

/* The loop, compensator times plant: the compensator's roots first, then the plant's
** (currentXfer).  Rebuilt by every readCompensator; room for count + 1 each. */
extern Complex *loopZeros;
extern Complex *loopPoles;
extern int32_t loopZeroCount;
extern int32_t loopPoleCount;

/* The compensator list box that Add, Del and Change act on (107, 108 or 0) and the edit
** paired with it (1021, 1020 or 0); kept across invocations. */
extern int currentList;
extern int currentEdit;

extern "C" {
/* Dialog procedure of COMPENSATORDESIGN, run by timeToFrequency while currentXfer holds
** the plant; ends with 1 (OK, the dialog read into currentCompensator) or 2 (Cancel). */
INT_PTR compensatorDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
}

/* Reads the gain edit and the two compensator lists into currentCompensator and builds
** loopZeros and loopPoles (plant roots from currentXfer, none when its lists are gone). */
void readCompensator(HWND dialog);

/* A root as the user types it: leading '(' skipped, real part by atof, imaginary part by
** atof after the first comma (0 without one); unreadable parts give 0. */
Complex parseRootText(const char *text);

/* Replot: Bode plots and root locus of the loop read from the dialog (compensator/replot.cpp). */
void replotCompensatedLoop(HWND dialog);

#endif
