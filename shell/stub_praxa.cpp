/* Temporary: the shell state and helpers the dialogs use, until the entry points are built. */
#include "host/host.h"
#include "shell/praxa.h"
RangeSettings *editedRange = nullptr;
HINSTANCE moduleInstance = nullptr;
void showHelp(int topic) { tervanRequest(TERVAN_REQ_HELP, TERVAN_HELP_FILE, topic); }
INT_PTR runDialog(const char *templateName, DLGPROC procedure) { return DialogBoxParamA(moduleInstance, templateName, GetFocus(), procedure, 0); }
