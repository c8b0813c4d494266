/*
** tests/plots/plot_rewrite_test.cpp: a plot file that already holds the plot is left as it
** is (same inode); one that differs, even in one byte, is replaced whole.
*/
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

ino_t inodeOf(const std::string &path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 ? info.st_ino : 0;
}

TEST(PlotFiles, AnUnchangedPlotIsLeftAsItIsAndAChangedOneIsReplaced)
{
    TempDir dir;
    std::string run = "--settings " + dir.file("s.ini") + " --out " + dir.path + " " + examplePath("servo.json") + " bode";
    std::string plot = dir.file("Bode-Phase.svg");
    ASSERT_EQ(runPraxa(run).status, 0);
    std::string first = readFile(plot);
    ino_t inode = inodeOf(plot);
    ASSERT_NE(inode, 0u);

    ASSERT_EQ(runPraxa(run).status, 0);
    EXPECT_EQ(inodeOf(plot), inode);

    std::string altered = first;
    altered[altered.size() / 2] ^= 1;
    writeFile(plot, altered);
    ASSERT_EQ(runPraxa(run).status, 0);
    EXPECT_EQ(readFile(plot), first);
    EXPECT_NE(inodeOf(plot), inode);
}

}
