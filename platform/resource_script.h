/*
** platform/resource_script.h: reads resource scripts (.rc) into dialog templates.
** The usual resource-script syntax: comments, a small preprocessor (#include, #define,
** #if/#ifdef/#ifndef/#else/#endif), DIALOG and DIALOGEX statements and their controls.
*/
#ifndef PRAXA_PLATFORM_RESOURCE_SCRIPT_H
#define PRAXA_PLATFORM_RESOURCE_SCRIPT_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/winapi.h"

namespace platform {

/* Window classes a template control can have (canonical spelling). */
inline constexpr const char *BUTTON_CLASS = "Button";
inline constexpr const char *EDIT_CLASS = "Edit";
inline constexpr const char *STATIC_CLASS = "Static";
inline constexpr const char *LISTBOX_CLASS = "ListBox";

struct ControlTemplate {
    std::string text;
    int id = 0;
    std::string className;      /* one of the canonical classes above */
    DWORD style = 0;            /* complete style, WS_CHILD | WS_VISIBLE included unless removed */
    DWORD exStyle = 0;
    int x = 0, y = 0, cx = 0, cy = 0;   /* dialog units */
};

struct DialogTemplate {
    std::string name;           /* as written (upper case is usual); "#n" for a numeric name */
    std::string caption;
    std::string fontFace;
    int fontSize = 0;           /* points */
    DWORD style = 0;
    DWORD exStyle = 0;
    int x = 0, y = 0, cx = 0, cy = 0;   /* dialog units */
    bool extended = false;      /* DIALOGEX */
    std::vector<ControlTemplate> controls;  /* template order, which is the tab order */
};

struct ResourceScript {
    std::vector<DialogTemplate> dialogs;
    std::string error;          /* "file:line: message" when the script is malformed */
};

/* Gives the text of an included file by the name written in #include, or nullptr. */
using IncludeResolver = std::function<const std::string *(const std::string &includeName)>;

/* Parses the script `text` named `fileName`. Never throws: a malformed script gives an
** empty dialog list and `error` naming the file and line. */
ResourceScript parseResourceScript(const std::string &fileName, const std::string &text,
                                   const IncludeResolver &resolveInclude);

/* Value of a predefined resource-script symbol (WS_TABSTOP, BS_AUTORADIOBUTTON, IDOK, ...). */
std::optional<long long> predefinedSymbol(const std::string &name);

}

#endif
