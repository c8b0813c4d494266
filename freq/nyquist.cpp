/*
** freq/nyquist.cpp: the Nyquist curve: automatic frequency range, point counts, the
** plain curve (with its optional mirror half), the curve with detours around the
** poles on the imaginary axis, and the sampled model on the unit circle.
*/
#include "freq/nyquist.h"

#include <cmath>
#include <vector>

#include "freq/pole_zero.h"
#include "host/host.h"
#include "shell/praxa.h"
#include "shell/settings.h"

double nyquistInfinity = 0.0;
int32_t arcPointCount = 0;

static const double DEFAULT_INFINITY = 10.0;
static const double HIGHEST_STOP = 100000.0;
static const double LOWEST_STOP = 1.0;
static const double LOWEST_START = 1e-6;
static const int32_t LEAST_STEPS = 1000;
static const double SAMPLED_LOWEST = 1e-4;
/* A pole this close to the unit circle lies on it. */
static const double UNIT_CIRCLE_TOLERANCE = 1e-4;

static const int64_t MOST_POINTS = NYQUIST_MOST_POINTS;

/* The one message of a run whose step count was cut to what a plot holds. */
static void noteCutSteps(int32_t steps, int32_t drawn)
{
    winMsg("Nyquist: %d steps are more than the %d points a plot holds; the curve is drawn with %d points.",
           steps, NYQUIST_MOST_POINTS, drawn);
}

void nyquistPoint(Complex s, const NyquistSystem &system, double *x, double *y)
{
    PoleZeroValue v = evalPoleZero(s, system.zeros, system.zeroCount, system.poles, system.poleCount, system.gain);
    *x = v.magnitude * std::cos(v.angle);
    *y = v.magnitude * std::sin(v.angle);
}

/* The automatic range (in the frequency unit's numbers) from the root magnitudes.
** A NaN magnitude (a failed root computation) is neither larger nor smaller than a
** clamp and stays: the curve is then undefined, but every loop on it is counted. */
static void automaticRange(const NyquistSystem &system)
{
    double stop = 10.0 * maxRootMagnitude(system.poles, system.zeros, system.poleCount, system.zeroCount);
    if (stop > HIGHEST_STOP)
        stop = HIGHEST_STOP;
    if (stop < LOWEST_STOP)
        stop = LOWEST_STOP;
    double start = 1e-5 * minRootMagnitude(system.poles, system.zeros, system.poleCount, system.zeroCount);
    if (start < LOWEST_START)
        start = LOWEST_START;
    frequencyRange.start = start;
    frequencyRange.stop = stop;
}

/* Sets the plot's point count and reserves both traces for `count` points. */
static NyquistCurve reserveTraces(PlotRecord *plot, int32_t count, double *W)
{
    plot->pointCount = (uint32_t)count;
    frequencyRange.steps = count;
    for (int k = 0; k < 2; k++) {
        preallocDList(&plot->traces[k].points, &plot->pointIndex);
        plot->traces[k].points.count = (uint32_t)count;
    }
    return NyquistCurve{W, (double *)plot->traces[0].points.items, (double *)plot->traces[1].points.items};
}

/* ---- The curve without detours ---------------------------------------------- */

static void plainCurve(const NyquistSystem &system, int32_t total, double unitFactor, NyquistCurve curve)
{
    int32_t count = negativeFrequencies ? total / 2 : total;
    double logStart = std::log10(frequencyRange.start);
    /* count, not count − 1: the last grid value stays one step below stop. */
    double step = (std::log10(frequencyRange.stop) - logStart) / count;
    curve.W[0] = 0.0;
    for (int32_t i = 1; i <= count; i++)
        curve.W[i] = std::pow(10.0, logStart + (i - 1) * step) * unitFactor;
    if (negativeFrequencies)
        for (int32_t j = 1; j <= count; j++)
            curve.W[count + j] = -curve.W[count + 1 - j];
    for (int32_t p = 1; p <= total; p++)
        nyquistPoint(Complex{0.0, curve.W[p - 1]}, system, &curve.X[p - 1], &curve.Y[p - 1]);
}

/* ---- The curve with detours ------------------------------------------------- */

