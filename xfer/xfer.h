/*
** xfer/xfer.h: the transfer function K N(s)/D(s) of the linearized model, its zeros,
** poles and gain.  Coefficient arrays are in ascending powers of s (index i holds s^i).
*/
#ifndef PRAXA_XFER_H
#define PRAXA_XFER_H

#include <cstdint>

#include "numeric/matrix.h"

struct Polynomial {
    int32_t count;              /* degree + 1 */
    double *coefficients;       /* ascending; n + 2 entries, owned by the caller */
};

struct TransferFunction {
    double gain;
    int32_t zeroCount;
    int32_t poleCount;
    Complex *zeros;
    Complex *poles;
    double *numerator;          /* monic, ascending, n + 2 entries */
    double *denominator;        /* monic, ascending, n + 2 entries */
};
extern TransferFunction currentXfer;

enum : uint8_t { XFER_SHOW_INFO = 1, XFER_SHOW_COMPENSATOR = 2 };

extern "C" {
int32_t stateToXferFunc(Matrix *A, Matrix *B, Matrix *C, Matrix *D,
                        double **numeratorOut, double **denominatorOut, double *gainOut);
int32_t timeToFrequency(Matrix *A, Matrix *B, Matrix *C, Matrix *D,
                        double **numeratorOut, double **denominatorOut, double *gainOut,
                        uint8_t dialogs);
INT_PTR xferInfoDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
INT_PTR poleZeroDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
}

void stateToZeros(Matrix *A, Matrix *B, Matrix *C, Matrix *D, Complex *zerosOut, Polynomial *numerator);
void stateToPoles(Matrix *A, Complex *polesOut, Polynomial *denominator);
double xferGain(Matrix *A, Matrix *B, Matrix *C, Matrix *D, const Complex *poles,
                const Complex *zeros, int32_t zeroCount, int32_t poleCount);
void polyFromRoots(double *coefficientsOut, Complex *scratch, const Complex *roots, int32_t count);

#endif
