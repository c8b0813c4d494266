/*
** Plot file names: no blanks, and the same plot gets the same name whatever ran before
** it in the session; the transcript names every file.
*/
#include <gtest/gtest.h>

#include <regex>

#include "support.h"

using namespace testing_support;

namespace {

std::vector<std::string> plotLines(const std::string &transcript)
{
    std::vector<std::string> names;
    std::regex line("\\[plot\\] (.*)\n");
    for (auto it = std::sregex_iterator(transcript.begin(), transcript.end(), line); it != std::sregex_iterator(); ++it)
        names.push_back((*it)[1]);
    return names;
}

TEST(PlotFileNames, SamePlotSameNameInEveryRunWithoutBlanks)
{
    struct Case {
        const char *script;
        std::vector<std::string> files;
    } cases[] = {
        {"nyquist\n", {"Nyquist.svg"}},
        {"rlocus\n", {"Root-Locus.svg"}},
        {"bode\nnyquist\nrlocus\nnyquist\nrlocus\n",
         {"Bode-Magnitude.svg", "Bode-Phase.svg", "Nyquist.svg", "Root-Locus.svg", "Nyquist-2.svg", "Root-Locus-2.svg"}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.script);
        TempDir dir;
        writeFile(dir.file("session.txt"), c.script);
        RunResult run = runPraxa("--settings " + dir.file("tervan.ini") + " --out " + dir.path + " --script " +
                                 dir.file("session.txt") + " " + examplePath("servo.json"));
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(plotLines(run.out), c.files);
        for (const std::string &name : c.files)
            EXPECT_TRUE(readFile(dir.file(name)).rfind("<?xml", 0) == 0) << name;
    }
}

}
