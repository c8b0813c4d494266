/*
** fuzz/resource_script.cpp: the resource-script (dialog template) parser on arbitrary text.
** An input may carry an included header after a line "#--header--".
*/
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/resource_script.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string text((const char *)data, size), header;
    const std::string marker = "\n#--header--\n";
    if (size_t at = text.find(marker); at != std::string::npos) {
        header = text.substr(at + marker.size());
        text.erase(at);
    }
    platform::ResourceScript script = platform::parseResourceScript(
        "fuzz.rc", text, [&](const std::string &) { return &header; });
    if (!script.error.empty() && !script.dialogs.empty())
        __builtin_trap();   /* a malformed script gives no dialogs */
    return 0;
}
