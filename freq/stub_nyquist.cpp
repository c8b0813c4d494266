/* Temporary until the Nyquist curve is built. */
#include "freq/nyquist.h"
#include "host/host.h"
double *nyquistResponse(int32_t, int32_t, Complex *, Complex *, PlotRecord *, double, double) { return (double *)galloc(8); }
void nyquistResponseSampled(int32_t, int32_t, Complex *, Complex *, double *, double *, double, double) {}
