/*
** tests/xfer/xfer_reference_test.cpp: the transfer function of random models checked
** against independent computations: the frequency response C (jwI - A)^-1 B + D by a
** complex linear solve written here, and poles and zeros by LAPACK (dgeev on A, dggev on
** the pencil ([A B; C D], [I 0; 0 0])).
*/
#include <gtest/gtest.h>

#include <lapacke.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "numeric/eigen.h"
#include "tests/xfer/model.h"
#include "xfer/xfer.h"

using namespace xfertest;
using cplx = std::complex<double>;

namespace {

cplx polynomialAt(const double *ascending, int degree, cplx s)
{
    cplx value = 0.0;
    for (int i = degree; i >= 0; i--)
        value = value * s + ascending[i];
    return value;
}

struct Roots {
    std::vector<cplx> values;
    double leastReciprocalCondition = 1.0;
};

/* Eigenvalues of A by LAPACK, with the least reciprocal condition number among them. */
Roots lapackPoles(const Model &m)
{
    int n = m.n, ilo, ihi;
    double abnrm;
    std::vector<double> a(m.A->data, m.A->data + n * n), wr(n), wi(n), scale(n), rconde(n), rcondv(n), v(n * n);
    EXPECT_EQ(LAPACKE_dgeevx(LAPACK_COL_MAJOR, 'B', 'V', 'V', 'E', n, a.data(), n, wr.data(), wi.data(), v.data(),
                             n, v.data(), n, &ilo, &ihi, scale.data(), &abnrm, rconde.data(), rcondv.data()), 0);
    Roots r;
    for (int i = 0; i < n; i++) {
        r.values.emplace_back(wr[i], wi[i]);
        r.leastReciprocalCondition = std::min(r.leastReciprocalCondition, rconde[i]);
    }
    return r;
}

/* Finite generalized eigenvalues of ([A B; C D], [I 0; 0 0]), the invariant zeros. */
Roots lapackZeros(const Model &m)
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
    Roots r;
    for (int i = 0; i < order; i++) {
        /* an infinite eigenvalue has beta zero up to rounding of the pencil's scale */
        if (std::fabs(beta[i]) > 1e-10 * std::max(1.0, std::hypot(alphar[i], alphai[i]))) {
            r.values.emplace_back(alphar[i] / beta[i], alphai[i] / beta[i]);
            r.leastReciprocalCondition = std::min(r.leastReciprocalCondition, rconde[i]);
        }
    }
    return r;
}

/* Every root of ours has a distinct LAPACK root within tolerance * max(1, |root|). */
::testing::AssertionResult sameRootSets(const std::vector<Complex> &ours, const std::vector<cplx> &theirs,
                                        double tolerance)
{
    if (ours.size() != theirs.size())
        return ::testing::AssertionFailure() << ours.size() << " roots against " << theirs.size();
    std::vector<bool> used(theirs.size(), false);
    for (const Complex &root : ours) {
        cplx z(root.re, root.im);
        size_t best = theirs.size();
        for (size_t i = 0; i < theirs.size(); i++)
            if (!used[i] && (best == theirs.size() || std::abs(theirs[i] - z) < std::abs(theirs[best] - z)))
                best = i;
        double distance = std::abs(theirs[best] - z);
        if (distance > tolerance * std::max(1.0, std::abs(z)))
            return ::testing::AssertionFailure() << "root " << z << " is " << distance << " from " << theirs[best];
        used[best] = true;
    }
    return ::testing::AssertionSuccess();
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
    std::vector<double> a(n * n), b(n), c(n);
    for (double &x : a)
        x = gauss(rng);
    double shift = std::sqrt((double)n) + 0.5;
    for (int i = 0; i < n; i++)
        a[i * n + i] += stable ? -shift : shift;
    for (double &x : b)
        x = gauss(rng);
    for (double &x : c)
        x = gauss(rng);
    return new Model(n, a, b, c, d);
}

using XferReference = FreshHostTest;

}

