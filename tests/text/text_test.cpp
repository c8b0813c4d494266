/*
** tests/text/text_test.cpp: numberToText and complexToText (the clean-up of the _gcvt
** text step by step, at ordinary and absurd display precisions) and printMatrix (the
** bracketed block texts on the screen, one message box, and in the result file, and
** texts larger than the buffer).
*/
#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "host/host.h"
#include "hostapp/host_state.h"
#include "numeric/matrix.h"
#include "platform/driver.h"
#include "shell/settings.h"
#include "shell/text.h"
#include "support.h"

namespace {

/* Each test on a fresh host with the plug-in, the display precision back at six. */
using NumberToText = testing_support::PluginTest;
using ComplexToText = testing_support::PluginTest;

/* Message boxes are transcript entries "[caption] text"; their texts, in order. */
std::vector<std::string> messageBoxTexts()
{
    std::vector<std::string> texts;
    for (const std::string &line : platform::transcript())
        if (line.rfind("[Tervan", 0) == 0) {
            size_t end = line.find("] ");
            texts.push_back(end == std::string::npos ? "" : line.substr(end + 2));
        }
    return texts;
}

TEST_F(NumberToText, TableOfPrecisions)
{
    const struct { int digits; double value; const char *text; } table[] = {
        {6, 0.1, ".1"},             /* leading 0 removed */
        {6, 100, "100"},            /* trailing point removed */
        {6, -0.5, "-.5"},           /* leading 0 after the sign removed */
        {6, 0, "0"},                /* "0." -> "." -> "" -> "0" */
        {6, -0.0, "0"},
        {6, 1e10, "1e+010"},        /* point before the e removed */
        {6, 1.5e-7, "1.5e-007"},    /* exponent digits kept */
        {6, -2e-20, "-2e-020"},
        {6, 1234567, "1.23457e+006"},
        {6, 1.0 / 3.0, ".333333"},
        {6, INFINITY, "inf"},
        {6, NAN, "nan"},
        {3, 3.14159, "3.14"},
        {3, 0.0314159, ".0314"},
        {3, 31415.9, "3.14e+004"},
        {1, 0.96, "1"},
        {1, -7.4, "-7"},
        {0, 0.0, "0"},              /* fewer than one digit is one */
        {0, 100.0, "1e+002"},
        {0, 0.5, ".5"},
        {15, 0.1 + 0.2, ".3"},
        {15, -123456.789, "-123456.789"},
    };
    for (const auto &row : table) {
        displayPrecision = row.digits;
        EXPECT_EQ(std::string(numberToText(row.value)), row.text) << row.value << " at " << row.digits;
    }
}

TEST_F(NumberToText, AbsurdPrecisionsGiveSaneTextsInTheBuffers)
{
    for (int digits : {0, -1, -2147483647 - 1, 51, 500, 2147483647}) {
        displayPrecision = digits;
        for (double value : {-1.0 / 3.0, 1e300, -4.9406564584124654e-324, 100.0, 0.0}) {
            const char *text = numberToText(value);
            size_t length = std::strlen(text);
            EXPECT_GT(length, 0u);
            EXPECT_LT(length, 64u);
            EXPECT_NEAR(std::atof(text), value, std::fabs(value) * 0.5 + 1e-300)
                << digits << " " << text;
        }
    }
    /* The complex buffer holds the two longest parts. */
    displayPrecision = 500;
    Complex z{-1.0 / 3.0, -2.0 / 3.0 * 1e-300};
    std::string text = complexToText(&z);
    EXPECT_LT(text.size(), 128u);
    EXPECT_EQ(text.front(), '(');
    EXPECT_EQ(text.back(), ')');
    EXPECT_NE(text.find(","), std::string::npos);
}

/* Both parts share numberToText's buffer: the real part's text must be taken first. */
TEST_F(ComplexToText, PairInParentheses)
{
    Complex z{-1.0, 0.5}, pole{-0.70710678118654757, 0.70710678118654757};
    EXPECT_STREQ(complexToText(&z), "(-1,.5)");
    EXPECT_STREQ(complexToText(&pole), "(-.707107,.707107)");
}

class MatrixText : public testing_support::PluginTest {
protected:
    void SetUp() override
    {
        PluginTest::SetUp();
        linOutputChoice = LIN_OUTPUT_SCREEN;
    }

