/*
** platform/profile.cpp: private-profile (INI) settings files. Reads keys with Win32
** semantics; a write keeps every other line of the file and replaces it atomically.
*/
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "platform/driver.h"
#include "platform/window_system.h"

namespace platform {

namespace {

int writeFailures = 0;

/* An open file descriptor, closed when it goes out of scope. */
class FileDescriptor {
public:
    explicit FileDescriptor(int fd) : fd_(fd) {}
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    ~FileDescriptor() { close(); }
    int get() const { return fd_; }
    int close()
    {
        int result = fd_ >= 0 ? ::close(fd_) : 0;
        fd_ = -1;
        return result;
    }

private:
    int fd_;
};

/* A settings file as lines, each with the line break it ended with ("" for a last line
** without one); a line added by a write takes the break of the file's first line. */
struct IniText {
    std::vector<std::string> lines;
    std::vector<std::string> breaks;
    std::string lineBreak = "\n";

    void insert(size_t at, const std::string &line)
    {
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), line);
        breaks.insert(breaks.begin() + static_cast<std::ptrdiff_t>(at), lineBreak);
    }
    void erase(size_t from, size_t to)
    {
        lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(from), lines.begin() + static_cast<std::ptrdiff_t>(to));
        breaks.erase(breaks.begin() + static_cast<std::ptrdiff_t>(from), breaks.begin() + static_cast<std::ptrdiff_t>(to));
    }
};

enum class ReadResult { Read, Missing, Unreadable };

ReadResult readIni(const std::string &path, IniText &ini, std::string &reason)
{
    FileDescriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (fd.get() < 0) {
        reason = std::strerror(errno);
        return errno == ENOENT || errno == ENOTDIR ? ReadResult::Missing : ReadResult::Unreadable;
    }
    struct stat info{};
    if (fstat(fd.get(), &info) != 0 || S_ISDIR(info.st_mode)) {
        reason = S_ISDIR(info.st_mode) ? std::strerror(EISDIR) : std::strerror(errno);
        return ReadResult::Unreadable;
    }
    std::string text;
    char block[8192];
    for (;;) {
        ssize_t n = ::read(fd.get(), block, sizeof block);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            reason = std::strerror(errno);
            return ReadResult::Unreadable;
        }
        if (n == 0)
            break;
        text.append(block, static_cast<size_t>(n));
    }
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        std::string line = text.substr(start, end - start);
        std::string lineBreak = end < text.size() ? "\n" : "";
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
            lineBreak.insert(0, "\r");
        }
        /* A lone CR (the end of a last line without LF) is no line break: lines are split at LF. */
        if (ini.lines.empty() && lineBreak.ends_with('\n'))
            ini.lineBreak = lineBreak;
        ini.lines.push_back(line);
        ini.breaks.push_back(lineBreak);
        start = end + 1;
    }
    return ReadResult::Read;
}

std::string trim(const std::string &s)
{
    size_t a = s.find_first_not_of(" \t");
    if (a == std::string::npos)
        return "";
    size_t b = s.find_last_not_of(" \t");
    return s.substr(a, b - a + 1);
}

