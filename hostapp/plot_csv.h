/*
** hostapp/plot_csv.h: the numbers behind a plot, as CSV written beside its SVG file:
** a header naming each column with its unit as the plot shows it, then one row per
** point at full precision.
*/
#ifndef TERVAN_PLOT_CSV_H
#define TERVAN_PLOT_CSV_H

#include <string>

#include "hostapp/plot_series.h"

namespace hostapp {

/* Frequency plots: frequency, then each trace as drawn (decibels when the plot shows
** them).  Nyquist: frequency in rad/s (each point's parameter), real, imaginary.  Root
** locus: gain, then the real and imaginary part of each branch.  Values that are not
** finite, and frequencies the record does not hold, are empty cells. */
std::string renderPlotCsv(const PlotView &view);

/* The data file of a plot file: its name with the extension replaced by ".csv". */
std::string plotDataFileName(const std::string &plotFileName);

}

#endif
