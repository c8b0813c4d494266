/*
** freq/nyquist.h: the Nyquist curve of a factored transfer function: automatic range,
** negative frequencies, detours around imaginary-axis poles, and the sampled case.
*/
#ifndef PRAXA_NYQUIST_H
#define PRAXA_NYQUIST_H

#include <cstdint>

#include "host/records.h"
#include "platform/winapi.h"

/* A run never draws more points than this (three arrays of doubles, about 100 MB): the
** step count comes from the settings file and the detoured count grows with the square of
** the number of imaginary-axis poles. The plot is reserved for at most this many. */
inline constexpr int32_t NYQUIST_MOST_POINTS = 1 << 22;

/* R∞, the response size at which a detour around an imaginary-axis pole starts; every
** run sets it to 10, the NYQUISTINFINITI dialog may change it (never below 2). */
extern double nyquistInfinity;
/* M, the curve points per detour of the last run that found imaginary-axis poles. */
extern int32_t arcPointCount;

/* The continuous model (K, zeros, poles in rad/s) into traces 0 (real) and 1 (imaginary)
** of the plot, whose point count and both trace lists it sets and reserves anew.
** Overwrites start, stop (in the frequency unit) and steps of frequencyRange with the
** values it uses; unitFactor: 2π when the frequency unit is Hertz, else 1.
** Returns W (rad/s, galloc'd, N′ + 1 doubles, never null), which then belongs to the plot:
** point p belongs to W[p − 1] on a curve without detours, to W[p] on a detoured one. */
double *nyquistResponse(int32_t zeroCount, int32_t poleCount, Complex *poles, Complex *zeros, PlotRecord *plot,
                        double unitFactor, double gain);

/* What frequencyResponse does before nyquistResponseSampled: R∞ = 10; start at least
** 1e-4, stop 1 when below 1e-4, steps at least 1000, written into frequencyRange; the
** plot's point count and both trace counts set to the steps and both traces reserved. */
void prepareSampledNyquist(PlotRecord *plot);
/* The sampled model on the unit circle into the two trace buffers (points 1 … N at
** elements 0 … N − 1), N, start and stop from frequencyRange, θ = f·unitFactor rad/sample. */
void nyquistResponseSampled(int32_t zeroCount, int32_t poleCount, Complex *poles, Complex *zeros,
                            double *realTrace, double *imaginaryTrace, double unitFactor, double gain);

/* ---- Pieces of the detoured curve (freq/nyquist_detours.cpp). ---- */

/* The factored transfer function that every point of one run is evaluated with. */
struct NyquistSystem {
    const Complex *zeros;
    int32_t zeroCount;
    const Complex *poles;
    int32_t poleCount;
    double gain;
};

/* The curve being filled: W by position (W[p]), X and Y point p at element p − 1. */
struct NyquistCurve {
    double *W;
    double *X;
    double *Y;
};

/* X = magnitude·cos(angle), Y = magnitude·sin(angle) of the response at s (freq/nyquist.cpp). */
void nyquistPoint(Complex s, const NyquistSystem &system, double *x, double *y);

/* Imaginary parts (rad/s) of the distinct poles on the non-negative imaginary axis, in
** ascending order, into out (room for poleCount); returns their count. */
int32_t findJwPoles(const Complex *poles, int32_t poleCount, double *out);
/* True for the imaginary part of the pole at the origin. */
bool isOriginPole(double omega);

/* The frequency between the pole ω0 and ωmid at which the larger of |X| and |Y| comes
** within 10 % of R∞ (at most 26 evaluations on the imaginary axis). */
double infinityCrossing(double omega0, double omegaMid, const NyquistSystem &system);

/* The detour around the pole +jω0 (and its mirror −jω0) of radius ρ − ω0, both in rad/s:
** the pole at the origin one half circle of 2·halfCount points, any other two of
** halfCount each, from position firstPosition on. */
void infinityArc(double omega0, double rho, int32_t halfCount, int32_t firstPosition, const NyquistSystem &system,
                 NyquistCurve curve);

/* Orders positions 1 … total in blocks of blockSize by the first frequency of each
** block (W, X and Y together), negative frequencies first. */
void sortCurveBlocks(double *W, double *Y, double *X, int32_t total, int32_t blockSize);

extern "C" {
/* NYQUISTINFINITI: shows R∞ in edit 901; OK refuses a value below 2 with an "Error"
** box and otherwise takes it (ends with 1); Esc ends with 2 and keeps R∞. */
INT_PTR nyqustInfinitiDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
}

#endif
