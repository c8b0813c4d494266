/* Temporary number text until the formatter is built. */
#include <cstdio>
#include "shell/text.h"
#include "shell/settings.h"
const char *numberToText(double x) { static char b[64]; std::snprintf(b, sizeof b, "%.*g", displayPrecision, x); return b; }
const char *complexToText(const Complex *z) { static char b[128]; std::snprintf(b, sizeof b, "(%g,%g)", z->re, z->im); return b; }
void printMatrix(const char *, const Matrix *) {}
