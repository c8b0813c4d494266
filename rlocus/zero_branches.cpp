/*
** rlocus/zero_branches.cpp: which root locus branch ends at which open-loop zero, written
** into the zero-branch array of the plot's PlotParamInfo after an automatic sweep.
*/
#include <cmath>

#include "host/host.h"
#include "rlocus/locus_state.h"

/* An entry of a zero that no branch reaches (more zeros than endpoints in the box). */
static constexpr int32_t NO_BRANCH = -1;
static constexpr double TAKEN_OUT = 1e100;

static bool insideBox(Complex r, double S)
{
    return std::fabs(r.re) < S && std::fabs(r.im) < S;
}

void pairEndpointsWithZeros(PlotRecord *plot, const Complex *endpoints, const Complex *zeros, int32_t nZ,
                            int32_t n, double S)
{
    int32_t *zeroBranches = plot->paramInfo->zeroBranches;
    int32_t *branchOfRow = (int32_t *)galloc(sizeof(int32_t) * (size_t)(n > 0 ? n : 1));
    int32_t m = 0;
    for (int32_t j = 0; j < n; ++j)
        if (insideBox(endpoints[j], S))
            branchOfRow[m++] = j;
    uint32_t rows = (uint32_t)(m > 0 ? m : 1);
    ComplexMatrix *work = cmatReDecl(nullptr, rows, (uint32_t)nZ);
    if (!work) {
        debMsg("Out of memory");
        gfree(branchOfRow);
        return;
    }
    auto at = [&](int32_t e, int32_t k) -> Complex & { return work->data[(size_t)k * rows + (size_t)e]; };
    for (int32_t e = 0; e < m; ++e)
        for (int32_t k = 0; k < nZ; ++k)
            at(e, k) = {endpoints[branchOfRow[e]].re - zeros[k].re, endpoints[branchOfRow[e]].im - zeros[k].im};

    int32_t picks = m < nZ ? m : nZ;
    for (int32_t pick = 0; pick < picks; ++pick) {
        double best = TAKEN_OUT;
        int32_t bestRow = -1, bestZero = -1;
        for (int32_t e = 0; e < m; ++e)
            for (int32_t k = 0; k < nZ; ++k) {
                double magnitude = std::hypot(at(e, k).re, at(e, k).im);
                if (magnitude < best) {
                    best = magnitude;
                    bestRow = e;
                    bestZero = k;
                }
            }
        if (bestRow < 0)                /* only unusable (NaN) distances are left */
            break;
        zeroBranches[bestZero] = branchOfRow[bestRow];
        for (int32_t k = 0; k < nZ; ++k)
            at(bestRow, k) = {TAKEN_OUT, TAKEN_OUT};
        for (int32_t e = 0; e < m; ++e)
            at(e, bestZero) = {TAKEN_OUT, TAKEN_OUT};
    }
    gfree(work);
    gfree(branchOfRow);
}

void assignZeroBranches(PlotRecord *plot, const Complex *endpoints, double S, int32_t n, int32_t nP,
                        int32_t nZ, const Complex *zeros)
{
    if (nZ < 1 || !plot->paramInfo)
        return;
    int32_t *zeroBranches = (int32_t *)galloc(sizeof(int32_t) * (size_t)nZ);
    for (int32_t k = 0; k < nZ; ++k)
        zeroBranches[k] = NO_BRANCH;
    /* An array already on the record belongs to the plot, which frees what is replaced. */
    plot->paramInfo->zeroBranches = zeroBranches;

    /* Every branch ends at a zero.  These entries count branches from 1, the others
    ** from 0: the host's reading of the array is kept as it is. */
    if (nP == nZ) {
        for (int32_t k = 0; k < nZ; ++k)
            zeroBranches[k] = k + 1;
        return;
    }
    if (countRootsOutside(endpoints, S, n) != nP - nZ) {
        pairEndpointsWithZeros(plot, endpoints, zeros, nZ, n, S);
        return;
    }
    /* The endpoints inside the box are exactly those on the zeros. */
    int32_t filled = 0;
    for (int32_t j = 0; j < n && filled < nZ; ++j)
        if (insideBox(endpoints[j], S))
            zeroBranches[filled++] = j;
}
