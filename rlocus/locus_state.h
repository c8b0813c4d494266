/*
** rlocus/locus_state.h: the root locus module's shared state and the operations of the
** sweep (root_locus.cpp), the root tracking from step to step (root_tracking.cpp), the
** gain range (gain_range.cpp) and the pairing of branches with zeros (zero_branches.cpp).  Gains K are loop gains (no
** unit); coefficient arrays are ascending (index k holds the coefficient of s^k).
*/
#ifndef PRAXA_LOCUS_STATE_H
#define PRAXA_LOCUS_STATE_H

#include <cstdint>

#include "host/records.h"
#include "numeric/eigen.h"
#include "numeric/matrix.h"

/* The taken set has one bit per branch: the locus tracks at most this many branches. */
inline constexpr int32_t ROOT_LOCUS_MAX_BRANCHES = 1024;
/* The most gain steps of one sweep, and of steps times poles cubed (see rootLocus). */
inline constexpr int32_t ROOT_LOCUS_MAX_STEPS = 1 << 16;
inline constexpr int64_t ROOT_LOCUS_MOST_WORK = int64_t(1) << 34;

/* Module state of the root locus.  The step buffers (closedLoop, companion, roots,
** previous and the tracking buffers) are kept from run to run and enlarged when the
** order grows; the auto buffers exist only during a run (null otherwise). */
struct RootLocusState {
    int32_t order;                  /* n of the current run */
    const double *numerator;        /* the caller's arrays, n + 1 each */
    const double *denominator;
    double gain;                    /* g, the transfer-function gain */
    double *closedLoop;             /* den + K g num, n + 2 */
    Matrix *companion;              /* n x n work matrix of the root finder */
    Complex *roots;                 /* roots of one step, n + 3 */
    Complex *previous;              /* each branch's point at the step before, n */
    Complex *frame;                 /* the points the tracking starts from, n */
    Complex *slope;                 /* each root's dz/dK there, n */
    double *reach;                  /* squared distance each root may move, n */
    int32_t *partner;               /* branch of the conjugate followed with it, or -1;
                                    ** -2: itself the conjugate of another branch */
    int32_t frameStep;              /* the step the frame was prepared for; -1: none */
    int32_t lastStep;               /* the step of the latest rootLocusStep, and its gain */
    double lastGain;
    double frameGain;               /* the gain of the frame's points */
    bool frameHasGain;              /* false: the frame's gain is unknown (no tangent) */
    bool trackingOff;               /* true: every step through the eigenvalue solver */
    int32_t trackedSteps;           /* steps of the current run found by tracking */
    int32_t solvedSteps;            /* steps left to the eigenvalue solver */
    int32_t capacity;               /* order the step buffers are sized for */
    uint64_t taken[ROOT_LOCUS_MAX_BRANCHES / 64];
    double maxRe;                   /* signed real part of largest magnitude seen */
    double maxIm;                   /* largest |imaginary part| seen */
    double *autoNumerator;          /* copies of num and den, n + 1 each */
    double *autoDenominator;
    double *autoClosedLoop;         /* n + 2 */
    Complex *autoRoots;             /* n + 3 */
    Matrix *autoCompanion;          /* n x n */
};
extern RootLocusState rootLocusState;

/* --- the sweep (root_locus.cpp) --- */

/* Sets rootLocusState up for a run of order n (1 ... ROOT_LOCUS_MAX_BRANCHES) over num and
** den (ascending, n + 1 each, the caller's) with the transfer-function gain: the step
** buffers enlarged (the roots keep what earlier steps and runs left there), the auto
** buffers allocated with copies of num and den. */
void beginLocusRun(const double *num, const double *den, int32_t n, double gain);
/* Releases the auto buffers of the run; the step buffers stay for the next one. */
void endLocusRun();

/* The closed-loop roots of den + K g num for step `step` (0-based) stored onto the
** branches: at step 0 root i goes to branch i, later each root to the nearest branch
** not yet given one.  Returns the largest distance a root moved (0 at step 0).
** Needs rootLocusState set up by rootLocus (order, arrays, gain, step buffers). */
double rootLocusStep(PlotRecord *plot, int32_t step, double K);
/* Writes root into point `step` of branch's x and y trace buffers (request 75), growing
** a buffer by 128 points when the step lies beyond it. */
void storeLocusPoint(PlotRecord *plot, int32_t branch, int32_t step, Complex root);
/* Automatic step control for stepNumber >= 3 (1-based; the step just computed is
** stepNumber - 1): grows *K while the roots hardly move, halves it towards previousK
** while they turn sharply, and snaps break-away points.  boxSize: S of the run. */
void adaptLocusGain(PlotRecord *plot, int32_t n, int32_t stepNumber, double *K, double previousK,
                    double boxSize);

/* --- root tracking (root_tracking.cpp) --- */

/* Sets the tracking up from the n points `from` (each branch's point at the step
** before), found at fromGain when hasGain (the tangents are then taken there; else the
** roots start from the points themselves). */
void prepareTracking(const Complex *from, int32_t n, double fromGain, bool hasGain);
/* The n roots of c (ascending, degree n) into roots, root j on branch j, followed from
** the prepared points over the gain change dK.  False when tracking cannot vouch for
** them (a root not converging or leaving its branch's neighbourhood, a leading
** coefficient of 0, non-finite input); roots then holds nothing usable. */
bool trackRoots(Complex *roots, const double *c, int32_t n, double dK);

/* --- gain range (gain_range.cpp) --- */
/* Box size *S (twice the largest root magnitude, at least 2) and the automatic top
** gain *Kauto: the smallest gain found at which nP - nZ roots have left the box and
** every zero has a root on it.  Needs the auto buffers and gain of rootLocusState. */
void rootLocusAutoGain(const Complex *poles, const Complex *zeros, int32_t nP, int32_t nZ, double *S,
                       double *Kauto, int32_t n);
/* The automatic sweep's gain step after the step control has left the gain unchanged
** `same` (> 3) steps in a row: dK grown by same/3 + 1, but to no more than a quarter of
** the top gain Kauto (a step already larger stays). */
double grownGainStep(double dK, int same, double Kauto);
/* How many of the count roots lie outside the box: |Re| > S or |Im| > S. */
int32_t countRootsOutside(const Complex *roots, double S, int32_t count);
/* True when every zero has a root of rootLocusState.autoRoots (n of them) inside the box
** within S/100 and within 0.1 of it; true at once without zeros. */
bool zerosReached(const Complex *zeros, int32_t nZ, int32_t n, double S);

/* --- zero branches (zero_branches.cpp) --- */

/* Fills the plot's PlotParamInfo zero-branch array (nZ entries, allocated here) with the
** branch that ends at each zero; endpoints: the n branch endpoints. */
void assignZeroBranches(PlotRecord *plot, const Complex *endpoints, double S, int32_t n, int32_t nP,
                        int32_t nZ, const Complex *zeros);
/* Greedy nearest pairing of the endpoints inside the box with the zeros. */
void pairEndpointsWithZeros(PlotRecord *plot, const Complex *endpoints, const Complex *zeros, int32_t nZ,
                            int32_t n, double S);

#endif
