/*
** analysis/report.cpp: analyzeModel, which checks the model and runs the report's
** analyses in order: transfer function, frequency response, closed loop, margins,
** step response.
*/
#include "analysis/analysis.h"

#include <algorithm>
#include <cmath>

namespace analysis {

namespace {

std::string modelProblem(const Model &m)
{
    size_t n = m.order;
    if (m.a.size() != n * n || m.b.size() != n || m.c.size() != n)
        return "the model's matrices do not fit its order";
    auto finite = [](double v) { return std::isfinite(v); };
    if (!std::all_of(m.a.begin(), m.a.end(), finite) || !std::all_of(m.b.begin(), m.b.end(), finite) ||
        !std::all_of(m.c.begin(), m.c.end(), finite) || !std::isfinite(m.d))
        return "the model holds NaN or infinite entries";
    if (!std::isfinite(m.samplePeriod) || m.samplePeriod < 0.0)
        return "the sample period is not a non-negative number";
    return "";
}

}

Report analyzeModel(const Model &model)
{
    Report report;
    report.model = model;
    report.problem = modelProblem(model);
    if (!report.problem.empty())
        return report;
    report.transferFunction = transferFunctionOf(model);
    Loop loop = makeLoop(report.transferFunction, model.samplePeriod);
    std::vector<double> grid = frequencyGrid(loop);
    std::vector<LoopValue> values;
    values.reserve(grid.size());
    for (double w : grid)
        values.push_back(loopAt(loop, w));

    ClosedLoopModel closed = closeLoop(model);
    report.closedLoop = closedLoopFigures(closed, loop, grid, values);
    report.margins = findMargins(loop, grid, values);
    if (report.closedLoop.stable)
        report.margins.delayMargin = delayMarginOf(report.margins);
    report.step = stepFigures(report.closedLoop, closed);
    return report;
}

std::string modelReportText(const Model &model)
{
    return reportText(analyzeModel(model));
}

std::string modelReportJson(const Model &model)
{
    return reportJson(analyzeModel(model));
}

}
