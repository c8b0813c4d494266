/* Temporary until the plot output is merged. */
#include "shell/plot_output.h"
HostBlock *makeRootLocusPlot(int) { return nullptr; }
void finishPlot(HostBlock *, uint8_t, uint8_t, uint8_t) {}
