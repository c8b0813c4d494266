/*
** hostapp/plots.h: the host's plot blocks (interface used by the rest of the host).
** A plot block is a HostBlock whose kind record is a PlotRecord; both, the trace
** point lists and the request-75 point buffers belong to the host.  A shown plot
** is written as an SVG file into the output folder (hostapp/svg_plot.cpp).
*/
#ifndef TERVAN_PLOTS_H
#define TERVAN_PLOTS_H

#include <string>
#include <vector>

#include "host/records.h"
#include "platform/winapi.h"

namespace hostapp {

/* Kind code of a plot block (one of the engine's own codes). */
inline constexpr uint8_t PLOT_BLOCK_KIND = 112;

/* The point buffer of trace (selector >> 8), coordinate (selector & 0xFF: 0 x, 1 y),
** of a plot record; null for a record that is not a plot's or a bad selector.
** Buffers missing for a trace index below MAX_PLOT_BUFFER_TRACES are created empty. */
PlotPointBuffer *plotPointBuffer(PlotRecord *plot, int selector);
inline constexpr int MAX_PLOT_BUFFER_TRACES = 4096;

/* A new plot block at (x, y) of the diagram, with one trace and an empty record. */
HostBlock *createPlotBlock(int x, int y);

/* Tells the plug-in (event 253) and frees the block with everything hung on it.
** A block that is not a plot block is ignored. */
void deletePlotBlock(HostBlock *block);

/* Frees every plot block without telling the plug-in (host reset). */
void clearPlotBlocks();

/* The live plot blocks, oldest first. */
std::vector<HostBlock *> plotBlocks();

/* True when the block is a live plot block. */
bool isPlotBlock(const HostBlock *block);

/* The name, without extension, of the files a shown plot is written to ("Nyquist",
** "Root-Locus-2"): from its title without the session counter, no blanks, unique in the
** process, kept for the plot's life.  Empty for a plot never shown. */
std::string plotFileBaseName(const HostBlock *block);

/* Name of the SVG file of the block: plotFileBaseName + ".svg" (empty: never shown). */
std::string plotFileName(const HostBlock *block);

/* Rewrites the file of a shown plot whose window this is; false when the window is
** no plot's.  Called by invalidateWin. */
bool repaintPlotWindow(HWND window);

}

#endif
