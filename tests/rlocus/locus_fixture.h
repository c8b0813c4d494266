/*
** tests/rlocus/locus_fixture.h: a fresh host with a root locus plot, a loop K g N(s)/D(s)
** put in place of the linearized model, and the reference closed-loop roots from LAPACK.
*/
#ifndef PRAXA_TESTS_LOCUS_FIXTURE_H
#define PRAXA_TESTS_LOCUS_FIXTURE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "host/host.h"
#include "hostapp/host_state.h"
#include "hostapp/plots.h"
#include "linearize/linearize.h"
#include "platform/driver.h"
#include "rlocus/locus_state.h"
#include "rlocus/rlocus.h"
#include "shell/plot_output.h"
#include "shell/settings.h"
#include "support.h"
#include "support/lapack_reference.h"
#include "support/plugin_plot.h"
#include "support/model.h"
#include "xfer/xfer.h"

namespace locustest {

using namespace testing_support;

inline double distance(Complex a, Complex b) { return std::hypot(a.re - b.re, a.im - b.im); }

class LocusTest : public PluginTest {
protected:
    std::unique_ptr<xfertest::Model> loop;
    int32_t n = 0;
    double *num = nullptr;          /* monic N(s), ascending, n + 2 */
    double *den = nullptr;          /* monic D(s), ascending, n + 2 */
    double gain = 0.0;
    HostBlock *block = nullptr;
    PlotRecord *plot = nullptr;

    void TearDown() override
    {
        stateSpaceModel = {};     /* the loop's matrices are the test's */
        releaseModel();
        PluginTest::TearDown();
    }

    void releaseModel()
    {
        loop.reset();
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
        loop.reset(xfertest::controllableForm(numerator, denominator, d));
        n = loop->n;
        stateSpaceModel = {loop->A, loop->B, loop->C, loop->D};
        stateToXferFunc(loop->A, loop->B, loop->C, loop->D, &num, &den, &gain);
    }

    /* A fresh root locus plot of `traces` branches. */
    void newPlot(int traces) { plot = plotRecordOf(block = makeRootLocusPlot(traces)); }

    double run()
    {
        newPlot(n);
        return rootLocus(plot, num, den, n);
    }

    std::vector<Complex> branch(int j) const { return branchPoints(plot, j); }

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

    /* Step s of the branches matches LAPACK's roots at that step's gain, one to one. */
    void expectStepMatchesLapack(int s, double tolerance)
    {
        std::vector<cplx> ours;
        for (int j = 0; j < n; ++j)
            ours.push_back({branch(j).at(s).re, branch(j).at(s).im});
        std::vector<double> distances = matchDistances(ours, lapackRoots(closedLoop(gains()[s])));
        for (size_t k = 0; k < distances.size(); ++k)
            EXPECT_LT(distances[k], tolerance) << "step " << s << " at K = " << gains()[s] << ", root " << k;
    }
};

}

#endif
