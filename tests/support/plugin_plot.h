/*
** tests/support/plugin_plot.h: what the plot tests share: the frequency grid, a Nyquist
** plot block prepared as the frequency response prepares one, the points of a trace or a
** root locus branch read back, the response they are checked against, and the texts of a
** plot's SVG file.
*/
#ifndef PRAXA_TESTS_PLUGIN_PLOT_H
#define PRAXA_TESTS_PLUGIN_PLOT_H

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "host/host.h"
#include "hostapp/host_state.h"
#include "shell/plot_output.h"

namespace testing_support {

inline const double PI = 3.141592653589793;

/* Grid frequency k (from 1) of an N-point logarithmic grid from start to stop. */
inline double gridPoint(int k, int n = 50, double start = 0.1, double stop = 100.0)
{
    double step = (std::log10(stop) - std::log10(start)) / (n - 1);
    return std::pow(10.0, std::log10(start) + (k - 1) * step);
}

/* A new Nyquist plot block over range: both traces named and reserved for its steps. */
inline HostBlock *nyquistPlotBlock(RangeSettings range)
{
    HostBlock *block = makePlotNode(0, 0);
    PlotRecord *plot = plotRecordOf(block);
    plot->flagsA |= PLOT_A_FIXED_SWEEP;
    setupFrequencyPlot(plot, "Nyquist", &range);
    plot->flagsD |= PLOT_D_NYQUIST;
    plot->yLabel[0] = '\0';
    std::snprintf(plot->traces[1].label, sizeof plot->traces[1].label, "Imaginary");
    std::snprintf(plot->traces[0].label, sizeof plot->traces[0].label, "Real");
    for (int k = 0; k < 2; k++) {
        preallocDList(&plot->traces[k].points, &plot->pointIndex);
        plot->traces[k].points.count = (uint32_t)range.steps;
    }
    return block;
}

/* The texts of the elements of an SVG class, in document order. */
inline std::vector<std::string> texts(const pugi::xml_document &doc, const char *cls)
{
    std::vector<std::string> all;
    std::string query = std::string("//*[@class='") + cls + "']";
    for (const auto &n : doc.select_nodes(query.c_str()))
        all.push_back(n.node().child_value());
    return all;
}

/* The least and the greatest of the numbers an SVG class of tick labels shows. */
inline std::pair<double, double> tickRange(const pugi::xml_document &doc, const char *cls)
{
    double low = INFINITY, high = -INFINITY;
    for (const std::string &tick : texts(doc, cls)) {
        low = std::min(low, std::stod(tick));
        high = std::max(high, std::stod(tick));
    }
    return {low, high};
}

/* The response K prod(s - z) / prod(s - p), evaluated in complex arithmetic. */
inline std::complex<double> poleZeroResponse(std::complex<double> s, const std::vector<Complex> &zeros,
                                             const std::vector<Complex> &poles, double K)
{
    std::complex<double> h = K;
    for (const Complex &z : zeros)
        h *= s - std::complex<double>(z.re, z.im);
    for (const Complex &p : poles)
        h /= s - std::complex<double>(p.re, p.im);
    return h;
}

/* The points trace k of a plot holds. */
inline std::vector<double> tracePoints(const PlotRecord *plot, int k = 0)
{
    const PlotTrace &t = plot->traces[k];
    const double *values = (const double *)t.points.items;
    return values ? std::vector<double>(values, values + t.points.count) : std::vector<double>();
}

/* Buffer `coordinate` (0: real parts, 1: imaginary parts) of root locus branch `branch`,
** as request 75 hands it out. */
inline PlotPointBuffer *branchBuffer(const PlotRecord *plot, int branch, int coordinate)
{
    return (PlotPointBuffer *)tervanRequest(TERVAN_REQ_PLOT_BUFFER, (intptr_t)plot, branch * 256 + coordinate);
}

/* The points a root locus branch holds, steps 0 ... its highest index. */
inline std::vector<Complex> branchPoints(const PlotRecord *plot, int branch)
{
    PlotPointBuffer *x = branchBuffer(plot, branch, 0), *y = branchBuffer(plot, branch, 1);
    std::vector<Complex> points;
    for (uint32_t s = 0; s <= x->highestIndex && s < x->capacity && x->values; ++s)
        points.push_back({x->values[s], y->values[s]});
    return points;
}

/* A plot's bounds in the order xMin, xMax, yMin, yMax. */
inline std::vector<double> boundsOf(const PlotRecord *plot) { return {plot->xMin, plot->xMax, plot->yMin, plot->yMax}; }

}

#endif
