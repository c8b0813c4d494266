/*
** bench/numeric_bench.cpp: the numerical core against LAPACK on the same random
** matrices: eigenValues vs dgeev (eigenvalues only) and svDecompose vs dgesvd.
*/
#include <random>
#include <vector>

#include <benchmark/benchmark.h>
#include <lapacke.h>

#include "host/host.h"
#include "numeric/eigen.h"
#include "numeric/matrix.h"
#include "numeric/svd.h"

namespace {

/* The same n x n Gaussian matrix for every benchmark of that order (column-major). */
const std::vector<double> &sample(int n)
{
    static std::vector<std::vector<double>> cache(101);
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

Matrix *asMatrix(const std::vector<double> &a, int n)
{
    Matrix *m = matDecl(n, n);
    std::copy(a.begin(), a.end(), m->data);
    return m;
}

void eigenValuesBench(benchmark::State &state)
{
    int n = (int)state.range(0);
    Matrix *m = asMatrix(sample(n), n);
    std::vector<Complex> roots(n);
    for (auto _ : state) {
        eigenValues(roots.data(), m, n);        /* copies m itself */
        benchmark::DoNotOptimize(roots.data());
    }
    gfree(m);
}

void dgeevBench(benchmark::State &state)
{
    int n = (int)state.range(0);
    const std::vector<double> &a = sample(n);
    std::vector<double> work(a.size()), wr(n), wi(n);
    for (auto _ : state) {
        std::copy(a.begin(), a.end(), work.begin());
        LAPACKE_dgeev(LAPACK_COL_MAJOR, 'N', 'N', n, work.data(), n, wr.data(), wi.data(),
                      nullptr, 1, nullptr, 1);
        benchmark::DoNotOptimize(wr.data());
    }
}

void svDecomposeBench(benchmark::State &state)
{
    int n = (int)state.range(0);
    const std::vector<double> &a = sample(n);
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
void dgesvdBench(benchmark::State &state)
{
    int n = (int)state.range(0);
    const std::vector<double> &a = sample(n);
    std::vector<double> work(a.size()), s(n), vt((size_t)n * n), superb(n);
    for (auto _ : state) {
        std::copy(a.begin(), a.end(), work.begin());
        LAPACKE_dgesvd(LAPACK_COL_MAJOR, 'O', 'A', n, n, work.data(), n, s.data(), nullptr, 1,
                       vt.data(), n, superb.data());
        benchmark::DoNotOptimize(s.data());
    }
}

/* For information: singular values alone, which svDecompose cannot skip. */
void dgesvdValuesOnlyBench(benchmark::State &state)
{
    int n = (int)state.range(0);
    const std::vector<double> &a = sample(n);
    std::vector<double> work(a.size()), s(n), superb(n);
    for (auto _ : state) {
        std::copy(a.begin(), a.end(), work.begin());
        LAPACKE_dgesvd(LAPACK_COL_MAJOR, 'N', 'N', n, n, work.data(), n, s.data(), nullptr, 1,
                       nullptr, 1, superb.data());
        benchmark::DoNotOptimize(s.data());
    }
}

}

BENCHMARK(eigenValuesBench)->Arg(4)->Arg(10)->Arg(30)->Arg(100);
BENCHMARK(dgeevBench)->Arg(4)->Arg(10)->Arg(30)->Arg(100);
BENCHMARK(svDecomposeBench)->Arg(4)->Arg(10)->Arg(30)->Arg(100);
BENCHMARK(dgesvdBench)->Arg(4)->Arg(10)->Arg(30)->Arg(100);
BENCHMARK(dgesvdValuesOnlyBench)->Arg(4)->Arg(10)->Arg(30)->Arg(100);

BENCHMARK_MAIN();
