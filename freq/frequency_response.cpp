/*
** freq/frequency_response.cpp: frequencyResponse, the common entry of the Bode and the
** Nyquist runs (plot set-up, range checks, the factored transfer function), and
** bodeResponse, the Bode magnitude and phase on a logarithmic grid.
*/
#include "freq/frequency_response.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "freq/margins.h"
#include "freq/nyquist.h"
#include "freq/pole_zero.h"
#include "host/host.h"
#include "linearize/linearize.h"
#include "shell/plot_output.h"
#include "xfer/xfer.h"

static const double TWO_PI = 6.283185307179586;
static const double DEGREES_PER_RADIAN = 57.29577951308232;
static const double ON_POLE_MARKER = -1000.0;   /* magnitude of a grid point that lies on a pole */
static const double ON_POLE_LIMIT = 1e-99;      /* |prod(s - p)| below this: s lies on a pole */

static void setText(char *field, size_t size, const char *text)
{
    std::snprintf(field, size, "%s", text);
}

static void nameTraceIfUnnamed(PlotTrace *trace, const char *name)
{
    if (trace->label[0] == '\0')
        setText(trace->label, sizeof trace->label, name);
}

/* Reserves trace k of the plot for the range's points; returns its doubles (point p at
** element p - 1), null when nothing could be reserved. */
static double *reserveTrace(PlotRecord *plot, int k, int32_t steps)
{
    PlotTrace *trace = &plot->traces[k];
    preallocDList(&trace->points, &plot->pointIndex);
    trace->points.count = (uint32_t)steps;
    return (double *)trace->points.items;
}

static void setupBodePlots(PlotRecord *phasePlot, PlotRecord *magnitudePlot, const RangeSettings *range)
{
    ++frequencyPlotCount;
    setupFrequencyPlot(phasePlot, "Bode-Phase", range);
    setupFrequencyPlot(magnitudePlot, "Bode-Magnitude", range);
    setText(phasePlot->yLabel, sizeof phasePlot->yLabel,
            phaseUnit.selected == PHASE_UNIT_DEGREES ? "Phase, (Deg)" : "Phase, (Radians)");
    nameTraceIfUnnamed(&magnitudePlot->traces[0], "Magnitude");
    nameTraceIfUnnamed(&phasePlot->traces[0], "Phase");
    reserveTrace(magnitudePlot, 0, range->steps);
    reserveTrace(phasePlot, 0, range->steps);
}

/* The two Nyquist bits (0x02 of flags A, 0x20 of flags D) mean what the host makes of
** them; the plug-in only sets them (setupFrequencyPlot then copies the fixed sweep). */
static void setupNyquistPlot(PlotRecord *plot, const RangeSettings *range)
{
    plot->flagsA |= PLOT_A_FIXED_SWEEP;
    setupFrequencyPlot(plot, "Nyquist", range);
    /* The curve's own count replaces this one; a count beyond what a plot holds is cut
    ** there, with one message, and must not make the host refuse these first reservations. */
    if (range->steps > NYQUIST_MOST_POINTS)
        plot->pointCount = (uint32_t)NYQUIST_MOST_POINTS;
    plot->flagsD |= PLOT_D_NYQUIST;
    plot->yLabel[0] = '\0';
    nameTraceIfUnnamed(&plot->traces[1], "Imaginary");
    nameTraceIfUnnamed(&plot->traces[0], "Real");
    reserveTrace(plot, 0, range->steps);
    reserveTrace(plot, 1, range->steps);
}

/* True when the range can be swept; false after the message for a negative or a zero
** end (a NaN end passes both tests). */
static bool rangeIsUsable(const RangeSettings *range)
{
    if (range->start < 0 || range->stop < 0) {
        winMsg("Start and End frequencies must be positive non-zero values.\n"
               "Please change them in the Tervan/Praxa Frequency Range settings.");
        return false;
    }
    if (range->start == 0 || range->stop == 0) {
        winMsg("You are starting (OR) ending at a frequency of zero.\n"
               "Instead, try using small values such as 1.0E-4 in the Tervan/Praxa Frequency Range settings.\n");
        return false;
    }
    return true;
}

/* The factored transfer function a run evaluates.  Lists computed here are owned by
** the record and released by releaseFactors. */
struct Factors {
    Complex *zeros;
    Complex *poles;
    int32_t zeroCount;
    int32_t poleCount;
    double gain;
    Complex *ownedZeros;
    Complex *ownedPoles;
};

