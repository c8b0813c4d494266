/*
** hostapp/plot_csv.cpp: a plot's points as CSV (RFC 4180 quoting).
*/
#include "hostapp/plot_csv.h"

#include <charconv>
#include <cmath>

namespace hostapp {

namespace {

std::string quoted(const std::string &field)
{
    if (field.find_first_of(",\"\n") == std::string::npos)
        return field;
    std::string text = "\"";
    for (char c : field)
        text += c == '"' ? std::string("\"\"") : std::string(1, c);
    return text + "\"";
}

std::string number(double v)
{
    if (!std::isfinite(v))
        return "";
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, v).ptr);
}

void row(std::string &csv, const std::vector<std::string> &cells)
{
    for (size_t i = 0; i < cells.size(); i++)
        csv += (i ? "," : "") + cells[i];
    csv += "\n";
}

std::string frequencyCsv(const PlotRecord &r, const std::vector<PlotSeries> &curves)
{
    std::string xLabel = recordText(r.xLabel, sizeof r.xLabel);
    std::string yLabel = recordText(r.yLabel, sizeof r.yLabel);
    bool decibels = (r.flagsB & PLOT_B_LOG_Y) && (r.flagsC & PLOT_C_DECIBELS);
    std::vector<std::string> header = {quoted(xLabel.empty() ? "Frequency" : xLabel)};
    size_t rows = 0;
    for (const PlotSeries &s : curves) {
        std::string name = s.label.empty() ? "Trace " + std::to_string(s.trace + 1) : s.label;
        if (!yLabel.empty())
            name = curves.size() == 1 ? yLabel : name + " " + yLabel;
        header.push_back(quoted(name));
        rows = std::max(rows, s.x.size());
    }
    std::string csv;
    row(csv, header);
    for (size_t i = 0; i < rows; i++) {
        std::vector<std::string> cells = {""};
        for (const PlotSeries &s : curves) {
            if (i >= s.y.size()) {
                cells.push_back("");
                continue;
            }
            if (cells[0].empty())
                cells[0] = number(s.x[i]);
            double v = s.y[i];
            cells.push_back(number(decibels ? (v > 0 ? 20.0 * std::log10(v) : NAN) : v));
        }
        row(csv, cells);
    }
    return csv;
}

/* The parameter array holds W (rad/s).  A curve without detours starts at W[0] = 0 with
** point p at W[p - 1]; a detoured one has its blocks sorted, the negative frequencies of
** the mirror half first, so W[1] < 0 and point p sits at W[p]. */
std::string nyquistCsv(const PlotRecord &r, const std::vector<PlotSeries> &curves)
{
    std::string real = recordText(r.traces[0].label, sizeof r.traces[0].label);
    std::string imaginary = recordText(r.traces[1].label, sizeof r.traces[1].label);
    std::string csv;
    row(csv, {"Frequency (rad/s)", quoted(real.empty() ? "Real" : real),
              quoted(imaginary.empty() ? "Imaginary" : imaginary)});
    if (curves.empty())
        return csv;
    const PlotSeries &s = curves[0];
    const double *W = r.paramInfo ? r.paramInfo->parameters : nullptr;
    size_t shift = W && s.x.size() > 1 && W[1] < 0.0 ? 1 : 0;
    for (size_t i = 0; i < s.x.size(); i++)
        row(csv, {W ? number(W[i + shift]) : "", number(s.x[i]), number(s.y[i])});
    return csv;
}

std::string rootLocusCsv(const PlotRecord &r, const std::vector<PlotSeries> &curves)
{
    std::vector<std::string> header = {"Gain"};
    size_t rows = 0;
    for (const PlotSeries &s : curves) {
        std::string branch = "Branch " + std::to_string(s.trace + 1);
        header.push_back(branch + " real");
        header.push_back(branch + " imaginary");
        rows = std::max(rows, s.x.size());
    }
    std::string csv;
    row(csv, header);
    const double *gains = r.paramInfo ? r.paramInfo->parameters : nullptr;
    for (size_t i = 0; i < rows; i++) {
        std::vector<std::string> cells = {gains && i < r.pointCount ? number(gains[i]) : ""};
        for (const PlotSeries &s : curves) {
            cells.push_back(i < s.x.size() ? number(s.x[i]) : "");
            cells.push_back(i < s.y.size() ? number(s.y[i]) : "");
        }
        row(csv, cells);
    }
    return csv;
}

}

std::string renderPlotCsv(const PlotView &view)
{
    if (!view.record)
        return "";
    std::vector<PlotSeries> curves = plotSeries(view);
    switch (plotKindOf(*view.record)) {
    case PlotKind::RootLocus:
        return rootLocusCsv(*view.record, curves);
    case PlotKind::Nyquist:
        return nyquistCsv(*view.record, curves);
    default:
        return frequencyCsv(*view.record, curves);
    }
}

std::string plotDataFileName(const std::string &plotFileName)
{
    size_t dot = plotFileName.rfind('.');
    return (dot == std::string::npos ? plotFileName : plotFileName.substr(0, dot)) + ".csv";
}

}
