/*
** xfer/transfer_function.cpp: the exported transfer-function computations
** stateToXferFunc and timeToFrequency, and the module's current transfer function.
*/
#include "host/host.h"
#include "shell/praxa.h"
#include "xfer/xfer.h"

TransferFunction currentXfer;

/* A, B, C, D must be n x n, n x 1, 1 x n and 1 x 1: the computations index them by n.
** A misfit is refused with a message rather than read out of bounds. */
static bool modelFits(const Matrix *A, const Matrix *B, const Matrix *C, const Matrix *D)
{
    uint32_t n = A->rows;
    if (B && C && D && A->cols == n && B->rows == n && B->cols == 1 && C->rows == 1 &&
        C->cols == n && D->rows == 1 && D->cols == 1)
        return true;
    winMsg("The model's matrices do not fit together for a transfer function "
           "(A %dx%d, B %dx%d, C %dx%d, D %dx%d).",
           (int)A->rows, (int)A->cols, B ? (int)B->rows : 0, B ? (int)B->cols : 0,
           C ? (int)C->rows : 0, C ? (int)C->cols : 0, D ? (int)D->rows : 0, D ? (int)D->cols : 0);
    return false;
}

/* Allocation results are not tested: the host's galloc reports a failure itself and
** does not come back with a null block. */
static double *newCoefficients(int32_t n)
{
    return (double *)galloc(sizeof(double) * (size_t)(n + 2));
}

static Complex *newRootList(int32_t capacity)
{
    return (Complex *)galloc(sizeof(Complex) * (size_t)capacity);
}

/* Hands both coefficient arrays to the caller when it asked for them, else releases them.
** Without a place for the denominator it is released. */
static void handOver(double *numerator, double *denominator, double **numeratorOut,
                     double **denominatorOut)
{
    if (numeratorOut) {
        *numeratorOut = numerator;
        if (denominatorOut)
            *denominatorOut = denominator;
        else
            gfree(denominator);
    } else {
        gfree(numerator);
        gfree(denominator);
    }
}

/*
** Computes zeros, poles and gain of the model A (n x n), B (n x 1), C (1 x n), D (1 x 1).
** On return *gainOut holds K; when numeratorOut is given, *numeratorOut and *denominatorOut
** receive N(s) and D(s), monic, ascending powers, n + 2 doubles each, owned by the caller
** (gfree).  Returns the number of zeros; 0 with nothing touched when A has no rows.
*/
int32_t stateToXferFunc(Matrix *A, Matrix *B, Matrix *C, Matrix *D,
                        double **numeratorOut, double **denominatorOut, double *gainOut)
{
    if (!A || A->rows < 1 || !modelFits(A, B, C, D))
        return 0;
    int32_t n = (int32_t)A->rows;
    Polynomial numerator{n + 1, newCoefficients(n)};
    Polynomial denominator{n + 1, newCoefficients(n)};
    Complex *zeros = newRootList(n + 3);
    Complex *poles = newRootList(n + 3);

    stateToZeros(A, B, C, D, zeros, &numerator);
    stateToPoles(A, poles, &denominator);
    double gain = xferGain(A, B, C, D, poles, zeros, numerator.count - 1, denominator.count - 1);
    if (gainOut)
        *gainOut = gain;

    gfree(poles);
    gfree(zeros);
    handOver(numerator.coefficients, denominator.coefficients, numeratorOut, denominatorOut);
    return numerator.count - 1;
}

/*
** Computes the transfer function of A, B, C, D (shapes as for stateToXferFunc) into
** currentXfer and shows the dialogs asked for: XFER_SHOW_INFO the transfer function and
** then its zeros and poles, XFER_SHOW_COMPENSATOR the compensator design.  The zero and
** pole lists of currentXfer exist only during the call; its gain stays.  Outputs and
** ownership as for stateToXferFunc.  Returns the number of zeros (0 for an empty model).
*/
int32_t timeToFrequency(Matrix *A, Matrix *B, Matrix *C, Matrix *D,
                        double **numeratorOut, double **denominatorOut, double *gainOut,
                        uint8_t dialogs)
{
    /* The commands check for states first; an empty or misfitting model is not computed. */
    if (!A || A->rows < 1 || !modelFits(A, B, C, D))
        return 0;
    int32_t n = (int32_t)A->rows;
    currentXfer.numerator = newCoefficients(n);
    currentXfer.denominator = newCoefficients(n);
    currentXfer.zeros = newRootList(n + 1);
    currentXfer.poles = newRootList(n + 1);
    Polynomial numerator{n + 1, currentXfer.numerator};
    Polynomial denominator{n + 1, currentXfer.denominator};

    stateToZeros(A, B, C, D, currentXfer.zeros, &numerator);
    currentXfer.zeroCount = numerator.count - 1;
    stateToPoles(A, currentXfer.poles, &denominator);
    currentXfer.poleCount = denominator.count - 1;
    currentXfer.gain = xferGain(A, B, C, D, currentXfer.poles, currentXfer.zeros,
                                currentXfer.zeroCount, currentXfer.poleCount);
    if (gainOut)
        *gainOut = currentXfer.gain;

    if (dialogs & XFER_SHOW_INFO) {
        runDialog("TRANSFERINFO_BOX", xferInfoDlg);
        runDialog("POLEZERO_BOX", poleZeroDlg);
    }
    if (dialogs & XFER_SHOW_COMPENSATOR)
        runCompensatorDesign();

    gfree(currentXfer.zeros);
    gfree(currentXfer.poles);
    currentXfer.zeros = nullptr;
    currentXfer.poles = nullptr;
    handOver(currentXfer.numerator, currentXfer.denominator, numeratorOut, denominatorOut);
    currentXfer.numerator = nullptr;
    currentXfer.denominator = nullptr;
    return currentXfer.zeroCount;
}