/* True when every element of C's first row and of B's first column is exactly 0. */
static bool noPathThroughStates(const Matrix *B, const Matrix *C)
{
    uint32_t cCols = C->cols ? C->cols : 1;
    for (uint32_t j = 0; j < cCols; j++)
        if (C->data[j * C->rows] != 0.0)
            return false;
    for (uint32_t i = 0; i < B->rows; i++)
        if (B->data[i] != 0.0)
            return false;
    return true;
}

/* Zeros, poles and gain of stateSpaceModel (or the substitute system with the constant
** response D when no path leads through the states).  False when there is no model. */
static bool factorsOfModel(Factors *f)
{
    const StateSpaceModel &m = stateSpaceModel;
    if (!m.A || !m.B || !m.C || !m.D || m.A->rows == 0)
        return false;
    uint32_t n = m.A->rows;
    /* Room for n + 1 roots each (the substitute system needs one). */
    f->ownedZeros = (Complex *)galloc((uint64_t)(n + 1) * sizeof(Complex));
    f->ownedPoles = (Complex *)galloc((uint64_t)(n + 1) * sizeof(Complex));
    f->zeros = f->ownedZeros;
    f->poles = f->ownedPoles;
    if (noPathThroughStates(m.B, m.C)) {
        /* (s + 1)/(s + 1): the response is the feed-through D alone. */
        f->zeros[0] = {-1.0, 0.0};
        f->poles[0] = {-1.0, 0.0};
        f->zeroCount = f->poleCount = 1;
        f->gain = m.D->data[0];
        return true;
    }
    double *numerator = (double *)galloc((uint64_t)(n + 2) * sizeof(double));
    double *denominator = (double *)galloc((uint64_t)(n + 2) * sizeof(double));
    Polynomial numeratorPoly = {0, numerator}, denominatorPoly = {0, denominator};
    stateToZeros(m.A, m.B, m.C, m.D, f->zeros, &numeratorPoly);
    stateToPoles(m.A, f->poles, &denominatorPoly);
    f->zeroCount = numeratorPoly.count - 1;
    f->poleCount = denominatorPoly.count - 1;
    f->gain = xferGain(m.A, m.B, m.C, m.D, f->poles, f->zeros, f->zeroCount, f->poleCount);
    gfree(numerator);
    gfree(denominator);
    return true;
}

static void releaseFactors(Factors *f)
{
    gfree(f->ownedZeros);
    gfree(f->ownedPoles);
}

/* Hangs the Nyquist frequency array on the plot's PlotParamInfo, allocating the record
** when the plot has none; W then belongs to the plot. */
static void attachFrequencies(PlotRecord *plot, double *frequencies)
{
    if (!plot->paramInfo) {
        plot->paramInfo = (PlotParamInfo *)galloc(sizeof(PlotParamInfo));
        /* A fresh record carries no root counts or branches: zero, not heap garbage. */
        std::memset(plot->paramInfo, 0, sizeof(PlotParamInfo));
    }
    plot->paramInfo->parameters = frequencies;
}

/* The sampled Nyquist curve: normalized frequencies from at least 1e-4 to the (already
** limited) stop, at least 1000 points, written back into frequencyRange. */
static void sampledNyquist(PlotRecord *plot, const Factors *f, double unitFactor)
{
    prepareSampledNyquist(plot);
    double *realTrace = (double *)plot->traces[0].points.items;
    double *imaginaryTrace = (double *)plot->traces[1].points.items;
    nyquistResponseSampled(f->zeroCount, f->poleCount, f->poles, f->zeros, realTrace, imaginaryTrace, unitFactor,
                           f->gain);
}

/* Every point of a response takes a product over the poles and zeros: a run of more
** points × states than this (measured: 15 s at 1000 states, 38 s at 64 states and the most
** points) is refused, as a step count in the millions on a model of hundreds of states
** would keep the host busy for minutes. */
static const int64_t MOST_POINT_STATES = int64_t(1) << 28;

static bool workFits(const char *analysis, int64_t points, int32_t order)
{
    if (points * order <= MOST_POINT_STATES)
        return true;
    winMsg("%s: %lld points for %d states are more than a plot takes (%lld points times states); "
           "choose fewer steps.", analysis, (long long)points, order, (long long)MOST_POINT_STATES);
    return false;
}

