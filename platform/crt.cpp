/*
** platform/crt.cpp: the C runtime calls of the plug-in's original platform that
** glibc lacks: _gcvt (number to short text) and _itoa_s (integer to text, any radix).
*/
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/winapi.h"

namespace {

/* Significant digits _gcvt honours.  Callers pass 64-byte buffers; the longest text,
** "-d.<digits-1>e+ddd", takes digits + 7 characters and its terminator, so 50 digits
** (58 bytes) always fit.  Fewer than 1 digit is taken as 1, more than 50 as 50. */
constexpr int GCVT_MAX_DIGITS = 50;

int clampDigits(int digits)
{
    return digits < 1 ? 1 : digits > GCVT_MAX_DIGITS ? GCVT_MAX_DIGITS : digits;
}

}

extern "C" {

/* _gcvt(value, digits, buffer): value rounded to `digits` significant digits, written
** in the shorter of fixed and exponent notation (fixed on a tie; fixed only when the
** value's decimal exponent is below `digits`), trailing zeros of the digits removed.
** So 0.01 is "0.01", 1.5e-7 is "1.5e-007", 100000 is "100000." and 1e6 "1.e+006" at
** 6 digits.  As on the original platform:
**   - fixed notation keeps its decimal point, also when nothing follows it ("100.");
**     a value below 1 has a leading "0" ("0.25");
**   - exponent notation has one digit before the point, the point itself ("1.e+010"),
**     and an exponent with its sign and at least three digits ("1.5e-007").
** Choices of this stand-in: digits are rounded from the exact binary value, an exact
** tie to even (as glibc's printf does; 25 at one digit is "2.e+001"); zero is "0."
** whatever its sign (a "-0." would leave a lone "-" after the plug-in's clean-up);
** infinities are "inf" and "-inf", NaN is "nan".
** `digits` is clamped to 1..50, so the text never exceeds 58 bytes with terminator. */
char *_gcvt(double value, int digits, char *buffer)
{
    digits = clampDigits(digits);
    if (std::isnan(value)) {
        std::strcpy(buffer, "nan");
        return buffer;
    }
    if (std::isinf(value)) {
        std::strcpy(buffer, value < 0 ? "-inf" : "inf");
        return buffer;
    }
    if (value == 0.0) {
        std::strcpy(buffer, "0.");
        return buffer;
    }

    /* Rounded digits and decimal exponent: "d.ddd...e+XX" from the standard library. */
    char scientific[GCVT_MAX_DIGITS + 16];
    std::snprintf(scientific, sizeof scientific, "%.*e", digits - 1, std::fabs(value));
    char mantissa[GCVT_MAX_DIGITS + 1];
    int count = 0;
    const char *s = scientific;
    for (; *s && *s != 'e'; s++)
        if (*s >= '0' && *s <= '9')
            mantissa[count++] = *s;
    int exponent = *s == 'e' ? (int)std::strtol(s + 1, nullptr, 10) : 0;
    while (count > 1 && mantissa[count - 1] == '0')
        count--;
    mantissa[count] = '\0';
    const int sign = value < 0 ? 1 : 0;

    const int exponentDigits = 3;                   /* |exponent| <= 324 */
    int exponentLength = sign + 2 + (count - 1) + 2 + exponentDigits;
    int fixedLength = exponent >= 0
        ? sign + (exponent + 1 > count ? exponent + 1 : count) + 1
        : sign + 2 + (-exponent - 1) + count;

    char *out = buffer;
    if (sign)
        *out++ = '-';
    /* Fixed notation is a candidate only when it shows the value at `digits`
    ** significant digits, that is without zeros standing in for rounded-off digits
    ** before the point (1234567 at 6 digits is 1.23457e+006, not 1234570.). */
    const bool fixedHoldsDigits = exponent < digits;
    if (fixedHoldsDigits && fixedLength <= exponentLength) {
        if (exponent >= 0) {
            for (int i = 0; i <= exponent; i++)
                *out++ = i < count ? mantissa[i] : '0';
            *out++ = '.';
            for (int i = exponent + 1; i < count; i++)
                *out++ = mantissa[i];
        } else {
            *out++ = '0';
            *out++ = '.';
            for (int i = 0; i < -exponent - 1; i++)
                *out++ = '0';
            for (int i = 0; i < count; i++)
                *out++ = mantissa[i];
        }
        *out = '\0';
    } else {
        *out++ = mantissa[0];
        *out++ = '.';
        for (int i = 1; i < count; i++)
            *out++ = mantissa[i];
        std::snprintf(out, 8, "e%c%03d", exponent < 0 ? '-' : '+', std::abs(exponent) % 1000);
    }
    return buffer;
}

/* _itoa_s(value, buffer, size, radix): value as text in radix 2..36 (lower-case
** letters); negative only in radix 10, other radices show the 32-bit pattern unsigned.
** Returns 0; EINVAL for a null buffer, size 0 or a bad radix; ERANGE when the text and
** its terminator do not fit.  On any error the buffer (if any) holds "". */
int _itoa_s(int value, char *buffer, size_t size, int radix)
{
    if (!buffer || size == 0)
        return EINVAL;
    buffer[0] = '\0';
    if (radix < 2 || radix > 36)
        return EINVAL;
    const bool negative = radix == 10 && value < 0;
    unsigned int magnitude = negative ? 0u - (unsigned int)value : (unsigned int)value;
    char reversed[33];
    int length = 0;
    do {
        unsigned int digit = magnitude % (unsigned int)radix;
        reversed[length++] = (char)(digit < 10 ? '0' + digit : 'a' + digit - 10);
        magnitude /= (unsigned int)radix;
    } while (magnitude);
    if ((size_t)length + (negative ? 1 : 0) + 1 > size)
        return ERANGE;
    char *out = buffer;
    if (negative)
        *out++ = '-';
    while (length)
        *out++ = reversed[--length];
    *out = '\0';
    return 0;
}

}
