/*
** shell/text.h: numbers, complex numbers and matrices as text.
** Every number shown or written goes through numberToText at the display precision.
*/
#ifndef PRAXA_TEXT_H
#define PRAXA_TEXT_H

#include <cstdint>

#include "host/records.h"

struct Matrix;

/* Text of x at displayPrecision significant digits, cleaned (.5, 100, 1e+10).
** Returns a static buffer that the next call overwrites. */
const char *numberToText(double x);
/* "(re,im)" of *z; a static buffer that the next call overwrites. */
const char *complexToText(const Complex *z);
/* Writes `name` and m (may be null) as one bracketed block: to the current output
** file when linOutputChoice is not 208 (screen), else into one message box (a text
** larger than the 4096-byte buffer goes into several, split at line ends). */
void printMatrix(const char *name, const Matrix *m);

/* The Linearize dialog's remembered output choice: 207 result file, 208 screen
** (0 at load, taken as 208).  Owned by linearize/linearize_dialog.cpp. */
extern int16_t linOutputChoice;
enum : int16_t { LIN_OUTPUT_FILE = 207, LIN_OUTPUT_SCREEN = 208 };

#endif
