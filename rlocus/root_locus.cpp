/*
** rlocus/root_locus.cpp: the root locus sweep.  Sweeps the loop gain K, finds the n
** closed-loop poles (roots of den + K g num) at every step, sorts them onto n continuous
** branches by nearest neighbour and writes branch j into the plot's trace pair j; in the
** automatic mode it adapts the steps and snaps break-away points.  A step's roots are
** followed from the step before where that is sure to give the same branches, and found
** as eigenvalues otherwise.
*/
#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/host.h"
#include "linearize/linearize.h"
#include "rlocus/locus_state.h"
#include "rlocus/rlocus.h"
#include "shell/settings.h"
#include "xfer/xfer.h"

RootLocusState rootLocusState;

static constexpr double DEGREES_PER_RADIAN = 57.29577951308232;
static constexpr double VERTICAL_SLOPE = 1e30;
static constexpr double FAR_AWAY = 1e100;
static constexpr int32_t BUFFER_GROWTH = 128;

/* --- the trace buffers --- */

static PlotPointBuffer *pointBuffer(PlotRecord *plot, int32_t branch, int coordinate)
{
    return (PlotPointBuffer *)tervanRequest(TERVAN_REQ_PLOT_BUFFER, (intptr_t)plot, (intptr_t)branch * 256 + coordinate);
}

/* Point `step` of a buffer; NaN where the host has no such point. */
static double pointAt(const PlotPointBuffer *buffer, int32_t step)
{
    if (!buffer || !buffer->values || step < 0 || (uint32_t)step >= buffer->capacity)
        return NAN;
    return buffer->values[step];
}

static Complex branchPoint(PlotRecord *plot, int32_t branch, int32_t step)
{
    return {pointAt(pointBuffer(plot, branch, 0), step), pointAt(pointBuffer(plot, branch, 1), step)};
}

void storeLocusPoint(PlotRecord *plot, int32_t branch, int32_t step, Complex root)
{
    if (step < 0)
        return;
    for (int coordinate = 0; coordinate < 2; ++coordinate) {
        PlotPointBuffer *buffer = pointBuffer(plot, branch, coordinate);
        if (!buffer)                    /* the host has no trace for this branch */
            continue;
        if ((uint32_t)step >= buffer->capacity || !buffer->values) {
            uint32_t oldCapacity = buffer->values ? buffer->capacity : 0;
            uint32_t capacity = buffer->capacity;
            /* By 128 points, as often as it takes: one addition alone would leave a step
            ** more than 128 beyond the buffer outside it. */
            while ((uint32_t)step >= capacity)
                capacity += BUFFER_GROWTH;
            buffer->values = (double *)grealloc(buffer->values, sizeof(double) * (uint64_t)capacity);
            /* Points no step has written stay NaN, which the host does not draw. */
            std::fill(buffer->values + oldCapacity, buffer->values + capacity, NAN);
            buffer->capacity = capacity;
        }
        buffer->values[step] = coordinate == 0 ? root.re : root.im;
        if (buffer->highestIndex < (uint32_t)step)
            buffer->highestIndex = (uint32_t)step;
    }
}

/* --- one step --- */

static bool isTaken(int32_t branch)
{
    return (rootLocusState.taken[branch >> 6] >> (branch & 63)) & 1u;
}

static void markTaken(int32_t branch)
{
    rootLocusState.taken[branch >> 6] |= (uint64_t)1 << (branch & 63);
}

static void noteExtreme(Complex r)
{
    RootLocusState &st = rootLocusState;
    if (std::fabs(r.im) > st.maxIm)
        st.maxIm = std::fabs(r.im);
    if (std::fabs(r.re) > std::fabs(st.maxRe))
        st.maxRe = r.re;
}