/* Logarithm of a segment end (rad/s).  A detour wider than the frequency of its pole puts
** the lower edge at or below zero; such an end is taken as the range start, so that the
** segment shrinks towards the start instead of filling the curve with NaN. */
static double segmentLog(double frequency, double start)
{
    if (frequency <= 0.0)
        frequency = start;
    return std::log10(frequency);
}

/* One segment of 2h positions from `position` on: h frequencies from `from` up to `to`,
** then their negatives from −to up to −from; all in rad/s, as the detours are. */
static void fillSegment(double *W, int32_t position, int32_t h, double from, double to, double start)
{
    double logFrom = segmentLog(from, start);
    double step = h > 1 ? (segmentLog(to, start) - logFrom) / (h - 1) : 0.0;
    for (int32_t i = 0; i < h; i++) {
        W[position + i] = std::pow(10.0, logFrom + i * step);
        W[position + h + i] = -std::pow(10.0, logFrom + (h - 1 - i) * step);
    }
}

/* How many M-point pieces the detoured curve has: the detours (nJ·M), the upper
** segments (nJ·M) and, without a pole at the origin, the lower segment (M). */
static int64_t piecesOfM(int32_t jwCount, bool origin)
{
    return origin ? 2 * (int64_t)jwCount : 2 * (int64_t)jwCount + 1;
}

/* ⌊N/4⌋, lowered so that the curve of piecesOfM·M points, M = 2·nJ·⌊N/4⌋, stays within
** MOST_POINTS; 0 when not even one point per quarter fits. */
static int64_t detourQuarter(int32_t steps, int32_t jwCount, bool origin)
{
    int64_t pointsPerQuarter = piecesOfM(jwCount, origin) * 2 * jwCount;
    int64_t quarter = steps / 4;
    if (quarter * pointsPerQuarter > MOST_POINTS)
        quarter = MOST_POINTS / pointsPerQuarter;
    return quarter;
}

static void detouredCurve(const NyquistSystem &system, std::vector<double> &omega, int32_t jwCount, int32_t M,
                          int32_t total, double unitFactor, NyquistCurve curve)
{
    MessageBoxA(nullptr, " Poles detected on the imaginary axis, There will be circles at infinity", " JW-Poles",
                MB_ICONEXCLAMATION | MB_OK);
    runDialog("NYQUISTINFINITI", nyqustInfinitiDlg);

    /* The range ends are numbers in the frequency unit; the poles, detours and segments
    ** are in rad/s. */
    int32_t h = M / 2;
    double start = frequencyRange.start * unitFactor;
    double stop = frequencyRange.stop * unitFactor;
    std::vector<double> rho(jwCount + 1);
    omega[jwCount] = stop;      /* sentinel: the detour of the top pole reaches at most halfway to stop */
    rho[jwCount] = stop;
    curve.W[0] = 0.0;
    for (int32_t k = 0; k < jwCount; k++) {
        rho[k] = infinityCrossing(omega[k], (omega[k] + omega[k + 1]) / 2, system);
        infinityArc(omega[k], rho[k], h, k * M + 1, system, curve);
    }
    int32_t position = jwCount * M;
    if (!isOriginPole(omega[0])) {
        fillSegment(curve.W, position + 1, h, start, 2 * omega[0] - rho[0], start);
        position += M;
    }
    for (int32_t k = 0; k < jwCount; k++) {
        fillSegment(curve.W, position + 1, h, rho[k], 2 * omega[k + 1] - rho[k + 1], start);
        position += M;
    }
    for (int32_t p = jwCount * M + 1; p <= total; p++)
        nyquistPoint(Complex{0.0, curve.W[p]}, system, &curve.X[p - 1], &curve.Y[p - 1]);
    sortCurveBlocks(curve.W, curve.Y, curve.X, total, h);
}

