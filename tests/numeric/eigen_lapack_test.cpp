/*
** Eigenvalues against LAPACK (dgeevx) on random, companion, defective and highly
** non-normal matrices, matched as multisets.
**
** Error bound.  Both solvers are backward stable: each returns the exact eigenvalues
** of A + E with ||E||_F <= c(n) eps ||A||_F.  For a simple eigenvalue with condition
** number 1/s (s = |y^H x| for unit left and right eigenvectors, LAPACK's RCONDE),
** first-order perturbation theory gives |mu - lambda| <= ||E|| / s.  We take
** c(n) = 10 n (observed backward errors are around sqrt(n)), and since both results
** carry such an error, two answers may differ by twice that:
**     tol = 2 * 10 n eps ||A||_F / s.
** For an eigenvalue of a k x k Jordan block the perturbation is of order ||E||^(1/k)
** instead (Lidskii), so defective cases use tol = 10 (10 n eps ||A||_F)^(1/k).
*/
#include <algorithm>
#include <cmath>
#include <complex>
#include <vector>

#include <gtest/gtest.h>
#include <lapacke.h>

#include "numeric/eigen.h"
#include "numeric_support.h"

using namespace testing_numeric;
using cplx = std::complex<double>;

namespace {

const double eps = std::numeric_limits<double>::epsilon();

struct Reference {
    std::vector<cplx> values;
    std::vector<double> rcond;          /* reciprocal condition number of each value */
};

Reference lapackEigen(std::vector<double> a, int n)
{
    Reference ref;
    std::vector<double> wr(n), wi(n), vl((size_t)n * n), vr((size_t)n * n), scale(n),
        rconde(n), rcondv(n);
    lapack_int ilo, ihi;
    double abnrm;
    lapack_int info = LAPACKE_dgeevx(LAPACK_COL_MAJOR, 'B', 'V', 'V', 'E', n, a.data(), n,
                                     wr.data(), wi.data(), vl.data(), n, vr.data(), n, &ilo,
                                     &ihi, scale.data(), &abnrm, rconde.data(), rcondv.data());
    EXPECT_EQ(info, 0);
    for (int i = 0; i < n; i++) {
        ref.values.emplace_back(wr[i], wi[i]);
        ref.rcond.push_back(rconde[i]);
    }
    return ref;
}

std::vector<cplx> ourEigen(const std::vector<double> &a, int n)
{
    Matrix *m = toMatrix(a, n, n);
    std::vector<Complex> roots(n);
    eigenValues(roots.data(), m, n);
    gfree(m);
    std::vector<cplx> out;
    for (const Complex &r : roots)
        out.emplace_back(r.re, r.im);
    return out;
}

double frobenius(const std::vector<double> &a)
{
    double s = 0;
    for (double v : a)
        s += v * v;
    return std::sqrt(s);
}

/* Pairs computed with reference values, closest pairs first; returns for each reference
** index the distance to its partner. */
std::vector<double> matchDistances(const std::vector<cplx> &ours, const std::vector<cplx> &ref)
{
    struct Pair { double d; size_t i, j; };
    std::vector<Pair> pairs;
    for (size_t i = 0; i < ours.size(); i++)
        for (size_t j = 0; j < ref.size(); j++)
            pairs.push_back({std::abs(ours[i] - ref[j]), i, j});
    std::sort(pairs.begin(), pairs.end(), [](const Pair &x, const Pair &y) { return x.d < y.d; });
    std::vector<bool> usedOurs(ours.size()), usedRef(ref.size());
    std::vector<double> dist(ref.size(), INFINITY);
    for (const Pair &p : pairs)
        if (!usedOurs[p.i] && !usedRef[p.j]) {
            usedOurs[p.i] = usedRef[p.j] = true;
            dist[p.j] = p.d;
        }
    return dist;
}

/* Checks every eigenvalue against LAPACK within the first-order bound; returns the
** largest error / tolerance ratio seen. */
double expectMatchesLapack(const std::vector<double> &a, int n, const char *what)
{
    Reference ref = lapackEigen(a, n);
    std::vector<cplx> ours = ourEigen(a, n);
    std::vector<double> dist = matchDistances(ours, ref.values);
    double norm = std::max(frobenius(a), 1e-300), worst = 0;
    for (int j = 0; j < n; j++) {
        double tol = 2 * 10 * n * eps * norm / std::max(ref.rcond[j], 1e-300);
        EXPECT_LE(dist[j], tol) << what << " n=" << n << " value " << ref.values[j];
        worst = std::max(worst, dist[j] / tol);
    }
    return worst;
}

/* Complex pairs come out adjacent, with equal real parts and the negative imaginary
** part first. */
void expectPairLayout(const std::vector<cplx> &ours)
{
    for (size_t k = 0; k < ours.size(); k++)
        if (ours[k].imag() != 0.0) {
            ASSERT_LT(k + 1, ours.size());
            EXPECT_LT(ours[k].imag(), 0.0);
            EXPECT_EQ(ours[k].real(), ours[k + 1].real());
            EXPECT_EQ(ours[k].imag(), -ours[k + 1].imag());
            k++;
        }
}

/* Random orthogonal n x n matrix (Q of a QR factorization of a Gaussian matrix). */
std::vector<double> randomOrthogonal(std::mt19937_64 &rng, int n)
{
    std::vector<double> q = randomSquare(rng, n), tau(n);
    LAPACKE_dgeqrf(LAPACK_COL_MAJOR, n, n, q.data(), n, tau.data());
    LAPACKE_dorgqr(LAPACK_COL_MAJOR, n, n, n, q.data(), n, tau.data());
    return q;
}

std::vector<double> multiply(const std::vector<double> &a, const std::vector<double> &b, int n,
                             bool transposeB = false)
{
    std::vector<double> c((size_t)n * n, 0.0);
    for (int j = 0; j < n; j++)
        for (int k = 0; k < n; k++) {
            double bkj = transposeB ? b[(size_t)k * n + j] : b[(size_t)j * n + k];
            for (int i = 0; i < n; i++)
                c[(size_t)j * n + i] += a[(size_t)k * n + i] * bkj;
        }
    return c;
}

/* Q T Q^T for a random orthogonal Q. */
std::vector<double> orthogonallySimilar(std::mt19937_64 &rng, const std::vector<double> &t, int n)
{
    std::vector<double> q = randomOrthogonal(rng, n);
    return multiply(multiply(q, t, n), q, n, true);
}

/* Companion matrix of the monic polynomial with the given roots (rows (0 1 0 ..) ...,
** last row minus the coefficients in ascending powers). */
std::vector<double> companionOf(const std::vector<cplx> &roots)
{
    int n = (int)roots.size();
    std::vector<cplx> c{1.0};               /* ascending powers */
    for (const cplx &r : roots) {
        std::vector<cplx> next(c.size() + 1, 0.0);
        for (size_t k = 0; k < c.size(); k++) {
            next[k + 1] += c[k];
            next[k] -= r * c[k];
        }
        c = next;
    }
    std::vector<double> a((size_t)n * n, 0.0);
    for (int i = 0; i + 1 < n; i++)
        a[(size_t)(i + 1) * n + i] = 1.0;
    for (int j = 0; j < n; j++)
        a[(size_t)j * n + (n - 1)] = -c[j].real();
    return a;
}

}

