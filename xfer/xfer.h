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
/* The transfer function that timeToFrequency computed last.  Its zero and pole lists and
** its coefficient arrays exist only while timeToFrequency runs (its dialogs read them) and
** are null afterwards; gain, zeroCount and poleCount stay. */
extern TransferFunction currentXfer;

enum : uint8_t { XFER_SHOW_INFO = 1, XFER_SHOW_COMPENSATOR = 2 };

extern "C" {
/* Zeros, poles and gain of the model A (n x n), B (n x 1), C (1 x n), D (1 x 1).  The gain
** goes to *gainOut (may be null).  With numeratorOut given, *numeratorOut and *denominatorOut
** receive N(s) and D(s): monic, ascending powers of s, n + 2 doubles each, owned by the
** caller (gfree); otherwise they are released.  Returns the number of zeros; an empty model
** (A without rows) returns 0 and touches nothing, misfitting shapes are refused with a
** message and return 0. */
int32_t stateToXferFunc(Matrix *A, Matrix *B, Matrix *C, Matrix *D,
                        double **numeratorOut, double **denominatorOut, double *gainOut);
/* As stateToXferFunc, computed into currentXfer, showing meanwhile the dialogs asked for:
** XFER_SHOW_INFO the transfer function (TRANSFERINFO_BOX) and then its zeros and poles
** (POLEZERO_BOX), XFER_SHOW_COMPENSATOR the compensator design. */
int32_t timeToFrequency(Matrix *A, Matrix *B, Matrix *C, Matrix *D,
                        double **numeratorOut, double **denominatorOut, double *gainOut,
                        uint8_t dialogs);
/* Dialog procedures of TRANSFERINFO_BOX and POLEZERO_BOX; they read currentXfer. */
INT_PTR xferInfoDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
INT_PTR poleZeroDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
}

/* The finite zeros of A (n x n), B (n x 1), C (1 x n), D (1 x 1) into zerosOut (room for n),
** in the eigenvalue routine's order; numerator->coefficients (n + 2 doubles) receives the
** monic N(s), ascending, zero-filled up to index n + 1, and numerator->count = zeros + 1.
** An all-zero C is reported ("Zero C matrix ...") and gives no zeros, N(s) = 1. */
void stateToZeros(Matrix *A, Matrix *B, Matrix *C, Matrix *D, Complex *zerosOut, Polynomial *numerator);
/* The n eigenvalues of A into polesOut, those of modulus below 1e-6 set to exactly 0;
** denominator->coefficients (n + 2 doubles) receives the monic D(s), ascending; count = n + 1. */
void stateToPoles(Matrix *A, Complex *polesOut, Polynomial *denominator);
/* K such that K N(s)/D(s) = C (sI - A)^-1 B + D, N and D monic with the given roots,
** from LU solves at a few real points scaled by the largest root modulus, the one with
** the least estimated error taken; 0 when G is 0 there or the solve fails (a singular
** or non-finite model). */
double xferGain(Matrix *A, Matrix *B, Matrix *C, Matrix *D, const Complex *poles,
                const Complex *zeros, int32_t zeroCount, int32_t poleCount);
/* The monic polynomial prod (s - roots[k]) into coefficientsOut[0..count] (ascending, real
** parts); scratch holds count + 2 Complex.  count < 1 writes nothing. */
void polyFromRoots(double *coefficientsOut, Complex *scratch, const Complex *roots, int32_t count);

/* Runs the compensator design dialog on currentXfer (timeToFrequency, XFER_SHOW_COMPENSATOR). */
void runCompensatorDesign(void);

#endif