bool sameIgnoringCase(const std::string &a, const std::string &b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

bool isComment(const std::string &trimmed) { return !trimmed.empty() && (trimmed[0] == ';' || trimmed[0] == '#'); }

std::optional<std::string> sectionName(const std::string &line)
{
    std::string t = trim(line);
    if (t.empty() || t[0] != '[')
        return std::nullopt;
    size_t close = t.find(']');
    return trim(t.substr(1, close == std::string::npos ? std::string::npos : close - 1));
}

/* A key line: the key before '=', the whole line when it has none. */
std::optional<std::string> keyName(const std::string &line)
{
    std::string t = trim(line);
    if (t.empty() || isComment(t) || t[0] == '[')
        return std::nullopt;
    return trim(t.substr(0, t.find('=')));
}

std::string valueOf(const std::string &line)
{
    size_t eq = line.find('=');
    if (eq == std::string::npos)
        return "";
    std::string v = trim(line.substr(eq + 1));
    if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') && v.back() == v.front())
        v = v.substr(1, v.size() - 2);     /* Win32 drops matching quotes around a value */
    return v;
}

struct SectionRange {
    bool found = false;
    size_t header = 0, end = 0;     /* lines [header + 1, end) belong to the section */
};

SectionRange findSection(const IniText &ini, const std::string &section)
{
    SectionRange range;
    for (size_t i = 0; i < ini.lines.size(); ++i) {
        auto name = sectionName(ini.lines[i]);
        if (!name)
            continue;
        if (range.found) {
            range.end = i;
            return range;
        }
        if (sameIgnoringCase(*name, section)) {
            range.found = true;
            range.header = i;
        }
    }
    range.end = ini.lines.size();
    return range;
}

std::optional<size_t> findKey(const IniText &ini, const SectionRange &range, const std::string &key)
{
    if (!range.found)
        return std::nullopt;
    for (size_t i = range.header + 1; i < range.end; ++i)
        if (auto name = keyName(ini.lines[i]); name && sameIgnoringCase(*name, key))
            return i;
    return std::nullopt;
}

DWORD copyValue(const std::string &value, char *buffer, DWORD size)
{
    size_t n = std::min<size_t>(value.size(), size - 1);
    std::memcpy(buffer, value.data(), n);
    buffer[n] = '\0';
    return static_cast<DWORD>(n);
}

/* Names each followed by a NUL, and one more NUL at the end; too small a buffer gets the
** names that fit, the last one cut, two NULs, and size - 2 as the result (Win32). */
DWORD copyNameList(const std::vector<std::string> &names, char *buffer, DWORD size)
{
    std::string all;
    for (const std::string &n : names) {
        all += n;
        all += '\0';
    }
    if (all.size() + 1 <= size) {
        std::memcpy(buffer, all.data(), all.size());
        buffer[all.size()] = '\0';
        if (all.empty() && size > 1)
            buffer[1] = '\0';
        return static_cast<DWORD>(all.size());
    }
    if (size < 2) {
        buffer[0] = '\0';
        return 0;
    }
    std::memcpy(buffer, all.data(), size - 2);
    buffer[size - 2] = '\0';
    buffer[size - 1] = '\0';
    return size - 2;
}

bool writeFailure(const std::string &path, const std::string &reason)
{
    recordError("Cannot write settings file " + path + ": " + reason);
    ++writeFailures;
    return false;
}

/* The file a settings path names: a symbolic link is followed to its target (which may not
** exist yet), so that a write replaces the target and leaves the link in place. */
std::string linkTarget(const std::string &path)
{
    std::string target = path;
    for (int hops = 0; hops < 40; ++hops) {     /* the kernel's own limit on nested links */
        struct stat info{};
        if (::lstat(target.c_str(), &info) != 0 || !S_ISLNK(info.st_mode))
            return target;
        std::vector<char> link(static_cast<size_t>(info.st_size > 0 ? info.st_size : PATH_MAX) + 1);
        ssize_t n = ::readlink(target.c_str(), link.data(), link.size() - 1);
        if (n < 0)
            return target;
        std::string next(link.data(), static_cast<size_t>(n));
        size_t slash = target.find_last_of('/');
        target = next[0] == '/' || slash == std::string::npos ? next : target.substr(0, slash + 1) + next;
    }
    return target;
}

/* Opens the temporary file a write of `path` goes through, locked against other writers.
** Its name is fixed, so that the leftover of a write killed before its rename is reused
** (truncated) by the next write rather than left beside the settings file. */
int openTemporary(const std::string &temporary)
{
    for (int attempt = 0; attempt < 100; ++attempt) {
        int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
        if (fd < 0)
            return -1;
        struct stat opened{}, named{};
        if (::flock(fd, LOCK_EX) != 0 || ::fstat(fd, &opened) != 0) {
            int error = errno;
            ::close(fd);
            errno = error;
            return -1;
        }
        if (::stat(temporary.c_str(), &named) == 0 && opened.st_ino == named.st_ino && opened.st_dev == named.st_dev) {
            if (::ftruncate(fd, 0) == 0)
                return fd;
            int error = errno;
            ::close(fd);
            errno = error;
            return -1;
        }
        ::close(fd);    /* another writer renamed it into place while we waited for the lock */
    }
    errno = EBUSY;
    return -1;
}

/* Writes the file next to its final place and renames it there, so that a reader sees the
** old file or the new one, never a part. A file without write permission is not replaced
** (the host's users mark a settings file read-only to keep it as it is). */
bool replaceFile(const std::string &settingsPath, const IniText &ini, std::string &reason)
{
    std::string path = linkTarget(settingsPath);
    struct stat old{};
    bool exists = ::stat(path.c_str(), &old) == 0;
    if (exists && ((old.st_mode & 0222) == 0 || ::access(path.c_str(), W_OK) != 0)) {
        reason = std::strerror(EACCES);
        return false;
    }
    size_t slash = path.find_last_of('/');
    std::string folder = slash == std::string::npos ? "." : (slash == 0 ? "/" : path.substr(0, slash));
    std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
    std::string temporary = folder + "/." + base + ".tmp";
    FileDescriptor fd(openTemporary(temporary));
    if (fd.get() < 0) {
        reason = std::strerror(errno);
        return false;
    }
    auto failAndRemove = [&](int error) {
        reason = std::strerror(error);
        ::unlink(temporary.c_str());
        fd.close();
        return false;
    };
    mode_t mode;
    if (exists) {
        mode = old.st_mode & 07777;
    } else {
        mode_t mask = ::umask(0);
        ::umask(mask);
        mode = 0666 & ~mask;
    }
    if (::fchmod(fd.get(), mode) != 0)
        return failAndRemove(errno);
    std::string text;
    for (size_t i = 0; i < ini.lines.size(); ++i)
        text += ini.lines[i] + (ini.breaks[i].ends_with('\n') ? ini.breaks[i] : ini.lineBreak);
    size_t written = 0;
    while (written < text.size()) {
        ssize_t n = ::write(fd.get(), text.data() + written, text.size() - written);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return failAndRemove(errno);
        written += static_cast<size_t>(n);
    }
    if (::fsync(fd.get()) != 0)
        return failAndRemove(errno);
    /* Renamed while still locked, so that a writer waiting for the lock finds the name gone. */
    if (::rename(temporary.c_str(), path.c_str()) != 0)
        return failAndRemove(errno);
    if (fd.close() != 0) {
        reason = std::strerror(errno);
        return false;
    }
    return true;
}

bool hasLineBreak(const char *s) { return s && std::strpbrk(s, "\r\n"); }

/* Why a section or key name (trimmed) would not be found again once written, or nullptr. */
const char *unstorableName(const std::string &section, const std::string &key)
{
    if (section.find(']') != std::string::npos)
        return "a ']' in the section name";
    if (key.find('=') != std::string::npos)
        return "a '=' in the key name";
    if (!key.empty() && (isComment(key) || key[0] == '['))
        return "a key name that starts with ';', '#' or '['";
    return nullptr;
}

/* A value as its line holds it. A reader trims blanks and drops matching quotes, so a value
** with blanks at its ends or in matching quotes is put in double quotes (read back by a
** Windows reader too); any other value is written as it is. */
std::string storedValue(const std::string &value)
{
    bool blankEnds = !value.empty() && (std::strchr(" \t", value.front()) || std::strchr(" \t", value.back()));
    bool quoted = value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front();
    return blankEnds || quoted ? '"' + value + '"' : value;
}

}

