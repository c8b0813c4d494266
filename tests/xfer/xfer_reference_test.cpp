/*
** tests/xfer/xfer_reference_test.cpp: the transfer function of random models checked
** against independent computations: C (sI - A)^-1 B + D by LAPACK's zgesv, the poles by
** dgeev on A and the zeros by dggev on the pencil ([A B; C D], [I 0; 0 0]).  Dense and
** turned block-diagonal models of order 1 to 8, and realizations whose Markov parameters
** c A^k b vanish up to the relative degree r (1 to 5, order up to 30, also with |G| tiny),
** turned as a linearization leaves them, whose zero count must be n - r.
*/
#include <gtest/gtest.h>

#include <lapacke.h>

#include <cmath>
#include <complex>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "numeric/eigen.h"
#include "support/lapack_reference.h"
#include "support/model.h"
#include "xfer/xfer.h"

using namespace xfertest;
using namespace testing_support;

namespace {

cplx polynomialAt(const double *ascending, int degree, cplx s)
{
    cplx value = 0.0;
    for (int i = degree; i >= 0; i--)
        value = value * s + ascending[i];
    return value;
}

/* Finite generalized eigenvalues of ([A B; C D], [I 0; 0 0]), the invariant zeros. */
LapackEigen lapackZeros(const Model &m)
{
    int n = m.n, order = n + 1, ilo, ihi;
    double abnrm, bbnrm;
    std::vector<double> a(order * order, 0.0), b(order * order, 0.0), alphar(order), alphai(order), beta(order),
        lscale(order), rscale(order), rconde(order), rcondv(order), v(order * order);
    for (int i = 0; i < n; i++) {
        for (int j = 0; j < n; j++)
            a[j * order + i] = element(m.A, i, j);
        a[n * order + i] = element(m.B, i, 0);
        a[i * order + n] = element(m.C, 0, i);
        b[i * order + i] = 1.0;
    }
    a[n * order + n] = element(m.D, 0, 0);
    EXPECT_EQ(LAPACKE_dggevx(LAPACK_COL_MAJOR, 'B', 'V', 'V', 'E', order, a.data(), order, b.data(), order,
                             alphar.data(), alphai.data(), beta.data(), v.data(), order, v.data(), order, &ilo,
                             &ihi, lscale.data(), rscale.data(), &abnrm, &bbnrm, rconde.data(), rcondv.data()), 0);
    LapackEigen r;
    for (int i = 0; i < order; i++) {
        /* an infinite eigenvalue has beta zero up to rounding of the pencil's scale */
        if (std::fabs(beta[i]) > 1e-10 * std::max(1.0, std::hypot(alphar[i], alphai[i]))) {
            r.values.emplace_back(alphar[i] / beta[i], alphai[i] / beta[i]);
            r.rcond.push_back(rconde[i]);
        }
    }
    return r;
}

/* As many roots as LAPACK finds; when every one of its roots is well conditioned
** (reciprocal condition number at least 1e-3, so either side errs by at most about
** eps |A| 1e3 ~ 1e-12), each within 1e-9 max(1, |root|) of a distinct one of ours.
** Returns whether the sets were compared. */
bool compareRootSets(const std::vector<Complex> &ours, const LapackEigen &ref, const char *what)
{
    EXPECT_EQ(ours.size(), ref.values.size()) << what;
    for (double rcond : ref.rcond)
        if (rcond < 1e-3)
            return false;
    std::vector<double> distances = matchDistances(toCplx(ours), ref.values);
    for (size_t j = 0; j < ref.values.size(); j++)
        EXPECT_LE(distances[j], 1e-9 * std::max(1.0, std::abs(ref.values[j]))) << what << " " << ref.values[j];
    return true;
}

struct Roots {
    std::vector<Complex> zeros, poles;
};

/* One model's transfer function through stateToXferFunc and through its zeros, poles and
** gain on their own: the zero count, monic polynomials, the poles in the eigenvalue
** routine's order (unsorted), and K prod(s - z)/prod(s - p) against C (sI - A)^-1 B + D
** at the points, up to order 8 also K N(s)/D(s) from the coefficients, both within the
** relative tolerance. */
Roots expectTransferFunction(const Model &m, int zeroCount, const std::vector<cplx> &points, double tolerance)
{
    int n = m.n;
    double *numerator = nullptr, *denominator = nullptr, gain = 0.0;
    EXPECT_EQ(stateToXferFunc(m.A, m.B, m.C, m.D, &numerator, &denominator, &gain), zeroCount);
    EXPECT_EQ(numerator[zeroCount], 1.0);
    EXPECT_EQ(denominator[n], 1.0);
    Roots roots{std::vector<Complex>(n + 3), std::vector<Complex>(n + 3)};
    std::vector<double> nCoefficients(n + 2), dCoefficients(n + 2);
    Polynomial num{n + 1, nCoefficients.data()}, den{n + 1, dCoefficients.data()};
    stateToZeros(m.A, m.B, m.C, m.D, roots.zeros.data(), &num);
    stateToPoles(m.A, roots.poles.data(), &den);
    EXPECT_EQ(num.count - 1, zeroCount);
    roots.zeros.resize(zeroCount);
    roots.poles.resize(n);
    std::vector<Complex> eigen(n);
    eigenValues(eigen.data(), m.A, n);
    EXPECT_EQ(roots.poles, eigen);
    for (cplx s : points) {
        cplx reference = responseBySolve(m, s), factored = gain;
        for (const Complex &z : roots.zeros)
            factored *= s - cplx(z.re, z.im);
        for (const Complex &p : roots.poles)
            factored /= s - cplx(p.re, p.im);
        EXPECT_LT(std::abs(factored - reference), tolerance * std::abs(reference))
            << "at s = " << s << ": " << factored << " against " << reference;
        if (n <= 8) {
            cplx expanded = gain * polynomialAt(numerator, zeroCount, s) / polynomialAt(denominator, n, s);
            EXPECT_LT(std::abs(expanded - reference), tolerance * std::abs(reference))
                << "at s = " << s << ": " << expanded << " from the coefficients against " << reference;
        }
    }
    gfree(numerator);
    gfree(denominator);
    return roots;
}

/* Random model of the given order.  Dense: Gaussian entries, shifted to place the spectrum
** left (stable) or right (unstable) of the axis.  Otherwise a turned block-diagonal
** realization of relative degree 1, whose poles are perfectly conditioned. */
Model *randomModel(std::mt19937_64 &rng, int n, bool stable, bool feedThrough, bool dense)
{
    std::normal_distribution<double> gauss(0.0, 1.0);
    double d = feedThrough ? gauss(rng) : 0.0;
    if (!dense)
        return realization(rng, n, 1, 1.0, !stable, d);
    std::vector<double> a = randomMatrix(rng, n, n), b = randomMatrix(rng, n, 1), c = randomMatrix(rng, n, 1);
    double shift = std::sqrt((double)n) + 0.5;
    for (int i = 0; i < n; i++)
        a[i * n + i] += stable ? -shift : shift;
    return new Model(n, a, b, c, d);
}

using XferReference = testing_support::PluginTest;

}

