/*
** bench/analysis_bench.cpp: whole analyses through the plug-in's own menu entry point
** (praxaCmd), in-process with the stand-in host, on a model of n states: transfer
** function, Bode plots of 1000 points with the margins, Nyquist, and the automatic root
** locus of 1000 steps.  Plots are reused, as a user with plot reuse on would see them;
** the host writes each plot's SVG file as it does for the praxa command.  The Analysis
** cases time the plug-in's own work alone on the model linearized once: the factored
** transfer function and the Bode response with its margins, or the root locus sweep.
*/
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include "bench/bench_support.h"
#include "freq/frequency_response.h"
#include "host/host.h"
#include "hostapp/diagram.h"
#include "hostapp/host_state.h"
#include "platform/driver.h"
#include "rlocus/locus_state.h"
#include "rlocus/rlocus.h"
#include "shell/plot_output.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "xfer/xfer.h"

namespace {

/* A stable model of n states: block-diagonal A with poles of magnitude 0.5 to 2 in the
** left half-plane (a 2 x 2 block per complex pair, one real pole for odd n), B all
** ones and C fixed pseudo-random entries, D = 0: n - 1 finite zeros in general. */
std::string modelDiagram(int n)
{
    std::mt19937_64 rng(7000 + n);
    std::uniform_real_distribution<double> radius(0.5, 2.0), angle(0.05, 1.5), entry(-1.0, 1.0);
    std::vector<std::vector<double>> a(n, std::vector<double>(n, 0.0));
    int k = 0;
    for (; k + 1 < n; k += 2) {
        double r = radius(rng), t = angle(rng);
        double sigma = -r * std::cos(t), omega = r * std::sin(t);
        a[k][k] = a[k + 1][k + 1] = sigma;
        a[k][k + 1] = omega;
        a[k + 1][k] = -omega;
    }
    if (k < n)
        a[k][k] = -radius(rng);
    auto row = [](const std::vector<double> &v) {
        std::string s = "[";
        char text[40];
        for (size_t i = 0; i < v.size(); ++i) {
            std::snprintf(text, sizeof text, "%s%.17g", i ? ", " : "", v[i]);
            s += text;
        }
        return s + "]";
    };
    std::string rows;
    for (int i = 0; i < n; ++i)
        rows += (i ? ", " : "") + row(a[i]);
    std::vector<double> b(n, 1.0), c(n);
    for (double &v : c)
        v = entry(rng);
    return R"({"blocks": [{"id": "source", "type": "step", "value": 1},
                          {"id": "plant", "type": "stateSpace", "a": [)" + rows + R"(], "b": )" + row(b) +
           R"(, "c": )" + row(c) + R"(, "d": 0}], "wires": [["source", "plant"]],
               "selection": ["plant"], "input": "plant.in", "output": "plant.out"})";
}

/* A fresh host with the plug-in and the model of order n loaded. */
bool startWithModel(int n, benchmark::State &state)
{
    static bench::TempFolder folder;
    bench::startHost(folder.path);
    std::string error;
    if (!hostapp::loadDiagramText(modelDiagram(n), "model.json", error) ||
        !hostapp::applyDiagramReferencePoints(error)) {
        state.SkipWithError(error.c_str());
        return false;
    }
    reusePlots = 1;
    frequencyRange = {1000, 0.01, 100.0};
    gainRange = {1000, 0.0, 100.0};
    optionsMemory.autoRange = 1;
    return true;
}

void runCommand(benchmark::State &state, uint16_t command)
{
    if (!startWithModel((int)state.range(0), state))
        return;
    for (auto _ : state) {
        praxaCmd(command);
        platform::clearTranscript();
    }
    hostapp::clearDiagram();
}

void transferFunction(benchmark::State &state) { runCommand(state, CMD_TRANSFER_FUNCTION); }
void bode1000(benchmark::State &state) { runCommand(state, CMD_FREQUENCY_RESPONSE); }
void nyquist(benchmark::State &state) { runCommand(state, CMD_NYQUIST); }

/* The sweep's steps of the last run: found by tracking, or by the eigenvalue solver. */
void countSteps(benchmark::State &state)
{
    state.counters["tracked"] = rootLocusState.trackedSteps;
    state.counters["solved"] = rootLocusState.solvedSteps;
}

/* Automatic range and adaptive steps, the default. */
void rootLocus1000(benchmark::State &state)
{
    runCommand(state, CMD_ROOT_LOCUS);
    countSteps(state);
}

