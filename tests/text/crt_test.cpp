/*
** The C runtime stand-ins: _gcvt notation (fixed or exponent, trailing point, three
** exponent digits, clamped digit counts) and _itoa_s with its error codes.
*/
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "platform/winapi.h"

namespace {

std::string gcvt(double value, int digits)
{
    char buffer[64];
    std::memset(buffer, '#', sizeof buffer);
    _gcvt(value, digits, buffer);
    EXPECT_NE(std::memchr(buffer, '\0', sizeof buffer), nullptr);
    return buffer;
}

}

TEST(Gcvt, FixedNotationKeepsItsPoint)
{
    EXPECT_EQ(gcvt(100, 6), "100.");
    EXPECT_EQ(gcvt(1, 6), "1.");
    EXPECT_EQ(gcvt(0.1, 6), "0.1");
    EXPECT_EQ(gcvt(-0.5, 6), "-0.5");
    EXPECT_EQ(gcvt(3.14159, 3), "3.14");
    EXPECT_EQ(gcvt(2.5, 6), "2.5");
    EXPECT_EQ(gcvt(-1234.5, 6), "-1234.5");
    EXPECT_EQ(gcvt(100000, 6), "100000.");     /* a tie with 1.e+005: fixed */
    EXPECT_EQ(gcvt(123456, 6), "123456.");
    EXPECT_EQ(gcvt(0.01, 6), "0.01");
    EXPECT_EQ(gcvt(0.00012345, 6), "0.00012345");
    EXPECT_EQ(gcvt(999999.7, 6), "1.e+006");    /* rounding carries into the exponent */
    EXPECT_EQ(gcvt(0.30000000000000004, 6), "0.3");
}

TEST(Gcvt, ExponentNotationHasSignAndThreeDigits)
{
    EXPECT_EQ(gcvt(1e10, 6), "1.e+010");
    EXPECT_EQ(gcvt(1.5e-7, 6), "1.5e-007");
    EXPECT_EQ(gcvt(-2.5e-12, 6), "-2.5e-012");
    EXPECT_EQ(gcvt(1234567, 6), "1.23457e+006");
    EXPECT_EQ(gcvt(1e6, 6), "1.e+006");
    EXPECT_EQ(gcvt(1e-5, 6), "0.00001");        /* a tie: fixed */
    EXPECT_EQ(gcvt(1e-6, 6), "1.e-006");
    EXPECT_EQ(gcvt(1.7976931348623157e308, 6), "1.79769e+308");
    EXPECT_EQ(gcvt(4.9406564584124654e-324, 3), "4.94e-324");
    EXPECT_EQ(gcvt(6.02214076e23, 4), "6.022e+023");
}

TEST(Gcvt, ZeroAndNonFiniteValues)
{
    EXPECT_EQ(gcvt(0.0, 6), "0.");
    EXPECT_EQ(gcvt(-0.0, 6), "0.");
    EXPECT_EQ(gcvt(INFINITY, 6), "inf");
    EXPECT_EQ(gcvt(-INFINITY, 6), "-inf");
    EXPECT_EQ(gcvt(NAN, 6), "nan");
}

TEST(Gcvt, DigitCountsAreClampedToWhatTheBufferHolds)
{
    EXPECT_EQ(gcvt(3.14159, 0), "3.");
    EXPECT_EQ(gcvt(3.14159, -7), "3.");
    EXPECT_EQ(gcvt(25.0, 1), "2.e+001");        /* an exact tie rounds to even */
    EXPECT_EQ(gcvt(35.0, 1), "4.e+001");
    EXPECT_EQ(gcvt(1.0 / 3.0, 17), "0.33333333333333331");
    /* 500 digits gives the 50 the clamp allows: the exact binary value of -1/3 at 50
    ** digits, in exponent notation, still inside the caller's 64 bytes. */
    std::string long1 = gcvt(-1.0 / 3.0, 500);
    EXPECT_EQ(long1, gcvt(-1.0 / 3.0, 50));
    EXPECT_LE(long1.size(), 57u);
    std::string huge = gcvt(-1.2345678901234567e-300, 1000);
    EXPECT_LE(huge.size(), 57u);
    EXPECT_EQ(huge.substr(0, 20), "-1.23456789012345675");
    EXPECT_EQ(huge.substr(huge.size() - 5), "e-300");
}

TEST(ItoaS, RadixTenAndOthers)
{
    char buffer[40];
    EXPECT_EQ(_itoa_s(0, buffer, sizeof buffer, 10), 0);
    EXPECT_STREQ(buffer, "0");
    EXPECT_EQ(_itoa_s(-1234, buffer, sizeof buffer, 10), 0);
    EXPECT_STREQ(buffer, "-1234");
    EXPECT_EQ(_itoa_s(INT_MIN, buffer, sizeof buffer, 10), 0);
    EXPECT_STREQ(buffer, "-2147483648");
    EXPECT_EQ(_itoa_s(255, buffer, sizeof buffer, 16), 0);
    EXPECT_STREQ(buffer, "ff");
    EXPECT_EQ(_itoa_s(-1, buffer, sizeof buffer, 16), 0);      /* unsigned pattern */
    EXPECT_STREQ(buffer, "ffffffff");
    EXPECT_EQ(_itoa_s(-1, buffer, sizeof buffer, 2), 0);
    EXPECT_EQ(std::string(buffer), std::string(32, '1'));
    EXPECT_EQ(_itoa_s(35, buffer, sizeof buffer, 36), 0);
    EXPECT_STREQ(buffer, "z");
}

TEST(ItoaS, ErrorsLeaveAnEmptyTextAndNeverOverrun)
{
    char buffer[8];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(_itoa_s(12345, buffer, 5, 10), ERANGE);         /* needs 6 bytes */
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(buffer[5], '#');
    EXPECT_EQ(_itoa_s(12345, buffer, 6, 10), 0);
    EXPECT_STREQ(buffer, "12345");
    EXPECT_EQ(_itoa_s(-1, buffer, 2, 10), ERANGE);            /* "-1" needs 3 */
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(_itoa_s(7, buffer, sizeof buffer, 1), EINVAL);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(_itoa_s(7, buffer, sizeof buffer, 37), EINVAL);
    EXPECT_EQ(_itoa_s(7, nullptr, 8, 10), EINVAL);
    buffer[0] = 'x';
    EXPECT_EQ(_itoa_s(7, buffer, 0, 10), EINVAL);
    EXPECT_EQ(buffer[0], 'x');                                  /* size 0: not written */
}
