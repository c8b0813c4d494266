/*
** tests/plots/plot_data_test.cpp: the CSV beside each plot of the servo example
** (L = 20/(s(s+1)(s+10))): headers with the units the plots show, and rows whose
** numbers match the loop evaluated by hand at the row's own frequency or gain.
*/
#include <algorithm>
#include <cmath>
#include <complex>
#include <sstream>

#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

std::complex<double> servo(double w)
{
    std::complex<double> s(0.0, w);
    return 20.0 / (s * (s + 1.0) * (s + 10.0));
}

std::vector<std::vector<std::string>> rowsOf(const std::string &csv)
{
    std::vector<std::vector<std::string>> rows;
    std::istringstream in(csv);
    std::string line;
    std::getline(in, line);     /* header, checked as text */
    while (std::getline(in, line)) {
        std::vector<std::string> cells;
        std::istringstream cellsIn(line);
        std::string cell;
        while (std::getline(cellsIn, cell, ','))
            cells.push_back(cell);
        rows.push_back(cells);
    }
    return rows;
}

std::string headerOf(const std::string &csv)
{
    return csv.substr(0, csv.find('\n'));
}

}

TEST(PlotData, EveryPlotOfTheServoHasItsNumbersBesideIt)
{
    TempDir dir;
    std::string common = "--settings " + dir.file("tervan.ini") + " --out " + dir.path + " " + examplePath("servo.json");
    ASSERT_EQ(runPraxa(common + " preferences --magnitude-unit db").status, 0);
    for (const char *command : {" bode", " nyquist", " rlocus"})
        ASSERT_EQ(runPraxa(common + command).status, 0) << command;

    std::string magnitude = readFile(dir.file("Bode-Magnitude.csv"));
    EXPECT_EQ(headerOf(magnitude), "\"Frequency, (Rad/sec)\",Magnitude (Decibels)");
    auto rows = rowsOf(magnitude);
    ASSERT_FALSE(rows.empty());
    for (const auto &row : {rows.front(), rows.back()}) {
        double w = std::stod(row[0]);
        EXPECT_NEAR(std::stod(row[1]), 20 * std::log10(std::abs(servo(w))), 1e-9) << w;
    }
    EXPECT_EQ(headerOf(readFile(dir.file("Bode-Phase.csv"))), "\"Frequency, (Rad/sec)\",\"Phase, (Deg)\"");

    std::string nyquist = readFile(dir.file("Nyquist.csv"));
    EXPECT_EQ(headerOf(nyquist), "Frequency (rad/s),Real,Imaginary");
    int checked = 0;
    for (const auto &row : rowsOf(nyquist)) {
        double w = std::stod(row[0]);
        std::complex<double> l = servo(w);
        /* Away from the detour around the pole at the origin the curve is L(jw) itself. */
        if (std::abs(w) < 0.5)
            continue;
        EXPECT_NEAR(std::stod(row[1]), l.real(), 1e-9 * std::abs(l)) << w;
        EXPECT_NEAR(std::stod(row[2]), l.imag(), 1e-9 * std::abs(l)) << w;
        ++checked;
    }
    EXPECT_GT(checked, 100);

    std::string locus = readFile(dir.file("Root-Locus.csv"));
    EXPECT_EQ(headerOf(locus), "Gain,Branch 1 real,Branch 1 imaginary,Branch 2 real,Branch 2 imaginary,"
                               "Branch 3 real,Branch 3 imaginary");
    /* At K = 0 the branches start on the open-loop poles 0, -1, -10. */
    std::vector<std::string> first = rowsOf(locus).front();
    ASSERT_EQ(first.size(), 7u);
    EXPECT_EQ(first[0], "0");
    std::vector<double> starts;
    for (size_t branch = 0; branch < 3; branch++) {
        starts.push_back(std::stod(first[1 + 2 * branch]));
        EXPECT_EQ(std::stod(first[2 + 2 * branch]), 0.0);
    }
    std::sort(starts.begin(), starts.end());
    EXPECT_NEAR(starts[0], -10.0, 1e-12);
    EXPECT_NEAR(starts[1], -1.0, 1e-12);
    EXPECT_NEAR(starts[2], 0.0, 1e-12);
}
