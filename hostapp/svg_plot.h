/*
** hostapp/svg_plot.h: a plot block drawn as an SVG picture for a person: title,
** axis labels, ticks and grid, logarithmic axes and the magnitude unit as the
** record's flags say, one colour per trace, legend.
*/
#ifndef TERVAN_SVG_PLOT_H
#define TERVAN_SVG_PLOT_H

#include <string>

#include "hostapp/plot_series.h"

namespace hostapp {

/* The SVG text of the plot.  Points that are not finite (or not positive on a
** logarithmic axis) are skipped; lines are clipped to the plot area. */
std::string renderPlotSvg(const PlotView &view);

/* Writes text to path through a temporary file and a rename, unless the file already
** holds exactly that text; false with *error set when that fails. */
bool writeSvgFile(const std::string &path, const std::string &text, std::string *error);

}

#endif
