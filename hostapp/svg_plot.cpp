/*
** hostapp/svg_plot.cpp: drawing a plot block as SVG.  Frequency plots draw their
** traces over the sweep, Nyquist plots trace 0 (real) against trace 1 (imaginary),
** root locus plots one branch per request-75 buffer pair.
*/
#include "hostapp/svg_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <utility>

#include "hostapp/locus_marks.h"
#include "hostapp/nyquist_closure.h"
#include "hostapp/plot_bounds.h"
#include "hostapp/svg_text.h"

namespace hostapp {

namespace {

constexpr double WIDTH = 800, HEIGHT = 500;
constexpr double AREA_LEFT = 80, AREA_TOP = 50, AREA_RIGHT = 610, AREA_BOTTOM = 440;
constexpr double LEGEND_X = 625, LEGEND_Y = 60, LEGEND_LINE = 18;
constexpr int MAX_LEGEND_ENTRIES = 16;
/* More branches than this are named in one legend line, not one line each. */
constexpr size_t SHORT_LEGEND_BRANCHES = 8;
/* The gain whose closed-loop poles a root locus marks: the loop as it stands. */
constexpr double CURRENT_GAIN = 1.0;
constexpr int MAX_TICKS = 60;
/* Pixel coordinates beyond this are not drawn (keeps the numbers in the file sane). */
constexpr double FAR_AWAY = 1e12;

const char *const PALETTE[] = {"#1f77b4", "#d62728", "#2ca02c", "#ff7f0e", "#9467bd",
                               "#8c564b", "#e377c2", "#17becf", "#7f7f7f", "#bcbd22"};
constexpr int PALETTE_SIZE = sizeof PALETTE / sizeof PALETTE[0];
/* The circles at infinity of a Nyquist curve: thinner, dashed, in their own colour, so
** that they read as the closure of the curve, not as part of the response. */
const char *const CLOSURE_COLOUR = "#ff7f0e";
const char *const CLOSURE_STROKE = "stroke-width=\"1.2\" stroke-dasharray=\"7 4\"";

std::string number(double v, const char *format = "%.2f")
{
    return svgNumber(v, format);
}

/* One axis: the values shown from lo to hi over pixels from p0 to p1. */
struct Axis {
    double lo = 0, hi = 1;
    bool logarithmic = false;
    bool decibels = false;              /* values are ratios shown as 20 log10 */
    double p0 = 0, p1 = 1;

    /* The value as placed on the axis (NaN when it cannot be shown). */
    double scaled(double v) const
    {
        if (!std::isfinite(v))
            return NAN;
        if (decibels)
            return v > 0 ? 20.0 * std::log10(v) : NAN;
        if (logarithmic)
            return v > 0 ? std::log10(v) : NAN;
        return v;
    }

    double pixelOfScaled(double s) const
    {
        double a = scaledLo(), b = scaledHi();
        double p = p0 + (s - a) / (b - a) * (p1 - p0);
        return std::fabs(p) > FAR_AWAY ? NAN : p;
    }

