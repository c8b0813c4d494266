/*
** hostapp/plugin_loader.cpp: dlopen of libpraxa.so and dlsym of its exported entry points.
*/
#include "hostapp/plugin_loader.h"

#include <dlfcn.h>
#include <unistd.h>

#include <climits>

namespace hostapp {

std::string pathBesideExecutable(const std::string &fileName)
{
    char self[PATH_MAX];
    ssize_t length = readlink("/proc/self/exe", self, sizeof self - 1);
    if (length <= 0)
        return fileName;
    std::string path(self, (size_t)length);
    return path.substr(0, path.rfind('/') + 1) + fileName;
}

std::string defaultPluginPath()
{
    return pathBesideExecutable("libpraxa.so");
}

template <typename Function>
static bool findEntry(void *library, const char *name, Function &entry, std::string &error)
{
    entry = reinterpret_cast<Function>(dlsym(library, name));
    if (!entry)
        error = std::string("the plug-in does not export ") + name + "; give the Praxa plug-in library with --plugin";
    return entry != nullptr;
}

bool loadPlugin(const std::string &path, PluginEntries &entries, std::string &error)
{
    /* Never closed: the plug-in stays loaded for the life of the host. */
    void *library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        const char *reason = dlerror();
        error = "cannot load plug-in " + path + ": " + (reason ? reason : "unknown error") + "; give the plug-in library with --plugin";
        return false;
    }
    return findEntry(library, "praxaInit", entries.init, error) &&
           findEntry(library, "praxaCmd", entries.command, error) &&
           findEntry(library, "praxaEvent", entries.event, error) &&
           findEntry(library, "selLinRefPoint", entries.selectRefPoint, error) &&
           findEntry(library, "linResetRefPoints", entries.resetRefPoints, error) &&
           findEntry(library, "stateSpaceModel", entries.model, error) &&
           findEntry(library, "samplePeriod", entries.samplePeriod, error);
}

}
