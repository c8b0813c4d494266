/*
** analysis/report.h: the engineer's report on a single-input single-output loop: the
** model and its transfer function, exact stability margins over the whole frequency
** axis, the closed loop T = L/(1+L) under negative unity feedback, and the step
** response of T.  Continuous models are analysed in s, sampled ones in z.
*/
#ifndef PRAXA_ANALYSIS_REPORT_H
#define PRAXA_ANALYSIS_REPORT_H

#include <complex>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace analysis {

/* The open loop L: x' = A x + B u, y = C x + D u (x[k+1] = ... when samplePeriod > 0).
** a is n x n column-major, b and c hold n values each. */
struct Model {
    uint32_t order = 0;
    std::vector<double> a, b, c;
    double d = 0.0;
    double samplePeriod = 0.0;      /* seconds; 0 for a continuous model */
};

using Root = std::complex<double>;

struct TransferFunction {
    double gain = 0.0;                  /* K of K prod(s - z) / prod(s - p) */
    std::vector<double> numerator;      /* monic, descending powers */
    std::vector<double> denominator;    /* monic, descending powers */
    std::vector<Root> zeros, poles;
};

/* One crossing: its frequency (rad/s) and the margin read there (the phase margin in
** degrees at a gain crossover, the gain margin as a ratio at a phase crossover). */
struct Crossover {
    double frequency;
    double margin;
};

/* Missing values (no crossing, or no finite value) are empty. */
struct Margins {
    std::vector<Crossover> gainCrossovers;     /* |L| = 1, ascending frequency */
    std::vector<Crossover> phaseCrossovers;    /* phase = -180 deg mod 360, ascending */
    std::optional<double> gainMargin, gainMarginDb, phaseCrossoverFrequency;   /* smallest |dB| */
    std::optional<double> phaseMargin, gainCrossoverFrequency;                 /* smallest phase margin */
    std::optional<double> delayMargin;      /* seconds; only for a stable closed loop */
};

struct ClosedLoop {
    bool wellPosed = true;                  /* false when 1 + D = 0 */
    std::vector<Root> poles;
    bool stable = false;
    std::vector<std::optional<double>> damping, naturalFrequency;     /* per pole; rad/s */
    std::optional<double> bandwidth;        /* rad/s where |T| falls 3 dB below |T(0)| */
    std::optional<double> peakSensitivity;  /* max |1/(1+L)|; empty when infinite */
};

struct StepFigures {
    double finalValue = 0.0;
    std::optional<double> overshootPercent, peakTime, riseTime, settlingTime;
};

struct Report {
    Model model;
    std::string problem;                    /* why nothing was analysed, or empty */
    TransferFunction transferFunction;
    Margins margins;
    ClosedLoop closedLoop;
    std::optional<StepFigures> step;        /* empty when T is unstable */
};

/* Everything above for the model.  Never fails: a model with NaN or infinite entries
** or misfitting sizes gets only `problem` set. */
Report analyzeModel(const Model &model);

/* The report as aligned plain text with units, and as one JSON object (frequencies in
** rad/s, phases and margins in degrees, times in seconds, complex numbers [re, im],
** missing values null). */
std::string reportText(const Report &report);
std::string reportJson(const Report &report);

/* analyzeModel followed by reportText / reportJson. */
std::string modelReportText(const Model &model);
std::string modelReportJson(const Model &model);

}

#endif
