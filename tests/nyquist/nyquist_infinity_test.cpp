/*
** tests/nyquist/nyquist_infinity_test.cpp: the curve where the response runs to infinity:
** the detours around imaginary-axis poles in either frequency unit (every point must be
** the response at a point of a half circle around the pole, or of the axis), and the
** sampled curve of a loop with a pole on the unit circle (held to the circle of R∞).
*/
#include <cmath>

#include "nyquist_fixture.h"

static const double PI = 3.141592653589793;

TEST_F(NyquistTest, DetoursGoAroundThePolesWhereTheyAreInEitherUnit)
{
    struct Row {
        Roots poles;
        double omega0;      /* the detoured pole on the non-negative axis, rad/s */
    };
    const Row rows[] = {{{{0, -1}, {0, 1}}, 1.0}, {{{0, 0}, {-1, 0}}, 0.0}};
    for (const Row &row : rows)
        for (double unitFactor : {1.0, 2 * PI}) {
            SCOPED_TRACE("pole at j" + std::to_string(row.omega0) + ", unit factor " + std::to_string(unitFactor));
            poles = row.poles;
            frequencyRange = {1000, 0.1, 100.0};
            gfree(W);
            run(unitFactor, 1.0);
            /* ρ as the run finds it: between the pole and halfway to stop (rad/s). */
            double stop = frequencyRange.stop * unitFactor;
            NyquistSystem system{nullptr, 0, poles.data(), (int32_t)poles.size(), 1.0};
            double r = infinityCrossing(row.omega0, (row.omega0 + stop) / 2, system) - row.omega0;
            int onArc = 0;
            for (uint32_t p = 1; p <= count(); p++) {
                /* On a half circle s = (r cos φ, ±ω0 + r sin φ); elsewhere on the axis. */
                double offset = std::fabs(W[p]) - row.omega0;
                double re = std::fabs(offset) < r ? std::sqrt(r * r - offset * offset) : 0.0;
                onArc += re > 0.0;
                std::complex<double> h = poleZeroResponse({re, W[p]}, zeros, poles, 1.0);
                ASSERT_LT(std::abs(std::complex<double>(X(p), Y(p)) - h), 1e-6 * std::abs(h))
                    << "point " << p << " at W = " << W[p];
            }
            EXPECT_GT(onArc, 400);
        }
}

TEST_F(NyquistTest, SampledCurveOfALoopWithAnIntegratorStaysReadable)
{
    /* 0.1 (z + 0.5)/((z - 1)(z - 0.5)) in Hertz up to 1 Hz: θ = 2π lands on the pole z = 1. */
    zeros = {{-0.5, 0}};
    poles = {{1, 0}, {0.5, 0}};
    frequencyRange = {1000, 1e-4, 1.0};
    prepareSampledNyquist(plot);
    nyquistResponseSampled(1, 2, poles.data(), zeros.data(), (double *)plot->traces[0].points.items,
                           (double *)plot->traces[1].points.items, 2 * PI, 0.1);
    int held = 0;
    double step = (std::log10(1.0) - std::log10(1e-4)) / 999;
    for (int p = 1; p <= 1000; p++) {
        double theta = std::pow(10.0, std::log10(1e-4) + (p - 1) * step) * 2 * PI;
        std::complex<double> h = poleZeroResponse(std::polar(1.0, theta), zeros, poles, 0.1);
        double magnitude = std::hypot(X(p), Y(p));
        if (std::abs(h) <= 10.0) {
            EXPECT_NEAR(X(p), h.real(), 1e-9) << p;
            EXPECT_NEAR(Y(p), h.imag(), 1e-9) << p;
        } else {
            /* beyond R∞: on its circle, with the response's phase (but at the pole itself) */
            held++;
            EXPECT_NEAR(magnitude, 10.0, 1e-9) << p;
            if (p < 1000) {
                EXPECT_NEAR(std::arg(std::complex<double>(X(p), Y(p))), std::arg(h), 1e-9) << p;
            }
        }
    }
    EXPECT_GT(held, 100);
}
