/*
** tests/cli/host_modules_test.cpp: the executable without its optional modules beside it:
** the everyday commands run as before; draw, serve and a diagram with an expression block
** say which module is missing.
*/
#include <cstdlib>

#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

TEST(HostModules, OnlyDrawServeAndExpressionsNeedTheirModules)
{
    TempDir dir;
    std::string exe = dir.file("praxa"), out = dir.file("o"), plugin = PRAXA_EXE;
    plugin.replace(plugin.rfind('/') + 1, std::string::npos, "libpraxa.so");
    ASSERT_EQ(std::system(("cp " + std::string(PRAXA_EXE) + " " + exe).c_str()), 0);
    auto missing = [&](const std::string &needer, const std::string &library) {
        return needer + " needs the module " + dir.file(library) + ", which cannot be loaded (" + dir.file(library) +
               ": cannot open shared object file: No such file or directory); put " + library +
               " of the same build beside praxa\n";
    };
    const struct {
        std::string diagram, command;
        int status;
        std::string error;
    } rows[] = {
        {"servo.json", "bode", 0, ""},
        {"servo.json", "draw", 2, "praxa: command line: " + missing("the draw command", "libpraxa_draw.so")},
        {"servo.json", "serve --port 0", 2, "praxa: " + missing("the serve command", "libpraxa_serve.so")},
        {"maglev.json", "tf", 2,
         "praxa: " + examplePath("maglev.json") + ":6: block 'accel': " +
             missing("the expression block", "libpraxa_expression.so")},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.diagram + " " + row.command);
        RunResult run = runPraxa("--plugin " + plugin + " --settings " + dir.file("s.ini") + " --out " + out + " " +
                                 examplePath(row.diagram) + " " + row.command, exe);
        EXPECT_EQ(run.status, row.status);
        EXPECT_EQ(run.err, row.error);
    }
    EXPECT_NE(readFile(out + "/Bode-Phase.svg").find("</svg>"), std::string::npos);
}

}
