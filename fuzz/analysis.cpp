/*
** fuzz/analysis.cpp: the transfer function, Bode, Nyquist and root locus analyses, run as
** their menu commands run them, on a fuzzed linearized model. The input's first bytes set
** the order, the sample period and the step counts; each further byte is one matrix entry,
** picked from values that break numerical code (NaN, infinities, 1e308, denormals) or a
** small integer, or the next eight bytes taken as a double.
*/
#include <unistd.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <string>

#include "freq/frequency_response.h"
#include "host/host.h"
#include "hostapp/in_process_host.h"
#include "linearize/linearize.h"
#include "numeric/matrix.h"
#include "platform/driver.h"
#include "rlocus/rlocus.h"
#include "shell/plot_output.h"
#include "shell/praxa.h"
#include "shell/settings.h"
#include "xfer/xfer.h"

namespace {

/* Largest order a run takes: a root locus step costs about n^3 and a run has up to
** 200 steps here, so that one input stays well inside the fuzzer's time-out. */
const uint32_t MOST_STATES = 40;

struct Input {
    const uint8_t *data;
    size_t size;
    size_t at = 0;
    uint8_t byte() { return at < size ? data[at++] : 0; }
    double entry()
    {
        static const double special[] = {0.0, 1.0, -1.0, std::numeric_limits<double>::quiet_NaN(),
                                         INFINITY, -INFINITY, 1e308, -1e308, 4.9e-324, -2.2e-308,
                                         1e-300, 1e300, 0.5, 1e-6, 1e6, -0.0};
        uint8_t b = byte();
        if (b < 16)
            return special[b];
        if (b == 255 && at + 8 <= size) {
            double raw;
            std::memcpy(&raw, data + at, 8);
            at += 8;
            return raw;
        }
        return (int)b - 136;
    }
};

/* The folder of the plots and the settings file, in memory where there is a tmpfs (a
** settings write ends with an fsync); removed when the fuzzer exits. */
struct OutputFolder {
    std::string path;
    OutputFolder()
    {
        std::string pattern = std::string(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") + "/praxa-fuzz-XXXXXX";
        path = mkdtemp(pattern.data());
    }
    ~OutputFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
};

Matrix *fuzzedMatrix(Input &in, uint32_t rows, uint32_t cols)
{
    Matrix *m = matDecl(rows, cols);
    for (uint32_t k = 0; k < rows * cols; ++k)
        m->data[k] = in.entry();
    return m;
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const OutputFolder output;
    const std::string &outputDir = output.path;
    hostapp::startInProcessHost(outputDir + "/tervan.ini", outputDir);

    Input in{data, size};
    uint32_t n = 1 + in.byte() % MOST_STATES;
    double period = in.byte() % 4 == 0 ? 0.1 : 0.0;
    frequencyRange = {1 + in.byte() * 8, 0.01, 100.0};
    gainRange = {1 + in.byte() % 200, 0.0, 100.0};
    optionsMemory.autoRange = in.byte() % 2;
    negativeFrequencies = in.byte() % 2;

    StateSpaceModel saved = stateSpaceModel;
    StateSpaceModel model{fuzzedMatrix(in, n, n), fuzzedMatrix(in, n, 1), fuzzedMatrix(in, 1, n), fuzzedMatrix(in, 1, 1)};
    stateSpaceModel = model;

    timeToFrequency(model.A, model.B, model.C, model.D, nullptr, nullptr, nullptr, XFER_SHOW_INFO);

    HostBlock *phase = makePlotNode(0, 0), *magnitude = makePlotNode(20, 20);
    frequencyResponse(phase, magnitude, &frequencyRange, nullptr, nullptr, 0, 0, (int32_t)n, 0, period);
    frequencyResponse(makePlotNode(0, 0), nullptr, &frequencyRange, nullptr, nullptr, 0, 0, (int32_t)n, 1, period);

    double *numerator = nullptr, *denominator = nullptr;
    timeToFrequency(model.A, model.B, model.C, model.D, &numerator, &denominator, nullptr, 0);
    HostBlock *locus = makeRootLocusPlot((int)n);
    double radius = rootLocus(plotRecordOf(locus), numerator, denominator, (int32_t)n);
    finishPlot(locus, 0, 0, 0);
    clampPlotToRadius(plotRecordOf(locus), radius);
    gfree(numerator);
    gfree(denominator);

    for (Matrix *m : {model.A, model.B, model.C, model.D})
        gfree(m);
    stateSpaceModel = saved;
    platform::clearTranscript();
    return 0;
}
