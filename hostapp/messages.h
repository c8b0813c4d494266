/*
** hostapp/messages.h: how the host formats and captions its message boxes.
*/
#ifndef TERVAN_MESSAGES_H
#define TERVAN_MESSAGES_H

#include <cstdarg>
#include <string>

namespace hostapp {

inline constexpr const char *MESSAGE_CAPTION = "Tervan";
inline constexpr const char *DEBUG_CAPTION = "Tervan Debug";

/* printf-style formatting where %Fs also stands for a string. */
std::string formatMessage(const char *format, va_list args);

}

#endif
