/*
** xfer/poles.cpp: the poles of the model, the eigenvalues of A, with poles next to
** the origin snapped onto it, and the monic denominator built from them.
*/
#include <cmath>

#include "host/host.h"
#include "numeric/eigen.h"
#include "xfer/xfer.h"

/* A pole of smaller modulus is taken as a pole at the origin. */
static const double POLE_SNAP_RADIUS = 1e-6;

void stateToPoles(Matrix *A, Complex *polesOut, Polynomial *denominator)
{
    int32_t n = (int32_t)A->rows;
    eigenValues(polesOut, A, n);
    for (int32_t i = 0; i < n; i++) {
        double squaredModulus = polesOut[i].re * polesOut[i].re + polesOut[i].im * polesOut[i].im;
        if (squaredModulus == 0.0 || std::sqrt(squaredModulus) < POLE_SNAP_RADIUS)
            polesOut[i] = Complex{0.0, 0.0};
    }
    Complex *scratch = (Complex *)galloc(sizeof(Complex) * (size_t)(n + 2));
    polyFromRoots(denominator->coefficients, scratch, polesOut, n);
    gfree(scratch);
    denominator->count = n + 1;
    /* Index n + 1 is not part of D(s); it is cleared so the array holds no heap garbage. */
    denominator->coefficients[n + 1] = 0.0;
}
