/*
** hostapp/draw_entry.cpp: the C-linkage entry of libpraxa_draw.so (see host_modules.h).
*/
#include <cstdio>

#include "hostapp/diagram_picture.h"
#include "hostapp/host_modules.h"

extern "C" int praxaDrawDiagram(const char *fileName, char *error, size_t errorSize)
{
    std::string message;
    if (hostapp::writeDiagramPicture(fileName ? fileName : "", message))
        return 1;
    std::snprintf(error, errorSize, "%s", message.c_str());
    return 0;
}
