/*
** hostapp/plot_series.h: the curves of a plot block, read from its record: values
** over the sweep for frequency plots, trace 0 against trace 1 for Nyquist plots,
** and the request-75 buffer pairs for root locus plots.
*/
#ifndef TERVAN_PLOT_SERIES_H
#define TERVAN_PLOT_SERIES_H

#include <string>
#include <vector>

#include "host/records.h"

namespace hostapp {

enum class PlotKind { Frequency, Nyquist, RootLocus };

/* A plot record with the host's point buffers of its x–y traces (x, y per trace). */
struct PlotView {
    const PlotRecord *record = nullptr;
    std::vector<const PlotPointBuffer *> xBuffers;
    std::vector<const PlotPointBuffer *> yBuffers;
    /* The other plot of a Bode pair (magnitude for phase and back), for the margins. */
    const PlotRecord *companion = nullptr;
};

/* One curve as stored: y values are the plot's own (a magnitude is a ratio);
** points that are not finite are kept and skipped by the readers. */
struct PlotSeries {
    int trace = 0;
    std::string label;
    std::vector<double> x;
    std::vector<double> y;
};

/* Field 0x04 = 75 marks a root locus; flag D 0x20 a Nyquist plot; anything else
** draws its traces over the sweep. */
PlotKind plotKindOf(const PlotRecord &record);

/* The curves of a plot, in trace order; traces with no points are left out. */
std::vector<PlotSeries> plotSeries(const PlotView &view);

/* A text field of the record as a string (stops at the field's end if unterminated). */
std::string recordText(const char *field, size_t size);

}

#endif
