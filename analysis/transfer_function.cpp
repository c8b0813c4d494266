/*
** analysis/transfer_function.cpp: the transfer function K N(s)/D(s) of the report's
** model, from the numerical core's zeros, poles and gain.
*/
#include "analysis/analysis.h"

#include <algorithm>

#include "host/host.h"
#include "xfer/xfer.h"

namespace analysis {

namespace {

Matrix *matrixOf(uint32_t rows, uint32_t cols, const double *values)
{
    Matrix *m = matDecl(rows, cols);
    std::copy(values, values + (size_t)rows * cols, m->data);
    return m;
}

bool allZero(const std::vector<double> &values)
{
    return std::all_of(values.begin(), values.end(), [](double v) { return v == 0.0; });
}

std::vector<double> descending(const double *ascending, int32_t count)
{
    return std::vector<double>(std::reverse_iterator(ascending + count), std::reverse_iterator(ascending));
}

}

TransferFunction transferFunctionOf(const Model &model)
{
    TransferFunction tf;
    uint32_t n = model.order;
    /* Without a path from input to state or from state to output the loop is its feed-through. */
    if (n == 0 || allZero(model.b) || allZero(model.c)) {
        tf.gain = model.d;
        tf.numerator = {1.0};
        tf.denominator = {1.0};
        return tf;
    }
    Matrix *A = matrixOf(n, n, model.a.data());
    Matrix *B = matrixOf(n, 1, model.b.data());
    Matrix *C = matrixOf(1, n, model.c.data());
    Matrix *D = matrixOf(1, 1, &model.d);
    std::vector<Complex> zeros(n + 3), poles(n + 3);
    std::vector<double> numeratorCoefficients(n + 2), denominatorCoefficients(n + 2);
    Polynomial numerator{(int32_t)n + 1, numeratorCoefficients.data()};
    Polynomial denominator{(int32_t)n + 1, denominatorCoefficients.data()};
    stateToZeros(A, B, C, D, zeros.data(), &numerator);
    stateToPoles(A, poles.data(), &denominator);
    tf.gain = xferGain(A, B, C, D, poles.data(), zeros.data(), numerator.count - 1, denominator.count - 1);
    gfree(D);
    gfree(C);
    gfree(B);
    gfree(A);
    tf.numerator = descending(numeratorCoefficients.data(), numerator.count);
    tf.denominator = descending(denominatorCoefficients.data(), denominator.count);
    for (int32_t i = 0; i < numerator.count - 1; i++)
        tf.zeros.emplace_back(zeros[(size_t)i].re, zeros[(size_t)i].im);
    for (int32_t i = 0; i < denominator.count - 1; i++)
        tf.poles.emplace_back(poles[(size_t)i].re, poles[(size_t)i].im);
    return tf;
}

}
