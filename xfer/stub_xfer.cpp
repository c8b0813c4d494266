/* Temporary until the transfer function is merged. */
#include "xfer/xfer.h"
extern "C" int32_t timeToFrequency(Matrix *, Matrix *, Matrix *, Matrix *, double **, double **, double *, uint8_t) { return 0; }
