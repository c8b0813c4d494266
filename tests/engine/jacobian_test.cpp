/*
** tests/engine/jacobian_test.cpp: A and C of calcACMatrix against the analytic Jacobian
** of a nonlinear two-state diagram, at operating points with states from 0.3 to 1e6:
**   x1' = sin(x1) + 0.3 x2 + u,  x2' = x1 x2 + cos(x2),  y = sin(x2).
*/
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "host/host.h"
#include "hostapp/diagram.h"
#include "hostapp/engine.h"
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
                ["x2", "cos2"], ["x2", "out"]]})";
}

}

TEST(Jacobian, MatchesTheAnalyticDerivativesForStatesUpToAMillion)
{
    const double points[][2] = {{0.3, -2.1}, {1000.3, 2.7}, {10000.3, -50.7}, {1e6 + 0.3, 2.7}, {-0.7, -1e6 + 0.9}};
    for (const auto &point : points) {
        std::string error;
        ASSERT_TRUE(hostapp::loadDiagramText(diagram(point[0], point[1]), "test.json", error)) << error;
        const char *marked[] = {"s1", "x1", "sin1", "k", "s2", "x2", "prod", "cos2", "out"};
        for (const char *name : marked)
            hostapp::diagramBlock(name)->flags |= BLOCK_FLAG_CANDIDATE_MARK;
        HostList execution{}, states{}, derivs{}, stateBlocks{}, sampled{};
        createExecutionOrderSubGraph(&execution);
        addListMember(&stateBlocks, hostapp::diagramBlock("x1"));
        addListMember(&stateBlocks, hostapp::diagramBlock("x2"));
        ASSERT_EQ(getStateDerivList(&states, &derivs, &stateBlocks, &sampled), 0);
        /* the states as the engine holds them (the file's numbers rounded to 6 decimals) */
        double x1 = *(double *)states.items[0], x2 = *(double *)states.items[1];
        SCOPED_TRACE("x1 = " + std::to_string(x1) + ", x2 = " + std::to_string(x2));

        Matrix *A = (Matrix *)galloc(matrixBytes(2, 2));
        Matrix *C = (Matrix *)galloc(matrixBytes(1, 2));
        A->rows = 2, A->cols = 2, C->rows = 1, C->cols = 2;
        double *y = &hostapp::diagramPoint("out.out")->signal->value.scalar;
        calcACMatrix(A, C, y, &execution, &states, &derivs, 0, nullptr, nullptr, nullptr);
        /* column-major */
        const double expected[] = {std::cos(x1), x2, 0.3, x1 - std::sin(x2)};
        for (int k = 0; k < 4; k++)
            EXPECT_NEAR(A->data[k], expected[k], 1e-9 * std::fabs(expected[k])) << "A element " << k;
        EXPECT_EQ(C->data[0], 0.0);
        EXPECT_NEAR(C->data[1], std::cos(x2), 1e-9 * std::fabs(std::cos(x2)));
        gfree(A);
        gfree(C);
        for (HostList *list : {&execution, &states, &derivs, &stateBlocks, &sampled})
            gfree(list->items);
        hostapp::clearDiagram();
    }
}
