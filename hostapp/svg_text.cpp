/*
** hostapp/svg_text.cpp: numbers and escaped texts for the host's SVG pictures.
*/
#include "hostapp/svg_text.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace hostapp {

namespace {

/* Coordinates below this magnitude are written by the short way of appendSvgNumber. */
constexpr double SHORT_WAY_LIMIT = 1e7;

/* v with two decimals, as "%.2f" writes it, for |v| < SHORT_WAY_LIMIT; false where the
** hundredths lie too near a tie to decide from the rounded product 100 |v| (its error
** is below 1e-7 there), and the general routine must decide. */
bool appendHundredths(std::string &out, double v)
{
    double scaled = std::fabs(v) * 100.0;
    uint64_t whole = (uint64_t)scaled;
    double fraction = scaled - (double)whole;
    if (std::fabs(fraction - 0.5) < 1e-6)
        return false;
    uint64_t hundredths = whole + (fraction > 0.5 ? 1 : 0);
    char text[32], *end = text;
    if (std::signbit(v))
        *end++ = '-';
    end = std::to_chars(end, text + sizeof text - 3, hundredths / 100).ptr;
    *end++ = '.';
    *end++ = (char)('0' + hundredths % 100 / 10);
    *end++ = (char)('0' + hundredths % 10);
    out.append(text, end);
    return true;
}

}

void appendSvgNumber(std::string &out, double v, std::chars_format style, int precision)
{
    /* Most numbers of a picture are coordinates: their short way is several times faster. */
    if (style == std::chars_format::fixed && precision == 2 && std::fabs(v) < SHORT_WAY_LIMIT &&
        appendHundredths(out, v))
        return;
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
