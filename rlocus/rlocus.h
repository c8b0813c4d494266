/*
** rlocus/rlocus.h: the root locus of the unity-feedback loop over a gain range.
*/
#ifndef PRAXA_RLOCUS_H
#define PRAXA_RLOCUS_H

#include <cstdint>

#include "host/records.h"

/* Sweeps the loop gain over gainRange (or the automatic range) and writes branch j into
** the plot's trace pair j; num and den: ascending coefficients, n + 1 each; n: the order.
** Returns the signed extreme coordinate (0 when nothing was computed). */
double rootLocus(PlotRecord *plot, const double *num, const double *den, int32_t n);

#endif
