/*
** hostapp/svg_text.cpp: numbers and escaped texts for the host's SVG pictures.
*/
#include "hostapp/svg_text.h"

#include <cstdlib>
#include <cstring>

namespace hostapp {

void appendSvgNumber(std::string &out, double v, std::chars_format style, int precision)
{
    char text[64];
    auto [end, error] = std::to_chars(text, text + sizeof text, v, style, precision);
    if (error == std::errc())
        out.append(text, end);
}

std::string svgNumber(double v, const char *format)
{
    int precision = format[1] == '.' ? std::atoi(format + 2) : 6;
    char type = format[std::strlen(format) - 1];
    std::string text;
    appendSvgNumber(text, v, type == 'f' ? std::chars_format::fixed : std::chars_format::general, precision);
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
