/*
** platform/winapi.h: the windowing API the plug-in is written against.
** Same names, numbering and semantics as the Win32 calls of the same name, so the
** plug-in's sources build against either this stand-in or the real system.
*/
#ifndef PRAXA_WINAPI_H
#define PRAXA_WINAPI_H

#include <cstddef>
#include <cstdint>

struct WindowObject;
struct MenuObject;
struct ModuleObject;
typedef WindowObject *HWND;
typedef MenuObject *HMENU;
typedef ModuleObject *HINSTANCE;
typedef HINSTANCE HMODULE;
typedef uintptr_t WPARAM;
typedef intptr_t LPARAM;
typedef intptr_t INT_PTR;
typedef intptr_t LRESULT;
typedef unsigned int UINT;
typedef int BOOL;
typedef uint32_t DWORD;
typedef const char *LPCSTR;
typedef char *LPSTR;
typedef void *LPVOID;
typedef INT_PTR (*DLGPROC)(HWND, UINT, WPARAM, LPARAM);

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

#define LOWORD(l) ((uint16_t)(((uintptr_t)(l)) & 0xFFFF))
#define HIWORD(l) ((uint16_t)((((uintptr_t)(l)) >> 16) & 0xFFFF))
#define MAKEWPARAM(lo, hi) ((WPARAM)(((uint32_t)(uint16_t)(lo)) | (((uint32_t)(uint16_t)(hi)) << 16)))
#define MAKELPARAM(lo, hi) ((LPARAM)MAKEWPARAM(lo, hi))

/* Messages. */
enum : UINT {
    WM_INITDIALOG = 0x0110,
    WM_COMMAND = 0x0111,
    WM_CLOSE = 0x0010,
    WM_SETTEXT = 0x000C,
    WM_GETTEXT = 0x000D,
    WM_GETTEXTLENGTH = 0x000E,
    EM_GETSEL = 0x00B0,
    EM_LIMITTEXT = 0x00C5,
    BM_CLICK = 0x00F5,
    LB_INSERTSTRING = 0x0181,
    LB_SETTABSTOPS = 0x0192,
    EM_SETSEL = 0x00B1,
    BM_GETCHECK = 0x00F0,
    BM_SETCHECK = 0x00F1,
    LB_ADDSTRING = 0x0180,
    LB_DELETESTRING = 0x0182,
    LB_RESETCONTENT = 0x0184,
    LB_SETCURSEL = 0x0186,
    LB_GETCURSEL = 0x0188,
    LB_GETTEXT = 0x0189,
    LB_GETTEXTLEN = 0x018A,
    LB_GETCOUNT = 0x018B,
};
/* Notifications (high word of WM_COMMAND's wParam). */
enum : UINT {
    BN_CLICKED = 0,
    EN_SETFOCUS = 0x0100,
    EN_KILLFOCUS = 0x0200,
    EN_CHANGE = 0x0300,
    LBN_SELCHANGE = 1,
    LBN_DBLCLK = 2,
    LBN_SETFOCUS = 4,
    LBN_KILLFOCUS = 5,
    STN_CLICKED = 0,
};
enum : int { IDOK = 1, IDCANCEL = 2, IDABORT = 3, IDRETRY = 4, IDIGNORE = 5 };
enum : UINT { BST_UNCHECKED = 0, BST_CHECKED = 1, BST_INDETERMINATE = 2 };
enum : int { LB_ERR = -1 };
enum : int { SW_HIDE = 0, SW_SHOW = 5 };

/* Menus. */
enum : UINT {
    MF_STRING = 0x0000, MF_BYCOMMAND = 0x0000, MF_UNCHECKED = 0x0000,
    MF_CHECKED = 0x0008, MF_POPUP = 0x0010, MF_BYPOSITION = 0x0400,
    MF_ENABLED = 0x0000, MF_GRAYED = 0x0001, MF_DISABLED = 0x0002, MF_SEPARATOR = 0x0800,
};

/* Message boxes. */
enum : UINT { MB_OK = 0x0000, MB_OKCANCEL = 0x0001, MB_YESNO = 0x0004, MB_ICONEXCLAMATION = 0x0030,
              MB_ICONINFORMATION = 0x0040 };
