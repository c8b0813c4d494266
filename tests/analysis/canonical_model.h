/*
** tests/analysis/canonical_model.h: the report's model of a transfer function, for the
** report's tests and its benchmark.
*/
#ifndef PRAXA_TESTS_CANONICAL_MODEL_H
#define PRAXA_TESTS_CANONICAL_MODEL_H

#include <vector>

#include "analysis/report.h"

/* N(s)/D(s) in controllable canonical form: den monic, ascending a0 ... a(n-1) (the
** leading 1 left out), num ascending b0 ... b(n-1). */
inline analysis::Model canonical(std::vector<double> num, std::vector<double> den, double samplePeriod = 0.0)
{
    analysis::Model m;
    uint32_t n = (uint32_t)den.size();
    m.order = n;
    m.a.assign((size_t)n * n, 0.0);
    for (uint32_t i = 0; i + 1 < n; i++)
        m.a[(size_t)(i + 1) * n + i] = 1.0;
    for (uint32_t j = 0; j < n; j++)
        m.a[(size_t)j * n + (n - 1)] = -den[j];
    m.b.assign(n, 0.0);
    m.b[n - 1] = 1.0;
    num.resize(n, 0.0);
    m.c = num;
    m.samplePeriod = samplePeriod;
    return m;
}

#endif
