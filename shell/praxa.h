/*
** shell/praxa.h: the plug-in's entry points, its menu commands and the process-wide
** state of the shell (module, windows, remembered plots).
*/
#ifndef PRAXA_H
#define PRAXA_H

#include <cstdint>

#include "host/records.h"
#include "platform/winapi.h"
#include "shell/settings.h"

/* Menu command ids. ORDER of the menu: see praxaInit. */
enum : uint16_t {
    CMD_LINEARIZE = 206,
    CMD_SELECT_POINTS = 234,
    CMD_FREQUENCY_RANGE = 235,
    CMD_ROOT_LOCUS = 240,
    CMD_ROOT_LOCUS_OPTIONS = 241,
    CMD_FREQUENCY_RESPONSE = 242,
    CMD_TRANSFER_FUNCTION = 243,
    CMD_ABOUT = 245,
    CMD_PREFERENCES = 246,
    CMD_COMPENSATOR_DESIGN = 249,
    CMD_NYQUIST = 250,
    CMD_SELECT_COMPENSATOR = 254,
    CMD_COMPENSATOR_TO_HOST = 255,
    CMD_REUSE_PLOTS = 296,
};
enum : int32_t { EVENT_BLOCK_DELETED = 253, EVENT_RESET_COMPENSATOR = 256 };
enum : int { HELP_BUTTON = 9 };

extern HINSTANCE moduleInstance;
extern HWND hostMainWindow;
extern HMENU praxaMenu;
extern HostBlock *bodeMagnitudePlot;
extern HostBlock *bodePhasePlot;
extern HostBlock *nyquistPlot;
extern HostBlock *rootLocusPlot;
extern RangeSettings *editedRange;

extern "C" {
HMENU praxaInit(HWND mainWindow);
int praxaCmd(uint16_t id);
int praxaEvent(int32_t code, intptr_t arg);
INT_PTR praxaAbout(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
BOOL DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);
}

/* "Version  Build 10623.0" in a static buffer. */
const char *aboutText();

/* Opens a template of the plug-in modally, owned by the window that has the focus. */
INT_PTR runDialog(const char *templateName, DLGPROC procedure);

/* Asks the host to open its help on a topic (every Help button). */
void showHelp(int topic);

/* WM_COMMAND of a dialog that only displays: OK and Cancel end it with their id, Help
** (id 9) opens the help topic; TRUE when the command was one of these. */
INT_PTR displayDialogCommand(HWND dialog, int id, int helpTopic);

#endif