enum : UINT { MB_ABORTRETRYIGNORE = 0x0002, MB_YESNOCANCEL = 0x0003, MB_RETRYCANCEL = 0x0005,
              MB_ICONERROR = 0x0010, MB_ICONQUESTION = 0x0020, MB_DEFBUTTON2 = 0x0100,
              MB_DEFBUTTON3 = 0x0200 };
enum : int { IDYES = 6, IDNO = 7 };

/* Library start. */
enum : DWORD { DLL_PROCESS_DETACH = 0, DLL_PROCESS_ATTACH = 1, DLL_THREAD_ATTACH = 2, DLL_THREAD_DETACH = 3 };
enum : DWORD { GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS = 0x4, GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT = 0x2 };

extern "C" {

/* Windows and controls. */
HWND GetFocus(void);
HWND SetFocus(HWND window);
HWND GetDlgItem(HWND dialog, int id);
BOOL SetWindowTextA(HWND window, LPCSTR text);
int GetWindowTextA(HWND window, LPSTR buffer, int size);
BOOL ShowWindow(HWND window, int command);
BOOL EnableWindow(HWND window, BOOL enable);
BOOL IsWindowEnabled(HWND window);
BOOL IsWindowVisible(HWND window);
LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
BOOL SetDlgItemTextA(HWND dialog, int id, LPCSTR text);
UINT GetDlgItemTextA(HWND dialog, int id, LPSTR buffer, int size);
BOOL SetDlgItemInt(HWND dialog, int id, UINT value, BOOL isSigned);
UINT GetDlgItemInt(HWND dialog, int id, BOOL *translated, BOOL isSigned);
BOOL CheckDlgButton(HWND dialog, int id, UINT check);
UINT IsDlgButtonChecked(HWND dialog, int id);
BOOL CheckRadioButton(HWND dialog, int firstId, int lastId, int checkId);
LRESULT SendDlgItemMessageA(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam);
BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/* Modal dialogs from templates in a module's resources; message boxes. */
INT_PTR DialogBoxParamA(HINSTANCE module, LPCSTR templateName, HWND owner, DLGPROC procedure,
                        LPARAM initParam);
BOOL EndDialog(HWND dialog, INT_PTR result);
int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type);

/* Menus. */
HMENU CreateMenu(void);
HMENU GetMenu(HWND window);
BOOL SetMenu(HWND window, HMENU menu);
BOOL InsertMenuA(HMENU menu, UINT position, UINT flags, uintptr_t idOrPopup, LPCSTR text);
BOOL AppendMenuA(HMENU menu, UINT flags, uintptr_t idOrPopup, LPCSTR text);
BOOL DrawMenuBar(HWND window);
DWORD CheckMenuItem(HMENU menu, UINT idOrPosition, UINT flags);
int GetMenuItemCount(HMENU menu);
UINT GetMenuItemID(HMENU menu, int position);
HMENU GetSubMenu(HMENU menu, int position);
int GetMenuStringA(HMENU menu, UINT idOrPosition, LPSTR buffer, int size, UINT flags);
UINT GetMenuState(HMENU menu, UINT idOrPosition, UINT flags);

/* Modules. */
BOOL GetModuleHandleExA(DWORD flags, LPCSTR nameOrAddress, HMODULE *module);

/* Private-profile (INI) settings files. */
DWORD GetPrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR defaultValue, LPSTR buffer,
                               DWORD size, LPCSTR fileName);
BOOL WritePrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR value, LPCSTR fileName);

/* C runtime calls of that platform that glibc lacks. */
char *_gcvt(double value, int digits, char *buffer);
int _itoa_s(int value, char *buffer, size_t size, int radix);

/* Resource registration, done by the code the build generates from the resource scripts and headers:
** registers one resource source file of the module that contains `addressInModule`. */
void RegisterModuleResource(const void *addressInModule, const char *fileName, const char *text);
}

#define MAKEINTRESOURCEA(i) ((LPCSTR)(uintptr_t)(uint16_t)(i))

#endif
