/*
** platform/module_resources.h: the resource files each module registered, and the lookup
** of dialog templates in them (modules.cpp).
*/
#ifndef PRAXA_PLATFORM_MODULE_RESOURCES_H
#define PRAXA_PLATFORM_MODULE_RESOURCES_H

#include <optional>
#include <string>

#include "platform/resource_script.h"

namespace platform {

struct TemplateLookup {
    std::optional<DialogTemplate> dialog;   /* a copy: later registrations cannot disturb it */
    std::string error;                      /* a malformed script: "file:line: message" */
};

/* Finds the dialog template `name` (case-insensitive; "#n" for a numeric name) in the .rc
** files of `module`; a null module is the program's own module. */
TemplateLookup findDialogTemplate(HMODULE module, const std::string &name);

}

#endif
