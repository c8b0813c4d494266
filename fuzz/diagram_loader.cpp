/*
** fuzz/diagram_loader.cpp: the diagram file loader on arbitrary text.
*/
#include <cstddef>
#include <cstdint>
#include <string>

#include "hostapp/diagram.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string error;
    if (hostapp::loadDiagramText(std::string((const char *)data, size), "fuzz.json", error))
        hostapp::clearDiagram();
    else if (error.empty())
        __builtin_trap();   /* every refusal says why */
    return 0;
}
