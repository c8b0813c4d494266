/*
** analysis/loop_response.h: the frequency response of the open loop L from its
** factored transfer function, on the imaginary axis (continuous) or the unit circle
** (sampled), the frequency grid that brackets every feature of it, and the root and
** maximum refinement the report's figures use.  Private to analysis/.
*/
#ifndef PRAXA_ANALYSIS_LOOP_RESPONSE_H
#define PRAXA_ANALYSIS_LOOP_RESPONSE_H

#include <complex>
#include <functional>
#include <vector>

#include "analysis/report.h"
#include "host/records.h"

namespace analysis {

struct Loop {
    std::vector<Complex> zeros, poles;
    double gain = 0.0;
    double samplePeriod = 0.0;
    std::vector<double> singular;   /* rad/s of poles and zeros on the axis or unit circle */
    int originExcess = 0;           /* poles minus zeros at s = 0 (z = 1) */
};

/* L at frequency w (rad/s): magnitude and angle (radians, continuous in w between
** singular frequencies). */
struct LoopValue {
    double magnitude;
    double angle;
    std::complex<double> value() const { return std::polar(magnitude, angle); }
};

Loop makeLoop(const TransferFunction &tf, double samplePeriod);
LoopValue loopAt(const Loop &loop, double w);

/* The highest frequency of the analysis: infinity for a continuous loop, the Nyquist
** frequency pi/T for a sampled one. */
double topFrequency(const Loop &loop);

/* Ascending grid frequencies (rad/s, > 0): logarithmic over the decades that hold the
** poles, zeros and asymptotic crossings, denser around lightly damped roots, stepping
** just past singular frequencies.  Ends at pi/T for a sampled loop. */
std::vector<double> frequencyGrid(const Loop &loop);

/* True when a singular frequency lies in [a, b]: a sign change there is a jump. */
bool spansSingularity(const Loop &loop, double a, double b);

/* A root of f between a and b (f(a), f(b) of opposite signs), bisected (in log w when
** a > 0) until b - a <= 1e-10 b; at most 200 halvings. */
double bisectRoot(const std::function<double(double)> &f, double a, double b);

/* The maximum of f in [a, b] by golden-section search to 1e-10 relative (at most 200
** steps); returns its abscissa. */
double goldenMaximum(const std::function<double(double)> &f, double a, double b);

}

#endif
