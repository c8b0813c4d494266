/*
** numeric/matrix_exponential.cpp: e^A by scaling and squaring.  A is scaled by 2^-s
** until its infinity norm is at most 1/2, the (6,6) Padé approximant of e^x is taken
** there (relative error below 1e-16 on that disc), and the result squared s times.
*/
#include "numeric/matrix_exponential.h"

#include <cmath>
#include <vector>

#include "host/host.h"
#include "numeric/svd.h"

namespace {

const int PADE_DEGREE = 6;

double infinityNorm(const Matrix *a)
{
    double norm = 0.0;
    for (uint32_t i = 0; i < a->rows; i++) {
        double row = 0.0;
        for (uint32_t j = 0; j < a->rows; j++)
            row += std::fabs(a->data[(size_t)j * a->rows + i]);
        norm = std::fmax(norm, row);
        if (std::isnan(row))
            return row;
    }
    return norm;
}

/* c = a b for n x n column-major arrays. */
void multiply(std::vector<double> &c, const std::vector<double> &a, const std::vector<double> &b, uint32_t n)
{
    for (uint32_t j = 0; j < n; j++)
        for (uint32_t i = 0; i < n; i++) {
            double sum = 0.0;
            for (uint32_t k = 0; k < n; k++)
                sum += a[(size_t)k * n + i] * b[(size_t)j * n + k];
            c[(size_t)j * n + i] = sum;
        }
}

}

int matExponential(Matrix *result, const Matrix *a)
{
    if (!a || !result || a->rows != a->cols || result->rows < a->rows || result->cols < a->rows)
        return 0;
    uint32_t n = a->rows;
    if (n == 0)
        return 1;
    double norm = infinityNorm(a);
    if (!std::isfinite(norm))
        return 0;
    int exponent = 0;
    std::frexp(norm, &exponent);            /* norm < 2^exponent */
    int squarings = exponent + 1 > 0 ? exponent + 1 : 0;
    double scale = std::ldexp(1.0, -squarings);

    size_t size = (size_t)n * n;
    std::vector<double> scaled(size), power(size), next(size), numerator(size, 0.0), denominator(size, 0.0);
    for (size_t k = 0; k < size; k++)
        scaled[k] = a->data[k] * scale;
    power = scaled;
    double c = 0.5;
    for (uint32_t i = 0; i < n; i++) {
        numerator[(size_t)i * n + i] = 1.0;
        denominator[(size_t)i * n + i] = 1.0;
    }
    for (size_t k = 0; k < size; k++) {
        numerator[k] += c * power[k];
        denominator[k] -= c * power[k];
    }
    for (int k = 2; k <= PADE_DEGREE; k++) {
        c *= (double)(PADE_DEGREE - k + 1) / (double)(k * (2 * PADE_DEGREE - k + 1));
        multiply(next, scaled, power, n);
        power.swap(next);
        double sign = (k % 2) ? -1.0 : 1.0;
        for (size_t m = 0; m < size; m++) {
            numerator[m] += c * power[m];
            denominator[m] += sign * c * power[m];
        }
    }

    /* The denominator is within 1/2 of the identity in norm: well conditioned. */
    Matrix *inverse = (Matrix *)galloc(matrixBytes(n, n));
    inverse->rows = n;
    inverse->cols = n;
    for (size_t k = 0; k < size; k++)
        inverse->data[k] = denominator[k];
    int inverted = matInvert(inverse);
    std::vector<double> value(size);
    if (inverted) {
        std::vector<double> inverseValues(inverse->data, inverse->data + size);
        multiply(value, inverseValues, numerator, n);
        for (int k = 0; k < squarings; k++) {
            multiply(next, value, value, n);
            value.swap(next);
        }
        for (uint32_t j = 0; j < n; j++)
            for (uint32_t i = 0; i < n; i++)
                result->data[(size_t)j * result->rows + i] = value[(size_t)j * n + i];
    }
    gfree(inverse);
    return inverted;
}
