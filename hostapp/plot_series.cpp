/*
** hostapp/plot_series.cpp: reading the curves of a plot block out of its record
** and point buffers (shared by the bounds computation and the SVG writer).
*/
#include "hostapp/plot_series.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace hostapp {

namespace {

/* Points of a trace list: the count the plug-in set, never past what was reserved. */
size_t listPointCount(const HostList &points)
{
    if (!points.items)
        return 0;
    return std::min(points.count, points.capacity);
}

/* Points of a request-75 buffer: indices 0 ... highest index written. */
size_t bufferPointCount(const PlotPointBuffer *buffer)
{
    if (!buffer || !buffer->values || buffer->capacity == 0)
        return 0;
    return std::min<size_t>((size_t)buffer->highestIndex + 1, buffer->capacity);
}

/* The x values of a sweep of n points: a logarithmic grid from start to stop on a
** logarithmic x axis, else start + i * step.  The logarithms of the ends are taken
** once: a plot is read several times (its bounds, its picture, its numbers). */
struct SweepGrid {
    bool logarithmic;
    double first, last;     /* log10 of the ends, or the start and the step */
    size_t n;

    SweepGrid(const PlotRecord &r, size_t count) : n(count)
    {
        logarithmic = (r.flagsB & PLOT_B_LOG_X) && r.sweepStart > 0 && r.sweepStop > 0;
        if (logarithmic) {
            first = std::log10(r.sweepStart);
            last = std::log10(r.sweepStop);
            return;
        }
        first = r.sweepStart;
        last = r.sweepStep;
        if (!std::isfinite(last))
            last = n > 1 ? (r.sweepStop - r.sweepStart) / (double)(n - 1) : 0.0;
    }

    double at(size_t i, double start) const
    {
        if (!logarithmic)
            return first + (double)i * last;
        if (n < 2)
            return start;
        double t = (double)i / (double)(n - 1);
        return std::pow(10.0, first + t * (last - first));
    }
};

std::vector<PlotSeries> frequencySeries(const PlotRecord &r)
{
    std::vector<PlotSeries> all;
    for (int k = 0; k < PLOT_MAX_TRACES; ++k) {
        const HostList &points = r.traces[k].points;
        size_t count = listPointCount(points);
        if (count == 0)
            continue;
        /* The sweep spans the plot's point count; a trace may hold fewer points. */
        size_t gridCount = (r.pointCount >= 2 && r.pointCount <= INT32_MAX) ? r.pointCount : count;
        const double *values = (const double *)points.items;
        PlotSeries s;
        s.trace = k;
        s.label = recordText(r.traces[k].label, sizeof r.traces[k].label);
        SweepGrid grid(r, gridCount);
        s.x.resize(count);
        for (size_t i = 0; i < count; ++i)
            s.x[i] = grid.at(i, r.sweepStart);
        s.y.assign(values, values + count);
        all.push_back(std::move(s));
    }
    return all;
}

std::vector<PlotSeries> nyquistSeries(const PlotRecord &r)
{
    const HostList &real = r.traces[0].points;
    const HostList &imaginary = r.traces[1].points;
    size_t count = std::min(listPointCount(real), listPointCount(imaginary));
    if (count == 0)
        return {};
    PlotSeries s;
    s.label = recordText(r.title, sizeof r.title);
    s.x.assign((const double *)real.items, (const double *)real.items + count);
    s.y.assign((const double *)imaginary.items, (const double *)imaginary.items + count);
    return {s};
}

std::vector<PlotSeries> rootLocusSeries(const PlotView &view)
{
    std::vector<PlotSeries> all;
    size_t traces = std::min(view.xBuffers.size(), view.yBuffers.size());
    for (size_t k = 0; k < traces; ++k) {
        size_t count = std::min(bufferPointCount(view.xBuffers[k]), bufferPointCount(view.yBuffers[k]));
        if (count == 0)
            continue;
        PlotSeries s;
        s.trace = (int)k;
        if (k < PLOT_MAX_TRACES)
            s.label = recordText(view.record->traces[k].label, sizeof view.record->traces[k].label);
        s.x.assign(view.xBuffers[k]->values, view.xBuffers[k]->values + count);
        s.y.assign(view.yBuffers[k]->values, view.yBuffers[k]->values + count);
        all.push_back(std::move(s));
    }
    return all;
}

}

std::string recordText(const char *field, size_t size)
{
    return std::string(field, strnlen(field, size));
}

PlotKind plotKindOf(const PlotRecord &record)
{
    if (record.plotKind == PLOT_KIND_ROOT_LOCUS)
        return PlotKind::RootLocus;
    if (record.flagsD & PLOT_D_NYQUIST)
        return PlotKind::Nyquist;
    return PlotKind::Frequency;
}

std::vector<PlotSeries> plotSeries(const PlotView &view)
{
    if (!view.record)
        return {};
    switch (plotKindOf(*view.record)) {
    case PlotKind::RootLocus:
        return rootLocusSeries(view);
    case PlotKind::Nyquist:
        return nyquistSeries(*view.record);
    default:
        return frequencySeries(*view.record);
    }
}

}
