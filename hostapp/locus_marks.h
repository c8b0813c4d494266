/*
** hostapp/locus_marks.h: the points a person looks for on a root locus, found from its
** branches alone: the open-loop poles and zeros, the closed-loop poles at the current
** gain, where branches cross the imaginary axis and where they meet on the real axis.
*/
#ifndef TERVAN_LOCUS_MARKS_H
#define TERVAN_LOCUS_MARKS_H

#include <complex>
#include <vector>

#include "hostapp/plot_series.h"

namespace hostapp {

struct LocusMarks {
    std::vector<std::complex<double>> poles, zeros, atGain, axisCrossings, breakaways;
};

/* The closed-loop poles at gain K are the roots of D(s) + K N(s), one polynomial per
** step, affine in K: the branch points at two steps of different gains give D and N, and
** so the open-loop poles (roots of D), zeros (roots of N, zeroCount of them) and the
** closed-loop poles at `gain`, and the breakaway (and break-in) points the drawn gains
** reach.  gains[i] is the gain of step i.  Lists stay empty when
** the branches do not allow it (fewer than two gains, points missing). */
LocusMarks locusMarks(const std::vector<PlotSeries> &branches, const std::vector<double> &gains, int zeroCount,
                      double gain);

}

#endif
