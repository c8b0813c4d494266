/*
** analysis/analysis.h: the pieces of the report, each from its own file.  Private to
** analysis/.
*/
#ifndef PRAXA_ANALYSIS_ANALYSIS_H
#define PRAXA_ANALYSIS_ANALYSIS_H

#include <vector>

#include "analysis/loop_response.h"
#include "analysis/report.h"

namespace analysis {

/* analysis/transfer_function.cpp: zeros, poles, gain and coefficients of the model;
** a model with no states, or with B or C all zero, is its feed-through D. */
TransferFunction transferFunctionOf(const Model &model);

/* analysis/margins.cpp: every crossover on the grid's span, each refined to 1e-9
** relative, and the critical values; the delay margin is left to the caller. */
Margins findMargins(const Loop &loop, const std::vector<double> &grid, const std::vector<LoopValue> &values);
/* The smallest delay (s) that turns a gain crossover's phase margin to zero. */
std::optional<double> delayMarginOf(const Margins &margins);

/* analysis/closed_loop.cpp: T = L/(1+L) in state space. */
struct ClosedLoopModel {
    bool wellPosed = false;         /* 1 + D != 0 */
    Model model;
};
ClosedLoopModel closeLoop(const Model &open);
/* Poles, stability, damping and natural frequencies, bandwidth and peak sensitivity. */
ClosedLoop closedLoopFigures(const ClosedLoopModel &closed, const Loop &loop, const std::vector<double> &grid,
                             const std::vector<LoopValue> &values);
/* |T| at zero frequency, from L (1 with more poles than zeros at the origin). */
double closedLoopDcGain(const Loop &loop);

/* analysis/step_response.cpp: the unit step response of a stable closed loop; empty
** when the loop is unstable or its steady state cannot be found. */
std::optional<StepFigures> stepFigures(const ClosedLoop &figures, const ClosedLoopModel &closed);

}

#endif
