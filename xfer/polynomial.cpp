/*
** xfer/polynomial.cpp: the monic polynomial with given roots, multiplied out in
** complex arithmetic, coefficients in ascending powers of s.
*/
#include "xfer/xfer.h"

static Complex times(const Complex &a, const Complex &b)
{
    return Complex{a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

void polyFromRoots(double *coefficientsOut, Complex *scratch, const Complex *roots, int32_t count)
{
    if (count < 1)
        return;
    Complex *p = scratch;
    p[0] = Complex{-roots[0].re, -roots[0].im};
    p[1] = Complex{1.0, 0.0};
    for (int32_t k = 1; k < count; k++) {
        const Complex &root = roots[k];
        p[k + 1] = p[k];
        for (int32_t j = k; j >= 1; j--) {
            Complex product = times(root, p[j]);
            p[j] = Complex{p[j - 1].re - product.re, p[j - 1].im - product.im};
        }
        Complex product = times(root, p[0]);
        p[0] = Complex{-product.re, -product.im};
    }
    /* The imaginary parts left by rounding are dropped: the roots come in conjugate pairs. */
    for (int32_t i = 0; i <= count; i++)
        coefficientsOut[i] = p[i].re;
}
