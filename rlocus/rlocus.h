/*
** rlocus/rlocus.h: the root locus of the unity-feedback loop over a gain range.
*/
#ifndef PRAXA_RLOCUS_H
#define PRAXA_RLOCUS_H

#include <cstdint>

#include "host/records.h"

/* Sweeps the loop gain K over gainRange (manual) or from 0 to the automatic top gain
** (optionsMemory.autoRange nonzero; gainRange.start is then set to 0 in memory) and writes
** the closed-loop poles, the roots of den + K g num, branch j into the plot's trace pair
** j (request 75; the traces must exist for branches 0 ... n - 1), one point per step.
** num and den: ascending coefficients, n + 1 each, the caller's; n: the order (at most
** 1024).  g is recomputed from stateSpaceModel and left in currentXfer.gain.  A new
** PlotParamInfo (gain of every step, pole and zero counts, zero branches) then belongs to
** the plot.  Returns the signed extreme coordinate: the largest |Im| when that exceeds
** the largest |Re|, else the real part of largest magnitude; 0 when nothing was computed
** (n < 1, fewer than 2 steps, input not connected to output). */
double rootLocus(PlotRecord *plot, const double *num, const double *den, int32_t n);
/* As rootLocus for a loop given by its own roots (zeroCount, poleCount) and gain g instead
** of the linearized model: the box, the automatic top gain and the branches' zeros come
** from these roots, and currentXfer.gain is not touched.  num and den must be the
** polynomials of those roots (n = poleCount >= zeroCount). */
double rootLocusOfLoop(PlotRecord *plot, const double *num, const double *den, int32_t n, double gain,
                       const Complex *zeros, int32_t zeroCount, const Complex *poles, int32_t poleCount);

#endif
