/*
** host/host.h: the services the Tervan host exports by name and the plug-in imports.
** All are called on the host's user-interface thread, inside calls the host made
** into the plug-in.  The records they exchange are declared in host/records.h.
*/
#ifndef PRAXA_HOST_H
#define PRAXA_HOST_H

#include <cstdint>

#include "host/records.h"

struct Matrix;

/* Visitor for iterateCandidates and operateNodeTree: (block, the caller's argument). */
typedef void (*BlockVisitor)(HostBlock *block, intptr_t arg);

extern "C" {

/* Memory: every block the plug-in keeps beyond a call comes from here.
** galloc never returns null in practice; grealloc(nullptr, n) allocates. */
void *galloc(uint64_t bytes);
void *grealloc(void *block, uint64_t bytes);
void gfree(void *block);

/* User messages.  The format is printf-style; %Fs stands for a string. */
void winMsg(const char *format, ...);
void debMsg(const char *format, ...);
void setBlockErr(void);
void beep(int kind);
void setWaitCursor(uint8_t on);
void invalidateWin(HWND window);

/* Settings and the current output file. */
const char *getIniFileName(void);
int fileOpen(const char *name, int flags);   /* flags: 0x301 = write, create, truncate */
void farFilePrint(const char *text);
void fileClose(void);
const char *floatToString(double value);     /* text owned by the host */

/* Diagram traversal and reference points. */
void iterateCandidates(BlockVisitor visitor, intptr_t arg);
void operateNodeTree(HostBlock *block, BlockVisitor visitor, intptr_t arg);
RefPoint *getVisitedInput(HostBlock *candidate, int zero);
RefPoint *getVisitedOutput(HostBlock *candidate, int zero);
uint8_t isLinInputRef(RefPoint *point);
uint8_t isLinOutputRef(RefPoint *point);
RefPoint *getVecConnect(RefPoint *point, int one);
void addListMember(HostList *list, void *item);
void *removeLastMember(HostList *list);

/* Linearization support. */
void getLinPerturbation(double *step);
void createExecutionOrderSubGraph(HostList *executionList);
void executeNodeList(HostList *executionList);
int getStateDerivList(HostList *stateEntries, HostList *derivEntries,
                      HostList *stateBlocks, HostList *sampledBlocks);
void calcACMatrix(Matrix *A, Matrix *C, double *output, HostList *executionList,
                  HostList *stateEntries, HostList *derivEntries, int M,
                  Matrix *B, Matrix *D, Matrix *extra);

/* Plots. */
HostBlock *makePlotNode(int x, int y);
void allocOverPlotBuffers(HostBlock *plot, int traceCount);
void preallocDList(HostList *tracePoints, uint32_t *pointIndex);
void setXYPlotBounds(HostBlock *plot, uint8_t boundsFlag, int one);
void rescaleBounds(double *minMax, uint8_t logarithmic);
void showNode(HostBlock *plot);

/* Generic requests (codes: see hostapp/requests.cpp). */
intptr_t tervanRequest(int32_t code, intptr_t a, intptr_t b);
intptr_t tervanInternalRequest(int32_t code, intptr_t a, intptr_t b);
intptr_t tvnRequest(SimStepRequest *request, intptr_t zero);

}

/* Request codes. */
enum : int32_t {
    TERVAN_REQ_VERSION = 9,
    TERVAN_REQ_REVISION = 26,
    TERVAN_REQ_HELP = 73,
    TERVAN_REQ_PLOT_BUFFER = 75,
    TERVAN_INTERNAL_LINEARIZE = 1,
    TERVAN_INTERNAL_COMPENSATOR = 4,
};
enum : intptr_t { TERVAN_HELP_FILE = 43528 };
enum : int { FILE_OPEN_WRITE_CREATE_TRUNC = 0x301 };

#endif