double *nyquistResponse(int32_t zeroCount, int32_t poleCount, Complex *poles, Complex *zeros, PlotRecord *plot,
                        double unitFactor, double gain)
{
    NyquistSystem system{zeros, zeroCount < 0 ? 0 : zeroCount, poles, poleCount < 0 ? 0 : poleCount, gain};
    automaticRange(system);

    std::vector<double> omega(system.poleCount + 1);
    int32_t jwCount = findJwPoles(system.poles, system.poleCount, omega.data());
    bool origin = jwCount > 0 && isOriginPole(omega[0]);

    int32_t steps = frequencyRange.steps < LEAST_STEPS ? LEAST_STEPS : frequencyRange.steps;
    frequencyRange.steps = steps;

    int32_t total, M = 0;
    int64_t quarter = jwCount > 0 ? detourQuarter(steps, jwCount, origin) : 0;
    if (jwCount > 0 && quarter > 0) {
        M = (int32_t)(2 * jwCount * quarter);
        arcPointCount = M;
        total = (int32_t)(piecesOfM(jwCount, origin) * M);
    } else {
        /* More than about a thousand distinct imaginary-axis poles leave no room for
        ** detours within MOST_POINTS: the curve is then drawn without them. */
        jwCount = 0;
        total = steps > MOST_POINTS ? (int32_t)MOST_POINTS : steps;
    }

    if (steps > MOST_POINTS)
        noteCutSteps(steps, total);
    double *W = (double *)galloc((uint64_t)(total + 1) * sizeof(double));
    NyquistCurve curve = reserveTraces(plot, total, W);
    nyquistInfinity = DEFAULT_INFINITY;

    if (jwCount == 0)
        plainCurve(system, total, unitFactor, curve);
    else
        detouredCurve(system, omega, jwCount, M, total, unitFactor, curve);
    return W;
}

/* ---- The sampled model ------------------------------------------------------ */

void prepareSampledNyquist(PlotRecord *plot)
{
    nyquistInfinity = DEFAULT_INFINITY;
    /* A NaN end (a settings file may hold one) is not below the clamp and stays: its
    ** points are undefined, and every loop below is counted. */
    if (frequencyRange.stop < SAMPLED_LOWEST)
        frequencyRange.stop = 1.0;
    if (frequencyRange.start < SAMPLED_LOWEST)
        frequencyRange.start = SAMPLED_LOWEST;
    if (frequencyRange.steps < LEAST_STEPS)
        frequencyRange.steps = LEAST_STEPS;
    if (frequencyRange.steps > MOST_POINTS) {
        noteCutSteps(frequencyRange.steps, (int32_t)MOST_POINTS);
        frequencyRange.steps = (int32_t)MOST_POINTS;
    }
    reserveTraces(plot, frequencyRange.steps, nullptr);
}

void nyquistResponseSampled(int32_t zeroCount, int32_t poleCount, Complex *poles, Complex *zeros,
                            double *realTrace, double *imaginaryTrace, double unitFactor, double gain)
{
    NyquistSystem system{zeros, zeroCount < 0 ? 0 : zeroCount, poles, poleCount < 0 ? 0 : poleCount, gain};
    int32_t steps = frequencyRange.steps;
    if (steps < 1 || !realTrace || !imaginaryTrace)
        return;
    /* A pole on the unit circle (an integrator, z = 1) sends the response to infinity next
    ** to it, and a grid point on it (θ = 2π lands on z = 1 within rounding) to 1e15 and
    ** beyond, which flattens the rest of the plot.  There the curve is drawn on the circle
    ** of radius R∞ with its true phase, as the detours of a continuous model draw their
    ** circles at infinity; the part that decides stability, around −1, is untouched. */
    bool poleOnCircle = false;
    for (int32_t k = 0; k < system.poleCount; k++)
        poleOnCircle |= std::fabs(std::hypot(poles[k].re, poles[k].im) - 1.0) < UNIT_CIRCLE_TOLERANCE;
    double logStart = std::log10(frequencyRange.start);
    double step = steps > 1 ? (std::log10(frequencyRange.stop) - logStart) / (steps - 1) : 0.0;
    for (int32_t i = 0; i < steps; i++) {
        /* θ in radians per sample: the sample period does not enter. */
        double theta = std::pow(10.0, logStart + i * step) * unitFactor;
        PoleZeroValue v = evalPoleZero(Complex{std::cos(theta), std::sin(theta)}, system.zeros, system.zeroCount,
                                       system.poles, system.poleCount, system.gain);
        double magnitude = poleOnCircle && v.magnitude > nyquistInfinity ? nyquistInfinity : v.magnitude;
        realTrace[i] = magnitude * std::cos(v.angle);
        imaginaryTrace[i] = magnitude * std::sin(v.angle);
    }
}
