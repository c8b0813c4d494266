/* Temporary: plot services until the plot blocks are built. */
#include "host/host.h"
#include "hostapp/plots.h"
namespace hostapp { PlotPointBuffer *plotPointBuffer(PlotRecord *, int) { return nullptr; } }
extern "C" {
HostBlock *makePlotNode(int, int) { return nullptr; }
void allocOverPlotBuffers(HostBlock *, int) {}
void preallocDList(HostList *, uint32_t *) {}
void setXYPlotBounds(HostBlock *, uint8_t, int) {}
void rescaleBounds(double *, uint8_t) {}
void showNode(HostBlock *) {}
}
