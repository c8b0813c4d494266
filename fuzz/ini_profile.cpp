/*
** fuzz/ini_profile.cpp: the settings (INI) file reader and writer. An input is
** SECTION NUL KEY NUL VALUE NUL FILE TEXT: the file is read for every name list and for the
** key, then the key is written, read back and deleted.
*/
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "platform/winapi.h"

namespace {

/* The file each input is written to, in memory where there is a tmpfs (a settings
** write ends with an fsync); removed when the fuzzer exits. */
struct InputFile {
    std::string path = std::string(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") + "/praxa-fuzz-" +
                       std::to_string(getpid()) + ".ini";
    ~InputFile() { unlink(path.c_str()); }
};

std::string nextField(std::string &input)
{
    size_t nul = input.find('\0');
    std::string field = input.substr(0, nul);
    input.erase(0, nul == std::string::npos ? input.size() : nul + 1);
    return field;
}

/* A plain name: one the writer never refuses. */
bool plainName(const std::string &text)
{
    if (text.empty() || text.front() == ' ' || text.back() == ' ')
        return false;
    for (unsigned char c : text)
        if (c < 32 || c == '[' || c == ']' || c == '=' || c == ';' || c == '#' || c > 126)
            return false;
    return true;
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const InputFile settingsFile;
    const std::string &path = settingsFile.path;
    std::string input((const char *)data, size);
    std::string section = nextField(input), key = nextField(input), value = nextField(input);
    if (FILE *file = std::fopen(path.c_str(), "wb")) {
        std::fwrite(input.data(), 1, input.size(), file);
        std::fclose(file);
    }
    char buffer[256];
    GetPrivateProfileStringA(nullptr, nullptr, "", buffer, sizeof buffer, path.c_str());
    GetPrivateProfileStringA(section.c_str(), nullptr, "", buffer, sizeof buffer, path.c_str());
    GetPrivateProfileStringA(section.c_str(), key.c_str(), "default", buffer, 3, path.c_str());

    /* A write is refused only for a line break or a name a reader would not find again;
    ** any value it stores, blanks and quotes included, reads back as it was. */
    BOOL written = WritePrivateProfileStringA(section.c_str(), key.c_str(), value.c_str(), path.c_str());
    if (!written && plainName(section) && plainName(key) && value.find_first_of("\r\n") == std::string::npos)
        __builtin_trap();   /* a storable value refused */
    if (written && value.size() < sizeof buffer) {
        GetPrivateProfileStringA(section.c_str(), key.c_str(), "", buffer, sizeof buffer, path.c_str());
        if (value != buffer)
            __builtin_trap();   /* a written value reads back */
    }
    WritePrivateProfileStringA(section.c_str(), key.c_str(), nullptr, path.c_str());
    WritePrivateProfileStringA(section.c_str(), nullptr, nullptr, path.c_str());
    return 0;
}
