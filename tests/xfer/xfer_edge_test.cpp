/*
** tests/xfer/xfer_edge_test.cpp: zeros, poles, gain and coefficients of hand-derived
** models: pure integrators, feed-through, first order, an uncancelled pole-zero pair,
** an output row that vanishes, pole snapping and the gain's sign.
*/
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>

#include "hostapp/host_state.h"
#include "platform/driver.h"
#include "tests/xfer/model.h"
#include "xfer/system_matrix.h"
#include "xfer/xfer.h"

using namespace xfertest;

namespace {

struct Result {
    int32_t zeroCount = -1;
    double gain = 0.0;
    std::vector<double> numerator, denominator;
    std::vector<Complex> zeros, poles;
};

/* zeros, poles and gain the way stateToXferFunc combines them, keeping the root lists. */
Result transferFunctionOf(Model &m)
{
    Result r;
    int32_t n = m.n;
    r.numerator.assign(n + 2, -7.0);
    r.denominator.assign(n + 2, -7.0);
    r.zeros.assign(n + 3, Complex{-7.0, -7.0});
    r.poles.assign(n + 3, Complex{-7.0, -7.0});
    Polynomial num{n + 1, r.numerator.data()}, den{n + 1, r.denominator.data()};
    stateToZeros(m.A, m.B, m.C, m.D, r.zeros.data(), &num);
    stateToPoles(m.A, r.poles.data(), &den);
    EXPECT_EQ(den.count, n + 1);
    r.zeroCount = num.count - 1;
    r.zeros.resize(r.zeroCount);
    r.poles.resize(n);
    r.gain = xferGain(m.A, m.B, m.C, m.D, r.poles.data(), r.zeros.data(), r.zeroCount, n);
    return r;
}

class XferEdge : public ::testing::Test {
protected:
    void SetUp() override
    {
        platform::resetWindowing();
        hostapp::resetHost();
    }
    bool transcriptHas(const std::string &text)
    {
        for (const std::string &line : platform::transcript())
            if (line.find(text) != std::string::npos)
                return true;
        return false;
    }
};

}

TEST_F(XferEdge, FeedThroughStopsTheReductionAtOnce)
{
    /* G = 1/(s^2 + 3s + 2) + 1 = (s^2 + 3s + 3)/(s^2 + 3s + 2). */
    Model m(2, {0, 1, -2, -3}, {0, 1}, {1, 0}, 1.0);
    Matrix *S = matrixFromRows(3, 3, {0, 0, 1, 1, -2, -3, 1, 1, 0});
    std::vector<double> before(S->data, S->data + 9);
    EXPECT_EQ(reduceSysMatrix(S, 2, 1e-270), 2);
    EXPECT_EQ(std::vector<double>(S->data, S->data + 9), before);
    gfree(S);

    Result r = transferFunctionOf(m);
    ASSERT_EQ(r.zeroCount, 2);
    /* eigenvalues of A - b c / d = [0 1; -3 -3]: -1.5 -+ i sqrt(3)/2, negative part first */
    EXPECT_NEAR(r.zeros[0].re, -1.5, 1e-12);
    EXPECT_NEAR(r.zeros[0].im, -std::sqrt(3.0) / 2, 1e-12);
    EXPECT_NEAR(r.zeros[1].re, -1.5, 1e-12);
    EXPECT_NEAR(r.zeros[1].im, std::sqrt(3.0) / 2, 1e-12);
    EXPECT_NEAR(r.numerator[0], 3.0, 1e-12);
    EXPECT_NEAR(r.numerator[1], 3.0, 1e-12);
    EXPECT_EQ(r.numerator[2], 1.0);
    EXPECT_EQ(r.numerator[3], 0.0);
    EXPECT_NEAR(r.gain, 1.0, 1e-12);
}

TEST_F(XferEdge, CoincidingPoleAndZeroAreNotCancelled)
{
    /* (s + 1)/((s + 1)(s + 2)(s + 3)): c b = 0 exactly, and after one pass the feed-through
    ** is a rounding residue, which ends nothing; the zero -1 stays beside the pole -1. */
    std::unique_ptr<Model> m(controllableForm({1.0, 1.0, 0.0}, {6.0, 11.0, 6.0}));
    Result r = transferFunctionOf(*m);
    ASSERT_EQ(r.zeroCount, 1);
    EXPECT_NEAR(r.zeros[0].re, -1.0, 1e-12);
    EXPECT_NEAR(r.gain, 1.0, 1e-12);
    bool poleAtMinusOne = false;
    for (const Complex &p : r.poles)
        poleAtMinusOne |= std::fabs(p.re + 1.0) < 1e-9;
    EXPECT_TRUE(poleAtMinusOne);
}

