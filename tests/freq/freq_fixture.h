/*
** tests/freq/freq_fixture.h: a fresh host with the plug-in for the frequency-response
** tests: the grid and its crossovers, default units and range, two Bode plot blocks, runs
** on handed-in root lists, and the margins dialogs counted in the transcript.
*/
#ifndef PRAXA_TESTS_FREQ_FIXTURE_H
#define PRAXA_TESTS_FREQ_FIXTURE_H

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "freq/frequency_response.h"
#include "host/host.h"
#include "hostapp/host_state.h"
#include "linearize/linearize.h"
#include "platform/driver.h"
#include "resources/prxdlg.h"
#include "shell/plot_output.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "support.h"
#include "support/plugin_plot.h"
#include "xfer/xfer.h"

namespace freqtest {

using namespace testing_support;

/* The crossover point of f (on frequencies) on the N-point grid from start to stop: the
** last point before a step whose ends lie on both sides of the level or start on it. */
template <typename F> int crossoverPoint(F f, double level, int n = 50, double start = 0.1, double stop = 100.0)
{
    int found = -1;
    for (int k = 2; k <= n; k++) {
        double a = f(gridPoint(k - 1, n, start, stop)), b = f(gridPoint(k, n, start, stop));
        if ((a > level && b <= level) || a == level || (a < level && b >= level))
            found = k - 1;
    }
    return found;
}

class FreqTest : public PluginTest {
protected:
    HostBlock *phasePlot = nullptr;
    HostBlock *magnitudePlot = nullptr;

    /* A Bode run of K prod(s - z) / prod(s - p) into two new plots (no root lists: of the
    ** model in stateSpaceModel), for a model of `order` states. */
    void bode(double K, std::vector<Complex> zeros, std::vector<Complex> poles, int32_t order = 1)
    {
        phasePlot = makePlotNode(0, 0);
        magnitudePlot = makePlotNode(20, 20);
        currentXfer.gain = K;
        bool fromModel = zeros.empty() && poles.empty();
        zeros.push_back({0, 0});    /* room for one more, as the lists handed in have */
        poles.push_back({0, 0});
        frequencyResponse(phasePlot, magnitudePlot, &frequencyRange, zeros.data(), fromModel ? nullptr : poles.data(),
                          (int32_t)zeros.size() - 1, (int32_t)poles.size() - 1, order, 0, 0.0);
    }

    static std::vector<double> points(HostBlock *plot, int trace = 0)
    {
        return tracePoints(plotRecordOf(plot), trace);
    }
    std::vector<double> magnitudes() const { return points(magnitudePlot); }
    std::vector<double> phases() const { return points(phasePlot); }

    static int marginDialogCount() { return transcriptCount("[dialog] Phase and Gain Margins"); }
};

}

#endif
