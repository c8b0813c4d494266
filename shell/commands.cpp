/*
** shell/commands.cpp: praxaCmd, the handler of every menu command: the host version
** check, the settings reload, and for each analysis the linearization and the hand-over
** of the model to its analysis.
*/
#include <cctype>
#include <cmath>

#include "freq/frequency_response.h"
#include "host/host.h"
#include "linearize/linearize.h"
#include "rlocus/rlocus.h"
#include "shell/option_dialogs.h"
#include "shell/plot_output.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "xfer/xfer.h"

static const int REQUIRED_VERSION = 230;
static const double TWO_PI = 6.283185307179586;

static bool isPluginCommand(uint16_t id)
{
    switch (id) {
    case CMD_LINEARIZE: case CMD_SELECT_POINTS: case CMD_FREQUENCY_RANGE: case CMD_ROOT_LOCUS:
    case CMD_ROOT_LOCUS_OPTIONS: case CMD_FREQUENCY_RESPONSE: case CMD_TRANSFER_FUNCTION:
    case CMD_PREFERENCES: case CMD_COMPENSATOR_DESIGN: case CMD_NYQUIST: case CMD_SELECT_COMPENSATOR:
    case CMD_REUSE_PLOTS:
        return true;
    default:
        return false;
    }
}

/* Linearizes for an analysis; false (after linearize's own message, or quietly for a
** model without states) when there is nothing to analyse. */
static bool linearizeForAnalysis(double *samplePeriod)
{
    return linearize(samplePeriod) && stateSpaceModel.A && stateSpaceModel.A->rows > 0;
}

static int stateCount()
{
    return (int)stateSpaceModel.A->rows;
}

/* Limits the plot's bounds to the square of side 2m around the origin, m = ceil(|radius|). */
void clampPlotToRadius(PlotRecord *plot, double radius)
{
    double m = std::ceil(std::fabs(radius));
    if (std::fabs(plot->xMin) > m)
        plot->xMin = -m;
    if (std::fabs(plot->xMax) > m)
        plot->xMax = m;
    if (std::fabs(plot->yMin) > m)
        plot->yMin = -m;
    if (std::fabs(plot->yMax) > m)
        plot->yMax = m;
}

static void rootLocusCommand()
{
    double samplePeriod = 0.0;
    if (!linearizeForAnalysis(&samplePeriod))
        return;
    int n = stateCount();
    if (rootLocusPlot && reusePlots) {
        PlotRecord *plot = plotRecordOf(rootLocusPlot);
        plot->flagsB |= 0x04;
        plot->pointCount = (uint32_t)gainRange.steps;
        allocOverPlotBuffers(rootLocusPlot, n);
        plot->lastTraceIndex = (uint8_t)(n - 1);
    } else {
        rootLocusPlot = makeRootLocusPlot(n);
    }
    double *numerator = nullptr;
    double *denominator = nullptr;
    timeToFrequency(stateSpaceModel.A, stateSpaceModel.B, stateSpaceModel.C, stateSpaceModel.D,
                    &numerator, &denominator, nullptr, 0);
    PlotRecord *plot = plotRecordOf(rootLocusPlot);
    double radius = rootLocus(plot, numerator, denominator, n);
    finishPlot(rootLocusPlot, 0, 0, 0);
    clampPlotToRadius(plot, radius);
    invalidateWin(rootLocusPlot->window);
    gfree(numerator);
    gfree(denominator);
}

static void frequencyResponseCommand()
{
    double samplePeriod = 0.0;
    if (!linearizeForAnalysis(&samplePeriod))
        return;
    if (!reusePlots || !bodeMagnitudePlot || !bodePhasePlot) {
        bodePhasePlot = makePlotNode(0, 0);
        bodeMagnitudePlot = makePlotNode(20, 20);
    }
    frequencyResponse(bodePhasePlot, bodeMagnitudePlot, &frequencyRange, nullptr, nullptr, 0, 0, stateCount(), 0,
                      samplePeriod);
}

