/*
** bench/diagram_bench.cpp: loading diagram files of many blocks and wires, whose time
** should grow in proportion to the size of the file.
*/
#include <string>

#include <benchmark/benchmark.h>

#include "hostapp/diagram.h"

namespace {

/* A constant feeding a chain of n gains, each wired to the next; with `selected`, the
** file names every gain in its selection, last one first. */
std::string chainOfGains(int64_t n, bool selected = false)
{
    std::string blocks = R"({"id": "src", "type": "constant", "value": 1})";
    std::string wires = R"(["src", "g0"])";
    std::string selection;
    for (int64_t i = 0; i < n; ++i) {
        blocks += R"(, {"id": "g)" + std::to_string(i) + R"(", "type": "gain", "gain": 1})";
        if (i > 0)
            wires += R"(, ["g)" + std::to_string(i - 1) + R"(", "g)" + std::to_string(i) + R"("])";
        selection += std::string(i > 0 ? ", " : "") + R"("g)" + std::to_string(n - 1 - i) + R"(")";
    }
    return R"({"blocks": [)" + blocks + R"(], "wires": [)" + wires + "]" +
           (selected ? R"(, "selection": [)" + selection + "]" : "") + "}";
}

void loadChainOfGains(benchmark::State &state, bool selected)
{
    std::string text = chainOfGains(state.range(0), selected);
    for (auto _ : state) {
        std::string error;
        if (!hostapp::loadDiagramText(text, "chain.json", error))
            state.SkipWithError(error.c_str());
    }
    hostapp::clearDiagram();
    state.SetComplexityN(state.range(0));
}
BENCHMARK_CAPTURE(loadChainOfGains, all, false)->RangeMultiplier(4)->Range(1 << 10, 1 << 16)->Arg(99999)
    ->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);
BENCHMARK_CAPTURE(loadChainOfGains, selected, true)->RangeMultiplier(4)->Range(1 << 10, 1 << 16)->Arg(99999)
    ->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);

}

BENCHMARK_MAIN();
