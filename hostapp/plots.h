/*
** hostapp/plots.h: the host's plot blocks (interface used by the rest of the host).
*/
#ifndef TERVAN_PLOTS_H
#define TERVAN_PLOTS_H

#include "host/records.h"

namespace hostapp {

/* The point buffer of trace (selector >> 8), coordinate (selector & 1), of a plot record. */
PlotPointBuffer *plotPointBuffer(PlotRecord *plot, int selector);

}

#endif
