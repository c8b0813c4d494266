/*
** hostapp/report_command.h: the report command: the plug-in linearizes the selection
** as its Linearize command does, and the report of analysis/ is made on that model.
*/
#ifndef TERVAN_REPORT_COMMAND_H
#define TERVAN_REPORT_COMMAND_H

#include <string>

#include "analysis/report.h"

namespace hostapp {

/* Runs the plug-in's Linearize command with its dialog cancelled and copies the model
** it computed into *model.  false when the plug-in did not linearize (its messages are
** then in the transcript) or is not loaded. */
bool linearizeSelection(analysis::Model *model);

/* The report on the selection of the loaded diagram, as text or JSON, into *out; false
** with *error set when the selection could not be linearized. */
bool selectionReport(bool json, std::string *out, std::string *error);

}

#endif
