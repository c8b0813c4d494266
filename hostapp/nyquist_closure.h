/*
** hostapp/nyquist_closure.h: which points of a Nyquist curve lie on the circles at
** infinity, the detours around poles on the imaginary axis that close the curve.
*/
#ifndef TERVAN_NYQUIST_CLOSURE_H
#define TERVAN_NYQUIST_CLOSURE_H

#include <vector>

#include "hostapp/plot_series.h"

namespace hostapp {

/* One flag per point of curve (the Nyquist series of record): true where the point lies
** on a detour around an imaginary-axis pole, found from the frequencies in the record's
** parameter array.  All false for a curve without detours. */
std::vector<bool> nyquistClosurePoints(const PlotRecord &record, const PlotSeries &curve);

}

#endif
