/*
** xfer/compensator_hook.cpp: where timeToFrequency hands the current transfer
** function to the compensator design dialog.
*/
#include "xfer/xfer.h"

/* The compensator design dialog is not yet available: nothing is shown and nothing is
** handed to the host. */
void runCompensatorDesign(void)
{
}
