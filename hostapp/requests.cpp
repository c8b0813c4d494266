/*
** hostapp/requests.cpp: the host's generic requests tervanRequest and
** tervanInternalRequest, by code.
**   tervanRequest 9: version x 10; 26: revision character; 73: open help on a topic;
**                 75: a plot trace's point buffer.
**   tervanInternalRequest 1: may the plug-in linearize now; 4: take a compensator.
** Any other code is answered 0.
*/
#include <string>

#include "host/host.h"
#include "hostapp/compensator_block.h"
#include "hostapp/host_state.h"
#include "hostapp/plots.h"
#include "platform/driver.h"

namespace {

std::string complexList(const Complex *roots, int count)
{
    std::string text;
    for (int i = 0; i < count && roots; ++i) {
        text += (i ? " " : "");
        text += "(" + std::string(floatToString(roots[i].re)) + ",";
        text += std::string(floatToString(roots[i].im)) + ")";
    }
    return text;
}

}

extern "C" {

intptr_t tervanRequest(int32_t code, intptr_t a, intptr_t b)
{
    switch (code) {
    case TERVAN_REQ_VERSION:
        return hostapp::host().version & 0xFFFF;
    case TERVAN_REQ_REVISION:
        return (uint8_t)hostapp::host().revision;
    case TERVAN_REQ_HELP:
        platform::transcriptNote("[help] file " + std::to_string(a) + " topic " + std::to_string(b));
        return 1;
    case TERVAN_REQ_PLOT_BUFFER:
        return (intptr_t)hostapp::plotPointBuffer((PlotRecord *)a, (int)b);
    default:
        return 0;
    }
}

intptr_t tervanInternalRequest(int32_t code, intptr_t a, intptr_t)
{
    switch (code) {
    case TERVAN_INTERNAL_LINEARIZE:
        return hostapp::host().internalLinearizeAnswer;
    case TERVAN_INTERNAL_COMPENSATOR: {
        const Compensator *c = (const Compensator *)a;
        if (!c)
            return 0;
        platform::transcriptNote("[compensator] gain " + std::string(floatToString(c->gain)) +
                                 " zeros " + complexList(c->zeros, c->zeroCount) +
                                 " poles " + complexList(c->poles, c->poleCount));
        hostapp::keepCompensatorDesign(*c);
        return 1;
    }
    default:
        return 0;
    }
}

}