/* Prepares the tracking for step `step` from the points in previous, unless it is
** prepared from these very points already (a later try at the same step). */
static void frameStep(int32_t step)
{
    RootLocusState &st = rootLocusState;
    int32_t n = st.order;
    bool samePoints = st.frameStep == step && std::memcmp(st.frame, st.previous, sizeof(Complex) * (size_t)n) == 0;
    if (samePoints)
        return;
    if (st.frameStep != step) {
        /* The tangents need the gain the points were found at: that of the latest call,
        ** when it was for the step before. */
        st.frameHasGain = st.lastStep == step - 1;
        st.frameGain = st.frameHasGain ? st.lastGain : 0.0;
    }
    prepareTracking(st.previous, n, st.frameGain, st.frameHasGain);
    st.frameStep = step;
}

/* Stores the tracked roots, root j on branch j; returns the largest distance moved. */
static double storeTrackedRoots(PlotRecord *plot, int32_t step)
{
    RootLocusState &st = rootLocusState;
    double farthest = -1.0;
    int32_t farthestBranch = 0;
    for (int32_t j = 0; j < st.order; ++j) {
        Complex r = st.roots[j];
        double dx = r.re - st.previous[j].re, dy = r.im - st.previous[j].im;
        if (dx * dx + dy * dy > farthest) {
            farthest = dx * dx + dy * dy;
            farthestBranch = j;
        }
        storeLocusPoint(plot, j, step, r);
        noteExtreme(r);
    }
    Complex r = st.roots[farthestBranch], p = st.previous[farthestBranch];
    return std::hypot(r.re - p.re, r.im - p.im);
}

double rootLocusStep(PlotRecord *plot, int32_t step, double K)
{
    RootLocusState &st = rootLocusState;
    int32_t n = st.order;
    bool tracked = false;
    if (step > 0) {
        for (int32_t j = 0; j < n; ++j)
            st.previous[j] = branchPoint(plot, j, step - 1);
        if (!st.trackingOff) {
            frameStep(step);
            for (int32_t k = 0; k <= n; ++k)
                st.closedLoop[k] = st.denominator[k] + K * st.gain * st.numerator[k];
            tracked = trackRoots(st.roots, st.closedLoop, n, K - st.frameGain);
        }
    }
    st.lastStep = step;
    st.lastGain = K;
    if (tracked) {
        ++st.trackedSteps;
        return storeTrackedRoots(plot, step);
    }
    ++st.solvedSteps;
    for (int32_t k = 0; k <= n; ++k)
        st.closedLoop[k] = st.denominator[k] + K * st.gain * st.numerator[k];
    /* A degree that drops below n leaves the last roots as the previous step found them. */
    polyRoots(st.roots, st.closedLoop, n, st.companion);

    double moved = 0.0;
    if (step > 0)
        std::memset(st.taken, 0, sizeof st.taken);
    for (int32_t i = 0; i < n; ++i) {
        Complex r = st.roots[i];
        int32_t branch = i;
        if (step > 0) {
            double best = FAR_AWAY;
            for (int32_t j = 0; j < n; ++j) {
                if (isTaken(j))
                    continue;
                double distance = std::hypot(r.re - st.previous[j].re, r.im - st.previous[j].im);
                if (distance < best) {
                    best = distance;
                    branch = j;
                }
            }
            markTaken(branch);
            moved = std::max(moved, best);
        }
        storeLocusPoint(plot, branch, step, r);
        noteExtreme(r);
    }
    return moved;
}

/* Steps from..to - 1 repeat step from - 1, whose roots are all finite: each root's
** nearest point is then itself, so every branch keeps its point.  False (nothing
** written) when a point is not finite. */
static bool repeatLastStep(PlotRecord *plot, int32_t from, int32_t to)
{
    int32_t n = rootLocusState.order;
    for (int32_t j = 0; j < n; ++j) {
        Complex p = branchPoint(plot, j, from - 1);
        if (!std::isfinite(p.re) || !std::isfinite(p.im))
            return false;
    }
    for (int32_t j = 0; j < n; ++j) {
        Complex p = branchPoint(plot, j, from - 1);
        storeLocusPoint(plot, j, to - 1, p);        /* sizes the buffers */
        for (int coordinate = 0; coordinate < 2; ++coordinate) {
            PlotPointBuffer *buffer = pointBuffer(plot, j, coordinate);
            if (buffer && buffer->values)
                std::fill(buffer->values + from, buffer->values + to, coordinate == 0 ? p.re : p.im);
        }
    }
    return true;
}

