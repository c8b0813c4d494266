/*
** hostapp/svg_text.cpp: numbers and escaped texts for the host's SVG pictures.
*/
#include "hostapp/svg_text.h"

#include <cstdio>

namespace hostapp {

std::string svgNumber(double v, const char *format)
{
    char text[64];
    std::snprintf(text, sizeof text, format, v);
    return text;
}

std::string escapeXml(const std::string &text, bool keepUtf8)
{
    std::string out;
    for (char c : text) {
        unsigned char u = (unsigned char)c;
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        case '\'': out += "&apos;"; break;
        default: out += (u < 0x20 || u == 0x7F || (u >= 0x80 && !keepUtf8)) ? '?' : c;
        }
    }
    return out;
}

}
