/*
** compensator/compensator.h: the persistent series compensator (gain, zeros, poles)
** that the compensator design edits and that is handed to the host.
*/
#ifndef PRAXA_COMPENSATOR_H
#define PRAXA_COMPENSATOR_H

#include "host/records.h"

/* All zero at load: gain 0.0, no zeros, no poles, null arrays. */
extern Compensator currentCompensator;

/* Gain 1.0, no zeros, no poles; the arrays are kept (host event 256). */
void resetCompensator();

#endif
