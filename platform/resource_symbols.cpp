/*
** platform/resource_symbols.cpp: the names a resource script may use without defining them:
** window, dialog and control styles, and the standard command ids (Win32 values).
*/
#include <unordered_map>

#include "platform/resource_script.h"

namespace platform {

std::optional<long long> predefinedSymbol(const std::string &name)
{
    static const std::unordered_map<std::string, long long> symbols = {
        {"IDOK", 1}, {"IDCANCEL", 2}, {"IDABORT", 3}, {"IDRETRY", 4}, {"IDIGNORE", 5}, {"IDYES", 6},
        {"IDNO", 7}, {"IDCLOSE", 8}, {"IDHELP", 9}, {"IDC_STATIC", -1},
        {"WS_OVERLAPPED", 0}, {"WS_TILED", 0}, {"WS_POPUP", 0x80000000}, {"WS_CHILD", 0x40000000},
        {"WS_CHILDWINDOW", 0x40000000}, {"WS_MINIMIZE", 0x20000000}, {"WS_ICONIC", 0x20000000},
        {"WS_VISIBLE", 0x10000000}, {"WS_DISABLED", 0x08000000}, {"WS_CLIPSIBLINGS", 0x04000000},
        {"WS_CLIPCHILDREN", 0x02000000}, {"WS_MAXIMIZE", 0x01000000}, {"WS_CAPTION", 0x00C00000},
        {"WS_BORDER", 0x00800000}, {"WS_DLGFRAME", 0x00400000}, {"WS_VSCROLL", 0x00200000},
        {"WS_HSCROLL", 0x00100000}, {"WS_SYSMENU", 0x00080000}, {"WS_THICKFRAME", 0x00040000},
        {"WS_SIZEBOX", 0x00040000}, {"WS_GROUP", 0x00020000}, {"WS_TABSTOP", 0x00010000},
        {"WS_MINIMIZEBOX", 0x00020000}, {"WS_MAXIMIZEBOX", 0x00010000},
        {"WS_OVERLAPPEDWINDOW", 0x00CF0000}, {"WS_TILEDWINDOW", 0x00CF0000},
        {"WS_POPUPWINDOW", 0x80880000},
        {"WS_EX_DLGMODALFRAME", 0x1}, {"WS_EX_NOPARENTNOTIFY", 0x4}, {"WS_EX_TOPMOST", 0x8},
        {"WS_EX_ACCEPTFILES", 0x10}, {"WS_EX_TRANSPARENT", 0x20}, {"WS_EX_MDICHILD", 0x40},
        {"WS_EX_TOOLWINDOW", 0x80}, {"WS_EX_WINDOWEDGE", 0x100}, {"WS_EX_CLIENTEDGE", 0x200},
        {"WS_EX_CONTEXTHELP", 0x400}, {"WS_EX_RIGHT", 0x1000}, {"WS_EX_LEFT", 0},
        {"WS_EX_RTLREADING", 0x2000}, {"WS_EX_LTRREADING", 0}, {"WS_EX_LEFTSCROLLBAR", 0x4000},
        {"WS_EX_RIGHTSCROLLBAR", 0}, {"WS_EX_CONTROLPARENT", 0x10000}, {"WS_EX_STATICEDGE", 0x20000},
        {"WS_EX_APPWINDOW", 0x40000},
        {"DS_ABSALIGN", 0x1}, {"DS_SYSMODAL", 0x2}, {"DS_3DLOOK", 0x4}, {"DS_FIXEDSYS", 0x8},
        {"DS_NOFAILCREATE", 0x10}, {"DS_LOCALEDIT", 0x20}, {"DS_SETFONT", 0x40},
        {"DS_MODALFRAME", 0x80}, {"DS_NOIDLEMSG", 0x100}, {"DS_SETFOREGROUND", 0x200},
        {"DS_CONTROL", 0x400}, {"DS_CENTER", 0x800}, {"DS_CENTERMOUSE", 0x1000},
        {"DS_CONTEXTHELP", 0x2000}, {"DS_SHELLFONT", 0x48},
        {"BS_PUSHBUTTON", 0x0}, {"BS_DEFPUSHBUTTON", 0x1}, {"BS_CHECKBOX", 0x2},
        {"BS_AUTOCHECKBOX", 0x3}, {"BS_RADIOBUTTON", 0x4}, {"BS_3STATE", 0x5}, {"BS_AUTO3STATE", 0x6},
        {"BS_GROUPBOX", 0x7}, {"BS_USERBUTTON", 0x8}, {"BS_AUTORADIOBUTTON", 0x9},
        {"BS_PUSHBOX", 0xA}, {"BS_OWNERDRAW", 0xB}, {"BS_TYPEMASK", 0xF}, {"BS_LEFTTEXT", 0x20},
        {"BS_RIGHTBUTTON", 0x20}, {"BS_TEXT", 0}, {"BS_ICON", 0x40}, {"BS_BITMAP", 0x80},
        {"BS_LEFT", 0x100}, {"BS_RIGHT", 0x200}, {"BS_CENTER", 0x300}, {"BS_TOP", 0x400},
        {"BS_BOTTOM", 0x800}, {"BS_VCENTER", 0xC00}, {"BS_PUSHLIKE", 0x1000},
        {"BS_MULTILINE", 0x2000}, {"BS_NOTIFY", 0x4000}, {"BS_FLAT", 0x8000},
        {"ES_LEFT", 0x0}, {"ES_CENTER", 0x1}, {"ES_RIGHT", 0x2}, {"ES_MULTILINE", 0x4},
        {"ES_UPPERCASE", 0x8}, {"ES_LOWERCASE", 0x10}, {"ES_PASSWORD", 0x20},
        {"ES_AUTOVSCROLL", 0x40}, {"ES_AUTOHSCROLL", 0x80}, {"ES_NOHIDESEL", 0x100},
        {"ES_OEMCONVERT", 0x400}, {"ES_READONLY", 0x800}, {"ES_WANTRETURN", 0x1000},
        {"ES_NUMBER", 0x2000},
        {"SS_LEFT", 0x0}, {"SS_CENTER", 0x1}, {"SS_RIGHT", 0x2}, {"SS_ICON", 0x3},
        {"SS_BLACKRECT", 0x4}, {"SS_GRAYRECT", 0x5}, {"SS_WHITERECT", 0x6}, {"SS_BLACKFRAME", 0x7},
        {"SS_GRAYFRAME", 0x8}, {"SS_WHITEFRAME", 0x9}, {"SS_USERITEM", 0xA}, {"SS_SIMPLE", 0xB},
        {"SS_LEFTNOWORDWRAP", 0xC}, {"SS_OWNERDRAW", 0xD}, {"SS_BITMAP", 0xE},
        {"SS_ENHMETAFILE", 0xF}, {"SS_ETCHEDHORZ", 0x10}, {"SS_ETCHEDVERT", 0x11},
        {"SS_ETCHEDFRAME", 0x12}, {"SS_TYPEMASK", 0x1F}, {"SS_NOPREFIX", 0x80}, {"SS_NOTIFY", 0x100},
        {"SS_CENTERIMAGE", 0x200}, {"SS_RIGHTJUST", 0x400}, {"SS_REALSIZEIMAGE", 0x800},
        {"SS_SUNKEN", 0x1000}, {"SS_ENDELLIPSIS", 0x4000}, {"SS_PATHELLIPSIS", 0x8000},
        {"SS_WORDELLIPSIS", 0xC000},
        {"LBS_NOTIFY", 0x1}, {"LBS_SORT", 0x2}, {"LBS_NOREDRAW", 0x4}, {"LBS_MULTIPLESEL", 0x8},
        {"LBS_OWNERDRAWFIXED", 0x10}, {"LBS_OWNERDRAWVARIABLE", 0x20}, {"LBS_HASSTRINGS", 0x40},
        {"LBS_USETABSTOPS", 0x80}, {"LBS_NOINTEGRALHEIGHT", 0x100}, {"LBS_MULTICOLUMN", 0x200},
        {"LBS_WANTKEYBOARDINPUT", 0x400}, {"LBS_EXTENDEDSEL", 0x800},
        {"LBS_DISABLENOSCROLL", 0x1000}, {"LBS_NODATA", 0x2000}, {"LBS_NOSEL", 0x4000},
        {"LBS_COMBOBOX", 0x8000}, {"LBS_STANDARD", 0x00A00003},
        {"LANG_NEUTRAL", 0}, {"LANG_ENGLISH", 9}, {"LANG_GERMAN", 7}, {"SUBLANG_NEUTRAL", 0},
        {"SUBLANG_DEFAULT", 1}, {"SUBLANG_SYS_DEFAULT", 2}, {"SUBLANG_ENGLISH_US", 1},
        {"SUBLANG_ENGLISH_UK", 2}, {"SUBLANG_GERMAN", 1},
    };
    auto it = symbols.find(name);
    if (it == symbols.end())
        return std::nullopt;
    return it->second;
}

}
