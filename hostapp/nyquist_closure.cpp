/*
** hostapp/nyquist_closure.cpp: telling the circles at infinity of a Nyquist curve from
** the frequency response, by the frequencies of its points.
**
** A detoured curve runs in order of increasing frequency through pieces that meet at a
** shared point (the same frequency twice): pieces of the imaginary axis, on a
** logarithmic grid, and detours, half circles s = jw0 + r e^(j phi) with phi evenly
** spaced from -pi/2 to pi/2, whose frequencies (Im s) are w0 + r sin phi.  A piece
** whose frequencies follow that sine is a detour.
*/
#include "hostapp/nyquist_closure.h"

#include <algorithm>
#include <cmath>

namespace hostapp {

namespace {

/* Two frequencies this close (relative) are the shared point of two pieces. */
constexpr double SAME_FREQUENCY = 1e-12;
/* How far (relative to its radius) a frequency may stray from a detour's sine. */
constexpr double ON_SINE = 1e-6;

bool sameFrequency(double a, double b)
{
    return std::fabs(a - b) <= SAME_FREQUENCY * std::max(std::fabs(a), std::fabs(b));
}

/* Whether the frequencies w[first ... last] follow the sine of one detour.  Three points
** at least: two always do. */
bool isDetour(const double *w, size_t first, size_t last)
{
    size_t n = last - first + 1;
    if (n < 3)
        return false;
    double centre = (w[first] + w[last]) / 2, radius = (w[last] - w[first]) / 2;
    if (!(radius > 0))
        return false;
    double tolerance = ON_SINE * radius + SAME_FREQUENCY * std::fabs(centre);
    for (size_t j = 0; j < n; ++j) {
        double phi = -M_PI / 2 + M_PI * (double)j / (double)(n - 1);
        if (!(std::fabs(w[first + j] - (centre + radius * std::sin(phi))) <= tolerance))
            return false;
    }
    return true;
}

}

std::vector<bool> nyquistClosurePoints(const PlotRecord &record, const PlotSeries &curve)
{
    size_t count = curve.x.size();
    std::vector<bool> onCircle(count, false);
    const double *parameters = record.paramInfo ? record.paramInfo->parameters : nullptr;
    /* The parameter array holds pointCount + 1 frequencies.  Only a detoured curve
    ** starts with negative frequencies (W[1] < 0); its point i has W[i + 1]. */
    if (!parameters || count < 3 || count > record.pointCount || !(parameters[1] < 0.0))
        return onCircle;
    const double *w = parameters + 1;
    size_t first = 0;
    for (size_t i = 1; i <= count; ++i) {
        if (i < count && !sameFrequency(w[i], w[i - 1]))
            continue;
        if (isDetour(w, first, i - 1))
            for (size_t k = first; k < i; ++k)
                onCircle[k] = true;
        first = i;
    }
    return onCircle;
}

}
