/*
** linearize/linearize.h: reference points, the linearizer and the Linearize dialog.
*/
#ifndef PRAXA_LINEARIZE_H
#define PRAXA_LINEARIZE_H

#include <cstdint>

#include "host/records.h"
#include "numeric/matrix.h"
#include "platform/winapi.h"

/* The model of the last successful linearization: A n x n, B n x 1, C 1 x n, D 1 x 1. */
struct StateSpaceModel {
    Matrix *A;
    Matrix *B;
    Matrix *C;
    Matrix *D;
};
extern StateSpaceModel stateSpaceModel;

extern HostList outputRefList;
extern HostList inputRefList;
extern HostList stateBlockList;
extern HostList discreteBlockList;

extern "C" {
void selLinRefPoint(RefPoint *point);
void linResetRefPoints(void);
INT_PTR linearizeDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
}

/* Linearizes the marked selection into stateSpaceModel; *samplePeriod receives 0
** (continuous) or the sample period in seconds.  1 on success, 0 after a message. */
int linearize(double *samplePeriod);

/* Runs the LINEARIZE dialog and its output step (command 206, after linearize). */
void linearizeCommand();

#endif
