/* Temporary: diagram services until the diagram engine is built. */
#include "host/host.h"
extern "C" {
void iterateCandidates(BlockVisitor, intptr_t) {}
void operateNodeTree(HostBlock *, BlockVisitor, intptr_t) {}
RefPoint *getVisitedInput(HostBlock *, int) { return nullptr; }
RefPoint *getVisitedOutput(HostBlock *, int) { return nullptr; }
uint8_t isLinInputRef(RefPoint *) { return 0; }
uint8_t isLinOutputRef(RefPoint *) { return 0; }
RefPoint *getVecConnect(RefPoint *, int) { return nullptr; }
void addListMember(HostList *, void *) {}
void *removeLastMember(HostList *) { return nullptr; }
void getLinPerturbation(double *) {}
void createExecutionOrderSubGraph(HostList *) {}
void executeNodeList(HostList *) {}
int getStateDerivList(HostList *, HostList *, HostList *, HostList *) { return 0; }
void calcACMatrix(Matrix *, Matrix *, double *, HostList *, HostList *, HostList *, int, Matrix *, Matrix *, Matrix *) {}
intptr_t tvnRequest(SimStepRequest *, intptr_t) { return 0; }
}
#include "hostapp/diagram.h"
namespace hostapp {
bool loadDiagramFile(const std::string &, std::string &error) { error = "diagrams are not supported yet"; return false; }
void clearDiagram() {}
bool clickReferencePoint(const std::string &, std::string &error) { error = "no diagram"; return false; }
bool applyDiagramReferencePoints(std::string &) { return true; }
}
