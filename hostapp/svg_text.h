/*
** hostapp/svg_text.h: the text pieces every SVG picture of the host is made of:
** numbers as written into coordinates and labels, and XML-escaped texts.
*/
#ifndef TERVAN_SVG_TEXT_H
#define TERVAN_SVG_TEXT_H

#include <string>

namespace hostapp {

/* v as written into an SVG file, by the printf format (coordinates: two decimals). */
std::string svgNumber(double v, const char *format = "%.2f");

/* text with & < > " ' escaped; bytes outside printable ASCII become '?' unless
** keepUtf8 (names a user typed may be UTF-8; record texts are plain ASCII). */
std::string escapeXml(const std::string &text, bool keepUtf8 = false);

}

#endif
