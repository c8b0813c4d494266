/*
** shell/entry.cpp: the plug-in's start, its menu (praxaInit), host events
** (praxaEvent) and the about box.
*/
#include <cstring>

#include "compensator/compensator.h"
#include "host/host.h"
#include "resources/prxdlg.h"
#include "shell/praxa.h"
#include "shell/settings.h"

HINSTANCE moduleInstance;
HWND hostMainWindow;
HMENU praxaMenu;
HostBlock *bodeMagnitudePlot;
HostBlock *bodePhasePlot;
HostBlock *nyquistPlot;
HostBlock *rootLocusPlot;
RangeSettings *editedRange;

/* The menu, in order. ORDER: praxaCmd's list of the plug-in's ids. */
static const struct {
    uint16_t id;
    const char *text;
} menuItems[] = {
    {CMD_LINEARIZE, "&Linearize..."},
    {CMD_SELECT_POINTS, "&Select Input/Output Points"},
    {CMD_TRANSFER_FUNCTION, "&Transfer Function Info"},
    {CMD_COMPENSATOR_DESIGN, "Compensator &Design"},
    {CMD_SELECT_COMPENSATOR, "Select &Compensator Block"},
    {CMD_ROOT_LOCUS, "&Root Locus"},
    {CMD_ROOT_LOCUS_OPTIONS, "Root Locus &Options"},
    {CMD_NYQUIST, "&Nyquist Response"},
    {CMD_FREQUENCY_RESPONSE, "&Frequency Response"},
    {CMD_FREQUENCY_RANGE, "Fre&quency Range"},
    {CMD_PREFERENCES, "&Preferences"},
    {CMD_REUSE_PLOTS, "Re&use Plots"},
};

static const int MENU_POSITION = 4;

extern "C" BOOL DllMain(HINSTANCE instance, DWORD, LPVOID)
{
    moduleInstance = instance;
    return TRUE;
}

/* The Linux loader calls no DllMain: this constructor is the library start routine. */
__attribute__((constructor)) static void libraryStart()
{
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       (LPCSTR)(void *)&libraryStart, &module);
    DllMain(module, DLL_PROCESS_ATTACH, nullptr);
}

/*
** Called once by the host with its main window. Inserts the "&Praxa" popup into the
** host's menu bar, loads the settings, and returns the popup.
*/
extern "C" HMENU praxaInit(HWND mainWindow)
{
    praxaMenu = CreateMenu();
    hostMainWindow = mainWindow;
    InsertMenuA(GetMenu(mainWindow), MENU_POSITION, MF_BYPOSITION | MF_POPUP, (uintptr_t)praxaMenu, "&Praxa");
    for (const auto &item : menuItems)
        AppendMenuA(praxaMenu, 0, item.id, item.text);
    DrawMenuBar(mainWindow);
    loadUnitSettings();
    loadRangeSettings();
    CheckMenuItem(praxaMenu, CMD_REUSE_PLOTS, reusePlots ? MF_CHECKED : MF_UNCHECKED);
    return praxaMenu;
}

/*
** Host notifications. 253: a block is being deleted (a remembered plot is forgotten);
** 256 with a null argument: the compensator is reset. Always returns 0.
*/
extern "C" int praxaEvent(int32_t code, intptr_t arg)
{
    if (code == EVENT_BLOCK_DELETED) {
        HostBlock *block = (HostBlock *)arg;
        if (block == bodePhasePlot)
            bodePhasePlot = nullptr;
        else if (block == bodeMagnitudePlot)
            bodeMagnitudePlot = nullptr;
        else if (block == nyquistPlot)
            nyquistPlot = nullptr;
        else if (block == rootLocusPlot)
            rootLocusPlot = nullptr;
    } else if (code == EVENT_RESET_COMPENSATOR && arg == 0) {
        resetCompensator();
    }
    return 0;
}

const char *aboutText()
{
    static char text[64];
    std::strcpy(text, "Version ");
    std::strcat(text, " Build 106");
    std::strcat(text, "23.0");
    return text;
}

extern "C" INT_PTR praxaAbout(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG) {
        SetDlgItemTextA(dialog, IDC_BANNER_VERSION, aboutText());
        return TRUE;
    }
    if (message == WM_COMMAND && LOWORD(wParam) == IDOK) {
        EndDialog(dialog, 1);
        return TRUE;
    }
    return FALSE;
}

INT_PTR runDialog(const char *templateName, DLGPROC procedure)
{
    return DialogBoxParamA(moduleInstance, templateName, GetFocus(), procedure, 0);
}

void showHelp(int topic)
{
    tervanRequest(TERVAN_REQ_HELP, TERVAN_HELP_FILE, topic);
}

INT_PTR displayDialogCommand(HWND dialog, int id, int helpTopic)
{
    switch (id) {
    case IDOK:
    case IDCANCEL:
        EndDialog(dialog, id);
        return TRUE;
    case HELP_BUTTON:
        showHelp(helpTopic);
        return TRUE;
    default:
        return FALSE;
    }
}
