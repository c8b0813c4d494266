/*
** bench/report_bench.cpp: the report's analysis (transfer function, margins over the
** whole axis, closed loop, step response) on loops of growing order; the target is
** under 1 ms for a 10th-order loop.
*/
#include <benchmark/benchmark.h>

#include "analysis/report.h"
#include "tests/analysis/canonical_model.h"

namespace {

/* K/((s+1)(s+2)...(s+n)), K = n!/2 so that the loop has gain and phase crossovers and a
** stable closed loop for small n. */
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
    den.pop_back();                         /* the leading 1 */
    return canonical({factorial / 2}, den);
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