void frequencyResponse(HostBlock *primaryPlot, HostBlock *magnitudePlot, RangeSettings *range, Complex *zeros,
                       Complex *poles, int32_t zeroCount, int32_t poleCount, int32_t order, uint8_t nyquist,
                       double samplePeriod)
{
    PlotRecord *primary = plotRecordOf(primaryPlot);
    PlotRecord *magnitude = nyquist ? nullptr : plotRecordOf(magnitudePlot);
    if (nyquist)
        setupNyquistPlot(primary, range);
    else
        setupBodePlots(primary, magnitude, range);

    double unitFactor = frequencyUnit.selected == FREQUENCY_UNIT_HERTZ ? TWO_PI : 1.0;
    if (order < 1 || range->steps < 2)
        return;
    if (!rangeIsUsable(range))
        return;
    /* Bode points the host could not reserve are refused by the host already. */
    int64_t points = nyquist ? std::min<int64_t>(std::max(range->steps, 1000), NYQUIST_MOST_POINTS) : range->steps;
    bool reserved = nyquist || (magnitude->traces[0].points.items && primary->traces[0].points.items);
    if (reserved && !workFits(nyquist ? "Nyquist" : "Bode", points, order))
        return;

    Factors f = {};
    if (poles) {
        f.zeros = zeros;
        f.poles = poles;
        f.zeroCount = zeroCount;
        f.poleCount = poleCount;
        f.gain = currentXfer.gain;
    } else if (!factorsOfModel(&f)) {
        return;
    }

    if (!nyquist) {
        double *magnitudes = (double *)magnitude->traces[0].points.items;
        double *phases = (double *)primary->traces[0].points.items;
        if (magnitudes && phases) {
            bodeResponse(f.zeroCount, f.poleCount, f.poles, f.zeros, magnitudes, phases, unitFactor, f.gain,
                         samplePeriod);
            finishPlot(magnitudePlot, 1, 1, 255);
            finishPlot(primaryPlot, 1, 0, 255);
        }
    } else if (samplePeriod == 0.0) {
        double *frequencies = nyquistResponse(f.zeroCount, f.poleCount, f.poles, f.zeros, primary, unitFactor, f.gain);
        attachFrequencies(primary, frequencies);
        primary->flagsA |= PLOT_A_FIXED_SWEEP;
        primary->flagsD |= PLOT_D_NYQUIST;
        finishPlot(primaryPlot, 0, 0, 0);
    } else {
        sampledNyquist(primary, &f, unitFactor);
        primary->flagsA |= PLOT_A_FIXED_SWEEP;
        finishPlot(primaryPlot, 0, 0, 0);
    }
    releaseFactors(&f);
}

void bodeResponse(int32_t zeroCount, int32_t poleCount, const Complex *poles, const Complex *zeros,
                  double *magnitude, double *phase, double unitFactor, double gain, double samplePeriod)
{
    int32_t n = frequencyRange.steps;
    BodeGrid grid;
    grid.log10Start = std::log10(frequencyRange.start);
    grid.step = (std::log10(frequencyRange.stop) - grid.log10Start) / (n - 1);
    grid.unitFactor = unitFactor;

    marginTrackerStart();
    for (int32_t i = 1; i <= n; i++) {
        double omega = gridFrequency(&grid, i);
        Complex s;
        if (samplePeriod == 0.0) {
            s = {0.0, omega};
        } else {
            double theta = omega * samplePeriod;
            s = {std::cos(theta), std::sin(theta)};
        }
        PoleZeroValue value = evalPoleZero(s, zeros, zeroCount, poles, poleCount, gain);
        double *m = &magnitude[i - 1];
        *m = poleCount > 0 && value.denominatorMagnitude < ON_POLE_LIMIT ? ON_POLE_MARKER : value.magnitude;
        phase[i - 1] = value.angle;
        /* A point on a pole takes its neighbour's magnitude. */
        if (i >= 2 && *m == ON_POLE_MARKER)
            *m = magnitude[i - 2];
        if (i == 2 && magnitude[0] == ON_POLE_MARKER)
            magnitude[0] = magnitude[1];
        marginTrackerPoint(i, *m, phase[i - 1]);
    }
    marginTrackerFinish(&grid, magnitude, phase);

    double phaseFactor = phaseUnit.selected == PHASE_UNIT_DEGREES ? DEGREES_PER_RADIAN : 1.0;
    for (int32_t i = 0; i < n; i++)
        phase[i] *= phaseFactor;
    showMargins();
}