class EigenAgainstLapack : public ::testing::Test {
protected:
    void SetUp() override { resetMessages(); }
};

TEST_F(EigenAgainstLapack, RandomMatricesOfOrderOneToSixty)
{
    std::mt19937_64 rng(20240611);
    double worst = 0;
    for (int trial = 0; trial < 240; trial++) {
        int n = 1 + trial % 60;
        std::vector<double> a = randomSquare(rng, n);
        if (trial % 3 == 1)                 /* mixed scales exercise the balancing */
            for (int j = 0; j < n; j++)
                for (int i = 0; i < n; i++)
                    a[(size_t)j * n + i] *= std::ldexp(1.0, (i - j) * 3);
        worst = std::max(worst, expectMatchesLapack(a, n, "random"));
        expectPairLayout(ourEigen(a, n));
    }
    EXPECT_EQ(platform::transcript().size(), 0u) << platform::transcriptText();
    RecordProperty("worstErrorOverTolerance", std::to_string(worst));
}

TEST_F(EigenAgainstLapack, CompanionMatrices)
{
    std::mt19937_64 rng(77);
    std::uniform_real_distribution<double> uni(-3, 3);
    for (int degree = 2; degree <= 24; degree++) {
        std::vector<cplx> roots;
        while ((int)roots.size() < degree) {
            if ((int)roots.size() + 2 <= degree && uni(rng) > 0) {
                cplx r(uni(rng), std::fabs(uni(rng)) + 0.1);
                roots.push_back(r);
                roots.push_back(std::conj(r));
            } else {
                roots.emplace_back(uni(rng), 0.0);
            }
        }
        std::vector<double> a = companionOf(roots);
        expectMatchesLapack(a, degree, "companion");
        expectPairLayout(ourEigen(a, degree));
    }
    /* Roots of a Wilkinson-like product, against the exact roots 1 .. 10. */
    std::vector<cplx> wilkinson;
    for (int k = 1; k <= 10; k++)
        wilkinson.emplace_back(k, 0.0);
    std::vector<double> a = companionOf(wilkinson);
    expectMatchesLapack(a, 10, "wilkinson");
    std::vector<double> dist = matchDistances(ourEigen(a, 10), wilkinson);
    for (double d : dist)
        EXPECT_LT(d, 1e-6);
}

