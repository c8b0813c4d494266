/*
** xfer/compensator_hook.cpp: where timeToFrequency runs the compensator design dialog
** on the current transfer function and hands the compensator to the host on OK.
*/
#include "compensator/compensator.h"
#include "host/host.h"
#include "shell/praxa.h"
#include "xfer/xfer.h"

void runCompensatorDesign(void)
{
    if (runDialog("CompensatorDesign", compensatorDlg) != IDOK)
        return;
    /* The record stays ours and allocated; what the host does with it and with command 255
    ** is its own affair, so the answer to the request is not looked at. */
    tervanInternalRequest(TERVAN_INTERNAL_COMPENSATOR, (intptr_t)&currentCompensator, 0);
    SendMessageA(hostMainWindow, WM_COMMAND, CMD_COMPENSATOR_TO_HOST, 0);
}
