/*
** hostapp/svg_text.h: the text pieces every SVG picture of the host is made of:
** numbers as written into coordinates and labels, and XML-escaped texts.
*/
#ifndef TERVAN_SVG_TEXT_H
#define TERVAN_SVG_TEXT_H

#include <charconv>
#include <string>

namespace hostapp {

/* Appends v as printf would write it with "%.Nf" (fixed) or "%g" and "%.Ng" (general):
** std::to_chars gives the same digits, several times faster. */
void appendSvgNumber(std::string &out, double v, std::chars_format style = std::chars_format::fixed,
                     int precision = 2);

/* v in a printf format of the kinds above ("%.2f", "%.0f", "%g", "%.3g"); coordinates
** are written with two decimals. */
std::string svgNumber(double v, const char *format = "%.2f");

/* text with & < > " ' escaped; bytes outside printable ASCII become '?' unless
** keepUtf8 (names a user typed may be UTF-8; record texts are plain ASCII). */
std::string escapeXml(const std::string &text, bool keepUtf8 = false);

}

#endif
