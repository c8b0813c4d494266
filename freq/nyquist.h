/*
** freq/nyquist.h: the Nyquist curve of a factored transfer function: automatic range,
** negative frequencies, detours around imaginary-axis poles, and the sampled case.
*/
#ifndef PRAXA_NYQUIST_H
#define PRAXA_NYQUIST_H

#include <cstdint>

#include "host/records.h"
#include "platform/winapi.h"

/* Fills traces 0 (real) and 1 (imaginary) of the plot; returns the frequency array W
** (rad/s, galloc'd, never null), which then belongs to the plot. */
double *nyquistResponse(int32_t zeroCount, int32_t poleCount, Complex *poles, Complex *zeros, PlotRecord *plot,
                        double unitFactor, double gain);
/* The sampled model on the unit circle into the two trace buffers (points 1 … N). */
void nyquistResponseSampled(int32_t zeroCount, int32_t poleCount, Complex *poles, Complex *zeros,
                            double *realTrace, double *imaginaryTrace, double unitFactor, double gain);

extern "C" INT_PTR nyqustInfinitiDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

#endif
