/*
** freq/pole_zero.h: the response K·Π(s − z)/Π(s − p) of a factored transfer function at
** a point of the complex plane, and the extreme root magnitudes of the factor lists.
** Every frequency-domain evaluation goes through evalPoleZero.
*/
#ifndef PRAXA_POLE_ZERO_H
#define PRAXA_POLE_ZERO_H

#include <cstdint>

#include "host/records.h"

struct PoleZeroValue {
    double magnitude;               /* |K|·Π|s − z| / Π|s − p| */
    double angle;                   /* radians: Σ arg(s − z) − Σ arg(s − p), + π when K < 0 */
    double denominatorMagnitude;    /* Π|s − p| (1 without poles): tells a point on a pole */
};

/* The response at s, zeros and poles in list order; the sign of K is carried by the angle. */
PoleZeroValue evalPoleZero(Complex s, const Complex *zeros, int32_t zeroCount, const Complex *poles,
                           int32_t poleCount, double K);

/* Largest and smallest |root| over both lists (0 when both are empty). */
double maxRootMagnitude(const Complex *poles, const Complex *zeros, int32_t poleCount, int32_t zeroCount);
double minRootMagnitude(const Complex *poles, const Complex *zeros, int32_t poleCount, int32_t zeroCount);

#endif
