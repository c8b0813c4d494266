/*
** hostapp/host_state.h: the state of the stand-in Tervan host.
** One host per process, as with the real application: its version, its settings
** file, its output folder, its main window and the entry points of the loaded plug-in.
*/
#ifndef TERVAN_HOST_STATE_H
#define TERVAN_HOST_STATE_H

#include <cstdint>
#include <string>

#include "host/records.h"
#include "platform/winapi.h"

struct StateSpaceModel;

namespace hostapp {

/* The plug-in's exported entry points, found by name (dlsym) or linked directly (tests). */
struct PluginEntries {
    HMENU (*init)(HWND mainWindow) = nullptr;
    int (*command)(uint16_t id) = nullptr;
    int (*event)(int32_t code, intptr_t arg) = nullptr;
    void (*selectRefPoint)(RefPoint *point) = nullptr;
    void (*resetRefPoints)() = nullptr;
    /* The plug-in's last linearized model and its sample period (read by report). */
    const StateSpaceModel *model = nullptr;
    const double *samplePeriod = nullptr;
};

struct HostState {
    int version = 230;                  /* version times ten */
    int revision = 0;                   /* revision character */
    std::string settingsPath;           /* the private-profile settings file */
    std::string outputDir = ".";        /* result files and plots go here */
    HWND mainWindow = nullptr;
    PluginEntries plugin;
    bool waitCursor = false;
    int beeps = 0;
    int repaints = 0;                   /* invalidateWin calls */
    uint64_t lastAllocationBytes = 0;   /* size of the last galloc/grealloc */
    int blockErrors = 0;
    int internalLinearizeAnswer = 1;    /* answer to internal request 1 */
    int linearizations = 0;             /* calcACMatrix runs that filled A and C */
    std::string currentOutputFile;      /* path of the file fileOpen opened, empty when none */
};

HostState &host();

/* Resolves a file name the plug-in gives against the output folder. */
std::string outputPath(const std::string &name);

/* Restores the host to its state at start (tests). Keeps nothing of the diagram. */
void resetHost();

}

#endif