    /* Runs print in file mode into a fresh file in the test's folder and returns its text. */
    template <typename Print> std::string inFile(Print print)
    {
        linOutputChoice = LIN_OUTPUT_FILE;
        EXPECT_NE(fileOpen("matrix_text.m", FILE_OPEN_WRITE_CREATE_TRUNC), 0);
        print();
        fileClose();
        linOutputChoice = LIN_OUTPUT_SCREEN;
        return testing_support::readFile(hostapp::outputPath("matrix_text.m"));
    }
};

/* One message box per matrix, and the same text in the result file. The indent follows
** the name up to eight blanks; a percent sign in the name is itself. */
TEST_F(MatrixText, ShapesAndNamesOnScreenAndInTheFile)
{
    const struct {
        const char *name;
        int rows;                       /* -1: no matrix */
        uint32_t cols;                  /* 0: a vector of `rows` values */
        std::vector<double> values;     /* row by row */
        const char *text;
    } rows[] = {
        {"transfer = ", 2, 3, {1, 2, 3, 4, 5, 6}, "transfer = [1 2 3 ;\n        4 5 6 ];\n"},
        {"x=", 2, 3, {1, 2, 3, 4, 5, 6}, "x=[1 2 3 ;\n  4 5 6 ];\n"},
        {"", 2, 3, {1, 2, 3, 4, 5, 6}, "[1 2 3 ;\n4 5 6 ];\n"},
        {nullptr, 2, 3, {1, 2, 3, 4, 5, 6}, "[1 2 3 ;\n4 5 6 ];\n"},
        {"%s%d = ", 1, 1, {2}, "%s%d = [2 ];\n"},
        {"a = ", 2, 2, {1, 2, 3, 4}, "a = [1 2 ;\n    3 4 ];\n"},
        {"a = ", -1, 0, {}, "a = [];\n"},
        {"b = ", 3, 0, {1, 2, 3}, "b = [1 2 3 ];\n"},
        {"b = ", 2, 0, {0.25, -100}, "b = [.25 -100 ];\n"},
        {"c = ", 0, 3, {}, "c = [];\n"},
        {"d = ", 0, 0, {}, "d = [];\n"},
        {"b = ", 3, 1, {-0.5, 0, 1e10}, "b = [-.5 ;\n    0 ;\n    1e+010 ];\n"},
    };
    for (const auto &row : rows) {
        Matrix *m = row.rows < 0 ? nullptr : testing_support::matrixFromRows(row.rows, row.cols, row.values);
        platform::clearTranscript();
        printMatrix(row.name, m);
        EXPECT_EQ(messageBoxTexts(), std::vector<std::string>{row.text});
        EXPECT_EQ(inFile([&] { printMatrix(row.name, m); }), row.text);
        EXPECT_EQ(messageBoxTexts().size(), 1u) << "file mode shows nothing";
        gfree(m);
    }
}

TEST_F(MatrixText, ScreenTextLargerThanTheBufferIsSplitAtLineEnds)
{
    /* 40 x 40 of 12-character numbers: about 21000 bytes, several message boxes. */
    displayPrecision = 12;
    const uint32_t n = 40;
    Matrix *m = matDecl(n, n);
    for (uint32_t k = 0; k < n * n; k++)
        m->data[k] = -1.0 / (k + 3.0);
    printMatrix("big = ", m);
    std::vector<std::string> boxes = messageBoxTexts();
    ASSERT_GT(boxes.size(), 4u);
    std::string joined;
    for (size_t i = 0; i < boxes.size(); i++) {
        EXPECT_LT(boxes[i].size(), 4096u);
        if (i + 1 < boxes.size()) {
            EXPECT_EQ(boxes[i].substr(boxes[i].size() - 2), ";\n");   /* whole lines */
        }
        joined += boxes[i];
    }
    std::string expected = inFile([&] { printMatrix("big = ", m); });
    EXPECT_EQ(joined, expected);
    EXPECT_EQ(expected.substr(0, 22), "big = [-.333333333333 ");
    EXPECT_EQ(std::count(expected.begin(), expected.end(), '\n'), (long)n);
    gfree(m);
}

}