/* --- the automatic step control --- */

static double slope(double dy, double dx)
{
    return dx == 0.0 ? VERTICAL_SLOPE : dy / dx;
}

/* A branch that has just left the real axis at step s: its point at s - 1 moves to the
** real value of its point at s, and so does that of its mirror image.  False when the
** mirror image is not found; the branch's own point has moved all the same. */
static bool snapBreakAway(PlotRecord *plot, int32_t n, int32_t branch, int32_t s)
{
    PlotPointBuffer *x = pointBuffer(plot, branch, 0);
    if (!x || !x->values)
        return false;
    x->values[s - 1] = x->values[s];
    Complex here = branchPoint(plot, branch, s);
    int32_t mirror = -1;
    for (int32_t m = 0; m < n && mirror < 0; ++m) {
        if (m == branch)
            continue;
        Complex other = branchPoint(plot, m, s);
        if (std::fabs(other.re) == std::fabs(here.re) && std::fabs(other.im) == std::fabs(here.im))
            mirror = m;
    }
    if (mirror < 0)
        return false;
    PlotPointBuffer *mirrorX = pointBuffer(plot, mirror, 0);
    mirrorX->values[s - 1] = mirrorX->values[s];
    return true;
}

/* The automatic mode redoes steps to refine them. Once the run's eigenvalue solves have
** cost what a whole manual run may (steps x n^3, see locusRunFits), the steps are taken as
** they come: the refinement at most doubles a run's work, which would otherwise grow to
** 25 solves a step (minutes at 1000 poles, where tracking rarely holds). */
static bool refinementAffordable(int32_t n)
{
    return (int64_t)rootLocusState.solvedSteps * n * n * n <= ROOT_LOCUS_MOST_WORK;
}

void adaptLocusGain(PlotRecord *plot, int32_t n, int32_t stepNumber, double *K, double previousK,
                    double boxSize)
{
    int32_t s = stepNumber - 1;
    if (s < 2 || !refinementAffordable(n))
        return;
    double K0 = *K;
    double S = std::fabs(boxSize);
    double d = rootLocusStep(plot, s, *K);

    if (d < S / 500.0) {                /* the roots hardly moved: take bigger steps */
        for (int grow = 0; grow < 10 && d < S / 500.0 && refinementAffordable(n); ++grow) {
            *K *= 1.5;
            d = rootLocusStep(plot, s, *K);
        }
        return;
    }
    double epsilon = (K0 - previousK) * 1e-6;
    if (*K - previousK <= epsilon)
        return;

    for (int pass = 1; pass <= 25 && d > S / 100.0 && refinementAffordable(n); ++pass) {
        bool halved = false;
        for (int32_t j = 0; j < n && !halved; ++j) {
            Complex p0 = branchPoint(plot, j, s - 2), p1 = branchPoint(plot, j, s - 1), p2 = branchPoint(plot, j, s);
            double dxNew = p2.re - p1.re, dxOld = p1.re - p0.re;
            if (dxNew == 0.0 && dxOld == 0.0)
                continue;
            double turn = std::fabs(std::atan(slope(p2.im - p1.im, dxNew)) - std::atan(slope(p1.im - p0.im, dxOld))) *
                          DEGREES_PER_RADIAN;
            if (turn <= 5.0)
                continue;
            bool smallStep = *K - previousK < 0.1 * (K0 - previousK) || pass >= 21;
            bool leftRealAxis = p2.im != 0.0 && std::fabs(p2.im) <= S / 100.0 && p1.im == 0.0;
            if (smallStep && leftRealAxis && snapBreakAway(plot, n, j, s))
                return;
            *K = previousK + (*K - previousK) / 2.0;
            d = rootLocusStep(plot, s, *K);
            halved = true;
        }
        if (!halved)                    /* nothing changed: later passes would repeat this one */
            return;
        if (*K - previousK <= epsilon)
            return;
    }
}

/* --- the run --- */

