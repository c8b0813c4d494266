/*
** hostapp/plot_bounds.cpp: the host services setXYPlotBounds' bounds computation
** and rescaleBounds: data bounds of a plot and nice round axis bounds.
*/
#include "hostapp/plot_bounds.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/host.h"

namespace hostapp {

namespace {

/* Smallest and largest usable value; positive values preferred on a log axis. */
struct Extent {
    double min = INFINITY, max = -INFINITY;
    double positiveMin = INFINITY, positiveMax = -INFINITY;

    void add(double v)
    {
        if (!std::isfinite(v))
            return;
        min = std::min(min, v);
        max = std::max(max, v);
        if (v > 0) {
            positiveMin = std::min(positiveMin, v);
            positiveMax = std::max(positiveMax, v);
        }
    }

    void store(double *low, double *high, bool logarithmic) const
    {
        if (logarithmic && positiveMin <= positiveMax) {
            *low = positiveMin;
            *high = positiveMax;
        } else if (min <= max) {
            *low = min;
            *high = max;
        } else {
            *low = *high = 0.0;
        }
    }
};

/* Largest decade exponent we place bounds at, well inside the range of a double. */
constexpr double MAX_DECADE = 300.0;

void niceLinear(double *minMax)
{
    double &low = minMax[0], &high = minMax[1];
    if (!std::isfinite(low) && !std::isfinite(high)) {
        low = -1.0;
        high = 1.0;
    } else if (!std::isfinite(low)) {
        low = high;
    } else if (!std::isfinite(high)) {
        high = low;
    }
    if (low > high)
        std::swap(low, high);
    if (low == high) {
        /* A single value: a band of 10 % around it, or -1 ... 1 around zero. */
        double d = low == 0.0 ? 1.0 : std::fabs(low) * 0.1;
        low -= d;
        high += d;
    }
    double span = high - low;
    if (!std::isfinite(span) || span <= 0.0)
        return;
    double step = niceStep(span);
    /* The small tolerance keeps bounds that already sit on the step (4.5 with 0.1). */
    double first = std::floor(low / step + 1e-9) * step;
    double last = std::ceil(high / step - 1e-9) * step;
    if (std::isfinite(first) && std::isfinite(last) && first < last) {
        low = std::fabs(first) < step * 1e-9 ? 0.0 : first;
        high = std::fabs(last) < step * 1e-9 ? 0.0 : last;
    }
}

void niceLogarithmic(double *minMax)
{
    double &low = minMax[0], &high = minMax[1];
    if (low > high && std::isfinite(low) && std::isfinite(high))
        std::swap(low, high);
    /* Nothing positive to show: one decade either side of 1.  A non-positive
    ** minimum gives way to three decades below the maximum. */
    if (!(high > 0.0) || !std::isfinite(high)) {
        low = 0.1;
        high = 10.0;
        return;
    }
    if (!(low > 0.0) || !std::isfinite(low))
        low = high / 1000.0;
    double lowDecade = std::clamp(std::floor(std::log10(low) + 1e-9), -MAX_DECADE, MAX_DECADE);
    double highDecade = std::clamp(std::ceil(std::log10(high) - 1e-9), -MAX_DECADE, MAX_DECADE);
    if (highDecade <= lowDecade)
        highDecade = lowDecade + 1.0;
    low = std::pow(10.0, lowDecade);
    high = std::pow(10.0, highDecade);
}

}

double niceStep(double span)
{
    double raw = span / 10.0;
    double decade = std::pow(10.0, std::floor(std::log10(raw)));
    double fraction = raw / decade;
    double nice = fraction <= 1.0 + 1e-9 ? 1.0 : fraction <= 2.0 + 1e-9 ? 2.0 : fraction <= 5.0 + 1e-9 ? 5.0 : 10.0;
    return nice * decade;
}

void niceBounds(double *minMax, bool logarithmic)
{
    if (logarithmic)
        niceLogarithmic(minMax);
    else
        niceLinear(minMax);
}

void setBoundsFromData(PlotRecord &record, const PlotView &view)
{
    PlotKind kind = plotKindOf(record);
    bool logY = record.flagsB & PLOT_B_LOG_Y;
    Extent x, y;
    for (const PlotSeries &s : plotSeries(view)) {
        for (size_t i = 0; i < s.y.size(); ++i) {
            if (!std::isfinite(s.x[i]) || !std::isfinite(s.y[i]))
                continue;
            x.add(s.x[i]);
            y.add(s.y[i]);
        }
    }
    if (kind == PlotKind::Frequency) {
        record.xMin = std::min(record.sweepStart, record.sweepStop);
        record.xMax = std::max(record.sweepStart, record.sweepStop);
    } else {
        /* The x axis kind is set only after the bounds (a Nyquist plot still carries
        ** the logarithmic x bit of its frequency set-up here), so all x values count. */
        x.store(&record.xMin, &record.xMax, false);
    }
    y.store(&record.yMin, &record.yMax, logY);
}

}

extern "C" void rescaleBounds(double *minMax, uint8_t logarithmic)
{
    if (minMax)
        hostapp::niceBounds(minMax, logarithmic != 0);
}
