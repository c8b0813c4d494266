/*
** printMatrix: the bracketed block texts on the screen (one message box) and in the
** result file, and texts larger than the buffer.
*/
#include <algorithm>
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "host/host.h"
#include "hostapp/host_state.h"
#include "numeric/matrix.h"
#include "shell/text.h"
#include "support.h"
#include "text_support.h"

using namespace testing_text;

namespace {

Matrix *fromRows(uint32_t rows, uint32_t cols, std::initializer_list<double> values)
{
    return testing_support::matrixFromRows(rows, cols, values);
}

class MatrixText : public ::testing::Test {
protected:
    PrecisionScope precision{6};
    testing_support::TempDir dir;   /* one per test: ctest runs test binaries in parallel */
    int16_t savedChoice = linOutputChoice;
    void SetUp() override
    {
        platform::clearTranscript();
        linOutputChoice = LIN_OUTPUT_SCREEN;
    }
    void TearDown() override { linOutputChoice = savedChoice; }

    /* Runs print in file mode into a fresh file and returns the file's text. */
    template <typename Print> std::string inFile(Print print)
    {
        hostapp::host().outputDir = dir.path;
        linOutputChoice = LIN_OUTPUT_FILE;
        EXPECT_NE(fileOpen("matrix_text.m", FILE_OPEN_WRITE_CREATE_TRUNC), 0);
        print();
        fileClose();
        linOutputChoice = LIN_OUTPUT_SCREEN;
        return testing_support::readFile(hostapp::outputPath("matrix_text.m"));
    }
};

}

TEST_F(MatrixText, SmallShapesOnScreenAreOneMessageBoxEach)
{
    Matrix *square = fromRows(2, 2, {1, 2, 3, 4});
    printMatrix("a = ", square);
    Matrix *one = fromRows(1, 1, {5});
    printMatrix("a = ", one);
    printMatrix("a = ", nullptr);
    Matrix *vector = matDecl(3, 0);
    vector->data[0] = 1;
    vector->data[1] = 2;
    vector->data[2] = 3;
    printMatrix("b = ", vector);
    Matrix *noRows = matDecl(0, 3);
    printMatrix("c = ", noRows);
    Matrix *emptyVector = matDecl(0, 0);
    printMatrix("d = ", emptyVector);
    Matrix *column = fromRows(3, 1, {-0.5, 0, 1e10});
    printMatrix("b = ", column);
    std::vector<std::string> boxes = messageBoxTexts();
    ASSERT_EQ(boxes.size(), 7u);
    EXPECT_EQ(boxes[0], "a = [1 2 ;\n    3 4 ];\n");
    EXPECT_EQ(boxes[1], "a = [5 ];\n");
    EXPECT_EQ(boxes[2], "a = [];\n");
    EXPECT_EQ(boxes[3], "b = [1 2 3 ];\n");
    EXPECT_EQ(boxes[4], "c = [];\n");
    EXPECT_EQ(boxes[5], "d = [];\n");
    EXPECT_EQ(boxes[6], "b = [-.5 ;\n    0 ;\n    1e+010 ];\n");
    for (Matrix *m : {square, one, vector, noRows, emptyVector, column})
        gfree(m);
}

/* The indent follows the name up to eight blanks; a percent sign in the name is itself;
** the result file gets the same text as the screen. */
TEST_F(MatrixText, NamesOnScreenAndInTheFile)
{
    const struct {
        const char *name;
        uint32_t rows, cols;            /* cols 0: a vector of `rows` values */
        std::vector<double> values;     /* row by row */
        const char *text;
    } rows[] = {
        {"transfer = ", 2, 3, {1, 2, 3, 4, 5, 6}, "transfer = [1 2 3 ;\n        4 5 6 ];\n"},
        {"x=", 2, 3, {1, 2, 3, 4, 5, 6}, "x=[1 2 3 ;\n  4 5 6 ];\n"},
        {"", 2, 3, {1, 2, 3, 4, 5, 6}, "[1 2 3 ;\n4 5 6 ];\n"},
        {nullptr, 2, 3, {1, 2, 3, 4, 5, 6}, "[1 2 3 ;\n4 5 6 ];\n"},
        {"%s%d = ", 1, 1, {2}, "%s%d = [2 ];\n"},
        {"a = ", 2, 2, {1, 2, 3, 4}, "a = [1 2 ;\n    3 4 ];\n"},
        {"b = ", 2, 0, {0.25, -100}, "b = [.25 -100 ];\n"},
    };
    for (const auto &row : rows) {
        Matrix *m = matDecl(row.rows, row.cols);
        for (size_t k = 0; k < row.values.size(); k++)
            m->data[row.cols ? (k % row.cols) * row.rows + k / row.cols : k] = row.values[k];
        platform::clearTranscript();
        printMatrix(row.name, m);
        EXPECT_EQ(messageBoxTexts(), std::vector<std::string>{row.text});
        EXPECT_EQ(inFile([&] { printMatrix(row.name, m); }), row.text);
        EXPECT_EQ(messageBoxTexts().size(), 1u) << "file mode shows nothing";
        gfree(m);
    }
    EXPECT_EQ(inFile([&] { printMatrix("d = ", nullptr); }), "d = [];\n");
}

TEST_F(MatrixText, ScreenTextLargerThanTheBufferIsSplitAtLineEnds)
{
    /* 40 x 40 of 12-character numbers: about 21000 bytes, several message boxes. */
    PrecisionScope longDigits(12);
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
