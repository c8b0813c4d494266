/*
** tests/engine/jacobian_test.cpp: A and C of calcACMatrix, as the plug-in's linearize calls
** it, against the analytic Jacobian of a nonlinear two-state diagram, at operating points
** with states from 0.3 to 1e6:
**   x1' = sin(x1) + 0.3 x2 + u,  x2' = x1 x2 + cos(x2),  y = sin(x2).
*/
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "hostapp/diagram.h"
#include "linearize/linearize.h"
#include "numeric/matrix.h"
#include "support.h"

namespace {

std::string diagram(double x1, double x2)
{
    return R"({"blocks": [
        {"id": "u", "type": "step", "value": 0},
        {"id": "s1", "type": "sum", "signs": "+++"}, {"id": "x1", "type": "integrator", "initial": )" +
           std::to_string(x1) + R"(},
        {"id": "sin1", "type": "sin"}, {"id": "k", "type": "gain", "gain": 0.3},
        {"id": "s2", "type": "sum", "signs": "++"}, {"id": "x2", "type": "integrator", "initial": )" +
           std::to_string(x2) + R"(},
        {"id": "prod", "type": "product"}, {"id": "cos2", "type": "cos"}, {"id": "out", "type": "sin"}],
      "wires": [["u", "s1.1"], ["sin1", "s1.2"], ["k", "s1.3"], ["s1", "x1"], ["x1", "sin1"], ["x2", "k"],
                ["prod", "s2.1"], ["cos2", "s2.2"], ["s2", "x2"], ["x1", "prod.1"], ["x2", "prod.2"],
                ["x2", "cos2"], ["x2", "out"]],
      "selection": ["s1", "x1", "sin1", "k", "s2", "x2", "prod", "cos2", "out"],
      "input": "s1.1", "output": "out.out"})";
}

}

TEST(Jacobian, MatchesTheAnalyticDerivativesForStatesUpToAMillion)
{
    testing_support::TempDir dir;
    testing_support::startHostWithPlugin(dir.file("tervan.ini"), dir.path);
    /* at most 6 decimals each, which the file (written with std::to_string) holds exactly */
    const double points[][2] = {{0.3, -2.1}, {1000.3, 2.7}, {10000.3, -50.7}, {1e6 + 0.3, 2.7}, {-0.7, -1e6 + 0.9}};
    for (auto [x1, x2] : points) {
        SCOPED_TRACE("x1 = " + std::to_string(x1) + ", x2 = " + std::to_string(x2));
        std::string error;
        ASSERT_TRUE(hostapp::loadDiagramText(diagram(x1, x2), "test.json", error)) << error;
        ASSERT_TRUE(hostapp::applyDiagramReferencePoints(error)) << error;
        ASSERT_EQ(linearize(nullptr), 1);
        /* column-major */
        const double expected[] = {std::cos(x1), x2, 0.3, x1 - std::sin(x2)};
        for (int k = 0; k < 4; k++)
            EXPECT_NEAR(stateSpaceModel.A->data[k], expected[k], 1e-9 * std::fabs(expected[k])) << "A element " << k;
        EXPECT_EQ(stateSpaceModel.C->data[0], 0.0);
        EXPECT_NEAR(stateSpaceModel.C->data[1], std::cos(x2), 1e-9 * std::fabs(std::cos(x2)));
    }
    hostapp::clearDiagram();
}

/* A state-space block of order 20 (large enough for the host to reuse its products at the
** operating point) in a loop that feeds half its output back to its input, at nonzero
** states: the linearized A is a - b c / 2, C is c. */
TEST(Jacobian, LargeLinearBlockInAFeedbackLoopGivesItsClosedLoopMatrices)
{
    const int n = 20;
    std::vector<double> a(n * n), b(n), c(n), initial(n);
    auto eighths = [](int k) { return (double)(k % 17 - 8) / 8.0; };
    std::string rows, text;
    for (int i = 0; i < n; i++) {
        std::string row;
        for (int j = 0; j < n; j++) {
            a[i * n + j] = eighths(7 * i + 3 * j + 1) - (i == j ? 4.0 : 0.0);
            row += (j ? ", " : "") + std::to_string(a[i * n + j]);
        }
        rows += (i ? ", [" : "[") + row + "]";
        b[i] = eighths(5 * i + 2), c[i] = eighths(3 * i + 11), initial[i] = eighths(11 * i + 4);
    }
    auto list = [](const std::vector<double> &v) {
        std::string s;
        for (double x : v)
            s += (s.empty() ? "" : ", ") + std::to_string(x);
        return "[" + s + "]";
    };
    testing_support::TempDir dir;
    testing_support::startHostWithPlugin(dir.file("tervan.ini"), dir.path);
    std::string error;
    ASSERT_TRUE(hostapp::loadDiagramText(
        R"({"blocks": [{"id": "r", "type": "step", "value": 1}, {"id": "e", "type": "sum", "signs": "+-"},
            {"id": "p", "type": "stateSpace", "a": [)" + rows + "], \"b\": " + list(b) + ", \"c\": " + list(c) +
            R"(, "d": 0, "initial": )" + list(initial) + R"(}, {"id": "k", "type": "gain", "gain": 0.5}],
          "wires": [["r", "e.1"], ["e", "p"], ["p", "k"], ["k", "e.2"]],
          "selection": ["e", "p", "k"], "input": "e.1", "output": "p.out"})",
        "loop.json", error)) << error;
    ASSERT_TRUE(hostapp::applyDiagramReferencePoints(error)) << error;
    ASSERT_EQ(linearize(nullptr), 1);
    ASSERT_EQ(stateSpaceModel.A->rows, (uint32_t)n);
    for (int i = 0; i < n; i++) {
        for (int j = 0; j < n; j++)     /* column-major */
            EXPECT_NEAR(stateSpaceModel.A->data[j * n + i], a[i * n + j] - b[i] * c[j] / 2, 1e-12) << i << "," << j;
        EXPECT_EQ(stateSpaceModel.C->data[i], c[i]) << i;
    }
    hostapp::clearDiagram();
}
