/*
** hostapp/text_file.cpp: reading a diagram or script file whole, up to a size limit.
*/
#include "hostapp/text_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace hostapp {

bool readTextFile(const std::string &path, const char *what, size_t limit, std::string &text, std::string &error)
{
    auto refuse = [&](const std::string &reason, const char *instead = "give a readable") {
        error = std::string("cannot read ") + what + " " + path + ": " + reason + "; " + instead + " " + what + " file";
        return false;
    };
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return refuse(std::strerror(errno));
    struct stat info{};
    if (::fstat(fd, &info) != 0 || S_ISDIR(info.st_mode)) {
        int reason = S_ISDIR(info.st_mode) ? EISDIR : errno;
        ::close(fd);
        return refuse(std::strerror(reason));
    }
    text.clear();
    char block[65536];
    for (;;) {
        ssize_t n = ::read(fd, block, sizeof block);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            int reason = errno;
            ::close(fd);
            return refuse(std::strerror(reason));
        }
        if (n == 0)
            break;
        if (text.size() + (size_t)n > limit) {
            ::close(fd);
            text.clear();
            return refuse("larger than " + std::to_string(limit >> 20) + " MiB", "give a smaller");
        }
        text.append(block, (size_t)n);
    }
    ::close(fd);
    return true;
}

}