TEST_F(XferEdge, PolesNextToTheOriginAreSnappedButZerosAreNot)
{
    Model tiny(1, {9.9e-7}, {1}, {1}, 0.0);
    Result r = transferFunctionOf(tiny);
    EXPECT_EQ(r.poles[0].re, 0.0);
    EXPECT_EQ(r.poles[0].im, 0.0);
    EXPECT_EQ(r.denominator[0], 0.0);

    Model pair(2, {0, 9.9e-7, -9.9e-7, 0}, {0, 1}, {1, 0}, 0.0);
    r = transferFunctionOf(pair);
    for (const Complex &p : r.poles) {
        EXPECT_EQ(p.re, 0.0);
        EXPECT_EQ(p.im, 0.0);
    }

    Model justOutside(1, {-1.01e-6}, {1}, {1}, 0.0);
    r = transferFunctionOf(justOutside);
    EXPECT_EQ(r.poles[0].re, -1.01e-6);

    /* zero of A - b c / d = 0 - 9.9e-7 */
    Model zero(1, {0}, {1}, {9.9e-7}, 1.0);
    r = transferFunctionOf(zero);
    ASSERT_EQ(r.zeroCount, 1);
    EXPECT_EQ(r.zeros[0].re, -9.9e-7);
    EXPECT_EQ(r.numerator[0], 9.9e-7);
}

TEST_F(XferEdge, GainCarriesTheSign)
{
    Model minus(1, {-1}, {1}, {-2}, 0.0);
    EXPECT_EQ(transferFunctionOf(minus).gain, -2.0);
    /* an unstable pole at 3 makes the angle at s0 = 0 180 degrees: 2/(s - 3) */
    Model unstable(1, {3}, {1}, {2}, 0.0);
    EXPECT_NEAR(transferFunctionOf(unstable).gain, 2.0, 1e-14);
    /* -(s - 2)/(s + 1): the zero at 2 gives -180 degrees */
    Model rightZero(1, {-1}, {1}, {3}, -1.0);
    Result r = transferFunctionOf(rightZero);
    ASSERT_EQ(r.zeroCount, 1);
    EXPECT_NEAR(r.zeros[0].re, 2.0, 1e-14);
    EXPECT_NEAR(r.gain, -1.0, 1e-14);
}

TEST_F(XferEdge, ZeroOutputRowIsReportedAndGivesNoZeros)
{
    Model m(2, {0, 1, -2, -3}, {0, 1}, {0, 0}, 0.0);
    Result r = transferFunctionOf(m);
    EXPECT_TRUE(transcriptHas("Zero C matrix means no connection to output. Check for delay blocks."));
    EXPECT_EQ(r.zeroCount, 0);
    EXPECT_EQ(r.numerator, (std::vector<double>{1.0, 0.0, 0.0, 0.0}));
    EXPECT_NEAR(r.denominator[0], 2.0, 1e-12);
    EXPECT_NEAR(r.denominator[1], 3.0, 1e-12);
    EXPECT_EQ(r.gain, 0.0);

    platform::clearTranscript();
    Model notANumber(2, {0, 1, -2, -3}, {0, 1}, {0, NAN}, 0.0);
    transferFunctionOf(notANumber);
    EXPECT_FALSE(transcriptHas("Zero C matrix"));
}

TEST_F(XferEdge, OutputRowVanishingInTheReductionMeansNoZeros)
{
    /* A = diag(-1, -2), b = (1, 0), c = (0, 1), d = 0: G = 0.  One pass leaves the output
    ** row of the first state empty: G is identically 0, which has no zeros. */
    Model m(2, {-1, 0, 0, -2}, {1, 0}, {0, 1}, 0.0);
    Result r = transferFunctionOf(m);
    EXPECT_FALSE(transcriptHas("Zero C matrix"));
    EXPECT_EQ(r.zeroCount, 0);
    EXPECT_EQ(r.gain, 0.0);
}

