/*
** bench/report_bench.cpp: the report's analysis (transfer function, margins over the
** whole axis, closed loop, step response) on loops of growing order; the target is
** under 1 ms for a 10th-order loop.
*/
#include <benchmark/benchmark.h>

#include "analysis/report.h"

namespace {

/* K/((s+1)(s+2)...(s+n)) in controllable canonical form, K = n!/2 so that the loop has
** gain and phase crossovers and a stable closed loop for small n. */
analysis::Model chainOfLags(uint32_t n)
{
    std::vector<double> den = {1.0};        /* ascending */
    double factorial = 1.0;
    for (uint32_t k = 1; k <= n; k++) {
        std::vector<double> next(den.size() + 1, 0.0);
        for (size_t i = 0; i < den.size(); i++) {
            next[i] += k * den[i];
            next[i + 1] += den[i];
        }
        den = next;
        factorial *= k;
    }
    analysis::Model m;
    m.order = n;
    m.a.assign((size_t)n * n, 0.0);
    for (uint32_t i = 0; i + 1 < n; i++)
        m.a[(size_t)(i + 1) * n + i] = 1.0;
    for (uint32_t j = 0; j < n; j++)
        m.a[(size_t)j * n + (n - 1)] = -den[j];
    m.b.assign(n, 0.0);
    m.b[n - 1] = 1.0;
    m.c.assign(n, 0.0);
    m.c[0] = factorial / 2;
    return m;
}

void analyzeLoop(benchmark::State &state)
{
    analysis::Model model = chainOfLags((uint32_t)state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(analysis::analyzeModel(model));
}
BENCHMARK(analyzeLoop)->Arg(3)->Arg(10)->Arg(20)->Unit(benchmark::kMicrosecond);

void reportAsJson(benchmark::State &state)
{
    analysis::Model model = chainOfLags((uint32_t)state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(analysis::modelReportJson(model));
}
BENCHMARK(reportAsJson)->Arg(10)->Unit(benchmark::kMicrosecond);

}

BENCHMARK_MAIN();
