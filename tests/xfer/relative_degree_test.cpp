/*
** tests/xfer/relative_degree_test.cpp: zeros and gain of random realizations whose
** Markov parameters c A^k b vanish up to the relative degree r (1 to 5, order up to 30),
** each turned by a random orthogonal similarity as a linearization leaves them: the zero
** count must be n - r and K prod(s - z)/prod(s - p) must equal C (sI - A)^-1 B + D as
** LAPACK's zgesv solves it, also when |G| is tiny.
*/
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <memory>
#include <random>
#include <vector>

#include "tests/xfer/model.h"
#include "xfer/xfer.h"

using namespace xfertest;
using cplx = std::complex<double>;

namespace {

using RelativeDegree = FreshHostTest;

}

TEST_F(RelativeDegree, ZeroCountAndGainMatchTheModelOnRandomRealizations)
{
    struct Row {
        int n;
        double cScale;
    };
    /* Orders from 1 to 30; one scale of C small enough that |G| stays far below 1e-9. */
    const Row rows[] = {{1, 1.0}, {2, 1.0}, {3, 1.0}, {4, 1.0}, {5, 1.0}, {6, 1.0}, {8, 1.0}, {10, 1.0},
                        {12, 1e-10}, {15, 1.0}, {20, 1.0}, {25, 1e-10}, {30, 1.0}};
    const cplx points[] = {{0.5, 1.0}, {-1.0, 3.0}, {2.0, 0.0}, {0.0, 7.0}};
    std::mt19937_64 rng(91);
    int models = 0;
    double worst = 0.0;
    for (const Row &row : rows)
        for (int r = 1; r <= 5 && r <= row.n; r++)
            for (int copy = 0; copy < 3; copy++) {
                std::unique_ptr<Model> m(realization(rng, row.n, r, row.cScale));
                SCOPED_TRACE("n = " + std::to_string(row.n) + ", r = " + std::to_string(r) + ", C scaled by " +
                             std::to_string(row.cScale));
                int n = row.n;
                std::vector<Complex> zeros(n + 3), poles(n + 3);
                std::vector<double> numerator(n + 2), denominator(n + 2);
                Polynomial num{n + 1, numerator.data()}, den{n + 1, denominator.data()};
                stateToZeros(m->A, m->B, m->C, m->D, zeros.data(), &num);
                stateToPoles(m->A, poles.data(), &den);
                int zeroCount = num.count - 1;
                ASSERT_EQ(zeroCount, n - r);
                double gain = xferGain(m->A, m->B, m->C, m->D, poles.data(), zeros.data(), zeroCount, n);
                for (cplx s : points) {
                    cplx factored = gain;
                    for (int i = 0; i < zeroCount; i++)
                        factored *= s - cplx(zeros[i].re, zeros[i].im);
                    for (int i = 0; i < n; i++)
                        factored /= s - cplx(poles[i].re, poles[i].im);
                    cplx reference = responseBySolve(*m, s);
                    double error = std::abs(factored - reference) / std::abs(reference);
                    worst = std::max(worst, error);
                    EXPECT_LT(error, 1e-7) << "at s = " << s << ": " << factored << " against " << reference;
                }
                models++;
            }
    EXPECT_EQ(models, 3 * (1 + 2 + 3 + 4 + 5 * 9));
    RecordProperty("worstRelativeError", std::to_string(worst));
}
