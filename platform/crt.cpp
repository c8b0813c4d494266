/* Temporary C runtime calls until the real ones are written. */
#include <cstdio>
#include "platform/winapi.h"
extern "C" {
char *_gcvt(double v, int d, char *b) { std::sprintf(b, "%.*g", d, v); return b; }
int _itoa_s(int v, char *b, size_t s, int) { std::snprintf(b, s, "%d", v); return 0; }
}
