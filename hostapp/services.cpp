/*
** hostapp/services.cpp: the host services that need no diagram: heap, messages,
** block errors, cursor and window repaint, the settings file name, the current
** output file and the host's number text.
*/
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "host/host.h"
#include "hostapp/host_state.h"
#include "hostapp/messages.h"
#include "hostapp/plots.h"
#include "platform/driver.h"

namespace {

FILE *currentOutput;

/* The host's out-of-memory policy: say so and stop; the plug-in does not test results. */
[[noreturn]] void outOfMemory(uint64_t bytes)
{
    std::fprintf(stderr, "praxa: out of memory (%llu bytes requested)\n", (unsigned long long)bytes);
    std::fflush(stdout);
    std::_Exit(70);
}

}

namespace hostapp {

std::string formatMessage(const char *format, va_list args)
{
    /* %Fs is the host's spelling of a string argument. */
    std::string fmt;
    for (const char *p = format; *p; ++p) {
        if (p[0] == '%' && p[1] == '%') {
            fmt += "%%";
            ++p;
        } else if (p[0] == '%' && p[1] == 'F' && p[2] == 's') {
            fmt += "%s";
            p += 2;
        } else {
            fmt += *p;
        }
    }
    va_list copy;
    va_copy(copy, args);
    int length = std::vsnprintf(nullptr, 0, fmt.c_str(), copy);
    va_end(copy);
    if (length < 0)
        return format;
    std::string text((size_t)length, '\0');
    std::vsnprintf(text.data(), text.size() + 1, fmt.c_str(), args);
    return text;
}

}

extern "C" {

void *galloc(uint64_t bytes)
{
    hostapp::host().lastAllocationBytes = bytes;
    void *block = std::malloc(bytes ? bytes : 1);
    if (!block)
        outOfMemory(bytes);
    return block;
}

void *grealloc(void *block, uint64_t bytes)
{
    hostapp::host().lastAllocationBytes = bytes;
    void *resized = std::realloc(block, bytes ? bytes : 1);
    if (!resized)
        outOfMemory(bytes);
    return resized;
}

void gfree(void *block)
{
    std::free(block);
}

void winMsg(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    std::string text = hostapp::formatMessage(format, args);
    va_end(args);
    MessageBoxA(hostapp::host().mainWindow, text.c_str(), hostapp::MESSAGE_CAPTION, MB_OK);
}

void debMsg(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    std::string text = hostapp::formatMessage(format, args);
    va_end(args);
    MessageBoxA(hostapp::host().mainWindow, text.c_str(), hostapp::DEBUG_CAPTION, MB_OK);
}

void setBlockErr(void)
{
    hostapp::host().blockErrors++;
    platform::transcriptNote("[block error]");
}

void beep(int)
{
    hostapp::host().beeps++;
    platform::transcriptNote("[beep]");
}

void setWaitCursor(uint8_t on)
{
    hostapp::host().waitCursor = on != 0;
}

void invalidateWin(HWND window)
{
    hostapp::host().repaints++;
    hostapp::repaintPlotWindow(window);
}

const char *getIniFileName(void)
{
    return hostapp::host().settingsPath.c_str();
}

int fileOpen(const char *name, int flags)
{
    if (currentOutput)
        fileClose();
    if (!name || !*name)
        return 0;
    /* The plug-in passes the C runtime's write/create/truncate flags; that is all we support. */
    if ((flags & 0x3) != 0x1)
        return 0;
    std::string path = hostapp::outputPath(name);
    currentOutput = std::fopen(path.c_str(), (flags & 0x200) ? "w" : "a");
    if (!currentOutput)
        return 0;
    hostapp::host().currentOutputFile = path;
    return 1;
}

/* The text goes out unchanged: a line feed stays a single line feed, as text files on
** this system end their lines. */
void farFilePrint(const char *text)
{
    if (currentOutput && text)
        std::fputs(text, currentOutput);
}

void fileClose(void)
{
    if (currentOutput) {
        std::fclose(currentOutput);
        currentOutput = nullptr;
        platform::transcriptNote("[file written] " + hostapp::host().currentOutputFile);
    }
}

const char *floatToString(double value)
{
    /* The shortest text that reads back as the same double. */
    static char text[64];
    if (value == 0.0)
        value = 0.0;    /* a negative zero reads as 0 */
    auto result = std::to_chars(text, text + sizeof text - 1, value);
    *result.ptr = '\0';
    return text;
}

}
