/*
** tests/linearize/fixture.h: a host with the plug-in linked in and a diagram loaded
** from text or from examples/, for the tests of reference points, linearizer and dialog.
*/
#ifndef PRAXA_TEST_LINEARIZE_FIXTURE_H
#define PRAXA_TEST_LINEARIZE_FIXTURE_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hostapp/diagram.h"
#include "linearize/linearize.h"
#include "platform/driver.h"
#include "support.h"

class DiagramTest : public testing_support::PluginTest {
protected:
    /* Loads a diagram, its text or examples/NAME, and clicks its own reference points, as
    ** the command line does, unless told not to. */
    void load(const std::string &diagram, bool references = true)
    {
        std::string error;
        ASSERT_TRUE(diagram.front() == '{' ? hostapp::loadDiagramText(diagram, "test.json", error)
                                           : hostapp::loadDiagramFile(testing_support::examplePath(diagram), error))
            << error;
        if (references) {
            ASSERT_TRUE(hostapp::applyDiagramReferencePoints(error)) << error;
        }
    }
    bool highlighted(const std::string &name) { return (hostapp::diagramPoint(name)->flags & REF_FLAG_HIGHLIGHT) != 0; }
};

/* Expects m to be rows x cols with the given elements, row by row, within tolerance. */
inline void expectMatrix(const Matrix *m, uint32_t rows, uint32_t cols, const std::vector<double> &byRow,
                         double tolerance = 1e-8)
{
    ASSERT_NE(m, nullptr);
    ASSERT_EQ(m->rows, rows);
    ASSERT_EQ(m->cols, cols);
    for (uint32_t i = 0; i < rows; ++i)
        for (uint32_t j = 0; j < cols; ++j)
            EXPECT_NEAR(m->data[j * rows + i], byRow[i * cols + j], tolerance) << "element (" << i << "," << j << ")";
}

#endif
