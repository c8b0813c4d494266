/*
** Plots written as SVG files: parsed back as XML and checked for what a reader sees (and
** the bounds a Nyquist record keeps); and their coordinates, written as C's printf writes
** "%.2f", including hundredths on or next to a tie, negative zero and magnitudes past the
** short way.
*/
#include <pugixml.hpp>

#include <cmath>
#include <complex>
#include <random>
#include <regex>

#include "hostapp/svg_text.h"
#include "plot_fixture.h"
#include "support.h"

namespace {

std::string printed(double v)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.2f", v);
    return text;
}

std::string written(double v)
{
    std::string text;
    hostapp::appendSvgNumber(text, v);
    return text;
}

struct Vertex {
    double x, y;
};

/* The vertices of a path's data (every M and L pair). */
std::vector<Vertex> vertices(const char *d)
{
    std::vector<Vertex> points;
    std::regex pair("[ML](-?[0-9.]+),(-?[0-9.]+)");
    std::string text = d;
    for (auto it = std::sregex_iterator(text.begin(), text.end(), pair); it != std::sregex_iterator(); ++it)
        points.push_back({std::stod((*it)[1]), std::stod((*it)[2])});
    return points;
}

class SvgPlotTest : public PlotTest {
protected:
    pugi::xml_document doc;

    void parse(const std::string &name)
    {
        ASSERT_TRUE(std::filesystem::exists(outputDir / name)) << name;
        pugi::xml_parse_result result = doc.load_string(testing_support::readFile(outputDir / name).c_str());
        ASSERT_TRUE(result) << result.description();
        ASSERT_STREQ(doc.document_element().name(), "svg");
    }

    std::vector<pugi::xml_node> traces() const
    {
        std::vector<pugi::xml_node> paths;
        for (const auto &node : doc.select_nodes("//*[@class='trace']"))
            paths.push_back(node.node());
        return paths;
    }

    /* y pixel of the grid line that carries the y tick label `label`. */
    double yTickPixel(const std::string &label) const
    {
        for (const auto &node : doc.select_nodes("//*[@class='y-tick']"))
            if (label == node.node().child_value())
                return node.node().attribute("y").as_double() - 4.0;
        ADD_FAILURE() << "no y tick " << label;
        return NAN;
    }
};

/* |1 / (jw + 1)| on the default grid, 50 points from 0.1 to 100 rad/s. */
std::vector<double> firstOrderMagnitude()
{
    std::vector<double> values;
    for (int k = 1; k <= 50; ++k)
        values.push_back(1.0 / std::sqrt(1.0 + testing_support::gridPoint(k) * testing_support::gridPoint(k)));
    return values;
}

