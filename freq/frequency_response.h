/*
** freq/frequency_response.h: the frequency response of the linearized model (or of a
** compensated loop) into Bode phase and magnitude plots or a Nyquist plot.
*/
#ifndef PRAXA_FREQUENCY_RESPONSE_H
#define PRAXA_FREQUENCY_RESPONSE_H

#include <cstdint>

#include "host/records.h"
#include "shell/settings.h"

/* primaryPlot: the Bode phase plot or the Nyquist plot; magnitudePlot: the Bode magnitude
** plot (unused for Nyquist); range: frequencyRange (frequencies in the frequency unit);
** zeros/poles: handed-in root lists or null (then computed from stateSpaceModel);
** order: number of states; samplePeriod: 0 for a continuous model, else seconds.
** range must be frequencyRange, which bodeResponse reads for the grid. */
void frequencyResponse(HostBlock *primaryPlot, HostBlock *magnitudePlot, RangeSettings *range, Complex *zeros,
                       Complex *poles, int32_t zeroCount, int32_t poleCount, int32_t order, uint8_t nyquist,
                       double samplePeriod);

/* The Bode response on the logarithmic grid of frequencyRange into magnitude and phase
** (points 1 ... N at elements 0 ... N-1, room for N each): plain ratios, and phases in the
** phase unit of the preferences.  unitFactor: 2 pi for Hertz, else 1; gain: K of the
** factored form K prod(s - z) / prod(s - p).  Ends with the margins dialog (modal). */
void bodeResponse(int32_t zeroCount, int32_t poleCount, const Complex *poles, const Complex *zeros,
                  double *magnitude, double *phase, double unitFactor, double gain, double samplePeriod);

#endif