TEST_F(XferReference, RandomModelsMatchAnIndependentSolveAndLapack)
{
    std::mt19937_64 rng(20240611);
    int models = 0, poleSetsCompared = 0, zeroSetsCompared = 0;
    double worstResponse = 0.0;
    for (int n = 1; n <= 8; n++)
        for (int variant = 0; variant < 8; variant++) {
            bool stable = variant & 1, feedThrough = variant & 2, dense = variant & 4;
            std::unique_ptr<Model> m(randomModel(rng, n, stable, feedThrough, dense));
            std::string label = "order " + std::to_string(n) + (stable ? " stable" : " unstable") +
                                (feedThrough ? " with d" : " without d") + (dense ? " dense" : " normal");
            SCOPED_TRACE(label);
            models++;

            double *numerator = nullptr, *denominator = nullptr, gain = 0.0;
            int32_t zeroCount = stateToXferFunc(m->A, m->B, m->C, m->D, &numerator, &denominator, &gain);
            ASSERT_NE(numerator, nullptr);
            EXPECT_EQ(numerator[zeroCount], 1.0);
            EXPECT_EQ(denominator[n], 1.0);

            /* Both sides carry rounding errors of order n * eps * kappa, where kappa, the
            ** condition of the roots, stays below about 1e4 for these models (Gaussian entries,
            ** poles and zeros of modulus 0.1 to 10, no clusters by construction); the factored
            ** form adds the error of its coefficients, bounded by prod(|s| + |r|)/|N(s)|, under
            ** 1e3 at these frequencies.  So 1e-8 leaves a margin of about 100 over the
            ** 1e-16 * 8 * 1e4 * 1e3 bound, and an error in a sign, a factor or a root is
            ** far larger. */
            for (double omega : {0.0, 0.3, 1.0, 3.0, 10.0}) {
                cplx s(0.0, omega);
                cplx reference = responseBySolve(*m, s);
                cplx factored = gain * polynomialAt(numerator, zeroCount, s) / polynomialAt(denominator, n, s);
                double error = std::abs(factored - reference) / std::abs(reference);
                worstResponse = std::max(worstResponse, error);
                EXPECT_LT(error, 1e-8) << "at w = " << omega << ": " << factored << " against " << reference;
            }

            std::vector<Complex> zeros(n + 3), poles(n + 3);
            std::vector<double> nCoefficients(n + 2), dCoefficients(n + 2);
            Polynomial num{n + 1, nCoefficients.data()}, den{n + 1, dCoefficients.data()};
            stateToZeros(m->A, m->B, m->C, m->D, zeros.data(), &num);
            stateToPoles(m->A, poles.data(), &den);
            zeros.resize(num.count - 1);
            poles.resize(n);
            EXPECT_EQ(num.count - 1, zeroCount);

            /* Poles come in the eigenvalue routine's order, unsorted. */
            std::vector<Complex> eigen(n);
            eigenValues(eigen.data(), m->A, n);
            for (int i = 0; i < n; i++) {
                EXPECT_EQ(poles[i].re, eigen[i].re) << i;
                EXPECT_EQ(poles[i].im, eigen[i].im) << i;
            }

            /* Well conditioned: every root's reciprocal condition number at least 1e-3, so
            ** either side errs by at most about eps * |A| * 1e3 ~ 1e-12. */
            Roots referencePoles = lapackPoles(*m);
            if (referencePoles.leastReciprocalCondition >= 1e-3) {
                poleSetsCompared++;
                EXPECT_TRUE(sameRootSets(poles, referencePoles.values, 1e-9));
            }
            Roots referenceZeros = lapackZeros(*m);
            EXPECT_EQ(referenceZeros.values.size(), (size_t)zeroCount);
            if (referenceZeros.leastReciprocalCondition >= 1e-3) {
                zeroSetsCompared++;
                EXPECT_TRUE(sameRootSets(zeros, referenceZeros.values, 1e-9));
            }
            gfree(numerator);
            gfree(denominator);
        }
    EXPECT_EQ(models, 64);
    EXPECT_GE(poleSetsCompared, 50);
    EXPECT_GE(zeroSetsCompared, 40);
    RecordProperty("worstRelativeResponseError", std::to_string(worstResponse));
}
