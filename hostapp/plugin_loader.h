/*
** hostapp/plugin_loader.h: loading the plug-in library and finding its entry points.
*/
#ifndef TERVAN_PLUGIN_LOADER_H
#define TERVAN_PLUGIN_LOADER_H

#include <string>

#include "hostapp/host_state.h"

namespace hostapp {

/* fileName in the folder of the running executable (just fileName when that is unknown). */
std::string pathBesideExecutable(const std::string &fileName);

/* The plug-in beside the running executable. */
std::string defaultPluginPath();

/* dlopens the library (its host symbols resolve against this executable) and fills
** `entries`; false with a message when the library or an entry point is missing. */
bool loadPlugin(const std::string &path, PluginEntries &entries, std::string &error);

}

#endif
