/*
** hostapp/diagram.h: the current diagram of the host (interface for the rest of the host).
** One diagram is open at a time.  Its file format is described in examples/README.md;
** points are named BLOCK.PORT: "blk" or "blk.out" output 1, "blk.outN" output N,
** "blk.in" input 1, "blk.N" or "blk.inN" input N, and "outer/inner" names a nested block.
*/
#ifndef TERVAN_DIAGRAM_H
#define TERVAN_DIAGRAM_H

#include <functional>
#include <string>
#include <vector>

#include "host/records.h"

namespace hostapp {

/* Loads a diagram file as the current diagram, evaluated once at time 0 from its
** initial states.  False with a message "FILE:LINE: what" (or "FILE: what") naming the
** block, wire or entry at fault; the previous diagram then stays.  A replaced diagram's
** points are taken from the plug-in first (its resetRefPoints entry). */
bool loadDiagramFile(const std::string &path, std::string &error);
/* The same from a text; `name` stands for the file name in messages. */
bool loadDiagramText(const std::string &text, const std::string &name, std::string &error);
/* Closes the current diagram (after the plug-in's resetRefPoints, when it has one). */
void clearDiagram();

/* The user selects other blocks: top-level ids, in the order the candidates are
** visited; an empty list selects every block.  False with a message for an unknown id. */
bool selectBlocks(const std::vector<std::string> &ids, std::string &error);

/* A user's click on BLOCK.PORT in point-selection mode: resolves the point and reports
** it to the plug-in (selectRefPoint).  False with a message when there is no such point. */
bool clickReferencePoint(const std::string &blockDotPort, std::string &error);
/* The diagram's own "output" and "input" entries, applied as clicks, output first.
** Call once after the plug-in is loaded (a second click on a point takes it away). */
bool applyDiagramReferencePoints(std::string &error);

/* A --input/--output pick: refused, with a message naming points that would do, when
** the point cannot be that reference of the selection; else clicked (a point already
** highlighted is left as it is, as a second click would take it away). */
bool pickReferencePoint(const std::string &blockDotPort, bool asInput, std::string &error);
/* The highlighted reference points, "input ctrl.1, output motor.out"; "" when none. */
std::string highlightedReferencePoints();
/* Why an analysis between the highlighted points has nothing to show (no states, or an
** input that does not reach the output at the operating point); "" when it has. */
std::string emptyAnalysisReason();

/* The records the plug-in sees, by name (null when there is none). */
HostBlock *diagramBlock(const std::string &path);
RefPoint *diagramPoint(const std::string &blockDotPort);

/* What the host shows on the diagram: the selected top-level blocks, and the points the
** plug-in highlighted (its reference points) named as BLOCK.inN or BLOCK.outN. */
std::vector<std::string> selectedBlockIds();
std::vector<std::string> highlightedPoints();

/* Every signal value, state and state derivative (or next state) of the current
** diagram in a fixed order: two snapshots compare equal when nothing changed. */
std::vector<double> diagramValues();
/* Simulation-step requests (tvnRequest code 8) answered since the diagram was loaded. */
int simulationStepRequests();
/* Called at every simulation-step request of the current diagram (null: none). */
void setSimulationStepObserver(std::function<void()> observer);

}

#endif