TEST_F(SvgPlotTest, BodeMagnitudeInDecibels)
{
    magnitudeUnit.selected = MAGNITUDE_UNIT_DECIBELS;
    frequencyPlotCount = 1;
    HostBlock *block = frequencyPlot("Bode-Magnitude", firstOrderMagnitude());
    std::snprintf(plotRecordOf(block)->traces[0].label, 64, "Magnitude");
    finishPlot(block, 1, 1, 0xFF);

    std::vector<std::string> svgFiles;
    for (const auto &entry : std::filesystem::directory_iterator(outputDir))
        if (entry.path().extension() == ".svg")
            svgFiles.push_back(entry.path().filename().string());
    EXPECT_EQ(svgFiles, std::vector<std::string>{"Bode-Magnitude.svg"});
    EXPECT_EQ(platform::transcript().back(), "[plot] Bode-Magnitude.svg");
    EXPECT_EQ(hostapp::plotFileName(block), "Bode-Magnitude.svg");
    parse("Bode-Magnitude.svg");
    EXPECT_STREQ(doc.child("svg").child_value("title"), "Bode-Magnitude1");
    EXPECT_EQ(texts(doc, "title"), std::vector<std::string>{"Bode-Magnitude1"});
    EXPECT_EQ(texts(doc, "x-label"), std::vector<std::string>{"Frequency, (Rad/sec)"});
    EXPECT_EQ(texts(doc, "y-label"), std::vector<std::string>{"Magnitude (Decibels)"});
    /* The x axis runs over whole decades. */
    EXPECT_EQ(texts(doc, "x-tick"), (std::vector<std::string>{"0.1", "1", "10", "100"}));
    /* Ratios 0.00999 ... 0.995 round out to 0.001 ... 1, i.e. -60 ... 0 dB. */
    std::vector<std::string> yTicks = texts(doc, "y-tick");
    ASSERT_FALSE(yTicks.empty());
    EXPECT_EQ(yTicks.front(), "-60");
    EXPECT_EQ(yTicks.back(), "0");
    EXPECT_EQ(texts(doc, "legend-entry"), std::vector<std::string>{"Magnitude"});

    auto paths = traces();
    ASSERT_EQ(paths.size(), 1u);
    std::vector<Vertex> points = vertices(paths[0].attribute("d").value());
    ASSERT_EQ(points.size(), 50u);
    EXPECT_EQ(paths[0].attribute("data-points").as_int(), 50);
    /* Point 1 is at 0.1 rad/s: the left edge; point 50 at 100 rad/s: the right edge. */
    EXPECT_NEAR(points.front().x, 80.0, 0.01);
    EXPECT_NEAR(points.back().x, 610.0, 0.01);
    /* 1/sqrt(2) at w = 1 would be -3.01 dB; the last point |1/(100j+1)| is -40.0 dB. */
    double perDecibel = (yTickPixel("-60") - yTickPixel("0")) / 60.0;
    EXPECT_NEAR(points.back().y, yTickPixel("0") + 40.0004 * perDecibel, 0.02);
    EXPECT_NEAR(points.front().y, yTickPixel("0") + 0.0432 * perDecibel, 0.02);
}

TEST_F(SvgPlotTest, NonFiniteValuesAreSkipped)
{
    std::vector<double> values = {1, 2, NAN, 4, INFINITY, -INFINITY, 7, 8};
    HostBlock *block = frequencyPlot("Bode-Phase", values);
    finishPlot(block, 1, 0, 0xFF);
    parse("Bode-Phase.svg");
    auto paths = traces();
    ASSERT_EQ(paths.size(), 1u);
    std::string d = paths[0].attribute("d").value();
    EXPECT_EQ(d.find("nan"), std::string::npos);
    EXPECT_EQ(d.find("inf"), std::string::npos);
    /* Segments 1-2 and 7-8 are drawn; 4 stands alone and is a dot. */
    EXPECT_EQ(vertices(d.c_str()).size(), 4u);
    EXPECT_EQ(doc.select_nodes("//*[local-name()='circle']").size(), 1u);
}

/* Flat decibel curves: magnitude 0 has no point on the scale and says so; a flat 3
** (9.54 dB) gets several tick labels around it, in a file of its own. */
TEST_F(SvgPlotTest, FlatDecibelCurves)
{
    magnitudeUnit.selected = MAGNITUDE_UNIT_DECIBELS;
    finishPlot(frequencyPlot("Bode-Magnitude", std::vector<double>(10, 0.0)), 1, 1, 0xFF);
    parse("Bode-Magnitude.svg");
    EXPECT_EQ(vertices(traces()[0].attribute("d").value()).size(), 0u);
    EXPECT_EQ(texts(doc, "empty-note"),
              std::vector<std::string>{"No point of the curves falls on this scale"});

    finishPlot(frequencyPlot("Bode-Magnitude", std::vector<double>(20, 3.0)), 1, 1, 0xFF);
    parse("Bode-Magnitude-2.svg");
    EXPECT_EQ(vertices(traces()[0].attribute("d").value()).size(), 20u);
    EXPECT_GE(texts(doc, "y-tick").size(), 4u);
}

