/*
** linearize/linearize_dialog.cpp: the Linearize dialog and the result output.
*/
#include "shell/text.h"

int16_t linOutputChoice = 0;
