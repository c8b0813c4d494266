/*
** hostapp/plot_bounds.h: a plot's bounds from its data, and nice round bounds
** (multiples of a 1-2-5 step on a linear axis, whole decades on a logarithmic one).
*/
#ifndef TERVAN_PLOT_BOUNDS_H
#define TERVAN_PLOT_BOUNDS_H

#include "host/records.h"
#include "hostapp/plot_series.h"

namespace hostapp {

/* Sets x and y minimum and maximum of the record from its curves: x from the sweep
** for frequency plots, from the x values for x–y plots; y from the y values.
** Only finite points count, and on a logarithmic y axis only positive y values when
** there are any.  No usable value gives the pair (0, 0). */
void setBoundsFromData(PlotRecord &record, const PlotView &view);

/* The 1-2-5 step that divides span into 5 to 10 parts (span > 0 and finite). */
double niceStep(double span);

/* Widens minMax[0], minMax[1] in place to nice round values (see file header).
** Non-finite, reversed or equal bounds become a usable range. */
void niceBounds(double *minMax, bool logarithmic);

}

#endif
