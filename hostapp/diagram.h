/*
** hostapp/diagram.h: the current diagram of the host (interface for the rest of the host).
*/
#ifndef TERVAN_DIAGRAM_H
#define TERVAN_DIAGRAM_H

#include <string>

namespace hostapp {

/* Loads a diagram file as the current diagram; false with a message naming the problem. */
bool loadDiagramFile(const std::string &path, std::string &error);
void clearDiagram();
/* A user's click on BLOCK.PORT in point-selection mode (reported to the plug-in). */
bool clickReferencePoint(const std::string &blockDotPort, std::string &error);
/* The diagram's own input and output entries, applied as clicks (output first). */
bool applyDiagramReferencePoints(std::string &error);

}

#endif
