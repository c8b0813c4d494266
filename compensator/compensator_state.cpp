/*
** compensator/compensator_state.cpp: the compensator record that outlives the dialog.
*/
#include "compensator/compensator.h"

Compensator currentCompensator;

void resetCompensator()
{
    currentCompensator.gain = 1.0;
    currentCompensator.zeroCount = 0;
    currentCompensator.poleCount = 0;
}
