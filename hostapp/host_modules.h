/*
** hostapp/host_modules.h: the host's optional modules beside the executable. The web page
** of `praxa serve` (libpraxa_serve.so, with the HTTP server) and the diagram picture of
** `draw` (libpraxa_draw.so, with Graphviz) are loaded only when those commands run, so the
** everyday commands start without either library. A module's calls into the host resolve
** against this executable, as the plug-in's do.
**
** Each module exports one C-linkage entry:
**   libpraxa_draw.so:  int praxaDrawDiagram(const char *fileName, char *error, size_t errorSize)
**       writes the picture of the current diagram into the output folder (fileName empty:
**       the diagram's name with .svg); 1 when written, 0 with a message in `error`.
**   libpraxa_serve.so: int praxaServeSession(const char *diagramPath, int port)
**       serves the session as a web page until stopped; returns the exit status.
*/
#ifndef TERVAN_HOST_MODULES_H
#define TERVAN_HOST_MODULES_H

#include <cstddef>
#include <string>

/* Defined by the modules, never by the executable: it only finds them with dlsym. */
extern "C" int praxaDrawDiagram(const char *fileName, char *error, size_t errorSize);
extern "C" int praxaServeSession(const char *diagramPath, int port);

namespace hostapp {

/* The draw command through libpraxa_draw.so; false with a message when the module cannot
** be loaded or the picture cannot be written. */
bool drawDiagramWithModule(const std::string &fileName, std::string &error);

/* `praxa serve` through libpraxa_serve.so; a missing module is a message on standard
** error and exit status 2, as when the port cannot be had. */
int serveWithModule(const std::string &diagramPath, int port);

}

#endif
