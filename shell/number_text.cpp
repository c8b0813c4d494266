/*
** shell/number_text.cpp: numbers and complex numbers as short texts at the display
** precision (_gcvt, then a clean-up: no leading "0" before the point, no lone point).
*/
#include <cstdio>
#include <cstring>

#include "platform/winapi.h"
#include "shell/settings.h"
#include "shell/text.h"

static char numberBuffer[64];
static char complexBuffer[128];

/* Removes the character at p; the rest of the text moves left. */
static void removeAt(char *p)
{
    std::memmove(p, p + 1, std::strlen(p + 1) + 1);
}

/* Any display precision is passed on as it is: _gcvt takes fewer than 1 digit as 1
** and more than 50 as 50, so the text always fits the 64-byte buffer. */
const char *numberToText(double x)
{
    _gcvt(x, displayPrecision, numberBuffer);
    char *p = numberBuffer;
    if (*p == '-')
        p++;
    while (*p == ' ')
        removeAt(p);
    if (p[0] == '0' && p[1] != '\0')
        removeAt(p);
    char *point = std::strchr(numberBuffer, '.');
    if (point && (point[1] == '\0' || point[1] == 'e' || point[1] == 'E'))
        removeAt(point);
    if (numberBuffer[0] == '\0')
        std::strcpy(numberBuffer, "0");
    return numberBuffer;
}

const char *complexToText(const Complex *z)
{
    /* numberToText reuses its buffer: take the real part's text before the next call. */
    char real[sizeof numberBuffer];
    std::snprintf(real, sizeof real, "%s", numberToText(z->re));
    std::snprintf(complexBuffer, sizeof complexBuffer, "(%s,%s)", real, numberToText(z->im));
    return complexBuffer;
}
