/*
** tests/rlocus/locus_fixture.h: a fresh host with a root locus plot, a loop K g N(s)/D(s)
** put in place of the linearized model, and the reference closed-loop roots from LAPACK.
*/
#ifndef PRAXA_TESTS_LOCUS_FIXTURE_H
#define PRAXA_TESTS_LOCUS_FIXTURE_H

#include <gtest/gtest.h>
#include <lapacke.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "host/host.h"
#include "support/plugin_plot.h"
#include "hostapp/host_state.h"
#include "support.h"
#include "hostapp/plots.h"
#include "linearize/linearize.h"
#include "platform/driver.h"
#include "rlocus/locus_state.h"
#include "rlocus/rlocus.h"
#include "shell/plot_output.h"
#include "shell/settings.h"
#include "xfer/xfer.h"

namespace locustest {

/* A rows x cols host matrix from values given row by row. */
inline Matrix *hostMatrix(uint32_t rows, uint32_t cols, const std::vector<double> &rowMajor)
{
    Matrix *m = matDecl(rows, cols);
    for (uint32_t i = 0; i < rows; ++i)
        for (uint32_t j = 0; j < cols; ++j)
            m->data[j * rows + i] = rowMajor.at(i * cols + j);
    return m;
}

/* The roots of the ascending coefficients c (degree = size - 1, leading one nonzero) by
** LAPACK's dgeev on the companion matrix, sorted by real part, then imaginary part. */
inline std::vector<Complex> lapackRoots(const std::vector<double> &c)
{
    int n = (int)c.size() - 1;
    std::vector<double> a((size_t)n * n, 0.0), wr(n), wi(n);
    for (int i = 0; i + 1 < n; ++i)
        a[(size_t)(i + 1) * n + i] = 1.0;
    for (int j = 0; j < n; ++j)
        a[(size_t)j * n + (n - 1)] = -c[j] / c[n];
    lapack_int info = LAPACKE_dgeev(LAPACK_COL_MAJOR, 'N', 'N', n, a.data(), n, wr.data(), wi.data(), nullptr, 1,
                                    nullptr, 1);
    EXPECT_EQ(info, 0);
    std::vector<Complex> roots;
    for (int i = 0; i < n; ++i)
        roots.push_back({wr[i], wi[i]});
    std::sort(roots.begin(), roots.end(),
              [](Complex a, Complex b) { return a.re != b.re ? a.re < b.re : a.im < b.im; });
    return roots;
}

inline double distance(Complex a, Complex b) { return std::hypot(a.re - b.re, a.im - b.im); }

class LocusTest : public ::testing::Test {
protected:
    std::filesystem::path outputDir;
    StateSpaceModel model{};
    int32_t n = 0;
    double *num = nullptr;          /* monic N(s), ascending, n + 2 */
    double *den = nullptr;          /* monic D(s), ascending, n + 2 */
    double gain = 0.0;
    HostBlock *block = nullptr;
    PlotRecord *plot = nullptr;

    void SetUp() override
    {
        hostapp::resetHost();
        platform::resetWindowing();
        hostapp::host().mainWindow = platform::createMainWindow("Tervan");
        outputDir = testing_support::useTestOutputDir();
        rootLocusPlotCount = 0;
        gainRange = {50, 0.0, 100.0};
        optionsMemory.autoRange = 0;
        testing_support::releasePluginRecords();
    }

    void TearDown() override
    {
        stateSpaceModel = {};     /* the loop's matrices are the test's */
        releaseModel();
        testing_support::releasePluginRecords();
        hostapp::resetHost();
    }

    void releaseModel()
    {
        for (Matrix *m : {model.A, model.B, model.C, model.D})
            gfree(m);
        model = {};
        gfree(num);
        gfree(den);
        num = den = nullptr;
    }

    /* The loop k N(s)/D(s) in controllable canonical form: denominator = the monic D(s)
    ** without its leading one (d0 ... d_{n-1}), numerator = n0 ... n_{n-1}, direct term d.
    ** It becomes the linearized model; num, den and gain are computed from it. */
    void useLoop(const std::vector<double> &numerator, const std::vector<double> &denominator, double d = 0.0)
    {
        releaseModel();
        n = (int32_t)denominator.size();
        std::vector<double> a((size_t)n * n, 0.0), b(n, 0.0), c(n, 0.0);
        for (int32_t i = 0; i + 1 < n; ++i)
            a[(size_t)i * n + i + 1] = 1.0;
        for (int32_t j = 0; j < n; ++j)
            a[(size_t)(n - 1) * n + j] = -denominator[j];
        b[n - 1] = 1.0;
        for (size_t j = 0; j < numerator.size(); ++j)
            c[j] = numerator[j];
        model = {hostMatrix(n, n, a), hostMatrix(n, 1, b), hostMatrix(1, n, c), hostMatrix(1, 1, {d})};
        stateSpaceModel = model;
        stateToXferFunc(model.A, model.B, model.C, model.D, &num, &den, &gain);
    }

    double run()
    {
        block = makeRootLocusPlot(n);
        plot = plotRecordOf(block);
        return rootLocus(plot, num, den, n);
    }

    PlotPointBuffer *buffer(int branch, int coordinate) const
    {
        return (PlotPointBuffer *)tervanRequest(TERVAN_REQ_PLOT_BUFFER, (intptr_t)plot, branch * 256 + coordinate);
    }

    /* The points a branch holds, steps 0 ... its highest index. */
    std::vector<Complex> branch(int j) const
    {
        PlotPointBuffer *x = buffer(j, 0), *y = buffer(j, 1);
        std::vector<Complex> points;
        for (uint32_t s = 0; s <= x->highestIndex && s < x->capacity && x->values; ++s)
            points.push_back({x->values[s], y->values[s]});
        return points;
    }

    std::vector<double> gains() const
    {
        return std::vector<double>(plot->paramInfo->parameters, plot->paramInfo->parameters + gainRange.steps);
    }

    /* The closed-loop polynomial den + K g num (ascending, degree n). */
    std::vector<double> closedLoop(double K) const
    {
        std::vector<double> c(n + 1);
        for (int32_t k = 0; k <= n; ++k)
            c[k] = den[k] + K * gain * num[k];
        return c;
    }

    /* Step s of every branch matches LAPACK's roots at that step's gain, one to one. */
    void expectStepMatchesLapack(int s, double tolerance)
    {
        std::vector<Complex> reference = lapackRoots(closedLoop(gains()[s]));
        std::vector<bool> used(reference.size(), false);
        for (int j = 0; j < n; ++j) {
            Complex p = branch(j).at(s);
            int nearest = -1;
            for (size_t k = 0; k < reference.size(); ++k)
                if (!used[k] && (nearest < 0 || distance(p, reference[k]) < distance(p, reference[nearest])))
                    nearest = (int)k;
            ASSERT_GE(nearest, 0);
            used[nearest] = true;
            EXPECT_LT(distance(p, reference[nearest]), tolerance)
                << "step " << s << " branch " << j << " at K = " << gains()[s] << ": (" << p.re << ", " << p.im
                << ") against (" << reference[nearest].re << ", " << reference[nearest].im << ")";
        }
    }

    std::string transcript() const { return platform::transcriptText(); }
};

}

#endif
