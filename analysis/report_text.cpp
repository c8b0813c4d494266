/*
** analysis/report_text.cpp: the report as aligned plain text with units.  The model
** and the transfer function at full precision (shortest round-trip form), crossovers
** and margins to ten digits, step figures to six.
*/
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "analysis/report.h"

namespace analysis {

namespace {

const int LABEL_WIDTH = 24;

std::string exact(double v)
{
    if (v == 0.0)
        v = 0.0;                /* no "-0" */
    char text[32];
    auto result = std::to_chars(text, text + sizeof text, v);
    return std::string(text, result.ptr);
}

std::string digits(double v, int significant)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.*g", significant, v);
    return text;
}

std::string figure(double v) { return digits(v, 10); }

std::string complexText(Root r, std::string (*format)(double))
{
    if (r.imag() == 0.0)
        return format(r.real());
    return format(r.real()) + (r.imag() < 0 ? " - " : " + ") + format(std::fabs(r.imag())) + "j";
}

struct Text {
    std::string out;
    void heading(const std::string &title) { out += title + "\n"; }
    void line(const std::string &label, const std::string &value)
    {
        std::string padded = "  " + label;
        if (padded.size() < LABEL_WIDTH)
            padded.resize(LABEL_WIDTH, ' ');
        else
            padded += ' ';
        out += padded + value + "\n";
    }
};

std::string list(const std::vector<double> &values)
{
    std::string text;
    for (double v : values)
        text += (text.empty() ? "" : "  ") + exact(v);
    return text;
}

void modelSection(Text &t, const Model &m)
{
    bool sampled = m.samplePeriod > 0.0;
    t.heading("Model (" + std::to_string(m.order) + (m.order == 1 ? " state, " : " states, ") +
              (sampled ? "sampled every " + exact(m.samplePeriod) + " s)" : "continuous)"));
    bool fits = m.a.size() == (size_t)m.order * m.order && m.b.size() == m.order && m.c.size() == m.order;
    if (fits) {
        /* A in aligned columns. */
        std::vector<size_t> widths(m.order, 0);
        for (uint32_t j = 0; j < m.order; j++)
            for (uint32_t i = 0; i < m.order; i++)
                widths[j] = std::max(widths[j], exact(m.a[(size_t)j * m.order + i]).size());
        for (uint32_t i = 0; i < m.order; i++) {
            std::string row;
            for (uint32_t j = 0; j < m.order; j++) {
                std::string entry = exact(m.a[(size_t)j * m.order + i]);
                row += (j ? "  " : "") + std::string(widths[j] - entry.size(), ' ') + entry;
            }
            t.line(i == 0 ? "A" : "", row);
        }
        t.line("B (column)", list(m.b));
        t.line("C", list(m.c));
    }
    t.line("D", exact(m.d));
}

void transferFunctionSection(Text &t, const TransferFunction &tf, bool sampled)
{
    const char *variable = sampled ? "z" : "s";
    t.heading(std::string("Transfer function L(") + variable + ") = K N(" + variable + ")/D(" + variable + ")");
    t.line("gain K", exact(tf.gain));
    t.line("numerator N", list(tf.numerator) + "  (descending powers of " + variable + ")");
    t.line("denominator D", list(tf.denominator));
    auto roots = [&](const std::vector<Root> &rs) {
        std::string text;
        for (Root r : rs)
            text += (text.empty() ? "" : ", ") + complexText(r, exact);
        return text.empty() ? std::string("none") : text;
    };
    t.line("zeros", roots(tf.zeros));
    t.line("poles", roots(tf.poles));
}

std::string gainMarginText(double ratio)
{
    return figure(ratio) + " (" + figure(20.0 * std::log10(ratio)) + " dB)";
}

void marginsSection(Text &t, const Margins &m, bool stable)
{
    t.heading("Stability margins (exact, over the whole frequency axis)");
    if (m.gainMargin)
        t.line("gain margin", gainMarginText(*m.gainMargin) + " at " + figure(*m.phaseCrossoverFrequency) +
                                  " rad/s (critical)");
    else
        t.line("gain margin", "none");
    if (m.phaseMargin)
        t.line("phase margin", figure(*m.phaseMargin) + " deg at " + figure(*m.gainCrossoverFrequency) +
                                   " rad/s (critical)");
    else
        t.line("phase margin", "none");
    if (m.delayMargin)
        t.line("delay margin", figure(*m.delayMargin) + " s");
    else
        t.line("delay margin", stable ? "none" : "none (closed loop unstable)");
    std::string gains, phases;
    for (const Crossover &c : m.gainCrossovers)
        t.line(gains.empty() ? (gains = "gain crossovers") : "",
               figure(c.frequency) + " rad/s: phase margin " + figure(c.margin) + " deg");
    if (gains.empty())
        t.line("gain crossovers", "none");
    for (const Crossover &c : m.phaseCrossovers)
        t.line(phases.empty() ? (phases = "phase crossovers") : "",
               figure(c.frequency) + " rad/s: gain margin " + gainMarginText(c.margin));
    if (phases.empty())
        t.line("phase crossovers", "none");
}

void closedLoopSection(Text &t, const ClosedLoop &c)
{
    t.heading("Closed loop T = L/(1+L)");
    if (!c.wellPosed) {
        t.line("closed loop", "none: 1 + D = 0, the feedback loop is algebraic");
        return;
    }
    t.line("stable", c.stable ? "yes" : "no");
    for (size_t i = 0; i < c.poles.size(); i++) {
        std::string text = complexText(c.poles[i], figure);
        if (c.damping[i])
            text += "  (damping " + digits(*c.damping[i], 6) + ", natural frequency " +
                    figure(*c.naturalFrequency[i]) + " rad/s)";
        t.line(i == 0 ? "poles" : "", text);
    }
    if (c.poles.empty())
        t.line("poles", "none");
    t.line("bandwidth (-3 dB)", c.bandwidth ? figure(*c.bandwidth) + " rad/s" : "none");
    t.line("peak sensitivity Ms", c.peakSensitivity ? figure(*c.peakSensitivity) : "infinite");
}

void stepSection(Text &t, const std::optional<StepFigures> &step)
{
    t.heading("Step response of T");
    if (!step) {
        t.line("step response", "unstable");
        return;
    }
    auto seconds = [](const std::optional<double> &v, const char *missing) {
        return v ? digits(*v, 6) + " s" : std::string(missing);
    };
    t.line("final value", digits(step->finalValue, 10));
    t.line("overshoot", step->overshootPercent ? digits(*step->overshootPercent, 6) + " %" : "none");
    t.line("peak time", seconds(step->peakTime, "none"));
    t.line("rise time (10-90 %)", seconds(step->riseTime, "none"));
    t.line("settling time (2 %)", seconds(step->settlingTime, step->finalValue == 0.0 ? "none" : "not settled"));
}

}

std::string reportText(const Report &report)
{
    Text t;
    modelSection(t, report.model);
    if (!report.problem.empty()) {
        t.heading("No analysis: " + report.problem);
        return t.out;
    }
    bool sampled = report.model.samplePeriod > 0.0;
    transferFunctionSection(t, report.transferFunction, sampled);
    marginsSection(t, report.margins, report.closedLoop.stable);
    closedLoopSection(t, report.closedLoop);
    stepSection(t, report.step);
    return t.out;
}

}
