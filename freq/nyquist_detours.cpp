/*
** freq/nyquist_detours.cpp: the detours of the Nyquist path around poles on the
** imaginary axis: finding those poles, sizing a detour by R∞, drawing its half
** circles, and ordering the curve's blocks by frequency.
*/
#include "freq/nyquist.h"

#include <algorithm>
#include <cmath>
#include <utility>


static const double PI = 3.141592653589793;

/* A pole this close to the imaginary axis lies on it; the same bound tells the origin. */
static const double AXIS_TOLERANCE = 1e-4;
/* Poles on the axis closer than this (inclusive) count once. */
static const double DISTINCT_TOLERANCE = 1e-3;
static const int CROSSING_EVALUATIONS = 26;

bool isOriginPole(double omega)
{
    return std::fabs(omega) < AXIS_TOLERANCE;
}

int32_t findJwPoles(const Complex *poles, int32_t poleCount, double *out)
{
    int32_t count = 0;
    for (int32_t i = 0; i < poleCount; i++) {
        const Complex &p = poles[i];
        if (!(std::fabs(p.re) < AXIS_TOLERANCE && p.im >= -AXIS_TOLERANCE))
            continue;
        bool taken = false;
        for (int32_t k = 0; k < count && !taken; k++)
            taken = std::fabs(p.im - out[k]) <= DISTINCT_TOLERANCE;
        if (!taken)
            out[count++] = p.im;
    }
    std::sort(out, out + count);
    return count;
}

double infinityCrossing(double omega0, double omegaMid, const NyquistSystem &system)
{
    const double R = nyquistInfinity;
    double previous = omega0, omega = omegaMid;
    for (int evaluation = 0; evaluation < CROSSING_EVALUATIONS; evaluation++) {
        double x, y;
        nyquistPoint(Complex{0.0, omega}, system, &x, &y);
        double ax = std::fabs(x), ay = std::fabs(y);
        if (ax >= R && ay >= R && omega >= omegaMid)
            return omegaMid;        /* a detour never reaches beyond the midpoint */
        double big = ax > ay ? ax : ay;
        if (std::fabs(big - R) < 0.1 * R)
            return omega;
        if (ax < R && ay < R) {
            omega = previous + (omega - previous) / 2;      /* too far from the pole */
        } else if (ax > R || ay > R) {
            double step = omega - previous;                 /* too close */
            previous = omega;
            omega += step / 2;
        }
    }
    return omega;
}

void infinityArc(double omega0, double rho, int32_t halfCount, int32_t firstPosition, const NyquistSystem &system,
                 NyquistCurve curve)
{
    /* ω0 and ρ are in rad/s, as the poles are, whatever the frequency unit: a detour
    ** centred at ω0·2π, or stretched by 2π along the axis, would miss its pole. */
    double r = rho - omega0;
    double centre = omega0;
    double R = r;
    bool origin = isOriginPole(omega0);
    int passes = origin ? 1 : 2;
    int32_t count = origin ? 2 * halfCount : halfCount;
    double angleStep = count > 1 ? PI / (count - 1) : 0.0;
    for (int pass = 0; pass < passes; pass++) {
        /* Pass 0 passes the pole at +jω0 on its right, pass 1 the conjugate at −jω0. */
        double passCentre = pass == 0 ? centre : -centre;
        int32_t first = firstPosition + pass * count;
        for (int32_t j = 0; j < count; j++) {
            double phi = j * angleStep - PI / 2;
            Complex s{r * std::cos(phi), passCentre + R * std::sin(phi)};
            int32_t position = first + j;
            curve.W[position] = s.im;
            nyquistPoint(s, system, &curve.X[position - 1], &curve.Y[position - 1]);
        }
    }
}

/* Exchanges the blocks of `size` positions that start at positions a and b. */
static void swapBlocks(double *W, double *Y, double *X, int32_t a, int32_t b, int32_t size)
{
    std::swap_ranges(W + a, W + a + size, W + b);
    std::swap_ranges(X + a - 1, X + a - 1 + size, X + b - 1);
    std::swap_ranges(Y + a - 1, Y + a - 1 + size, Y + b - 1);
}

void sortCurveBlocks(double *W, double *Y, double *X, int32_t total, int32_t blockSize)
{
    if (blockSize < 1)
        return;
    int32_t blocks = total / blockSize;
    /* A bubble sort settles within `blocks` passes; the bound also stops it on NaN. */
    for (int32_t pass = 0; pass < blocks; pass++) {
        bool swapped = false;
        for (int32_t b = 0; b + 1 < blocks; b++) {
            int32_t first = 1 + b * blockSize, next = first + blockSize;
            if (W[first] > W[next]) {
                swapBlocks(W, Y, X, first, next, blockSize);
                swapped = true;
            }
        }
        if (!swapped)
            break;
    }
}
