/*
** rlocus/gain_range.cpp: the automatic gain range of the root locus: the box size S and
** the top gain Kauto at which the branches bound for infinity have left the box and the
** zeros are reached.
*/
#include <cmath>

#include "freq/pole_zero.h"
#include "rlocus/locus_state.h"

int32_t countRootsOutside(const Complex *roots, double S, int32_t count)
{
    int32_t outside = 0;
    for (int32_t i = 0; i < count; ++i)
        if (std::fabs(roots[i].re) > S || std::fabs(roots[i].im) > S)
            ++outside;
    return outside;
}

static bool insideBox(Complex r, double S)
{
    return std::fabs(r.re) < S && std::fabs(r.im) < S;
}

bool zerosReached(const Complex *zeros, int32_t nZ, int32_t n, double S)
{
    const Complex *roots = rootLocusState.autoRoots;
    for (int32_t k = 0; k < nZ; ++k) {
        bool reached = false;
        for (int32_t i = 0; i < n && !reached; ++i) {
            double distance = std::hypot(roots[i].re - zeros[k].re, roots[i].im - zeros[k].im);
            reached = insideBox(roots[i], S) && distance < S / 100.0 && distance < 0.1;
        }
        if (!reached)
            return false;
    }
    return true;
}

/* autoRoots = the n roots of autoDenominator + K g autoNumerator. */
static void autoRootsAt(double K, int32_t n)
{
    RootLocusState &st = rootLocusState;
    for (int32_t k = 0; k <= n; ++k)
        st.autoClosedLoop[k] = st.autoDenominator[k] + K * st.gain * st.autoNumerator[k];
    polyRoots(st.autoRoots, st.autoClosedLoop, n, st.autoCompanion);
}

static bool rangeReached(const Complex *zeros, int32_t nP, int32_t nZ, double S, int32_t n)
{
    return countRootsOutside(rootLocusState.autoRoots, S, n) == nP - nZ && zerosReached(zeros, nZ, n, S);
}

void rootLocusAutoGain(const Complex *poles, const Complex *zeros, int32_t nP, int32_t nZ, double *S,
                       double *Kauto, int32_t n)
{
    double box = 2.0 * maxRootMagnitude(poles, zeros, nP, nZ);
    if (!(box >= 2.0))                  /* also a NaN root: the box keeps its least size */
        box = 2.0;
    *S = box;

    /* Doubling from 10: 11 passes at most, giving up at 20480. */
    double K = 10.0, Klo = 0.0;
    bool matched = false, found = false;
    for (int pass = 1; pass <= 11; ++pass) {
        autoRootsAt(K, n);
        if (matched || countRootsOutside(rootLocusState.autoRoots, box, n) == nP - nZ) {
            if (zerosReached(zeros, nZ, n, box)) {
                found = true;
                break;
            }
            matched = true;
        }
        Klo = K;
        K = 2.0 * K;
    }
    *Kauto = K;
    if (!found)
        return;

    /* Bisection between the last gain that failed and the one that passed. */
    double Khi = K;
    double width = K - Klo;
    for (int pass = 1; pass <= 10; ++pass) {
        double Kmid = (Klo + Khi) / 2.0;
        autoRootsAt(Kmid, n);
        if (rangeReached(zeros, nP, nZ, box, n))
            Khi = Kmid;
        else
            Klo = Kmid;
        if (Khi - Klo < 1.0 || Khi - Klo < width / 100.0) {
            *Kauto = Khi;
            return;
        }
    }
}

/* The growth by same/3 + 1 compounds from step to step: where the turn test never halves
** a step (branches on straight lines: the real axis, or vertical ones with real parts
** exactly equal) it took 1/(s^2 + 2s + 2) to K = 1.6e9 and 1/s to -5.3e8 before the
** locus could stop, with the start points lost in one dot.  Held at Kauto/4, the gain grows
** by at most Kauto per four steps, and the locus stops soon after leaving twice the box. */
double grownGainStep(double dK, int same, double Kauto)
{
    double grown = dK * (same / 3.0 + 1.0);
    double most = std::fabs(Kauto) / 4.0;
    if (grown > most)
        grown = dK > most ? dK : most;
    return grown;
}
