/*
** hostapp/serve_entry.cpp: the C-linkage entry of libpraxa_serve.so (see host_modules.h).
*/
#include "hostapp/host_modules.h"
#include "hostapp/serve.h"

extern "C" int praxaServeSession(const char *diagramPath, int port)
{
    return hostapp::serveSession(diagramPath ? diagramPath : "", port);
}
