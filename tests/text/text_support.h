/*
** tests/text/text_support.h: the texts of the message boxes in the transcript, the
** display precision set for one test, and reading a result file.
*/
#ifndef PRAXA_TESTS_TEXT_SUPPORT_H
#define PRAXA_TESTS_TEXT_SUPPORT_H

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/driver.h"
#include "shell/settings.h"

namespace testing_text {

/* Message boxes are transcript entries "[caption] text"; their texts, in order. */
inline std::vector<std::string> messageBoxTexts()
{
    std::vector<std::string> texts;
    for (const std::string &line : platform::transcript())
        if (line.rfind("[Tervan", 0) == 0) {
            size_t end = line.find("] ");
            texts.push_back(end == std::string::npos ? "" : line.substr(end + 2));
        }
    return texts;
}

/* Sets the display precision for the lifetime of the object. */
struct PrecisionScope {
    int saved = displayPrecision;
    explicit PrecisionScope(int digits) { displayPrecision = digits; }
    ~PrecisionScope() { displayPrecision = saved; }
};

}

#endif