    double pixel(double v) const { return pixelOfScaled(scaled(v)); }
    double scaledLo() const { return logarithmic ? std::log10(lo) : lo; }
    double scaledHi() const { return logarithmic ? std::log10(hi) : hi; }
};

/* Sets the axis range from the record's bounds, or from the data when those are
** not usable (a plot shown without bounds). */
void chooseRange(Axis &axis, double recordLo, double recordHi, const std::vector<PlotSeries> &curves,
                 std::vector<double> PlotSeries::*coordinate)
{
    double lo = recordLo, hi = recordHi;
    if (axis.decibels) {
        lo = lo > 0 ? 20.0 * std::log10(lo) : NAN;
        hi = hi > 0 ? 20.0 * std::log10(hi) : NAN;
    }
    bool usable = std::isfinite(lo) && std::isfinite(hi) && lo < hi && (!axis.logarithmic || lo > 0);
    if (!usable) {
        double range[2] = {INFINITY, -INFINITY};
        for (const PlotSeries &curve : curves)
            for (double v : curve.*coordinate) {
                double s = axis.decibels ? axis.scaled(v) : v;
                if (std::isfinite(s) && (!axis.logarithmic || s > 0)) {
                    range[0] = std::min(range[0], s);
                    range[1] = std::max(range[1], s);
                }
            }
        niceBounds(range, axis.logarithmic);
        lo = range[0];
        hi = range[1];
    }
    axis.lo = lo;
    axis.hi = hi;
}

struct Tick {
    double scaled;                      /* position on the axis in scaled units */
    std::string label;                  /* empty: a minor grid line */
};

std::string linearTickLabel(double v, double step)
{
    if (std::fabs(v) < step * 1e-9)
        v = 0.0;
    if (std::fabs(v) >= 1e6 || step < 1e-4)
        return number(v, "%g");
    int decimals = std::clamp((int)-std::floor(std::log10(step) + 1e-9), 0, 6);
    std::string text;
    appendSvgNumber(text, v, std::chars_format::fixed, decimals);
    return text;
}

std::string decadeLabel(int decade)
{
    if (decade >= 0 && decade <= 5)
        return "1" + std::string((size_t)decade, '0');
    if (decade < 0 && decade >= -4)
        return "0." + std::string((size_t)(-decade - 1), '0') + "1";
    return "1e" + std::to_string(decade);
}

std::vector<Tick> ticksOf(const Axis &axis)
{
    std::vector<Tick> ticks;
    double a = axis.scaledLo(), b = axis.scaledHi();
    if (axis.logarithmic) {
        int first = (int)std::ceil(a - 1e-9), last = (int)std::floor(b + 1e-9);
        int every = std::max(1, (last - first) / 12 + 1);
        for (int d = first; d <= last && (int)ticks.size() < MAX_TICKS; ++d)
            ticks.push_back({(double)d, (d - first) % every == 0 ? decadeLabel(d) : ""});
        if (last - first <= 8)
            for (int d = first - 1; d <= last; ++d)
                for (int m = 2; m <= 9; ++m) {
                    double s = d + std::log10((double)m);
                    if (s > a && s < b)
                        ticks.push_back({s, ""});
                }
        if (first > last) {
            /* Less than a decade shown: name the two ends. */
            ticks.push_back({a, number(axis.lo, "%.3g")});
            ticks.push_back({b, number(axis.hi, "%.3g")});
        }
        return ticks;
    }
    double step = niceStep(b - a);
    /* Whole decades only when they give at least three labels: a flat 9.54 dB curve on
    ** 0 ... 20 dB reads better with steps of 2. */
    if (axis.decibels && step < 20.0 && (b - a) / 20.0 >= 2.0 && (b - a) / 20.0 <= 8.0 && std::fmod(b - a, 20.0) == 0.0)
        step = 20.0;                    /* whole decades of the ratio */
    double first = std::ceil(a / step - 1e-9), last = std::floor(b / step + 1e-9);
    for (double k = first; k <= last && (int)ticks.size() < MAX_TICKS; k += 1.0)
        ticks.push_back({k * step, linearTickLabel(k * step, step)});
    return ticks;
}

/* Clips the segment (x0,y0)-(x1,y1) to the plot area (Liang-Barsky); false when
** nothing of it is inside. */
bool clipSegment(double &x0, double &y0, double &x1, double &y1)
{
    double t0 = 0.0, t1 = 1.0, dx = x1 - x0, dy = y1 - y0;
    const double p[4] = {-dx, dx, -dy, dy};
    const double q[4] = {x0 - AREA_LEFT, AREA_RIGHT - x0, y0 - AREA_TOP, AREA_BOTTOM - y0};
    for (int i = 0; i < 4; ++i) {
        if (p[i] == 0.0) {
            if (q[i] < 0.0)
                return false;
            continue;
        }
        double t = q[i] / p[i];
        if (p[i] < 0.0)
            t0 = std::max(t0, t);
        else
            t1 = std::min(t1, t);
        if (t0 > t1)
            return false;
    }
    double sx = x0, sy = y0;
    x0 = sx + t0 * dx;
    y0 = sy + t0 * dy;
    x1 = sx + t1 * dx;
    y1 = sy + t1 * dy;
    return true;
}

bool inside(double x, double y)
{
    return x >= AREA_LEFT && x <= AREA_RIGHT && y >= AREA_TOP && y <= AREA_BOTTOM;
}

struct Pixel {
    double x = NAN, y = NAN;
    bool valid() const { return std::isfinite(x) && std::isfinite(y); }
};

/* Path data of a curve: broken where points are missing, clipped to the area.
** Every point inside the area is one vertex; *drawn counts them. */
std::string curvePath(const std::vector<Pixel> &points, size_t *drawn, std::vector<Pixel> *lonePoints)
{
    std::string d;
    d.reserve(points.size() * 16);
    Pixel pen;
    *drawn = 0;
    for (size_t i = 0; i < points.size(); ++i) {
        const Pixel &p = points[i];
        if (!p.valid())
            continue;
        bool previousValid = i > 0 && points[i - 1].valid();
        bool nextValid = i + 1 < points.size() && points[i + 1].valid();
        if (!previousValid) {
            if (!nextValid && inside(p.x, p.y))
                lonePoints->push_back(p);
            continue;
        }
        double x0 = points[i - 1].x, y0 = points[i - 1].y, x1 = p.x, y1 = p.y;
        if (!clipSegment(x0, y0, x1, y1))
            continue;
        if (!(pen.valid() && pen.x == x0 && pen.y == y0)) {
            d += d.empty() ? "M" : " M";
            appendSvgNumber(d, x0);
            d += ',';
            appendSvgNumber(d, y0);
            *drawn += inside(points[i - 1].x, points[i - 1].y) ? 1 : 0;
        }
        d += " L";
        appendSvgNumber(d, x1);
        d += ',';
        appendSvgNumber(d, y1);
        *drawn += inside(p.x, p.y) ? 1 : 0;
        pen = {x1, y1};
    }
    return d;
}

struct Legend {
    std::string heading;
    struct Entry {
        std::string colour, label;
        char marker = 0;                /* instead of a line: 'x' cross, 'o' circle, '*' filled circle */
        bool dashed = false;            /* the line drawn as the closure at infinity is */
    };
    std::vector<Entry> entries;
};

class SvgWriter {
public:
    std::string text;