TEST_F(XferReference, RandomModelsMatchAnIndependentSolveAndLapack)
{
    std::mt19937_64 rng(20240611);
    int poleSetsCompared = 0, zeroSetsCompared = 0;
    for (int n = 1; n <= 8; n++)
        for (int variant = 0; variant < 8; variant++) {
            bool stable = variant & 1, feedThrough = variant & 2, dense = variant & 4;
            std::unique_ptr<Model> m(randomModel(rng, n, stable, feedThrough, dense));
            SCOPED_TRACE("order " + std::to_string(n) + (stable ? " stable" : " unstable") +
                         (feedThrough ? " with d" : " without d") + (dense ? " dense" : " normal"));
            /* Both sides carry rounding errors of order n * eps * kappa, where kappa, the
            ** condition of the roots, stays below about 1e4 for these models (Gaussian entries,
            ** poles and zeros of modulus 0.1 to 10, no clusters by construction); the expanded
            ** form adds the error of its coefficients, bounded by prod(|s| + |r|)/|N(s)|, under
            ** 1e3 at these frequencies.  So 1e-8 leaves a margin of about 100 over the
            ** 1e-16 * 8 * 1e4 * 1e3 bound, and an error in a sign, a factor or a root is
            ** far larger.  Without d, c b is nonzero: one zero fewer than poles. */
            Roots roots = expectTransferFunction(*m, feedThrough ? n : n - 1,
                                                 {0.0, {0.0, 0.3}, {0.0, 1.0}, {0.0, 3.0}, {0.0, 10.0}}, 1e-8);
            std::vector<double> a(m->A->data, m->A->data + n * n);
            poleSetsCompared += compareRootSets(roots.poles, lapackEigen(a, n), "poles");
            zeroSetsCompared += compareRootSets(roots.zeros, lapackZeros(*m), "zeros");
        }
    EXPECT_GE(poleSetsCompared, 50);
    EXPECT_GE(zeroSetsCompared, 40);
}

TEST_F(XferReference, ZeroCountAndGainOfRealizationsOfRelativeDegreeOneToFive)
{
    struct Row {
        int n;
        double cScale;
    };
    /* Orders from 1 to 30; one scale of C small enough that |G| stays far below 1e-9. */
    const Row rows[] = {{1, 1.0}, {2, 1.0}, {3, 1.0}, {4, 1.0}, {5, 1.0}, {6, 1.0}, {8, 1.0}, {10, 1.0},
                        {12, 1e-10}, {15, 1.0}, {20, 1.0}, {25, 1e-10}, {30, 1.0}};
    std::mt19937_64 rng(91);
    for (const Row &row : rows)
        for (int r = 1; r <= 5 && r <= row.n; r++)
            for (int copy = 0; copy < 3; copy++) {
                std::unique_ptr<Model> m(realization(rng, row.n, r, row.cScale));
                SCOPED_TRACE("n = " + std::to_string(row.n) + ", r = " + std::to_string(r) + ", C scaled by " +
                             std::to_string(row.cScale));
                expectTransferFunction(*m, row.n - r, {{0.5, 1.0}, {-1.0, 3.0}, {2.0, 0.0}, {0.0, 7.0}}, 1e-7);
            }
}