/* A non-finite element is carried through (the numeric core reports its own trouble);
** every loop here is bounded by the model's order or the test point count. */
TEST_F(XferEdge, NonFiniteModelsEndWithAResult)
{
    for (double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        Model m(3, {0, 1, 0, 0, 0, 1, -6, bad, -6}, {0, 0, 1}, {1, bad, 0}, 0.0);
        double *numerator = nullptr, *denominator = nullptr, gain = 0.0;
        int32_t zeroCount = stateToXferFunc(m.A, m.B, m.C, m.D, &numerator, &denominator, &gain);
        EXPECT_GE(zeroCount, 0);
        EXPECT_LE(zeroCount, 3);
        ASSERT_NE(numerator, nullptr);
        EXPECT_EQ(numerator[zeroCount], 1.0);
        EXPECT_EQ(denominator[3], 1.0);
        gfree(numerator);
        gfree(denominator);
    }
}

TEST_F(XferEdge, StrictlyProperModelKeepsItsZeroAndIsHandedOverMonic)
{
    /* (s + 4)/(s^2 + 3s + 2): one pass leaves feed-through c b = 1, one zero at -4. */
    std::unique_ptr<Model> m(controllableForm({4.0, 1.0}, {2.0, 3.0}));
    Result r = transferFunctionOf(*m);
    ASSERT_EQ(r.zeroCount, 1);
    EXPECT_NEAR(r.zeros[0].re, -4.0, 1e-12);
    EXPECT_EQ(r.zeros[0].im, 0.0);

    double *numerator = nullptr, *denominator = nullptr, gain = 0.0;
    EXPECT_EQ(stateToXferFunc(m->A, m->B, m->C, m->D, &numerator, &denominator, &gain), 1);
    ASSERT_NE(numerator, nullptr);
    ASSERT_NE(denominator, nullptr);
    EXPECT_NEAR(numerator[0], 4.0, 1e-12);
    EXPECT_EQ(numerator[1], 1.0);
    EXPECT_EQ(numerator[2], 0.0);
    EXPECT_EQ(numerator[3], 0.0);
    EXPECT_NEAR(denominator[0], 2.0, 1e-12);
    EXPECT_NEAR(denominator[1], 3.0, 1e-12);
    EXPECT_EQ(denominator[2], 1.0);
    EXPECT_EQ(denominator[3], 0.0);
    EXPECT_NEAR(gain, 1.0, 1e-12);
    gfree(numerator);
    gfree(denominator);

    gain = 0.0;
    EXPECT_EQ(timeToFrequency(m->A, m->B, m->C, m->D, nullptr, nullptr, &gain, 0), 1);
    EXPECT_NEAR(gain, 1.0, 1e-12);
    EXPECT_NEAR(currentXfer.gain, 1.0, 1e-12);
    EXPECT_EQ(currentXfer.zeroCount, 1);
    EXPECT_EQ(currentXfer.poleCount, 2);
    EXPECT_EQ(currentXfer.zeros, nullptr);
    EXPECT_EQ(currentXfer.poles, nullptr);
}

TEST_F(XferEdge, EmptyOrMisfittingModelsAreNotComputed)
{
    Matrix *empty = matrixFromRows(0, 0, {});
    double gain = 5.0;
    double *numerator = (double *)&gain;
    EXPECT_EQ(stateToXferFunc(empty, empty, empty, empty, &numerator, nullptr, &gain), 0);
    EXPECT_EQ(gain, 5.0);
    EXPECT_EQ(numerator, &gain);
    EXPECT_EQ(timeToFrequency(empty, empty, empty, empty, nullptr, nullptr, &gain, 1), 0);
    EXPECT_TRUE(platform::transcript().empty());
    gfree(empty);

    Model m(2, {0, 1, -2, -3}, {0, 1}, {1, 0}, 0.0);
    Matrix *wrongB = matrixFromRows(3, 1, {0, 0, 1});
    EXPECT_EQ(stateToXferFunc(m.A, wrongB, m.C, m.D, nullptr, nullptr, &gain), 0);
    EXPECT_EQ(gain, 5.0);
    EXPECT_TRUE(transcriptHas("do not fit together"));
    gfree(wrongB);
}
