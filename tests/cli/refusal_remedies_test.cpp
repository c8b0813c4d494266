/*
** Command-line refusals no other test covers: each names what failed and what to give
** instead.
*/
#include <gtest/gtest.h>

#include "support.h"

namespace {

using testing_support::examplePath;
using testing_support::RunResult;
using testing_support::TempDir;

TEST(RefusalRemedies, PlugInAndPictureFilesThatCannotBeUsed)
{
    TempDir dir;
    const std::string settings = "--settings " + dir.file("tervan.ini") + " --out " + dir.path + " ";
    const struct {
        std::string arguments, error;
    } rows[] = {
        {settings + "--plugin " + dir.file("none.so") + " " + examplePath("servo.json") + " tf",
         "praxa: cannot load plug-in " + dir.file("none.so") + ": " + dir.file("none.so") +
             ": cannot open shared object file: No such file or directory; give the plug-in library with --plugin\n"},
        {settings + examplePath("servo.json") + " draw --file missing/servo.svg",
         "praxa: command line: cannot write " + dir.file("missing/servo.svg") +
             ": cannot create the file; give another folder with --out or another name with --file\n"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.arguments);
        RunResult run = testing_support::runPraxa(row.arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err, row.error);
    }
}

}