/* Enlarges the kept step buffers to order n. */
static void sizeStepBuffers(int32_t n)
{
    RootLocusState &st = rootLocusState;
    if (n <= st.capacity)
        return;
    st.closedLoop = (double *)grealloc(st.closedLoop, sizeof(double) * (size_t)(n + 2));
    st.companion = matReDecl(st.companion, (uint32_t)n, (uint32_t)n);
    int32_t keptRoots = st.capacity > 0 ? st.capacity + 3 : 0;
    st.roots = (Complex *)grealloc(st.roots, sizeof(Complex) * (size_t)(n + 3));
    /* Entries no step has written yet (a degree below n) read as the origin; the others
    ** are kept, from run to run as well. */
    std::fill(st.roots + keptRoots, st.roots + n + 3, Complex{0.0, 0.0});
    st.previous = (Complex *)grealloc(st.previous, sizeof(Complex) * (size_t)n);
    st.frame = (Complex *)grealloc(st.frame, sizeof(Complex) * (size_t)n);
    st.slope = (Complex *)grealloc(st.slope, sizeof(Complex) * (size_t)n);
    st.reach = (double *)grealloc(st.reach, sizeof(double) * (size_t)n);
    st.partner = (int32_t *)grealloc(st.partner, sizeof(int32_t) * (size_t)n);
    st.capacity = n;
}

void beginLocusRun(const double *num, const double *den, int32_t n, double gain)
{
    RootLocusState &st = rootLocusState;
    st.order = n;
    st.numerator = num;
    st.denominator = den;
    st.gain = gain;
    sizeStepBuffers(n);
    st.frameStep = st.lastStep = -1;
    st.trackedSteps = st.solvedSteps = 0;
    st.autoNumerator = (double *)galloc(sizeof(double) * (size_t)(n + 1));
    st.autoDenominator = (double *)galloc(sizeof(double) * (size_t)(n + 1));
    std::copy(num, num + n + 1, st.autoNumerator);
    std::copy(den, den + n + 1, st.autoDenominator);
    st.autoClosedLoop = (double *)galloc(sizeof(double) * (size_t)(n + 2));
    st.autoRoots = (Complex *)galloc(sizeof(Complex) * (size_t)(n + 3));
    std::fill(st.autoRoots, st.autoRoots + n + 3, Complex{0.0, 0.0});
    st.autoCompanion = matReDecl(nullptr, (uint32_t)n, (uint32_t)n);
}

void endLocusRun()
{
    RootLocusState &st = rootLocusState;
    gfree(st.autoNumerator);
    gfree(st.autoDenominator);
    gfree(st.autoClosedLoop);
    gfree(st.autoRoots);
    gfree(st.autoCompanion);
    st.autoNumerator = st.autoDenominator = st.autoClosedLoop = nullptr;
    st.autoRoots = nullptr;
    st.autoCompanion = nullptr;
}

/* A fresh PlotParamInfo with room for the gain of every step.  A record the plot holds
** from an earlier run belongs to the plot (the host) and is left to it, not freed here. */
static PlotParamInfo *attachParamInfo(PlotRecord *plot, int32_t steps)
{
    PlotParamInfo *info = (PlotParamInfo *)galloc(sizeof(PlotParamInfo));
    /* Zeroed whole: the zero-branch pointer stays null unless zeros are assigned, and the
    ** host's own last 16 bytes hold no stray values. */
    std::memset(info, 0, sizeof *info);
    info->parameters = (double *)galloc(sizeof(double) * (size_t)steps);
    std::fill(info->parameters, info->parameters + steps, 0.0);
    plot->paramInfo = info;
    return info;
}

/* False when no element of C's first row or of B's first column is nonzero. */
static bool inputReachesOutput(const StateSpaceModel &model)
{
    if (!model.B || !model.C)
        return false;
    for (uint32_t j = 0; j < model.C->cols; ++j)
        if (model.C->data[(size_t)j * model.C->rows] != 0.0)
            return true;
    for (uint32_t i = 0; i < model.B->rows; ++i)
        if (model.B->data[i] != 0.0)
            return true;
    return false;
}

/* The zeros, poles and gain of the model; the lists have room for its order. */
struct OpenLoop {
    Complex *zeros;
    Complex *poles;
    int32_t zeroCount;
    int32_t poleCount;
    double gain;
};