void resetProfileState() { writeFailures = 0; }

int settingsWriteFailures() { return writeFailures; }

}

using namespace platform;

extern "C" {

/* A missing or unreadable file reads as empty. The section and key are trimmed and matched
** without regard to case; the result is the number of characters copied, at most size - 1. */
DWORD GetPrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR defaultValue, LPSTR buffer,
                               DWORD size, LPCSTR fileName)
{
    if (!buffer || size == 0)
        return 0;
    IniText ini;
    std::string reason;
    if (fileName)
        readIni(fileName, ini, reason);
    if (!section) {
        std::vector<std::string> names;
        for (const std::string &line : ini.lines)
            if (auto name = sectionName(line))
                names.push_back(*name);
        return copyNameList(names, buffer, size);
    }
    SectionRange range = findSection(ini, trim(section));
    if (!key) {
        std::vector<std::string> names;
        if (range.found)
            for (size_t i = range.header + 1; i < range.end; ++i)
                if (auto name = keyName(ini.lines[i]))
                    names.push_back(*name);
        return copyNameList(names, buffer, size);
    }
    if (auto line = findKey(ini, range, trim(key)))
        return copyValue(valueOf(ini.lines[*line]), buffer, size);
    std::string fallback = defaultValue ? defaultValue : "";
    fallback.erase(fallback.find_last_not_of(' ') + 1);     /* Win32 drops trailing blanks */
    return copyValue(fallback, buffer, size);
}

