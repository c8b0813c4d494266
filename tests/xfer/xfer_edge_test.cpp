/*
** tests/xfer/xfer_edge_test.cpp: zeros, poles, gain and coefficients of hand-derived
** models: pure integrators, feed-through, first order, an uncancelled pole-zero pair,
** an output row that vanishes, pole snapping and the gain's sign.
*/
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>

#include "support/model.h"
#include "xfer/system_matrix.h"
#include "xfer/xfer.h"

using namespace xfertest;

namespace {

using XferEdge = testing_support::PluginTest;

const double ROOT3_2 = std::sqrt(3.0) / 2;

/* Each row's zeros (in the order given), poles (as a set, sorted by real then imaginary
** part), leading coefficients and gain (NaN: not checked); tolerance 0 asks for exact values.
** The gain is stateToXferFunc's, which must also give the same zero count and monic
** polynomials. */
TEST_F(XferEdge, HandDerivedModels)
{
    struct Row {
        const char *name;
        Model *model;
        double tolerance;
        std::vector<Complex> zeros, poles;
        std::vector<double> numerator, denominator;
        double gain;
        const char *message;            /* a transcript line it must show, or nullptr */
    } rows[] = {
        /* G = 1/(s^2 + 3s + 2) + 1 = (s^2 + 3s + 3)/(s^2 + 3s + 2); zeros are the eigenvalues
        ** of A - b c / d = [0 1; -3 -3], negative imaginary part first. */
        {"feed-through", new Model(2, {0, 1, -2, -3}, {0, 1}, {1, 0}, 1.0), 1e-12,
         {{-1.5, -ROOT3_2}, {-1.5, ROOT3_2}}, {{-2, 0}, {-1, 0}}, {3, 3, 1, 0}, {2, 3, 1, 0}, 1.0, nullptr},
        /* (s + 1)/((s + 1)(s + 2)(s + 3)): c b = 0 exactly, and after one pass the feed-through
        ** is a rounding residue, which ends nothing; the zero -1 stays beside the pole -1. */
        {"coinciding pole and zero are not cancelled", controllableForm({1.0, 1.0, 0.0}, {6.0, 11.0, 6.0}), 1e-9,
         {{-1, 0}}, {{-3, 0}, {-2, 0}, {-1, 0}}, {1, 1, 0}, {6, 11, 6, 1}, 1.0, nullptr},
        /* (s + 4)/(s^2 + 3s + 2): one pass leaves feed-through c b = 1, one zero at -4. */
        {"strictly proper", controllableForm({4.0, 1.0}, {2.0, 3.0}), 1e-12, {{-4, 0}}, {{-2, 0}, {-1, 0}},
         {4, 1, 0, 0}, {2, 3, 1, 0}, 1.0, nullptr},
        /* Poles within 1e-6 of the origin are snapped to it, zeros are not. */
        {"pole next to the origin snapped", new Model(1, {9.9e-7}, {1}, {1}, 0.0), 0, {}, {{0, 0}}, {1, 0}, {0, 1},
         NAN, nullptr},
        {"pole pair next to the origin snapped", new Model(2, {0, 9.9e-7, -9.9e-7, 0}, {0, 1}, {1, 0}, 0.0), 0, {},
         {{0, 0}, {0, 0}}, {}, {}, NAN, nullptr},
        {"pole just outside kept", new Model(1, {-1.01e-6}, {1}, {1}, 0.0), 0, {}, {{-1.01e-6, 0}}, {}, {}, 1.0,
         nullptr},
        {"zero next to the origin kept", new Model(1, {0}, {1}, {9.9e-7}, 1.0), 0, {{-9.9e-7, 0}}, {{0, 0}},
         {9.9e-7, 1}, {}, 1.0, nullptr},
        {"negative gain", new Model(1, {-1}, {1}, {-2}, 0.0), 0, {}, {{-1, 0}}, {}, {}, -2.0, nullptr},
        /* an unstable pole at 3 makes the angle at s0 = 0 180 degrees: 2/(s - 3) */
        {"unstable pole", new Model(1, {3}, {1}, {2}, 0.0), 1e-14, {}, {{3, 0}}, {}, {}, 2.0, nullptr},
        /* -(s - 2)/(s + 1): the zero at 2 gives -180 degrees */
        {"right half-plane zero", new Model(1, {-1}, {1}, {3}, -1.0), 1e-14, {{2, 0}}, {{-1, 0}}, {}, {}, -1.0,
         nullptr},
        {"zero output row", new Model(2, {0, 1, -2, -3}, {0, 1}, {0, 0}, 0.0), 1e-12, {}, {{-2, 0}, {-1, 0}},
         {1, 0, 0, 0}, {2, 3}, 0.0, "[Tervan] Zero C matrix means no connection to output. Check for delay blocks."},
        /* A = diag(-1, -2), b = (1, 0), c = (0, 1), d = 0: G = 0.  One pass leaves the output
        ** row of the first state empty: G is identically 0, which has no zeros. */
        {"output row vanishing in the reduction", new Model(2, {-1, 0, 0, -2}, {1, 0}, {0, 1}, 0.0), 0, {},
         {{-2, 0}, {-1, 0}}, {}, {}, 0.0, nullptr},
    };
    auto near = [](double value, double expected, double tolerance) {
        if (std::isnan(expected))
            return true;
        return tolerance == 0 ? value == expected : std::fabs(value - expected) <= tolerance;
    };
    for (const Row &row : rows) {
        std::unique_ptr<Model> m(row.model);
        platform::clearTranscript();
        int32_t n = m->n;
        std::vector<double> numerator(n + 2, -7.0), denominator(n + 2, -7.0);
        std::vector<Complex> zeros(n + 3, Complex{-7.0, -7.0}), poles(n + 3, Complex{-7.0, -7.0});
        Polynomial num{n + 1, numerator.data()}, den{n + 1, denominator.data()};
        stateToZeros(m->A, m->B, m->C, m->D, zeros.data(), &num);
        stateToPoles(m->A, poles.data(), &den);
        EXPECT_EQ(den.count, n + 1) << row.name;
        int32_t zeroCount = num.count - 1;

        ASSERT_EQ(zeroCount, (int32_t)row.zeros.size()) << row.name;
        for (int32_t i = 0; i < zeroCount; ++i)
            EXPECT_TRUE(near(zeros[i].re, row.zeros[i].re, row.tolerance) &&
                        near(zeros[i].im, row.zeros[i].im, row.tolerance))
                << row.name << ": zero " << i << " " << zeros[i].re << "," << zeros[i].im;
        poles.resize(n);
        std::sort(poles.begin(), poles.end(),
                  [](Complex a, Complex b) { return a.re < b.re || (a.re == b.re && a.im < b.im); });
        for (int32_t i = 0; i < n; ++i)
            EXPECT_TRUE(near(poles[i].re, row.poles[i].re, row.tolerance) &&
                        near(poles[i].im, row.poles[i].im, row.tolerance))
                << row.name << ": pole " << i << " " << poles[i].re << "," << poles[i].im;
        for (size_t i = 0; i < row.numerator.size(); ++i)
            EXPECT_TRUE(near(numerator[i], row.numerator[i], row.tolerance)) << row.name << ": n" << i;
        for (size_t i = 0; i < row.denominator.size(); ++i)
            EXPECT_TRUE(near(denominator[i], row.denominator[i], row.tolerance)) << row.name << ": d" << i;
        std::string transcript = platform::transcriptText();
        if (row.message) {
            EXPECT_NE(transcript.find(std::string(row.message) + "\n"), std::string::npos) << row.name;
        } else {
            EXPECT_EQ(transcript, "") << row.name;
        }

        double *handedNumerator = nullptr, *handedDenominator = nullptr, gain = 0.0;
        EXPECT_EQ(stateToXferFunc(m->A, m->B, m->C, m->D, &handedNumerator, &handedDenominator, &gain), zeroCount)
            << row.name;
        ASSERT_NE(handedNumerator, nullptr);
        EXPECT_EQ(handedNumerator[zeroCount], 1.0) << row.name;
        EXPECT_EQ(handedDenominator[n], 1.0) << row.name;
        EXPECT_TRUE(near(gain, row.gain, row.tolerance)) << row.name << ": gain " << gain;
        gfree(handedNumerator);
        gfree(handedDenominator);
    }
}

TEST_F(XferEdge, FeedThroughStopsTheReductionAtOnceAndTheResultReachesCurrentXfer)
{
    Matrix *S = matrixFromRows(3, 3, {0, 0, 1, 1, -2, -3, 1, 1, 0});
    std::vector<double> before(S->data, S->data + 9);
    EXPECT_EQ(reduceSysMatrix(S, 2, 1e-270), 2);
    EXPECT_EQ(std::vector<double>(S->data, S->data + 9), before);
    gfree(S);

    std::unique_ptr<Model> m(controllableForm({4.0, 1.0}, {2.0, 3.0}));
    double gain = 0.0;
    EXPECT_EQ(timeToFrequency(m->A, m->B, m->C, m->D, nullptr, nullptr, &gain, 0), 1);
    EXPECT_NEAR(gain, 1.0, 1e-12);
    EXPECT_NEAR(currentXfer.gain, 1.0, 1e-12);
    EXPECT_EQ(currentXfer.zeroCount, 1);
    EXPECT_EQ(currentXfer.poleCount, 2);
    EXPECT_EQ(currentXfer.zeros, nullptr);
    EXPECT_EQ(currentXfer.poles, nullptr);
}

/* A non-finite element is carried through (the numeric core reports its own trouble);
** every loop here is bounded by the model's order or the test point count. A NaN output
** row is not a zero one. */
TEST_F(XferEdge, NonFiniteModelsEndWithAResult)
{
    for (double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        platform::clearTranscript();
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
        Model nanRow(2, {0, 1, -2, -3}, {0, 1}, {0, bad}, 0.0);
        stateToXferFunc(nanRow.A, nanRow.B, nanRow.C, nanRow.D, nullptr, nullptr, &gain);
        EXPECT_EQ(platform::transcriptText().find("Zero C matrix"), std::string::npos);
    }
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
    EXPECT_NE(platform::transcriptText().find("do not fit together"), std::string::npos);
    gfree(wrongB);
}

}
