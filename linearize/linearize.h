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

/* The reference lists (item 0 is the reference in use) and the blocks with state
** gathered by the last marking pass (continuous kinds 9-11; kinds 82/83). */
extern HostList outputRefList;
extern HostList inputRefList;
extern HostList stateBlockList;
extern HostList discreteBlockList;
/* The sample period of the last marked selection in seconds; 0 when continuous. */
extern double samplePeriod;

/* Shared by the files of this folder. */
extern HostList executionList;      /* the marked blocks in the host's execution order */
extern HostList stateEntryList;     /* pointers to the states' doubles */
extern HostList derivEntryList;     /* pointers to the derivatives' doubles */
/* Empties the gathered block lists and the linearizer's execution, state entry and
** derivative entry lists (counts to 0; the storage stays with the host). */
void emptyGatheredLists();
/* Marks (flag nonzero) or unmarks every block of every candidate tree; marking also
** gathers and orders the state blocks and finds samplePeriod. */
void markCandidates(intptr_t flag);
/* Which visited point collectVisited asks the host for: getVisitedInput or getVisitedOutput. */
extern RefPoint *(*visitedPointFunction)(HostBlock *candidate, int zero);
/* Visitor for iterateCandidates: appends the candidate's visited point to the HostList
** passed as argument. */
void collectVisited(HostBlock *candidate, intptr_t list);
/* Pops every item of a reference list, clearing its highlight and repainting it. */
void emptyRefList(HostList *list);
/* Sets or clears a point's highlight bit and repaints its window. */
void setHighlight(RefPoint *point, bool on);

extern "C" {
void selLinRefPoint(RefPoint *point);
void linResetRefPoints(void);
INT_PTR linearizeDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
}

/* Linearizes the selection between the reference points into stateSpaceModel;
** *periodOut receives 0 (continuous) or the sample period in seconds.  1 on success,
** 0 after a message (or quietly when the host refuses); *periodOut is then unchanged. */
int linearize(double *periodOut);
/* The double a reference point carries, or null (after a message for integer signals). */
double *referenceValue(RefPoint *point);

/* Runs the LINEARIZE dialog and its output step (command 206, after linearize). */
void linearizeCommand();

#endif
