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
** order: number of states; samplePeriod: 0 for a continuous model, else seconds. */
void frequencyResponse(HostBlock *primaryPlot, HostBlock *magnitudePlot, RangeSettings *range, Complex *zeros,
                       Complex *poles, int32_t zeroCount, int32_t poleCount, int32_t order, uint8_t nyquist,
                       double samplePeriod);

#endif
