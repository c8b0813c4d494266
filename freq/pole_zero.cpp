/*
** freq/pole_zero.cpp: evaluation of a factored transfer function, root magnitudes.
*/
#include "freq/pole_zero.h"

#include <cmath>

static const double PI = 3.141592653589793;

/* sqrt(re² + im²), exactly 0 when that sum is 0. */
static double modulus(double re, double im)
{
    double sum = re * re + im * im;
    return sum == 0.0 ? 0.0 : std::sqrt(sum);
}

PoleZeroValue evalPoleZero(Complex s, const Complex *zeros, int32_t zeroCount, const Complex *poles,
                           int32_t poleCount, double K)
{
    double numeratorMagnitude = 1.0, numeratorAngle = 0.0;
    for (int32_t i = 0; i < zeroCount; i++) {
        double re = s.re - zeros[i].re, im = s.im - zeros[i].im;
        numeratorMagnitude *= modulus(re, im);
        numeratorAngle += std::atan2(im, re);
    }
    double denominatorMagnitude = 1.0, denominatorAngle = 0.0;
    for (int32_t i = 0; i < poleCount; i++) {
        double re = s.re - poles[i].re, im = s.im - poles[i].im;
        denominatorMagnitude *= modulus(re, im);
        denominatorAngle += std::atan2(im, re);
    }
    PoleZeroValue value;
    value.magnitude = std::fabs(K) * numeratorMagnitude / denominatorMagnitude;
    value.angle = numeratorAngle - denominatorAngle + (K < 0 ? PI : 0.0);
    value.denominatorMagnitude = denominatorMagnitude;
    return value;
}

static double extremeMagnitude(const Complex *poles, const Complex *zeros, int32_t poleCount, int32_t zeroCount,
                               bool largest)
{
    bool any = false;
    double extreme = 0.0;
    auto consider = [&](const Complex &root) {
        double m = modulus(root.re, root.im);
        if (!any || (largest ? m > extreme : m < extreme))
            extreme = m;
        any = true;
    };
    for (int32_t i = 0; i < poleCount; i++)
        consider(poles[i]);
    for (int32_t i = 0; i < zeroCount; i++)
        consider(zeros[i]);
    return extreme;
}

double maxRootMagnitude(const Complex *poles, const Complex *zeros, int32_t poleCount, int32_t zeroCount)
{
    return extremeMagnitude(poles, zeros, poleCount, zeroCount, true);
}

double minRootMagnitude(const Complex *poles, const Complex *zeros, int32_t poleCount, int32_t zeroCount)
{
    return extremeMagnitude(poles, zeros, poleCount, zeroCount, false);
}