    void line(double x0, double y0, double x1, double y1, const std::string &attributes)
    {
        text += "<line x1=\"" + number(x0) + "\" y1=\"" + number(y0) + "\" x2=\"" + number(x1) +
                "\" y2=\"" + number(y1) + "\" " + attributes + "/>\n";
    }

    void label(double x, double y, const std::string &content, const std::string &attributes)
    {
        text += "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" " + attributes + ">" +
                escapeXml(content) + "</text>\n";
    }
};

void drawGridAndTicks(SvgWriter &svg, const Axis &x, const Axis &y)
{
    svg.text += "<g class=\"grid\" stroke=\"#e0e0e0\" stroke-width=\"1\">\n";
    for (const Tick &t : ticksOf(x)) {
        double px = x.pixelOfScaled(t.scaled);
        svg.line(px, AREA_TOP, px, AREA_BOTTOM, t.label.empty() ? "stroke=\"#f0f0f0\"" : "");
    }
    for (const Tick &t : ticksOf(y)) {
        double py = y.pixelOfScaled(t.scaled);
        svg.line(AREA_LEFT, py, AREA_RIGHT, py, t.label.empty() ? "stroke=\"#f0f0f0\"" : "");
    }
    svg.text += "</g>\n";
    svg.text += "<g class=\"ticks\" stroke=\"#000000\" stroke-width=\"1\">\n";
    for (const Tick &t : ticksOf(x))
        if (!t.label.empty()) {
            double px = x.pixelOfScaled(t.scaled);
            svg.line(px, AREA_BOTTOM, px, AREA_BOTTOM + 5, "");
            svg.label(px, AREA_BOTTOM + 19, t.label, "class=\"x-tick\" text-anchor=\"middle\" stroke=\"none\"");
        }
    for (const Tick &t : ticksOf(y))
        if (!t.label.empty()) {
            double py = y.pixelOfScaled(t.scaled);
            svg.line(AREA_LEFT - 5, py, AREA_LEFT, py, "");
            svg.label(AREA_LEFT - 8, py + 4, t.label, "class=\"y-tick\" text-anchor=\"end\" stroke=\"none\"");
        }
    svg.text += "</g>\n";
}

/* The lines x = 0 and y = 0 of the complex plane, where they fall inside. */
void drawZeroLines(SvgWriter &svg, const Axis &x, const Axis &y)
{
    if (!x.logarithmic && x.lo < 0 && x.hi > 0) {
        double px = x.pixel(0.0);
        svg.line(px, AREA_TOP, px, AREA_BOTTOM, "class=\"zero-line\" stroke=\"#909090\" stroke-width=\"1\"");
    }
    if (!y.logarithmic && !y.decibels && y.lo < 0 && y.hi > 0) {
        double py = y.pixel(0.0);
        svg.line(AREA_LEFT, py, AREA_RIGHT, py, "class=\"zero-line\" stroke=\"#909090\" stroke-width=\"1\"");
    }
}

void drawCross(SvgWriter &svg, double px, double py, const std::string &colour, const std::string &cls)
{
    svg.text += "<path class=\"" + cls + "\" d=\"M" + number(px - 4) + "," + number(py - 4) + " L" +
                number(px + 4) + "," + number(py + 4) + " M" + number(px - 4) + "," + number(py + 4) +
                " L" + number(px + 4) + "," + number(py - 4) + "\" stroke=\"" + colour +
                "\" stroke-width=\"1.5\" fill=\"none\"/>\n";
}

void drawCircle(SvgWriter &svg, double px, double py, const std::string &colour, const std::string &cls, bool filled);

void drawLegend(SvgWriter &svg, const Legend &legend)
{
    if (legend.entries.empty())
        return;
    size_t shown = std::min<size_t>(legend.entries.size(), MAX_LEGEND_ENTRIES);
    double rows = (double)shown + (legend.heading.empty() ? 0 : 1) + (shown < legend.entries.size() ? 1 : 0);
    svg.text += "<g class=\"legend\">\n";
    svg.text += "<rect x=\"" + number(LEGEND_X) + "\" y=\"" + number(LEGEND_Y) + "\" width=\"165\" height=\"" +
                number(rows * LEGEND_LINE + 10) + "\" fill=\"#ffffff\" stroke=\"#b0b0b0\"/>\n";
    double y = LEGEND_Y + 18;
    if (!legend.heading.empty()) {
        svg.label(LEGEND_X + 8, y, legend.heading, "class=\"legend-heading\" font-weight=\"bold\"");
        y += LEGEND_LINE;
    }
    for (size_t i = 0; i < shown; ++i) {
        const Legend::Entry &e = legend.entries[i];
        if (e.marker == 'x')
            drawCross(svg, LEGEND_X + 19, y - 4, e.colour, "legend-marker");
        else if (e.marker)
            drawCircle(svg, LEGEND_X + 19, y - 4, e.colour, "legend-marker", e.marker == '*');
        else
            svg.line(LEGEND_X + 8, y - 4, LEGEND_X + 30, y - 4,
                     "stroke=\"" + e.colour + "\" " + (e.dashed ? CLOSURE_STROKE : "stroke-width=\"2\""));
        svg.label(LEGEND_X + 38, y, e.label, "class=\"legend-entry\"");
        y += LEGEND_LINE;
    }
    if (shown < legend.entries.size())
        svg.label(LEGEND_X + 8, y, "... and " + std::to_string(legend.entries.size() - shown) + " more",
                  "class=\"legend-entry\"");
    svg.text += "</g>\n";
}

/* Widens [lo, hi] to hold v with some room, then to round bounds. */
void include(Axis &axis, double v, double room)
{
    if (v - room >= axis.lo && v + room <= axis.hi)
        return;
    double range[2] = {std::min(axis.lo, v - room), std::max(axis.hi, v + room)};
    niceBounds(range, false);
    axis.lo = range[0];
    axis.hi = range[1];
}

/* The view of a root locus: the record's range with room for the markers at its edges;
** when the branches run far beyond the poles, zeros, axis crossings and breakaway
** points, the region that holds these (the far branches leave the frame toward their asymptotes). */
void frameLocus(Axis &x, Axis &y, const LocusMarks &marks)
{
    double box[4] = {INFINITY, -INFINITY, INFINITY, -INFINITY};
    for (const auto *list : {&marks.poles, &marks.zeros, &marks.atGain, &marks.axisCrossings, &marks.breakaways})
        for (const std::complex<double> &p : *list)
            if (std::isfinite(p.real()) && std::isfinite(p.imag())) {
                box[0] = std::min(box[0], p.real());
                box[1] = std::max(box[1], p.real());
                box[2] = std::min(box[2], p.imag());
                box[3] = std::max(box[3], p.imag());
            }
    double width = x.hi - x.lo, height = y.hi - y.lo;
    if (box[0] <= box[1]) {
        double span = std::max(box[1] - box[0], box[3] - box[2]);
        double room = span > 0 ? 0.35 * span : std::max(1.0, 0.35 * std::fabs(box[0]));
        double xr[2] = {box[0] - room, box[1] + room}, yr[2] = {box[2] - room, box[3] + room};
        if (width > 3.0 * (xr[1] - xr[0]) || height > 3.0 * (yr[1] - yr[0])) {
            niceBounds(xr, false);
            niceBounds(yr, false);
            x.lo = xr[0], x.hi = xr[1], y.lo = yr[0], y.hi = yr[1];
            return;
        }
    }
    x.lo -= 0.05 * width;
    x.hi += 0.05 * width;
    y.lo -= 0.05 * height;
    y.hi += 0.05 * height;
}

void drawCircle(SvgWriter &svg, double px, double py, const std::string &colour, const std::string &cls, bool filled)
{
    svg.text += "<circle class=\"" + cls + "\" cx=\"" + number(px) + "\" cy=\"" + number(py) + "\" r=\"4.5\" fill=\"" +
                (filled ? colour : "#ffffff") + "\" stroke=\"" + colour + "\" stroke-width=\"1.5\"/>\n";
}

/* Arrows along a curve in the order of its points (increasing frequency): one at the
** middle of each piece that is drawn without a break. */
void drawDirectionArrows(SvgWriter &svg, const std::vector<Pixel> &points, const std::string &colour)
{
    size_t start = 0;
    while (start < points.size()) {
        size_t end = start;
        while (end < points.size() && points[end].valid() && inside(points[end].x, points[end].y))
            ++end;
        double length = 0;
        for (size_t i = start + 1; i < end; ++i)
            length += std::hypot(points[i].x - points[i - 1].x, points[i].y - points[i - 1].y);
        /* Three arrows on a long piece: a closed Nyquist curve is one piece, and each of
        ** its branches (positive, negative frequencies, the arcs) should show its way. */
        int arrows = length > 300 ? 3 : length > 30 ? 1 : 0;
        double walked = 0;
        for (size_t i = start + 1, k = 1; i < end && arrows > 0 && (int)k <= arrows; ++i) {
            double dx = points[i].x - points[i - 1].x, dy = points[i].y - points[i - 1].y, d = std::hypot(dx, dy);
            walked += d;
            if (walked < length * (2.0 * k - 1) / (2.0 * arrows) || d == 0)
                continue;
            ++k;
            double ux = dx / d, uy = dy / d, tx = points[i].x, ty = points[i].y, bx = tx - 9 * ux, by = ty - 9 * uy;
            svg.text += "<path class=\"direction-arrow\" d=\"M" + number(tx) + "," + number(ty) + " L" +
                        number(bx - 4 * uy) + "," + number(by + 4 * ux) + " L" + number(bx + 4 * uy) + "," +
                        number(by - 4 * ux) + " Z\" fill=\"" + colour + "\" stroke=\"none\"/>\n";
        }
        start = end + 1;
    }
}

/* The value of a frequency curve at frequency f, interpolated over log f; NaN outside. */
double valueAt(const PlotSeries &s, double f)
{
    for (size_t i = 1; i < s.x.size(); ++i) {
        double a = s.x[i - 1], b = s.x[i];
        if (!(a > 0 && b > 0 && f > 0) || (f - a) * (f - b) > 0 || a == b)
            continue;
        double t = (std::log10(f) - std::log10(a)) / (std::log10(b) - std::log10(a));
        return s.y[i - 1] + t * (s.y[i] - s.y[i - 1]);
    }
    return NAN;
}

/* Where a frequency curve crosses the level (in scaled units), with the frequencies. */
void drawCrossings(SvgWriter &svg, const Axis &x, const Axis &y, const PlotSeries &s, double level,
                   const std::string &what, const std::function<std::string(double)> &margin)
{
    double py = y.pixelOfScaled(level);
    if (!std::isfinite(py) || py < AREA_TOP || py > AREA_BOTTOM)
        return;
    svg.line(AREA_LEFT, py, AREA_RIGHT, py, "class=\"crossover-line\" stroke=\"#808080\" stroke-dasharray=\"5 4\"");
    int shown = 0;
    for (size_t i = 1; i < s.y.size() && shown < 6; ++i) {
        double a = y.scaled(s.y[i - 1]), b = y.scaled(s.y[i]);
        if (!std::isfinite(a) || !std::isfinite(b) || (a - level) * (b - level) > 0 || a == b || a == level)
            continue;
        double t = (level - a) / (b - a);
        double sx0 = x.scaled(s.x[i - 1]), sx1 = x.scaled(s.x[i]);
        double sx = sx0 + t * (sx1 - sx0);
        double frequency = x.logarithmic ? std::pow(10.0, sx) : sx;
        double px = x.pixelOfScaled(sx);
        if (!std::isfinite(px))
            continue;
        svg.text += "<circle class=\"crossover\" cx=\"" + number(px) + "\" cy=\"" + number(py) +
                    "\" r=\"4\" fill=\"#ffffff\" stroke=\"#000000\" stroke-width=\"1.5\"/>\n";
        svg.label(px + 6, py + (shown % 2 ? 16 : -7), what + " at " + number(frequency, "%.3g") + margin(frequency),
                  "class=\"crossover-label\" font-size=\"11\"");
        ++shown;
    }
}

std::string traceLabel(const PlotSeries &s)
{
    return s.label.empty() ? "Trace " + std::to_string(s.trace + 1) : s.label;
}

}

std::string renderPlotSvg(const PlotView &view)
{
    static const PlotRecord empty{};
    const PlotRecord &r = view.record ? *view.record : empty;
    PlotKind kind = plotKindOf(r);
    std::vector<PlotSeries> curves = plotSeries(view);

    std::string title = recordText(r.title, sizeof r.title);
    std::string xLabel = recordText(r.xLabel, sizeof r.xLabel);
    std::string yLabel = recordText(r.yLabel, sizeof r.yLabel);
    if (kind == PlotKind::Nyquist) {
        /* In a Nyquist plot the two trace labels name the axes of the complex plane. */
        std::string real = recordText(r.traces[0].label, sizeof r.traces[0].label);
        std::string imaginary = recordText(r.traces[1].label, sizeof r.traces[1].label);
        xLabel = real.empty() ? "Real" : real;
        yLabel = imaginary.empty() ? "Imaginary" : imaginary;
    }

    Axis x, y;
    x.logarithmic = (r.flagsB & PLOT_B_LOG_X) != 0;
    bool magnitude = (r.flagsB & PLOT_B_LOG_Y) != 0;
    y.decibels = magnitude && (r.flagsC & PLOT_C_DECIBELS);
    y.logarithmic = magnitude && !y.decibels;
    x.p0 = AREA_LEFT;
    x.p1 = AREA_RIGHT;
    y.p0 = AREA_BOTTOM;
    y.p1 = AREA_TOP;
    size_t pointCount = 0;
    for (const PlotSeries &s : curves)
        pointCount += s.y.size();
    chooseRange(x, r.xMin, r.xMax, curves, &PlotSeries::x);
    chooseRange(y, r.yMin, r.yMax, curves, &PlotSeries::y);
    LocusMarks marks;
    if (kind == PlotKind::Nyquist) {
        /* Encirclements of -1 are what the plot is read for: it is always in view. */
        include(x, -1.0, 0.15 * std::max(1.0, x.hi - x.lo));
        include(y, 0.0, 0.05 * std::max(1.0, y.hi - y.lo));
    } else if (kind == PlotKind::RootLocus) {
        std::vector<double> gains;
        if (r.paramInfo && r.paramInfo->parameters && r.pointCount <= (uint32_t)INT32_MAX)
            gains.assign(r.paramInfo->parameters, r.paramInfo->parameters + r.pointCount);
        marks = locusMarks(curves, gains, r.paramInfo ? r.paramInfo->zeroCount : 0, CURRENT_GAIN);
        frameLocus(x, y, marks);
    }

    SvgWriter svg;
    /* Room for the frame and about 16 bytes a point: the text is not copied as it grows. */
    svg.text.reserve(16384 + 16 * pointCount);
    svg.text += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    svg.text += "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"800\" height=\"500\" viewBox=\"0 0 800 500\" "
                "font-family=\"DejaVu Sans, Arial, Helvetica, sans-serif\" font-size=\"12\">\n";
    svg.text += "<title>" + escapeXml(title) + "</title>\n";
    svg.text += "<rect width=\"" + number(WIDTH, "%.0f") + "\" height=\"" + number(HEIGHT, "%.0f") +
                "\" fill=\"#ffffff\"/>\n";
    svg.label(WIDTH / 2, 30, title, "class=\"title\" text-anchor=\"middle\" font-size=\"16\" font-weight=\"bold\"");

    drawGridAndTicks(svg, x, y);
    if (kind != PlotKind::Frequency)
        drawZeroLines(svg, x, y);
    svg.text += "<rect class=\"frame\" x=\"" + number(AREA_LEFT) + "\" y=\"" + number(AREA_TOP) + "\" width=\"" +
                number(AREA_RIGHT - AREA_LEFT) + "\" height=\"" + number(AREA_BOTTOM - AREA_TOP) +
                "\" fill=\"none\" stroke=\"#000000\"/>\n";
    svg.label((AREA_LEFT + AREA_RIGHT) / 2, HEIGHT - 18, xLabel, "class=\"x-label\" text-anchor=\"middle\" font-size=\"13\"");
    svg.text += "<text class=\"y-label\" transform=\"rotate(-90)\" x=\"" + number(-(AREA_TOP + AREA_BOTTOM) / 2) +
                "\" y=\"22\" text-anchor=\"middle\" font-size=\"13\">" + escapeXml(yLabel) + "</text>\n";

    Legend legend;
    size_t drawnInAll = 0;
    svg.text += "<g class=\"traces\" fill=\"none\" stroke-width=\"1.6\" stroke-linejoin=\"round\">\n";
    for (size_t i = 0; i < curves.size(); ++i) {
        const PlotSeries &s = curves[i];
        std::string colour = PALETTE[i % PALETTE_SIZE];
        std::vector<Pixel> pixels(s.y.size());
        for (size_t p = 0; p < s.y.size(); ++p)
            pixels[p] = {x.pixel(s.x[p]), y.pixel(s.y[p])};
        /* A Nyquist curve's circles at infinity are drawn apart: out of the response. */
        std::vector<Pixel> closure;
        if (kind == PlotKind::Nyquist) {
            std::vector<bool> atInfinity = nyquistClosurePoints(r, s);
            if (std::find(atInfinity.begin(), atInfinity.end(), true) != atInfinity.end()) {
                closure.assign(pixels.size(), Pixel{});
                for (size_t p = 0; p < pixels.size(); ++p)
                    if (atInfinity[p])
                        std::swap(closure[p], pixels[p]);
            }
        }
        size_t drawn = 0;
        std::vector<Pixel> lonePoints;
        std::string d = curvePath(pixels, &drawn, &lonePoints);
        drawnInAll += drawn + lonePoints.size();
        svg.text += "<path class=\"trace\" data-trace=\"" + std::to_string(s.trace) + "\" data-points=\"" +
                    std::to_string(drawn) + "\" stroke=\"" + colour + "\" d=\"";
        svg.text += d;
        svg.text += "\"/>\n";
        for (const Pixel &p : lonePoints)
            svg.text += "<circle cx=\"" + number(p.x) + "\" cy=\"" + number(p.y) + "\" r=\"2\" fill=\"" + colour +
                        "\" stroke=\"none\"/>\n";
        if (kind == PlotKind::RootLocus) {
            if (curves.size() <= SHORT_LEGEND_BRANCHES)
                legend.entries.push_back({colour, "Branch " + std::to_string(s.trace + 1)});
        } else if (kind == PlotKind::Nyquist) {
            legend.entries.push_back({colour, "Response"});
            drawDirectionArrows(svg, pixels, colour);
            if (!closure.empty()) {
                size_t closureDrawn = 0;
                std::vector<Pixel> closureLone;
                std::string closureD = curvePath(closure, &closureDrawn, &closureLone);
                drawnInAll += closureDrawn;
                svg.text += "<path class=\"infinity-closure\" data-points=\"" + std::to_string(closureDrawn) +
                            "\" stroke=\"" + CLOSURE_COLOUR + "\" " + CLOSURE_STROKE + " d=\"" + closureD + "\"/>\n";
                drawDirectionArrows(svg, closure, CLOSURE_COLOUR);
                legend.entries.push_back({CLOSURE_COLOUR, "Closure at infinity", 0, true});
            }
        } else {
            legend.entries.push_back({colour, traceLabel(s)});
        }
    }
    svg.text += "</g>\n";
    if (drawnInAll == 0) {
        /* For example a magnitude of 0 everywhere, which a logarithmic axis cannot show. */
        svg.label((AREA_LEFT + AREA_RIGHT) / 2, (AREA_TOP + AREA_BOTTOM) / 2,
                  curves.empty() ? "No points" : "No point of the curves falls on this scale",
                  "class=\"empty-note\" text-anchor=\"middle\" fill=\"#707070\"");
    }

    if (kind == PlotKind::Nyquist) {
        double px = x.pixel(-1.0), py = y.pixel(0.0);
        if (std::isfinite(px) && std::isfinite(py) && inside(px, py)) {
            drawCross(svg, px, py, "#d00000", "critical-point");
            svg.label(px - 6, py + 16, "-1", "class=\"critical-label\" text-anchor=\"end\" font-weight=\"bold\" fill=\"#d00000\"");
            legend.entries.push_back({"#d00000", "Critical point -1", 'x'});
        }
    }
    if (kind == PlotKind::Frequency && !curves.empty()) {
        /* The margins are read off the other plot of the pair at the crossing frequency. */
        PlotSeries other;
        if (view.companion) {
            PlotView companion;
            companion.record = view.companion;
            std::vector<PlotSeries> series = plotSeries(companion);
            if (!series.empty())
                other = series[0];
        }
        std::string otherLabel = view.companion ? recordText(view.companion->yLabel, sizeof view.companion->yLabel) : "";
        if (y.decibels || y.logarithmic) {
            double turn = otherLabel.find("Rad") != std::string::npos ? 2 * M_PI : 360.0;
            drawCrossings(svg, x, y, curves[0], 0.0, "0 dB", [&](double f) {
                double phase = valueAt(other, f);
                if (!std::isfinite(phase))
                    return std::string();
                double margin = phase + turn / 2 - turn * std::floor((phase + turn / 2) / turn + 0.5);
                return ", phase margin " + number(turn == 360.0 ? margin : margin * 180.0 / M_PI, "%.3g") + " deg";
            });
        } else if (yLabel.rfind("Phase", 0) == 0) {
            /* -180 degrees (or -pi) and every full turn from it that is in view. */
            double halfTurn = yLabel.find("Rad") != std::string::npos ? M_PI : 180.0;
            /* Magnitudes vary by decades between grid points: interpolated as logarithms. */
            for (double &v : other.y)
                v = v > 0 ? std::log10(v) : NAN;
            for (double level = -halfTurn + 2 * halfTurn * std::ceil((y.lo + halfTurn) / (2 * halfTurn));
                 level <= y.hi && level < y.lo + 40 * halfTurn; level += 2 * halfTurn)
                drawCrossings(svg, x, y, curves[0], level, number(level, "%g") + (halfTurn == 180.0 ? " deg" : " rad"),
                              [&](double f) {
                                  double logMagnitude = valueAt(other, f);
                                  if (!std::isfinite(logMagnitude))
                                      return std::string();
                                  return ", gain margin " + number(-20.0 * logMagnitude, "%.3g") + " dB";
                              });
        }
    }
    if (kind == PlotKind::RootLocus) {
        /* In a root locus trace 1's label names the curves: the closed loop poles. */
        std::string curvesName = recordText(r.traces[1].label, sizeof r.traces[1].label);
        legend.heading = curvesName;
        auto mark = [&](const std::vector<std::complex<double>> &points, char shape, const char *cls) {
            for (const std::complex<double> &p : points) {
                double px = x.pixel(p.real()), py = y.pixel(p.imag());
                if (!std::isfinite(px) || !std::isfinite(py) || !inside(px, py))
                    continue;
                if (shape == 'x')
                    drawCross(svg, px, py, "#000000", cls);
                else
                    drawCircle(svg, px, py, shape == '*' ? "#d00000" : "#000000", cls, shape == '*');
            }
        };
        mark(marks.atGain, '*', "closed-loop-pole");
        mark(marks.zeros, 'o', "open-loop-zero");
        mark(marks.poles, 'x', "open-loop-pole");
        std::vector<Legend::Entry> keys;
        if (!marks.poles.empty())
            keys.push_back({"#000000", "Open-loop poles", 'x'});
        if (!marks.zeros.empty())
            keys.push_back({"#000000", "Open-loop zeros", 'o'});
        if (!marks.atGain.empty())
            keys.push_back({"#d00000", "Closed loop, K = " + number(CURRENT_GAIN, "%g"), '*'});
        if (curves.size() > SHORT_LEGEND_BRANCHES)
            keys.push_back({PALETTE[0], std::to_string(curves.size()) + " branches"});
        legend.entries.insert(legend.entries.begin(), keys.begin(), keys.end());
    }
    drawLegend(svg, legend);
    svg.text += "</svg>\n";
    return std::move(svg.text);
}

namespace {

/* Through C's stdio: a C++ file stream would set up the locale, which a short command
** that writes two plots pays for at every start. */
bool fileHolds(const std::string &path, const std::string &text)
{
    FILE *in = std::fopen(path.c_str(), "rb");
    if (!in)
        return false;
    /* Compared a piece at a time: a buffer the size of the file would be fresh memory,
    ** whose pages cost more to map than the comparison. */
    char held[1 << 14];
    size_t compared = 0;
    bool same = true;
    while (same) {
        size_t size = std::fread(held, 1, sizeof held, in);
        if (size == 0)
            break;
        same = compared + size <= text.size() && text.compare(compared, size, held, size) == 0;
        compared += size;
    }
    std::fclose(in);
    return same && compared == text.size();
}

}

bool writeSvgFile(const std::string &path, const std::string &text, std::string *error)
{
    /* A file that already holds the text stays as it is: replacing it frees the old file's
    ** blocks, which on a file system that discards them costs more than the whole analysis,
    ** and its readers (the served page watches the modification time) have nothing new. */
    if (fileHolds(path, text))
        return true;
    std::string temporary = path + ".tmp";
    FILE *out = std::fopen(temporary.c_str(), "wb");
    if (!out) {
        *error = "cannot create the file";
        return false;
    }
    bool written = std::fwrite(text.data(), 1, text.size(), out) == text.size();
    if (std::fclose(out) != 0 || !written) {
        std::remove(temporary.c_str());
        *error = "write failed";
        return false;
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        std::remove(temporary.c_str());
        *error = "cannot replace the file";
        return false;
    }
    return true;
}

}
