/*
** compensator/replot.cpp: the Replot button of the compensator design: the Bode plots
** and the root locus of the loop, compensator times plant, into the remembered plots.
*/

#include <cmath>
#include <cstdio>

#include "compensator/compensator.h"
#include "freq/frequency_response.h"
#include "host/host.h"
#include "linearize/linearize.h"
#include "rlocus/rlocus.h"
#include "shell/plot_output.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "shell/text.h"
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

/* The root locus of a loop with more zeros than poles would have branches coming in from
** infinity at K = 0; such a loop is refused with a message (it still gets its Bode plots),
** as is a loop with more poles than a plot holds traces. */
static bool locusFits()
{
    if (loopZeroCount > loopPoleCount) {
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

/* A complex root typed without its conjugate would describe a loop with complex
** coefficients: the Bode plots would use the root as typed and the locus the real parts
** of its polynomial.  The conjugate is added to the loop (said in a message), so that both
** describe the same real loop; the compensator itself keeps what was typed. */
static void completeConjugates(Complex **roots, int32_t *count, const char *kind)
{
    int32_t original = *count;
    for (int32_t i = 0; i < original; i++) {
        const Complex &r = (*roots)[i];
        if (r.im == 0.0 || !std::isfinite(r.im))
            continue;
        int32_t same = 0, mirrored = 0;
        for (int32_t k = 0; k < *count; k++) {
            const Complex &o = (*roots)[k];
            same += o.re == r.re && o.im == r.im;
            mirrored += o.re == r.re && o.im == -r.im;
        }
        if (mirrored >= same)
            continue;
        *roots = (Complex *)grealloc(*roots, sizeof(Complex) * ((uint64_t)*count + 2));
        Complex conjugate{(*roots)[i].re, -(*roots)[i].im};
        (*roots)[(*count)++] = conjugate;
        char text[64];
        std::snprintf(text, sizeof text, "%s", complexToText(&conjugate));
        winMsg("The %s %s has no conjugate; %s is added to the loop.", kind, complexToText(&(*roots)[i]), text);
    }
}

void replotCompensatedLoop(HWND dialog)
{
    ensureBodePlots();
    readCompensator(dialog);
    completeConjugates(&loopZeros, &loopZeroCount, "zero");
    completeConjugates(&loopPoles, &loopPoleCount, "pole");
    setWaitCursor(1);
    double plantGain = currentXfer.gain;
    double loopGain = plantGain * currentCompensator.gain;
    currentXfer.gain = loopGain;
    int32_t order = stateSpaceModel.A ? (int32_t)stateSpaceModel.A->rows : 0;
    frequencyResponse(bodePhasePlot, bodeMagnitudePlot, &frequencyRange, loopZeros, loopPoles, loopZeroCount,
                      loopPoleCount, order, 0, 0.0);

    buildLoopPolynomials();
    if (locusFits()) {
        HostBlock *plot = locusPlotForLoop();
        if (plot) {
            /* The locus of the whole loop, with its gain (a negative one gives the locus of
            ** negative gains, as in the Bode plots) and its roots for box and top gain. */
            rootLocusOfLoop(plotRecordOf(plot), loopNumerator, loopDenominator, loopPoleCount, loopGain, loopZeros,
                            loopZeroCount, loopPoles, loopPoleCount);
            finishPlot(plot, 0, 0, 0);
            rootLocusPlot = plot;
        }
    }
    currentXfer.gain = plantGain;
    setWaitCursor(0);
}
