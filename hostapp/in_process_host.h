/*
** hostapp/in_process_host.h: a fresh stand-in host whose plug-in is linked into the same
** program (the tests, benchmarks and fuzzers) instead of loaded from libpraxa.so.
*/
#ifndef TERVAN_IN_PROCESS_HOST_H
#define TERVAN_IN_PROCESS_HOST_H

#include <string>

#include "hostapp/host_state.h"
#include "linearize/linearize.h"
#include "platform/driver.h"
#include "shell/praxa.h"

namespace hostapp {

/* Resets the host and the windowing system, hands the host the plug-in's entry points and
** records, and initializes the plug-in in a new main window. */
inline void startInProcessHost(const std::string &settingsPath, const std::string &outputDir)
{
    platform::resetWindowing();
    resetHost();
    HostState &state = host();
    state.settingsPath = settingsPath;
    state.outputDir = outputDir;
    state.plugin.init = praxaInit;
    state.plugin.command = praxaCmd;
    state.plugin.event = praxaEvent;
    state.plugin.selectRefPoint = selLinRefPoint;
    state.plugin.resetRefPoints = linResetRefPoints;
    state.plugin.model = &stateSpaceModel;
    state.plugin.samplePeriod = &samplePeriod;
    state.mainWindow = platform::createMainWindow("Tervan");
    /* The plots the plug-in remembers belonged to the host just reset. */
    bodeMagnitudePlot = bodePhasePlot = nyquistPlot = rootLocusPlot = nullptr;
    praxaInit(state.mainWindow);
}

}

#endif