/* Sets key = value in the section; a null value deletes the key, a null key the section.
** A missing key goes after the last key of its section, a missing section at the end.
** Names are trimmed as a reader trims them; a name a reader would not find again, or a
** line break anywhere, is refused (FALSE, with the reason in the transcript). */
BOOL WritePrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR value, LPCSTR fileName)
{
    if (!section && !key && !value)
        return FALSE;   /* Win32: flushes its cache and reports FALSE */
    if (!fileName || !*fileName)
        return writeFailure(fileName ? fileName : "(none)", "no file name") ? TRUE : FALSE;
    std::string path = fileName;
    if (!section)
        return writeFailure(path, "no section name") ? TRUE : FALSE;
    if (hasLineBreak(section) || hasLineBreak(key) || hasLineBreak(value))
        return writeFailure(path, "a line break in the section, key or value") ? TRUE : FALSE;
    std::string sectionText = trim(section), keyText = key ? trim(key) : "";
    if (const char *why = value ? unstorableName(sectionText, keyText) : nullptr)
        return writeFailure(path, why) ? TRUE : FALSE;

    IniText ini;
    std::string reason;
    /* A file that exists but cannot be read is not overwritten: its contents would be lost. */
    if (readIni(path, ini, reason) == ReadResult::Unreadable)
        return writeFailure(path, "the file cannot be read: " + reason) ? TRUE : FALSE;

    SectionRange range = findSection(ini, sectionText);
    auto &lines = ini.lines;
    if (!key) {
        if (!range.found)
            return TRUE;
        ini.erase(range.header, range.end);
    } else if (!value) {
        auto at = findKey(ini, range, keyText);
        if (!at)
            return TRUE;
        ini.erase(*at, *at + 1);
    } else {
        std::string entry = keyText + "=" + storedValue(value);
        if (auto at = findKey(ini, range, keyText)) {
            if (lines[*at] == entry)
                return TRUE;
            lines[*at] = entry;
        } else if (range.found) {
            size_t after = range.header;
            for (size_t i = range.header + 1; i < range.end; ++i)
                if (keyName(lines[i]))
                    after = i;
            if (after == range.header)      /* no keys yet: after the section's comments */
                for (size_t i = range.header + 1; i < range.end; ++i)
                    if (!trim(lines[i]).empty())
                        after = i;
            ini.insert(after + 1, entry);
        } else {
            if (!lines.empty() && !trim(lines.back()).empty())
                ini.insert(lines.size(), "");
            ini.insert(lines.size(), "[" + sectionText + "]");
            ini.insert(lines.size(), entry);
        }
    }
    if (!replaceFile(path, ini, reason))
        return writeFailure(path, reason) ? TRUE : FALSE;
    return TRUE;
}

}
