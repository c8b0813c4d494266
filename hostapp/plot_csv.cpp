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

/* v in the shortest form that reads back as v; nothing for a missing (non-finite) value. */
void appendNumber(std::string &csv, double v)
{
    if (!std::isfinite(v))
        return;
    char text[32];
    csv.append(text, std::to_chars(text, text + sizeof text, v).ptr);
}

void row(std::string &csv, const std::vector<std::string> &cells)
{
    for (size_t i = 0; i < cells.size(); i++)
        csv += (i ? "," : "") + cells[i];
    csv += "\n";
}

/* The data rows are written straight into the text, cell by cell: a thousand rows of
** a dozen numbers each are most of a plot command's time otherwise. */
constexpr size_t BYTES_PER_NUMBER = 24;

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
    csv.reserve(csv.size() + rows * (curves.size() + 1) * BYTES_PER_NUMBER);
    for (size_t i = 0; i < rows; i++) {
        for (const PlotSeries &s : curves)
            if (i < s.y.size() && std::isfinite(s.x[i])) {
                appendNumber(csv, s.x[i]);
                break;
            }
        for (const PlotSeries &s : curves) {
            csv += ',';
            if (i >= s.y.size())
                continue;
            double v = s.y[i];
            appendNumber(csv, decibels ? (v > 0 ? 20.0 * std::log10(v) : NAN) : v);
        }
        csv += '\n';
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
    csv.reserve(csv.size() + s.x.size() * 3 * BYTES_PER_NUMBER);
    for (size_t i = 0; i < s.x.size(); i++) {
        if (W)
            appendNumber(csv, W[i + shift]);
        csv += ',';
        appendNumber(csv, s.x[i]);
        csv += ',';
        appendNumber(csv, s.y[i]);
        csv += '\n';
    }
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
    csv.reserve(csv.size() + rows * (2 * curves.size() + 1) * BYTES_PER_NUMBER);
    for (size_t i = 0; i < rows; i++) {
        if (gains && i < r.pointCount)
            appendNumber(csv, gains[i]);
        for (const PlotSeries &s : curves) {
            csv += ',';
            if (i < s.x.size())
                appendNumber(csv, s.x[i]);
            csv += ',';
            if (i < s.y.size())
                appendNumber(csv, s.y[i]);
        }
        csv += '\n';
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
