/*
** bench/numeric_bench.cpp: the numerical core against LAPACK on the same matrices:
** eigenvalues of dense random and of companion matrices (eigenValues, and polyRoots
** for the companion) against dgeev, the SVD against dgesvd, the LU solve against dgesv.
** For each order the Praxa and LAPACK cases are registered side by side; run with
** repetitions and random interleaving (bench/README.md) so that both see the same load.
*/
#include <map>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>
#include <lapacke.h>

#include "bench/bench_support.h"
#include "host/host.h"
#include "numeric/eigen.h"
#include "numeric/lu.h"
#include "numeric/matrix.h"
#include "numeric/svd.h"
#include "rlocus/locus_state.h"

namespace {

const int ORDERS[] = {4, 10, 30, 100, 200};

/* The same n x n Gaussian matrix for every benchmark of that order (column-major). */
const std::vector<double> &denseSample(int n)
{
    static std::map<int, std::vector<double>> cache;
    std::vector<double> &a = cache[n];
    if (a.empty()) {
        std::mt19937_64 rng(1000 + n);
        std::normal_distribution<double> normal;
        a.resize((size_t)n * n);
        for (double &v : a)
            v = normal(rng);
    }
    return a;
}

/* A monic polynomial of degree n with Gaussian coefficients (ascending, n + 1). */
const std::vector<double> &polynomialSample(int n)
{
    static std::map<int, std::vector<double>> cache;
    std::vector<double> &c = cache[n];
    if (c.empty()) {
        std::mt19937_64 rng(2000 + n);
        std::normal_distribution<double> normal;
        c.resize((size_t)n + 1);
        for (double &v : c)
            v = normal(rng);
        c[n] = 1.0;
    }
    return c;
}

/* Its companion matrix in upper Hessenberg form: ones below the diagonal, the negated
** coefficients in the last column. */
std::vector<double> companionOf(const std::vector<double> &c)
{
    int n = (int)c.size() - 1;
    std::vector<double> a((size_t)n * n, 0.0);
    for (int i = 0; i + 1 < n; ++i)
        a[(size_t)i * n + i + 1] = 1.0;
    for (int i = 0; i < n; ++i)
        a[(size_t)(n - 1) * n + i] = -c[i];
    return a;
}

Matrix *asMatrix(const std::vector<double> &a, int n)
{
    Matrix *m = matDecl(n, n);
    std::copy(a.begin(), a.end(), m->data);
    return m;
}

void praxaEigen(benchmark::State &state, const std::vector<double> &a, int n)
{
    Matrix *m = asMatrix(a, n);
    std::vector<Complex> roots(n);
    for (auto _ : state) {
        eigenValues(roots.data(), m, n);        /* copies m itself */
        benchmark::DoNotOptimize(roots.data());
    }
    gfree(m);
}

void lapackEigen(benchmark::State &state, const std::vector<double> &a, int n)
{
    std::vector<double> work(a.size()), wr(n), wi(n);
    for (auto _ : state) {
        std::copy(a.begin(), a.end(), work.begin());
        LAPACKE_dgeev(LAPACK_COL_MAJOR, 'N', 'N', n, work.data(), n, wr.data(), wi.data(), nullptr, 1, nullptr, 1);
        benchmark::DoNotOptimize(wr.data());
    }
}

void eigenValuesDense(benchmark::State &state)
{
    int n = (int)state.range(0);
    praxaEigen(state, denseSample(n), n);
}

void dgeevDense(benchmark::State &state)
{
    int n = (int)state.range(0);
    lapackEigen(state, denseSample(n), n);
}

void eigenValuesCompanion(benchmark::State &state)
{
    int n = (int)state.range(0);
    praxaEigen(state, companionOf(polynomialSample(n)), n);
}

/* The root locus's root finder: the companion built in Hessenberg form, scaled. */
void polyRootsCompanion(benchmark::State &state)
{
    int n = (int)state.range(0);
    const std::vector<double> &c = polynomialSample(n);
    Matrix *work = matDecl(n, n);
    std::vector<Complex> roots(n);
    for (auto _ : state) {
        polyRoots(roots.data(), c.data(), n, work);
        benchmark::DoNotOptimize(roots.data());
    }
    gfree(work);
}

void dgeevCompanion(benchmark::State &state)
{
    int n = (int)state.range(0);
    lapackEigen(state, companionOf(polynomialSample(n)), n);
}

void svDecomposeDense(benchmark::State &state)
{
    int n = (int)state.range(0);
    const std::vector<double> &a = denseSample(n);
    Matrix *u = matDecl(n, n), *v = matDecl(n, n);
    std::vector<double> w(n + 1);
    for (auto _ : state) {
        std::copy(a.begin(), a.end(), u->data);
        svDecompose(u, w.data(), v);            /* U, W and V */
        benchmark::DoNotOptimize(w.data());
    }
    gfree(u);
    gfree(v);
}

/* Like for like: U overwrites A ('O') and all of V^T ('A'), as svDecompose gives. */
void dgesvdDense(benchmark::State &state)
{
    int n = (int)state.range(0);
    const std::vector<double> &a = denseSample(n);
    std::vector<double> work(a.size()), s(n), vt((size_t)n * n), superb(n);
    for (auto _ : state) {
        std::copy(a.begin(), a.end(), work.begin());
        LAPACKE_dgesvd(LAPACK_COL_MAJOR, 'O', 'A', n, n, work.data(), n, s.data(), nullptr, 1, vt.data(), n,
                       superb.data());
        benchmark::DoNotOptimize(s.data());
    }
}

/* For information: singular values alone, which svDecompose cannot skip. */
void dgesvdValuesOnly(benchmark::State &state)
{
    int n = (int)state.range(0);
    const std::vector<double> &a = denseSample(n);
    std::vector<double> work(a.size()), s(n), superb(n);
    for (auto _ : state) {
        std::copy(a.begin(), a.end(), work.begin());
        LAPACKE_dgesvd(LAPACK_COL_MAJOR, 'N', 'N', n, n, work.data(), n, s.data(), nullptr, 1, nullptr, 1,
                       superb.data());
        benchmark::DoNotOptimize(s.data());
    }
}

/* One right-hand side, as the transfer-function gain solves (sI - A) x = B. */
void luSolveDense(benchmark::State &state)
{
    int n = (int)state.range(0);
    const std::vector<double> &a = denseSample(n);
    Matrix *work = matDecl(n, n);
    std::vector<double> b(n);
    std::vector<int32_t> pivots(n);
    for (auto _ : state) {
        std::copy(a.begin(), a.end(), work->data);
        std::fill(b.begin(), b.end(), 1.0);
        luSolve(work, n, b.data(), pivots.data());
        benchmark::DoNotOptimize(b.data());
    }
    gfree(work);
}

void dgesvDense(benchmark::State &state)
{
    int n = (int)state.range(0);
    const std::vector<double> &a = denseSample(n);
    std::vector<double> work(a.size()), b(n);
    std::vector<lapack_int> pivots(n);
    for (auto _ : state) {
        std::copy(a.begin(), a.end(), work.begin());
        std::fill(b.begin(), b.end(), 1.0);
        LAPACKE_dgesv(LAPACK_COL_MAJOR, n, 1, work.data(), n, pivots.data(), b.data(), n);
        benchmark::DoNotOptimize(b.data());
    }
}

/* Each Praxa case next to its LAPACK counterpart, order by order. */
void registerAll()
{
    using Case = void (*)(benchmark::State &);
    const std::pair<const char *, Case> cases[] = {
        {"eigenValuesDense", eigenValuesDense},         {"dgeevDense", dgeevDense},
        {"eigenValuesCompanion", eigenValuesCompanion}, {"polyRootsCompanion", polyRootsCompanion},
        {"dgeevCompanion", dgeevCompanion},             {"svDecomposeDense", svDecomposeDense},
        {"dgesvdDense", dgesvdDense},                   {"dgesvdValuesOnly", dgesvdValuesOnly},
        {"luSolveDense", luSolveDense},                 {"dgesvDense", dgesvDense},
    };
    for (int n : ORDERS)
        for (const auto &[name, run] : cases)
            benchmark::RegisterBenchmark(name, run)->Arg(n)->UseRealTime();
}

const int registered = (registerAll(), 0);

}

PRAXA_BENCHMARK_MAIN()