static OpenLoop openLoopOf(const StateSpaceModel &model)
{
    int32_t order = (int32_t)model.A->rows;
    OpenLoop loop{};
    loop.zeros = (Complex *)galloc(sizeof(Complex) * (size_t)(order + 3));
    loop.poles = (Complex *)galloc(sizeof(Complex) * (size_t)(order + 3));
    Polynomial numerator{order + 1, (double *)galloc(sizeof(double) * (size_t)(order + 2))};
    Polynomial denominator{order + 1, (double *)galloc(sizeof(double) * (size_t)(order + 2))};
    stateToZeros(model.A, model.B, model.C, model.D, loop.zeros, &numerator);
    stateToPoles(model.A, loop.poles, &denominator);
    loop.zeroCount = numerator.count - 1;
    loop.poleCount = denominator.count - 1;
    loop.gain = xferGain(model.A, model.B, model.C, model.D, loop.poles, loop.zeros, loop.zeroCount,
                         loop.poleCount);
    gfree(numerator.coefficients);
    gfree(denominator.coefficients);
    return loop;
}

/* The gain sweep: steps 1 ... steps from Kstart towards Kend, the gain of step i into
** parameters[i - 1].  Manual: linear steps, the last one on Kend.  Automatic: adapted
** steps, held once the locus has spread beyond twice the box size S. */
static void sweep(PlotRecord *plot, double *parameters, int32_t steps, int32_t n, double Kstart, double Kend,
                  double S, bool automatic)
{
    RootLocusState &st = rootLocusState;
    double dK = (Kend - Kstart) / steps;
    double K = Kstart, Kprev = Kstart, recordedK = Kstart, extent = 0.0;
    int same = 0;
    for (int32_t i = 1; i <= steps; ++i) {
        double lastK = recordedK;
        /* A branch has run far out: the remaining steps all repeat the current gain (the
        ** step already advanced to), so the branches stop growing.  Its roots are found
        ** once. */
        if (extent > 2.0 * S) {
            rootLocusStep(plot, i - 1, K);
            bool repeated = repeatLastStep(plot, i, steps);
            for (int32_t j = i; j <= steps; ++j) {
                if (j > i && !repeated)
                    rootLocusStep(plot, j - 1, K);
                parameters[j - 1] = K;
            }
            return;
        }
        if (i == steps && Kend > K)
            K = Kend;
        rootLocusStep(plot, i - 1, K);
        parameters[i - 1] = K;
        if (automatic) {
            double Kb = K;
            if (i == 2) {               /* fix the first step so that no root jumps */
                double d = rootLocusStep(plot, 1, K);
                double tolerance = std::max(1.0, S) / 100.0;
                for (int halving = 0; halving < 100 && std::fabs(d) > tolerance && refinementAffordable(n); ++halving) {
                    K = (K + Kprev) / 2.0;
                    d = rootLocusStep(plot, 1, K);
                }
                parameters[1] = K;
            } else if (i > 2) {
                adaptLocusGain(plot, n, i, &K, Kprev, S);
                parameters[i - 1] = K;
            }
            if (i == 19) {              /* the extreme counts from step 20 on */
                st.maxRe = st.maxIm = 0.0;
            } else if (i > 20) {
                extent = std::max({std::fabs(st.maxRe), std::fabs(st.maxIm), extent});
            }
            same = K == Kb ? same + 1 : 0;
            Kprev = K;
            recordedK = K;
            if (same > 3)
                dK = grownGainStep(dK, same, Kend);
            else if (i > 1)
                dK = K - lastK;
        }
        K = K + dK;
    }
}

