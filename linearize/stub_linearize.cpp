/* Temporary until the linearizer is merged. */
#include "linearize/linearize.h"
StateSpaceModel stateSpaceModel;
int linearize(double *) { return 0; }
void linearizeCommand() {}
extern "C" void selLinRefPoint(RefPoint *) {}
extern "C" void linResetRefPoints(void) {}
