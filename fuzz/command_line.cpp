/*
** fuzz/command_line.cpp: the praxa command line and script parser. The first line of an
** input is the argument list (split at blanks); the rest is the text of a script file,
** which the word SCRIPT among the arguments names.
*/
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "hostapp/cli.h"

namespace {

/* The file each input is written to, in memory where there is a tmpfs (a settings write
** ends with an fsync); removed when the fuzzer exits. */
struct InputFile {
    std::string path = std::string(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") + "/praxa-fuzz-" +
                       std::to_string(getpid()) + ".script";
    ~InputFile() { unlink(path.c_str()); }
};

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const InputFile scriptFile;
    const std::string &scriptPath = scriptFile.path;
    std::string input((const char *)data, size);
    size_t lineEnd = input.find('\n');
    std::string line = input.substr(0, lineEnd);
    std::string script = lineEnd == std::string::npos ? "" : input.substr(lineEnd + 1);
    if (FILE *file = std::fopen(scriptPath.c_str(), "wb")) {
        std::fwrite(script.data(), 1, script.size(), file);
        std::fclose(file);
    }

    std::vector<std::string> words{"praxa"};
    size_t start = 0;
    while (start <= line.size()) {
        size_t blank = line.find(' ', start);
        if (blank == std::string::npos)
            blank = line.size();
        if (blank > start)
            words.push_back(line.substr(start, blank - start) == "SCRIPT" ? scriptPath : line.substr(start, blank - start));
        start = blank + 1;
    }
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    int status = hostapp::checkCommandLine((int)words.size(), argv.data());
    if (status != -1 && status != 0 && status != 2)
        __builtin_trap();   /* reading a command line runs nothing: it cannot refuse a dialog */
    return 0;
}
