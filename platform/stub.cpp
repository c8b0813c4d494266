/* Temporary: windowing calls until the windowing stand-in is built. */
#include <cstdio>
#include <cstring>
#include "platform/driver.h"
extern "C" {
HWND GetFocus(void) { return nullptr; }
HWND SetFocus(HWND) { return nullptr; }
HWND GetDlgItem(HWND, int) { return nullptr; }
BOOL SetWindowTextA(HWND, LPCSTR) { return 0; }
int GetWindowTextA(HWND, LPSTR b, int s) { if (s > 0) b[0] = 0; return 0; }
BOOL ShowWindow(HWND, int) { return 0; }
BOOL EnableWindow(HWND, BOOL) { return 0; }
BOOL IsWindowEnabled(HWND) { return 0; }
BOOL IsWindowVisible(HWND) { return 0; }
LRESULT SendMessageA(HWND, UINT, WPARAM, LPARAM) { return 0; }
BOOL SetDlgItemTextA(HWND, int, LPCSTR) { return 0; }
UINT GetDlgItemTextA(HWND, int, LPSTR b, int s) { if (s > 0) b[0] = 0; return 0; }
BOOL SetDlgItemInt(HWND, int, UINT, BOOL) { return 0; }
UINT GetDlgItemInt(HWND, int, BOOL *, BOOL) { return 0; }
BOOL CheckDlgButton(HWND, int, UINT) { return 0; }
UINT IsDlgButtonChecked(HWND, int) { return 0; }
BOOL CheckRadioButton(HWND, int, int, int) { return 0; }
LRESULT SendDlgItemMessageA(HWND, int, UINT, WPARAM, LPARAM) { return 0; }
BOOL PostMessageA(HWND, UINT, WPARAM, LPARAM) { return 0; }
INT_PTR DialogBoxParamA(HINSTANCE, LPCSTR, HWND, DLGPROC, LPARAM) { return 0; }
BOOL EndDialog(HWND, INT_PTR) { return 0; }
int MessageBoxA(HWND, LPCSTR text, LPCSTR caption, UINT) { platform::transcriptNote(std::string("[") + caption + "] " + text); return 1; }
HMENU CreateMenu(void) { return nullptr; }
HMENU GetMenu(HWND) { return nullptr; }
BOOL SetMenu(HWND, HMENU) { return 0; }
BOOL InsertMenuA(HMENU, UINT, UINT, uintptr_t, LPCSTR) { return 0; }
BOOL AppendMenuA(HMENU, UINT, uintptr_t, LPCSTR) { return 0; }
BOOL DrawMenuBar(HWND) { return 0; }
DWORD CheckMenuItem(HMENU, UINT, UINT) { return 0; }
int GetMenuItemCount(HMENU) { return 0; }
UINT GetMenuItemID(HMENU, int) { return 0; }
HMENU GetSubMenu(HMENU, int) { return nullptr; }
int GetMenuStringA(HMENU, UINT, LPSTR, int, UINT) { return 0; }
UINT GetMenuState(HMENU, UINT, UINT) { return 0; }
BOOL GetModuleHandleExA(DWORD, LPCSTR, HMODULE *m) { *m = nullptr; return 0; }
DWORD GetPrivateProfileStringA(LPCSTR, LPCSTR, LPCSTR, LPSTR b, DWORD s, LPCSTR) { if (s) b[0] = 0; return 0; }
BOOL WritePrivateProfileStringA(LPCSTR, LPCSTR, LPCSTR, LPCSTR) { return 0; }
void RegisterModuleResource(const void *, const char *, const char *) {}
}
namespace platform {
static std::vector<std::string> lines;
void queueDialogAction(const DialogAction &) {}
void clearDialogActions() {}
size_t pendingDialogActions() { return 0; }
int refusedDialogCount() { return 0; }
const std::vector<std::string> &transcript() { return lines; }
std::string transcriptText() { std::string t; for (auto &l : lines) t += l + "\n"; return t; }
void clearTranscript() { lines.clear(); }
void transcriptNote(const std::string &l) { lines.push_back(l); }
HWND createMainWindow(const char *) { return nullptr; }
int scriptErrorCount() { return 0; }
int settingsWriteFailures() { return 0; }
void setMainWindowHandler(std::function<LRESULT(UINT, WPARAM, LPARAM)>) {}
void queueMessageBoxAnswer(int) {}
void resetWindowing() { lines.clear(); }
}