/* Manual range: 1000 gains from 0 to 100, each solved once. */
void rootLocus1000Manual(benchmark::State &state)
{
    if (!startWithModel((int)state.range(0), state))
        return;
    optionsMemory.autoRange = 0;
    for (auto _ : state) {
        praxaCmd(CMD_ROOT_LOCUS);
        platform::clearTranscript();
    }
    hostapp::clearDiagram();
    countSteps(state);
}

/* The transfer function of the linearized model as the command computes it: zeros and
** numerator, poles and denominator, gain; returns the gain. */
struct TransferFunctionArrays {
    std::vector<Complex> zeros, poles;
    std::vector<double> numerator, denominator;
    Polynomial num, den;
};
double modelTransferFunction(TransferFunctionArrays &tf)
{
    const StateSpaceModel &m = stateSpaceModel;
    uint32_t n = m.A->rows;
    tf.zeros.resize(n + 1);
    tf.poles.resize(n + 1);
    tf.numerator.resize(n + 2);
    tf.denominator.resize(n + 2);
    tf.num = {0, tf.numerator.data()};
    tf.den = {0, tf.denominator.data()};
    stateToZeros(m.A, m.B, m.C, m.D, tf.zeros.data(), &tf.num);
    stateToPoles(m.A, tf.poles.data(), &tf.den);
    return xferGain(m.A, m.B, m.C, m.D, tf.poles.data(), tf.zeros.data(), tf.num.count - 1, tf.den.count - 1);
}

/* The plug-in's share of the transfer function command: its zeros, poles and gain of the
** model linearized once. */
void transferFunctionAnalysis(benchmark::State &state)
{
    if (!startWithModel((int)state.range(0), state))
        return;
    praxaCmd(CMD_TRANSFER_FUNCTION);
    TransferFunctionArrays tf;
    for (auto _ : state) {
        benchmark::DoNotOptimize(modelTransferFunction(tf));
        platform::clearTranscript();
    }
    hostapp::clearDiagram();
}

/* Zeros, poles and gain of the linearized model, then the Bode magnitude and phase of
** 1000 points with the margins (their dialog included), into plain arrays. */
void bode1000Analysis(benchmark::State &state)
{
    if (!startWithModel((int)state.range(0), state))
        return;
    praxaCmd(CMD_FREQUENCY_RESPONSE);
    TransferFunctionArrays tf;
    std::vector<double> magnitude(frequencyRange.steps), phase(frequencyRange.steps);
    for (auto _ : state) {
        double gain = modelTransferFunction(tf);
        bodeResponse(tf.num.count - 1, tf.den.count - 1, tf.poles.data(), tf.zeros.data(), magnitude.data(),
                     phase.data(), 1.0, gain, 0.0);
        platform::clearTranscript();
    }
    hostapp::clearDiagram();
}

/* The automatic root locus of 1000 steps on the linearized model's polynomials, into the
** plot's trace buffers, without drawing. */
void rootLocus1000Analysis(benchmark::State &state)
{
    if (!startWithModel((int)state.range(0), state))
        return;
    praxaCmd(CMD_ROOT_LOCUS);
    const StateSpaceModel &m = stateSpaceModel;
    int32_t n = (int32_t)m.A->rows;
    double *numerator = nullptr, *denominator = nullptr;
    timeToFrequency(m.A, m.B, m.C, m.D, &numerator, &denominator, nullptr, 0);
    PlotRecord *plot = plotRecordOf(rootLocusPlot);
    for (auto _ : state)
        rootLocus(plot, numerator, denominator, n);   /* the host frees the replaced gains */
    countSteps(state);
    gfree(numerator);
    gfree(denominator);
    hostapp::clearDiagram();
}

}

BENCHMARK(transferFunction)->Arg(10)->Arg(30)->Arg(100)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(transferFunctionAnalysis)->Arg(10)->Arg(30)->Arg(100)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(bode1000)->Arg(10)->Arg(30)->Arg(100)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(bode1000Analysis)->Arg(10)->Arg(30)->Arg(100)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(nyquist)->Arg(10)->Arg(30)->Arg(100)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(rootLocus1000)->Arg(10)->Arg(30)->Arg(100)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(rootLocus1000Analysis)->Arg(10)->Arg(30)->Arg(100)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(rootLocus1000Manual)->Arg(10)->Arg(30)->Arg(100)->UseRealTime()->Unit(benchmark::kMillisecond);

PRAXA_BENCHMARK_MAIN()
