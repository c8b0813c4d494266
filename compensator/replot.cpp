/*
** compensator/replot.cpp: the Replot button of the compensator design: the Bode plots
** and the root locus of the loop, compensator times plant, into the remembered plots.
*/

#include "compensator/compensator.h"
#include "freq/frequency_response.h"
#include "host/host.h"
#include "linearize/linearize.h"
#include "rlocus/rlocus.h"
#include "shell/plot_output.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "xfer/xfer.h"

/* A root locus plot counts its traces in one byte. */
enum { MAX_LOCUS_TRACES = 256 };

/* Ascending coefficients of the loop's numerator and denominator, and the scratch of
** polyFromRoots; kept between runs and grown with grealloc. */
static double *loopNumerator;
static double *loopDenominator;
static Complex *loopScratch;

static void ensureBodePlots()
{
    if (!bodePhasePlot)
        bodePhasePlot = makePlotNode(0, 0);
    if (!bodeMagnitudePlot) {
        bodeMagnitudePlot = makePlotNode(0, 150);
        if (!bodeMagnitudePlot)
            bodeMagnitudePlot = makePlotNode(20, 200);
    }
}

/* The loop polynomials, ascending.  Sized for the larger of the two root counts so that
** an improper loop (more zeros than poles) still fits. */
static void buildLoopPolynomials()
{
    int32_t larger = loopZeroCount > loopPoleCount ? loopZeroCount : loopPoleCount;
    uint64_t entries = (uint64_t)larger + 3;
    loopScratch = (Complex *)grealloc(loopScratch, sizeof(Complex) * entries);
    loopNumerator = (double *)grealloc(loopNumerator, sizeof(double) * entries);
    loopDenominator = (double *)grealloc(loopDenominator, sizeof(double) * entries);
    for (uint64_t i = 0; i < entries; i++)
        loopNumerator[i] = loopDenominator[i] = 0.0;
    if (loopZeroCount != 0)
        polyFromRoots(loopNumerator, loopScratch, loopZeros, loopZeroCount);
    else
        loopNumerator[0] = 1.0;
    if (loopPoleCount != 0)
        polyFromRoots(loopDenominator, loopScratch, loopPoles, loopPoleCount);
}

/* The root locus plot for loopPoleCount traces: the remembered one reused whatever the
** reuse setting says, as the Root Locus command reuses it, else a new one. */
static HostBlock *locusPlotForLoop()
{
    if (!rootLocusPlot)
        return makeRootLocusPlot(loopPoleCount);
    PlotRecord *plot = plotRecordOf(rootLocusPlot);
    plot->flagsB |= 0x04;
    plot->pointCount = (uint32_t)gainRange.steps;
    allocOverPlotBuffers(rootLocusPlot, loopPoleCount);
    plot->lastTraceIndex = (uint8_t)(loopPoleCount - 1);
    return rootLocusPlot;
}

/* The locus reads the first loop pole count + 1 numerator coefficients, so a loop with up
** to two zeros more than poles is drawn from that truncated numerator as it stands.  Beyond
** that the loop is refused with a message (the arrays above are sized for it, so nothing
** overflows), as is a loop with more poles than a plot holds traces; both still get their
** Bode plots. */
static bool locusFits()
{
    if (loopZeroCount > loopPoleCount + 2) {
        winMsg("The loop has %d zeros but only %d poles: no root locus is drawn.", loopZeroCount, loopPoleCount);
        return false;
    }
    if (loopPoleCount > MAX_LOCUS_TRACES) {
        winMsg("The loop has %d poles; a root locus plot holds at most %d branches.", loopPoleCount,
               MAX_LOCUS_TRACES);
        return false;
    }
    return loopPoleCount >= 1;
}

void replotCompensatedLoop(HWND dialog)
{
    ensureBodePlots();
    readCompensator(dialog);
    setWaitCursor(1);
    double plantGain = currentXfer.gain;
    currentXfer.gain = plantGain * currentCompensator.gain;
    int32_t order = stateSpaceModel.A ? (int32_t)stateSpaceModel.A->rows : 0;
    frequencyResponse(bodePhasePlot, bodeMagnitudePlot, &frequencyRange, loopZeros, loopPoles, loopZeroCount,
                      loopPoleCount, order, 0, 0.0);

    buildLoopPolynomials();
    if (locusFits()) {
        HostBlock *plot = locusPlotForLoop();
        if (plot) {
            rootLocus(plotRecordOf(plot), loopNumerator, loopDenominator, loopPoleCount);
            finishPlot(plot, 0, 0, 0);
            rootLocusPlot = plot;
        }
    }
    currentXfer.gain = plantGain;
    setWaitCursor(0);
}