TEST_F(SvgPlotTest, NyquistDrawsRealAgainstImaginary)
{
    /* 1 / (jw + 1) over w = 0 ... 10: a half circle from 1 to near 0. */
    std::vector<double> re, im;
    for (int i = 0; i < 40; ++i) {
        std::complex<double> h = 1.0 / std::complex<double>(1.0, i * 0.25);
        re.push_back(h.real());
        im.push_back(h.imag());
    }
    re[7] = NAN;
    im[7] = 7.0;
    re[20] = -3.0;
    im[20] = INFINITY;
    HostBlock *block = nyquistPlot(re, im);
    finishPlot(block, 0, 0, 0);
    /* The bounds come from the traces, x from the real parts, and a point with a
    ** non-finite part counts nowhere: real 0.0104 ... 1 and imaginary -0.5 ... 0. */
    EXPECT_EQ(boundsOf(plotRecordOf(block)), (std::vector<double>{0.0, 1.0, -0.5, 0.0}));
    parse("Nyquist.svg");
    EXPECT_EQ(texts(doc, "x-label"), std::vector<std::string>{"Real"});
    EXPECT_EQ(texts(doc, "y-label"), std::vector<std::string>{"Imaginary"});
    auto paths = traces();
    ASSERT_EQ(paths.size(), 1u);
    EXPECT_EQ(vertices(paths[0].attribute("d").value()).size(), 38u);
    /* The picture widens the x axis to hold -1 with room; log flags are off: tick labels
    ** are plain steps. */
    EXPECT_EQ(texts(doc, "x-tick").front(), "-1.5");
    EXPECT_EQ(texts(doc, "x-tick").back(), "1.0");
}

TEST_F(SvgPlotTest, TitlesAreEscapedAndFileNamesSafe)
{
    HostBlock *block = frequencyPlot("a/b<&>\"", {1, 2, 3});
    finishPlot(block, 1, 0, 0xFF);
    EXPECT_EQ(hostapp::plotFileName(block), "a-b.svg");
    parse("a-b.svg");
    EXPECT_EQ(texts(doc, "title"), std::vector<std::string>{"a/b<&>\"0"});
}

TEST_F(SvgPlotTest, UnwritableFolderIsReported)
{
    hostapp::host().outputDir = (outputDir / "missing" / "deeper").string();
    finishPlot(frequencyPlot("Bode-Phase", {1, 2}), 1, 0, 0xFF);
    EXPECT_EQ(platform::transcript().back().rfind("[plot] cannot write ", 0), 0u) << platform::transcript().back();
}

TEST(SvgNumber, TwoDecimalsAsPrintfWritesThem)
{
    const struct {
        double value;
        const char *text;
    } cases[] = {
        /* the random half-cents below try every kind of tie; these are the classic ones */
        {0.125, "0.12"},                /* an exact tie: to even */
        {2.675, "2.67"},                /* just below the tie in binary */
        {-0.004, "-0.00"},
        {-0.0, "-0.00"},
        {9.999, "10.00"},
        {1e-300, "0.00"},
        {12345678.125, "12345678.12"},  /* past the short way */
    };
    for (const auto &c : cases) {
        EXPECT_EQ(written(c.value), c.text) << c.value;
        EXPECT_EQ(written(c.value), printed(c.value)) << c.value;
    }
    /* Multiples of 1/200 a few units of rounding either side: the hundredths next to ties. */
    std::mt19937_64 rng(13);
    std::uniform_int_distribution<int> halfCents(-400000, 400000), nudge(-3, 3);
    for (int i = 0; i < 100000; ++i) {
        double v = halfCents(rng) / 200.0;
        for (int k = nudge(rng); k != 0; k += k > 0 ? -1 : 1)
            v = std::nextafter(v, k > 0 ? INFINITY : -INFINITY);
        ASSERT_EQ(written(v), printed(v)) << v;
    }
    EXPECT_EQ(written(NAN), printed(NAN));
}

}
