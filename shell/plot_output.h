/*
** shell/plot_output.h: filling the host's plot records (titles, labels, sweep,
** axis kinds, bounds) for frequency and root locus plots.
*/
#ifndef PRAXA_PLOT_OUTPUT_H
#define PRAXA_PLOT_OUTPUT_H

#include <cstdint>

#include "host/records.h"
#include "shell/settings.h"

extern int32_t frequencyPlotCount;
extern int32_t rootLocusPlotCount;

/* The plot record of a plot block. */
inline PlotRecord *plotRecordOf(HostBlock *plot) { return (PlotRecord *)plot->kindRecord; }

void setupFrequencyPlot(PlotRecord *plot, const char *titleBase, const RangeSettings *range);
HostBlock *makeRootLocusPlot(int traceCount);
void finishPlot(HostBlock *plot, uint8_t xLogarithmic, uint8_t yMagnitude, uint8_t boundsFlag);
/* Limits a root locus plot to the square of side 2 ceil(|radius|) around the origin. */
void clampPlotToRadius(PlotRecord *plot, double radius);

#endif
