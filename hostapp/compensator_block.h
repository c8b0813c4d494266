/*
** hostapp/compensator_block.h: the diagram's compensator block as the receiver of the
** plug-in's compensator design: the design handed over (request 4, then command 255)
** replaces the block's gain, zeros and poles, and can be written back into the file.
*/
#ifndef TERVAN_COMPENSATOR_BLOCK_H
#define TERVAN_COMPENSATOR_BLOCK_H

#include <string>

#include "host/records.h"

namespace hostapp {

/* The path of the current diagram's compensator block (the first in the file), or "". */
std::string compensatorBlockPath();

/* Request 4: keeps a copy of the design until the hand-over is announced. */
void keepCompensatorDesign(const Compensator &design);

/* Command 255: puts the kept design into the compensator block and says so in the
** transcript (or why it could not); with `saveTo` not empty it also writes the block
** back into that diagram file, the rest of the file unchanged.  False when the file
** could not be written (the transcript says why). */
bool takeCompensatorDesign(const std::string &saveTo);

}

#endif
