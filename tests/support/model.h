/*
** tests/support/model.h: state-space models for the transfer function, compensator and
** root locus tests, built on the host heap the way the linearizer leaves them (A n x n,
** B n x 1, C 1 x n, D 1 x 1), and the frequency response and random orthogonal matrices
** LAPACK gives for them.
*/
#ifndef PRAXA_TESTS_SUPPORT_MODEL_H
#define PRAXA_TESTS_SUPPORT_MODEL_H

#include <gtest/gtest.h>
#include <lapacke.h>

#include <complex>
#include <cstdint>
#include <random>
#include <vector>

#include "host/host.h"
#include "hostapp/host_state.h"
#include "platform/driver.h"
#include "numeric/matrix.h"
#include "support.h"
#include "support/lapack_reference.h"

namespace xfertest {

using testing_support::matrixFromRows;

inline double element(const Matrix *m, uint32_t i, uint32_t j) { return m->data[j * m->rows + i]; }

struct Model {
    Matrix *A, *B, *C, *D;
    int32_t n;
    Model(int32_t order, const std::vector<double> &a, const std::vector<double> &b,
          const std::vector<double> &c, double d)
        : A(matrixFromRows(order, order, a)), B(matrixFromRows(order, 1, b)),
          C(matrixFromRows(1, order, c)), D(matrixFromRows(1, 1, {d})), n(order) {}
    Model(const Model &) = delete;
    Model &operator=(const Model &) = delete;
    ~Model() { gfree(A); gfree(B); gfree(C); gfree(D); }
};

/* C (sI - A)^-1 B + D by LAPACK. */
inline std::complex<double> responseBySolve(const Model &m, std::complex<double> s)
{
    int n = m.n;
    std::vector<std::complex<double>> M((size_t)n * n), x(n);
    std::vector<lapack_int> pivots(n);
    for (int j = 0; j < n; j++) {
        for (int i = 0; i < n; i++)
            M[(size_t)j * n + i] = (i == j ? s : 0.0) - element(m.A, i, j);
        x[j] = element(m.B, j, 0);
    }
    EXPECT_EQ(LAPACKE_zgesv(LAPACK_COL_MAJOR, n, 1, (lapack_complex_double *)M.data(), n, pivots.data(),
                            (lapack_complex_double *)x.data(), n), 0);
    std::complex<double> y = element(m.D, 0, 0);
    for (int j = 0; j < n; j++)
        y += element(m.C, 0, j) * x[j];
    return y;
}

/* A random orthogonal n x n matrix (row-major): the Q of a Gaussian matrix's QR. */
inline std::vector<double> randomOrthogonal(std::mt19937_64 &rng, int n)
{
    std::vector<double> q = testing_support::randomMatrix(rng, n, n), tau(n);
    EXPECT_EQ(LAPACKE_dgeqrf(LAPACK_ROW_MAJOR, n, n, q.data(), n, tau.data()), 0);
    EXPECT_EQ(LAPACKE_dorgqr(LAPACK_ROW_MAJOR, n, n, n, q.data(), n, tau.data()), 0);
    return q;
}

/* Block-diagonal A0 with poles of real part -0.2 ... -5 (+0.2 ... +5 when unstable; pairs
** with imaginary part up to 4), b0 Gaussian, c0 Gaussian made orthogonal to b0, A0 b0, ...,
** A0^(r-2) b0, so that the relative degree is r; then A = Q A0 Q^T, b = Q b0, c = c0 Q^T,
** c scaled by cScale: poles perfectly conditioned, as a linearization may leave them turned. */
inline Model *realization(std::mt19937_64 &rng, int n, int r, double cScale, bool unstable = false, double d = 0.0)
{
    std::normal_distribution<double> gauss;
    std::uniform_real_distribution<double> decay(0.2, 5.0), frequency(0.3, 4.0);
    std::vector<double> a0((size_t)n * n, 0.0);
    for (int i = 0; i < n;) {
        if (i + 1 < n && gauss(rng) > 0.0) {
            double sigma = (unstable ? 1 : -1) * decay(rng), omega = frequency(rng);
            a0[i * n + i] = a0[(i + 1) * n + i + 1] = sigma;
            a0[i * n + i + 1] = omega;
            a0[(i + 1) * n + i] = -omega;
            i += 2;
        } else {
            a0[i * n + i] = (unstable ? 1 : -1) * decay(rng);
            i++;
        }
    }
    std::vector<double> b0 = testing_support::randomMatrix(rng, n, 1), c0 = testing_support::randomMatrix(rng, n, 1);
    /* Orthonormal basis of the Krylov vectors, then c0 minus its projection on it. */
    std::vector<std::vector<double>> basis;
    auto removeProjections = [&](std::vector<double> &w) {
        for (const auto &e : basis) {
            double dot = 0.0;
            for (int i = 0; i < n; i++)
                dot += w[i] * e[i];
            for (int i = 0; i < n; i++)
                w[i] -= dot * e[i];
        }
    };
    std::vector<double> v = b0;
    for (int k = 0; k + 1 < r; k++) {
        std::vector<double> w = v;
        removeProjections(w);
        double norm = 0.0;
        for (double x : w)
            norm += x * x;
        for (double &x : w)
            x /= std::sqrt(norm);
        basis.push_back(w);
        std::vector<double> next(n, 0.0);
        for (int i = 0; i < n; i++)
            for (int j = 0; j < n; j++)
                next[i] += a0[i * n + j] * v[j];
        v = next;
    }
    for (int pass = 0; pass < 2; pass++)        /* twice, for an orthogonality to rounding */
        removeProjections(c0);
    std::vector<double> q = randomOrthogonal(rng, n), a((size_t)n * n, 0.0), qa((size_t)n * n, 0.0),
                        b(n, 0.0), c(n, 0.0);
    for (int i = 0; i < n; i++)
        for (int k = 0; k < n; k++) {
            b[i] += q[i * n + k] * b0[k];
            c[i] += cScale * c0[k] * q[i * n + k];
            for (int j = 0; j < n; j++)
                qa[i * n + j] += q[i * n + k] * a0[k * n + j];
        }
    for (int i = 0; i < n; i++)
        for (int j = 0; j < n; j++)
            for (int k = 0; k < n; k++)
                a[i * n + j] += qa[i * n + k] * q[j * n + k];
    return new Model(n, a, b, c, d);
}

/* Controllable canonical form of N(s)/D(s) + d: den = (d0, ..., d_{n-1}) of the monic
** denominator, num = (n0, ..., n_{n-1}) with deg N < n; ascending powers. */
inline Model *controllableForm(const std::vector<double> &num, const std::vector<double> &den, double d = 0.0)
{
    int32_t n = (int32_t)den.size();
    std::vector<double> a(n * n, 0.0), b(n, 0.0), c(n, 0.0);
    for (int32_t i = 0; i + 1 < n; i++)
        a[i * n + i + 1] = 1.0;
    for (int32_t j = 0; j < n; j++)
        a[(n - 1) * n + j] = -den[j];
    b[n - 1] = 1.0;
    for (size_t j = 0; j < num.size(); j++)
        c[j] = num[j];
    return new Model(n, a, b, c, d);
}

}

#endif