static void nyquistCommand()
{
    double samplePeriod = 0.0;
    if (!linearizeForAnalysis(&samplePeriod))
        return;
    nyquistPlot = makePlotNode(0, 0);
    if (samplePeriod != 0.0) {
        /* 1 Hz or 2 pi rad/s; in memory only, the next command reloads the stop. */
        double unitFactor = frequencyUnit.selected == FREQUENCY_UNIT_HERTZ ? TWO_PI : 1.0;
        double limit = TWO_PI / unitFactor;
        if (frequencyRange.stop > limit)
            frequencyRange.stop = limit;
    }
    frequencyResponse(nyquistPlot, nullptr, &frequencyRange, nullptr, nullptr, 0, 0, stateCount(), 1, samplePeriod);
}

static void transferFunctionCommand(uint8_t dialogs)
{
    double samplePeriod = 0.0;
    if (!linearizeForAnalysis(&samplePeriod))
        return;
    timeToFrequency(stateSpaceModel.A, stateSpaceModel.B, stateSpaceModel.C, stateSpaceModel.D,
                    nullptr, nullptr, nullptr, dialogs);
}

static void reusePlotsCommand()
{
    reusePlots = !reusePlots;
    CheckMenuItem(praxaMenu, CMD_REUSE_PLOTS, reusePlots ? MF_CHECKED : MF_UNCHECKED);
    WritePrivateProfileStringA(SETTINGS_SECTION, "prxReusePlots", reusePlots ? "1" : "0", getIniFileName());
}

/*
** Every menu command of the plug-in. Returns 1 when the command was handled here (also
** when it failed with a message), 0 when the id is not the plug-in's or the host is to
** carry the command out itself (234, 254).
*/
extern "C" int praxaCmd(uint16_t id)
{
    int version = (int)(tervanRequest(TERVAN_REQ_VERSION, 0, 0) & 0xFFFF);
    int revision = (signed char)(tervanRequest(TERVAN_REQ_REVISION, 0, 0) & 0xFF);
    /* tolower is only defined for non-negative characters; a negative one fails the check below. */
    if (revision >= 0)
        revision = std::tolower(revision);

    if (id < CMD_LINEARIZE || id > CMD_REUSE_PLOTS)
        return 0;
    if (id == CMD_ABOUT) {
        runDialog("PRX_BANNER", praxaAbout);
        return 1;
    }
    if (!isPluginCommand(id))
        return 0;
    if (version != REQUIRED_VERSION || revision < 0) {
        winMsg("Praxa requires version %s.%02d of Tervan but you've got version %d.%d.%02d", "23.0", 0,
               version / 10, version % 10, revision);
        return 1;
    }
    loadRangeSettings();
    setWaitCursor(1);

    switch (id) {
    case CMD_SELECT_POINTS:
    case CMD_SELECT_COMPENSATOR:
        return 0;
    case CMD_LINEARIZE: {
        double samplePeriod = 0.0;
        linearize(&samplePeriod);
        linearizeCommand();
        return 1;
    }
    case CMD_ROOT_LOCUS:
        rootLocusCommand();
        return 1;
    case CMD_FREQUENCY_RESPONSE:
        frequencyResponseCommand();
        return 1;
    case CMD_NYQUIST:
        nyquistCommand();
        return 1;
    case CMD_TRANSFER_FUNCTION:
        transferFunctionCommand(XFER_SHOW_INFO);
        return 1;
    case CMD_COMPENSATOR_DESIGN:
        transferFunctionCommand(XFER_SHOW_COMPENSATOR);
        return 1;
    case CMD_FREQUENCY_RANGE:
        editedRange = &frequencyRange;
        runDialog("PRX_OPTIONS", freqOptionDlg);
        return 1;
    case CMD_ROOT_LOCUS_OPTIONS:
        editedRange = &gainRange;
        runDialog("PRX_OPTIONS", freqOptionDlg);
        return 1;
    case CMD_PREFERENCES:
        runDialog("PRX_Preferences", prefDlgFun);
        return 1;
    case CMD_REUSE_PLOTS:
        reusePlotsCommand();
        return 1;
    default:
        return 0;
    }
}