/* The sweep over a loop whose roots and gain are known; checks done by the callers. */
static double locusOfLoop(PlotRecord *plot, const double *num, const double *den, int32_t n, const OpenLoop &loop)
{
    RootLocusState &st = rootLocusState;
    int32_t steps = gainRange.steps;
    beginLocusRun(num, den, n, loop.gain);
    PlotParamInfo *info = attachParamInfo(plot, steps);

    double S = 2.0, Kauto = 0.0;
    rootLocusAutoGain(loop.poles, loop.zeros, loop.poleCount, loop.zeroCount, &S, &Kauto, n);
    bool automatic = optionsMemory.autoRange != 0;
    double Kstart = gainRange.start, Kend = gainRange.stop;
    if (automatic) {
        gainRange.start = 0.0;
        Kstart = 0.0;
        Kend = Kauto;
    }
    sweep(plot, info->parameters, steps, n, Kstart, Kend, S, automatic);

    info->poleCount = loop.poleCount;
    info->zeroCount = loop.zeroCount;
    if (automatic && loop.zeroCount > 0) {
        Complex *endpoints = (Complex *)galloc(sizeof(Complex) * (size_t)n);
        for (int32_t j = 0; j < n; ++j)
            endpoints[j] = branchPoint(plot, j, steps - 1);
        assignZeroBranches(plot, endpoints, S, n, loop.poleCount, loop.zeroCount, loop.zeros);
        gfree(endpoints);
    }

    endLocusRun();
    return std::fabs(st.maxIm) > std::fabs(st.maxRe) ? st.maxIm : st.maxRe;
}

/* False, after the message, when the run cannot be drawn. */
static bool locusRunFits(PlotRecord *plot, const double *num, const double *den, int32_t n)
{
    int32_t steps = gainRange.steps;
    if (n < 1 || steps < 2 || !plot || !num || !den)
        return false;
    /* Every step is an eigenvalue problem, and the automatic mode may redo one over a
    ** hundred times: a step count typed far beyond any plot (up to 2^31) would keep the
    ** host busy for hours, so it is refused with a message instead. */
    if (steps > ROOT_LOCUS_MAX_STEPS) {
        winMsg("Root locus: %d steps are more than the %d a root locus plot can take.", steps, ROOT_LOCUS_MAX_STEPS);
        return false;
    }
    /* The taken set bounds the tracking; a larger order is refused, not drawn half. */
    if (n > ROOT_LOCUS_MAX_BRANCHES) {
        winMsg("Root locus: %d closed-loop poles are more than the %d branches that can be tracked.", n,
               ROOT_LOCUS_MAX_BRANCHES);
        return false;
    }
    /* A step whose roots cannot be tracked falls back to the eigenvalues of the n x n
    ** companion matrix, about n^3 operations: more steps x n^3 than this (37 s measured for
    ** 17 steps of (s+1)^1000 + K) are refused, as 65536 steps of 1000 poles
    ** would take hours. */
    if ((int64_t)steps * n * n * n > ROOT_LOCUS_MOST_WORK) {
        winMsg("Root locus: %d steps for %d closed-loop poles are more than a root locus run takes "
               "(%lld steps times poles cubed); choose fewer steps.", steps, n, (long long)ROOT_LOCUS_MOST_WORK);
        return false;
    }
    RootLocusState &st = rootLocusState;
    st.maxRe = st.maxIm = 0.0;
    st.order = n;
    st.numerator = num;
    st.denominator = den;
    return true;
}

double rootLocus(PlotRecord *plot, const double *num, const double *den, int32_t n)
{
    if (!locusRunFits(plot, num, den, n))
        return 0.0;
    const StateSpaceModel &model = stateSpaceModel;
    if (!model.A || model.A->rows < 1 || !inputReachesOutput(model)) {
        debMsg("Input not connected to output. Check for delay or saturated limit.");
        return 0.0;
    }
    OpenLoop loop = openLoopOf(model);
    currentXfer.gain = loop.gain;
    double extreme = locusOfLoop(plot, num, den, n, loop);
    gfree(loop.zeros);
    gfree(loop.poles);
    return extreme;
}

double rootLocusOfLoop(PlotRecord *plot, const double *num, const double *den, int32_t n, double gain,
                       const Complex *zeros, int32_t zeroCount, const Complex *poles, int32_t poleCount)
{
    if (!locusRunFits(plot, num, den, n))
        return 0.0;
    OpenLoop loop{const_cast<Complex *>(zeros), const_cast<Complex *>(poles), zeroCount, poleCount, gain};
    return locusOfLoop(plot, num, den, n, loop);
}
