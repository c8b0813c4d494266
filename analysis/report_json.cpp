/*
** analysis/report_json.cpp: the report as one JSON object.  Frequencies in rad/s,
** phases and margins in degrees, times in seconds, complex numbers [re, im], missing
** values null; numbers at full precision.
*/
#include <nlohmann/json.hpp>

#include "analysis/report.h"

namespace analysis {

namespace {

using nlohmann::json;

json optional(const std::optional<double> &value)
{
    return value ? json(*value) : json(nullptr);
}

json roots(const std::vector<Root> &list)
{
    json out = json::array();
    for (Root r : list)
        out.push_back({r.real(), r.imag()});
    return out;
}

json modelJson(const Model &m)
{
    json a = json::array();
    for (uint32_t i = 0; i < m.order && m.a.size() == (size_t)m.order * m.order; i++) {
        json row = json::array();
        for (uint32_t j = 0; j < m.order; j++)
            row.push_back(m.a[(size_t)j * m.order + i]);
        a.push_back(row);
    }
    return {{"a", a}, {"b", m.b}, {"c", m.c}, {"d", m.d}, {"samplePeriod", m.samplePeriod}};
}

json marginsJson(const Margins &m)
{
    json gainCrossovers = json::array(), phaseCrossovers = json::array();
    for (const Crossover &c : m.gainCrossovers)
        gainCrossovers.push_back({{"frequency", c.frequency}, {"phaseMargin", c.margin}});
    for (const Crossover &c : m.phaseCrossovers)
        phaseCrossovers.push_back({{"frequency", c.frequency}, {"gainMargin", c.margin}});
    return {{"gainMargin", optional(m.gainMargin)},
            {"gainMarginDb", optional(m.gainMarginDb)},
            {"phaseCrossoverFrequency", optional(m.phaseCrossoverFrequency)},
            {"phaseMargin", optional(m.phaseMargin)},
            {"gainCrossoverFrequency", optional(m.gainCrossoverFrequency)},
            {"delayMargin", optional(m.delayMargin)},
            {"gainCrossovers", gainCrossovers},
            {"phaseCrossovers", phaseCrossovers}};
}

json closedLoopJson(const ClosedLoop &c)
{
    json damping = json::array(), naturalFrequency = json::array();
    for (size_t i = 0; i < c.damping.size(); i++) {
        damping.push_back(optional(c.damping[i]));
        naturalFrequency.push_back(optional(c.naturalFrequency[i]));
    }
    return {{"poles", roots(c.poles)},
            {"stable", c.stable},
            {"damping", damping},
            {"naturalFrequency", naturalFrequency},
            {"bandwidth", optional(c.bandwidth)},
            {"peakSensitivity", optional(c.peakSensitivity)}};
}

json stepJson(const std::optional<StepFigures> &step)
{
    if (!step)
        return nullptr;
    return {{"finalValue", step->finalValue},
            {"overshootPercent", optional(step->overshootPercent)},
            {"peakTime", optional(step->peakTime)},
            {"riseTime", optional(step->riseTime)},
            {"settlingTime", optional(step->settlingTime)}};
}

}

std::string reportJson(const Report &report)
{
    json out = {{"model", modelJson(report.model)}};
    if (!report.problem.empty()) {
        out["transferFunction"] = nullptr;
        out["margins"] = nullptr;
        out["closedLoop"] = nullptr;
    } else {
        const TransferFunction &tf = report.transferFunction;
        out["transferFunction"] = {{"gain", tf.gain},
                                   {"numerator", tf.numerator},
                                   {"denominator", tf.denominator},
                                   {"zeros", roots(tf.zeros)},
                                   {"poles", roots(tf.poles)}};
        out["margins"] = marginsJson(report.margins);
        out["closedLoop"] = closedLoopJson(report.closedLoop);
    }
    out["step"] = stepJson(report.step);
    return out.dump(2) + "\n";
}

}