TEST_F(EigenAgainstLapack, DefectiveJordanBlocks)
{
    std::mt19937_64 rng(5);
    struct Block { double lambda; int size; };
    const std::vector<std::vector<Block>> cases = {
        {{2.0, 2}},
        {{-1.0, 3}, {4.0, 1}},
        {{0.5, 4}, {-3.0, 2}},
        {{1.0, 2}, {-1.0, 2}, {3.0, 3}},
        {{0.0, 5}},
    };
    for (const auto &blocks : cases) {
        int n = 0;
        for (const Block &b : blocks)
            n += b.size;
        std::vector<double> j((size_t)n * n, 0.0);
        std::vector<cplx> exact;
        std::vector<int> blockSize;
        int at = 0;
        for (const Block &b : blocks) {
            for (int k = 0; k < b.size; k++) {
                j[(size_t)(at + k) * n + at + k] = b.lambda;
                if (k > 0)
                    j[(size_t)(at + k) * n + at + k - 1] = 1.0;
                exact.emplace_back(b.lambda, 0.0);
                blockSize.push_back(b.size);
            }
            at += b.size;
        }
        std::vector<double> a = orthogonallySimilar(rng, j, n);
        std::vector<cplx> ours = ourEigen(a, n);
        std::vector<double> dist = matchDistances(ours, exact);
        for (int k = 0; k < n; k++) {
            double tol = 10 * std::pow(10 * n * eps * frobenius(a), 1.0 / blockSize[k]);
            EXPECT_LE(dist[k], tol) << "Jordan block of " << blockSize[k] << " at " << exact[k];
        }
        expectPairLayout(ours);
    }
    /* Convergence to a defective eigenvalue is only linear, so the solver may pass its
    ** iteration limit and say so; it then carries on, and the values above still hold. */
    for (const std::string &line : platform::transcript())
        EXPECT_NE(line.find("EigenSolver: over "), std::string::npos) << line;
}

TEST_F(EigenAgainstLapack, HighlyNonNormal)
{
    std::mt19937_64 rng(99);
    /* Upper triangular with a dominant strictly upper part, hidden by a rotation: the
    ** eigenvalues are the diagonal, with condition numbers up to about 1e6. */
    for (int n : {5, 10, 20, 30}) {
        std::vector<double> t = randomSquare(rng, n);
        for (int jcol = 0; jcol < n; jcol++)
            for (int i = 0; i < n; i++) {
                double &v = t[(size_t)jcol * n + i];
                v = i > jcol ? 0.0 : i == jcol ? 1.0 + i : 20.0 * v;
            }
        std::vector<double> a = orthogonallySimilar(rng, t, n);
        expectMatchesLapack(a, n, "triangular");
    }
    /* Grcar matrices: -1 on the subdiagonal, 1 on the diagonal and three superdiagonals. */
    for (int n : {10, 20, 40}) {
        std::vector<double> g((size_t)n * n, 0.0);
        for (int i = 0; i < n; i++)
            for (int jcol = std::max(0, i - 1); jcol <= std::min(n - 1, i + 3); jcol++)
                g[(size_t)jcol * n + i] = jcol == i - 1 ? -1.0 : 1.0;
        expectMatchesLapack(g, n, "grcar");
        expectPairLayout(ourEigen(g, n));
    }
    EXPECT_EQ(platform::transcript().size(), 0u) << platform::transcriptText();
}
