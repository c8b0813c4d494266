/*
** tests/plots/plot_files_test.cpp: the files a session writes beside its plots: one name
** per plot, the same in every run and without blanks; a file that already holds the plot
** left as it is (same inode) and one that differs replaced whole; and the CSV beside each
** plot of the servo example (L = 20/(s(s+1)(s+10))), whose headers carry the units the
** plots show and whose rows match the loop evaluated by hand at their own frequency or gain.
*/
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <regex>
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

/* A CSV file's header line and its rows of cells. */
struct Csv {
    std::string header;
    std::vector<std::vector<std::string>> rows;
};

Csv readCsv(const std::string &path)
{
    Csv csv;
    std::istringstream in(readFile(path));
    std::getline(in, csv.header);
    for (std::string line; std::getline(in, line);) {
        csv.rows.emplace_back();
        std::istringstream cells(line);
        for (std::string cell; std::getline(cells, cell, ',');)
            csv.rows.back().push_back(cell);
    }
    return csv;
}

std::vector<std::string> plotLines(const std::string &transcript)
{
    std::vector<std::string> names;
    std::regex line("\\[plot\\] (.*)\n");
    for (auto it = std::sregex_iterator(transcript.begin(), transcript.end(), line); it != std::sregex_iterator(); ++it)
        names.push_back((*it)[1]);
    return names;
}

ino_t inodeOf(const std::string &path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 ? info.st_ino : 0;
}

}

TEST(PlotFiles, AnUnchangedPlotIsLeftAsItIsAndAChangedOneIsReplaced)
{
    TempDir dir;
    const char *run = "{examples}servo.json bode";
    std::string plot = dir.file("Bode-Phase.svg");
    ASSERT_EQ(runPraxaIn(dir, run).status, 0);
    std::string first = readFile(plot);
    ino_t inode = inodeOf(plot);
    ASSERT_NE(inode, 0u);

    ASSERT_EQ(runPraxaIn(dir, run).status, 0);
    EXPECT_EQ(inodeOf(plot), inode);

    std::string altered = first;
    altered[altered.size() / 2] ^= 1;
    writeFile(plot, altered);
    ASSERT_EQ(runPraxaIn(dir, run).status, 0);
    EXPECT_EQ(readFile(plot), first);
    EXPECT_NE(inodeOf(plot), inode);
}

/* A second plot of a kind in a session is numbered from 2; the first keeps the plain name. */
TEST(PlotFiles, EveryPlotOfTheServoHasItsNameAndItsNumbersBesideIt)
{
    TempDir dir;
    writeFile(dir.file("session.txt"), "preferences --magnitude-unit db\nbode\nnyquist\nrlocus\nnyquist\nrlocus\n");
    RunResult run = runPraxaIn(dir, "--script {dir}/session.txt {examples}servo.json");
    ASSERT_EQ(run.status, 0) << run.err;
    std::vector<std::string> files = {"Bode-Magnitude.svg", "Bode-Phase.svg", "Nyquist.svg",
                                      "Root-Locus.svg",     "Nyquist-2.svg",  "Root-Locus-2.svg"};
    EXPECT_EQ(plotLines(run.out), files);
    for (const std::string &name : files)
        EXPECT_TRUE(readFile(dir.file(name)).rfind("<?xml", 0) == 0) << name;

    Csv magnitude = readCsv(dir.file("Bode-Magnitude.csv"));
    EXPECT_EQ(magnitude.header, "\"Frequency, (Rad/sec)\",Magnitude (Decibels)");
    ASSERT_FALSE(magnitude.rows.empty());
    for (const auto &row : {magnitude.rows.front(), magnitude.rows.back()}) {
        double w = std::stod(row[0]);
        EXPECT_NEAR(std::stod(row[1]), 20 * std::log10(std::abs(servo(w))), 1e-9) << w;
    }
    EXPECT_EQ(readCsv(dir.file("Bode-Phase.csv")).header, "\"Frequency, (Rad/sec)\",\"Phase, (Deg)\"");

    Csv nyquist = readCsv(dir.file("Nyquist.csv"));
    EXPECT_EQ(nyquist.header, "Frequency (rad/s),Real,Imaginary");
    int checked = 0;
    for (const auto &row : nyquist.rows) {
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

    Csv locus = readCsv(dir.file("Root-Locus.csv"));
    EXPECT_EQ(locus.header, "Gain,Branch 1 real,Branch 1 imaginary,Branch 2 real,Branch 2 imaginary,"
                            "Branch 3 real,Branch 3 imaginary");
    /* At K = 0 the branches start on the open-loop poles 0, -1, -10. */
    ASSERT_FALSE(locus.rows.empty());
    std::vector<std::string> first = locus.rows.front();
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
