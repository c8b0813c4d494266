/*
** tests/numeric/lu_solve_test.cpp: luSolve against LAPACK's dgesv on random systems of
** order 1 to 40, and its refusal of a singular matrix.
*/
#include <cmath>
#include <vector>

#include <gtest/gtest.h>
#include <lapacke.h>

#include "numeric/lu.h"
#include "numeric_support.h"

using namespace testing_numeric;

TEST(LuSolve, MatchesLapackAndRefusesASingularMatrix)
{
    std::mt19937_64 rng(3);
    std::normal_distribution<double> normal;
    for (int n : {1, 2, 3, 7, 16, 40}) {
        SCOPED_TRACE(n);
        std::vector<double> a = randomSquare(rng, n), b(n);
        for (double &v : b)
            v = normal(rng);
        std::vector<double> lapackA(a), x(b);
        std::vector<lapack_int> lapackPivots(n);
        ASSERT_EQ(LAPACKE_dgesv(LAPACK_COL_MAJOR, n, 1, lapackA.data(), n, lapackPivots.data(), x.data(), n), 0);
        Matrix *m = toMatrix(a, n, n);
        std::vector<double> ours(b);
        std::vector<int32_t> pivots(n);
        ASSERT_EQ(luSolve(m, n, ours.data(), pivots.data()), 1);
        double norm = 0.0;
        for (double v : x)
            norm = std::max(norm, std::fabs(v));
        /* Same algorithm (partial pivoting): the two agree to a few roundings of |x|. */
        for (int i = 0; i < n; i++)
            EXPECT_NEAR(ours[i], x[i], 1e-12 * norm) << i;
        gfree(m);
    }
    Matrix *singular = fromRows(2, 2, {1, 2, 2, 4});
    double b[2] = {1, 1};
    int32_t pivots[2];
    EXPECT_EQ(luSolve(singular, 2, b, pivots), 0);
    gfree(singular);
}
