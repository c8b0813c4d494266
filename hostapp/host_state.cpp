/*
** hostapp/host_state.cpp: the one host state of the process.
*/
#include "hostapp/host_state.h"

#include "hostapp/diagram.h"
#include "hostapp/plots.h"

namespace hostapp {

HostState &host()
{
    static HostState state;
    return state;
}

std::string outputPath(const std::string &name)
{
    if (name.empty() || name[0] == '/' || host().outputDir.empty())
        return name;
    return host().outputDir + "/" + name;
}

void resetHost()
{
    clearDiagram();
    clearPlotBlocks();
    host() = HostState{};
}

}
