/*
** hostapp/diagram_picture.h: an SVG picture of the current diagram (the draw command):
** blocks with their id, type and main parameter, wires between numbered ports,
** compound blocks as frames around their children, the selection highlighted and the
** input and output reference points taken (the file's own, or those picked instead) marked.
**
** For programs that use the picture: every block is a <g class="block"> with id
** "block-ID" and data-block="PATH"; every port a <g class="port"> with id
** "block-ID-inN" or "block-ID-outN" and data-block, data-port ("in2"), data-dir
** ("in" or "out") and data-point ("PATH.in2", the name --input and --output take).
** ID is the path with every character but letters, digits and '-' written as _XX (hex).
*/
#ifndef TERVAN_DIAGRAM_PICTURE_H
#define TERVAN_DIAGRAM_PICTURE_H

#include <string>

namespace hostapp {

/* The SVG text of the current diagram; empty with a message when there is no diagram
** or it cannot be laid out. */
std::string diagramPictureSvg(std::string &error);

/* Writes the picture into the output folder as fileName, or, when that is empty, as
** the diagram file's name with the extension .svg; names the file in the transcript.
** False with a message when it cannot. */
bool writeDiagramPicture(const std::string &fileName, std::string &error);

}

#endif
