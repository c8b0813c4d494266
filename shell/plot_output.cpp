/*
** shell/plot_output.cpp: filling the host's plot records that every analysis
** shares: frequency plot set-up, new root locus plots, and the finish (axis kinds,
** magnitude unit, bounds, show).
*/
#include "shell/plot_output.h"

#include <cmath>
#include <cstdio>
#include <cstring>

#include "host/host.h"

int32_t frequencyPlotCount = 0;
int32_t rootLocusPlotCount = 0;

static void setText(char *field, size_t size, const char *text)
{
    std::snprintf(field, size, "%s", text);
}

static void setFlag(uint8_t *flags, uint8_t bit, bool on)
{
    *flags = on ? (uint8_t)(*flags | bit) : (uint8_t)(*flags & ~bit);
}

/* Titles the plot "<titleBase><frequencyPlotCount>", labels the frequency axis in
** the frequency unit and sets the sweep: range->steps points from range->start to
** range->stop (frequency unit), step (stop - start) / (steps - 1). */
void setupFrequencyPlot(PlotRecord *plot, const char *titleBase, const RangeSettings *range)
{
    std::snprintf(plot->title, sizeof plot->title, "%s%d", titleBase, frequencyPlotCount);
    setText(plot->xLabel, sizeof plot->xLabel,
            frequencyUnit.selected == FREQUENCY_UNIT_HERTZ ? "Frequency, (Hz)" : "Frequency, (Rad/sec)");
    plot->pointIndex = 0;
    plot->pointCount = (uint32_t)range->steps;
    plot->xMin = plot->sweepStart = range->start;
    plot->xMax = plot->sweepStop = range->stop;
    /* In double arithmetic: a step count of 1 gives an infinite step, not a trap. */
    plot->sweepStep = (range->stop - range->start) / ((double)range->steps - 1.0);
    if (plot->flagsA & PLOT_A_FIXED_SWEEP) {
        plot->fixedSweepStart = range->start;
        plot->fixedSweepStop = range->stop;
    }
    plot->flagsB |= PLOT_B_FREQUENCY;
    plot->flagsA |= PLOT_A_FREQUENCY;
}

/* A new root locus plot block with traceCount trace pairs (one per branch), sized
** for the gainRange step count and titled "Root Locus-<n>" (n counts from 1). */
HostBlock *makeRootLocusPlot(int traceCount)
{
    HostBlock *block = makePlotNode(0, 300);
    if (!block)
        return nullptr;
    PlotRecord *plot = plotRecordOf(block);
    plot->flagsA |= PLOT_A_PLUGIN;
    plot->pointIndex = 0;
    plot->flagsB |= 0x04;
    plot->pointCount = (uint32_t)gainRange.steps;
    allocOverPlotBuffers(block, traceCount);
    plot->lastTraceIndex = (uint8_t)(traceCount - 1);
    plot->flagsB |= 0x10;
    plot->plotKind = PLOT_KIND_ROOT_LOCUS;
    plot->flagsA = (uint8_t)((plot->flagsA & 0x5D) | 0x22);
    ++rootLocusPlotCount;
    std::snprintf(plot->title, sizeof plot->title, "Root Locus-%d", rootLocusPlotCount);
    setText(plot->xLabel, sizeof plot->xLabel, "Real");
    setText(plot->yLabel, sizeof plot->yLabel, "Imaginary");
    setText(plot->traces[0].label, sizeof plot->traces[0].label, "real");
    setText(plot->traces[1].label, sizeof plot->traces[1].label, "Closed loop poles");
    plot->fixedSweepStart = gainRange.start;
    plot->fixedSweepStop = gainRange.stop;
    return block;
}

/* Sets the axis kinds (xLogarithmic: logarithmic x; yMagnitude: y is a magnitude
** ratio, shown logarithmically or in decibels per the magnitude unit), lets the
** host compute the bounds (boundsFlag is passed on), widens a flat curve, rounds
** the bounds and shows the plot. */
void finishPlot(HostBlock *block, uint8_t xLogarithmic, uint8_t yMagnitude, uint8_t boundsFlag)
{
    PlotRecord *plot = plotRecordOf(block);
    setFlag(&plot->flagsB, PLOT_B_LOG_Y, yMagnitude != 0);
    if (yMagnitude) {
        bool decibels = magnitudeUnit.selected == MAGNITUDE_UNIT_DECIBELS;
        setFlag(&plot->flagsC, PLOT_C_DECIBELS, decibels);
        setText(plot->yLabel, sizeof plot->yLabel, decibels ? "Magnitude (Decibels)" : "Magnitude");
    }
    for (PlotTrace &trace : plot->traces)
        trace.words[0] = trace.words[1] = 0;
    setXYPlotBounds(block, boundsFlag, 1);
    if (plot->yMax == plot->yMin) {
        if (plot->yMax == 0.0) {
            plot->yMax = 1.0;
            plot->yMin = -1.0;
        } else {
            double d = std::fabs(plot->yMax) * 0.1;
            plot->yMin -= d;
            plot->yMax += d;
        }
    }
    setFlag(&plot->flagsB, PLOT_B_LOG_X, xLogarithmic != 0);
    rescaleBounds(&plot->xMin, xLogarithmic);
    rescaleBounds(&plot->yMin, yMagnitude);
    showNode(block);
    invalidateWin(block->window);
}
