/*
** hostapp/text_file.h: reading a diagram or script file whole, up to a size limit.
*/
#ifndef TERVAN_TEXT_FILE_H
#define TERVAN_TEXT_FILE_H

#include <cstddef>
#include <string>

namespace hostapp {

/* The most bytes a diagram file and a script file may have. */
inline constexpr size_t DIAGRAM_FILE_LIMIT = size_t(256) << 20;
inline constexpr size_t SCRIPT_FILE_LIMIT = size_t(16) << 20;

/* Reads the file at `path` into text. A folder, an unreadable file and one larger than
** limit (also an endless one such as /dev/zero) are refused with
** "cannot read WHAT PATH: REASON" in error. */
bool readTextFile(const std::string &path, const char *what, size_t limit, std::string &text, std::string &error);

}

#endif
