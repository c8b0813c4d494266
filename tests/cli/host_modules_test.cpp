/*
** tests/cli/host_modules_test.cpp: the executable without its optional modules beside it:
** the everyday commands run as before; draw, serve and a diagram with an expression block
** say which module is missing.
*/
#include <sys/wait.h>

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
    const struct {
        std::string diagram, command;
        int status;
        std::string error;
    } rows[] = {
        {"servo.json", "bode", 0, ""},
        {"servo.json", "draw", 2,
         "praxa: command line: the draw command needs the module " + dir.file("libpraxa_draw.so") +
             ", which cannot be loaded (" + dir.file("libpraxa_draw.so") +
             ": cannot open shared object file: No such file or directory); put libpraxa_draw.so of the same build beside praxa\n"},
        {"servo.json", "serve --port 0", 2,
         "praxa: the serve command needs the module " + dir.file("libpraxa_serve.so") + ", which cannot be loaded (" +
             dir.file("libpraxa_serve.so") +
             ": cannot open shared object file: No such file or directory); put libpraxa_serve.so of the same build beside praxa\n"},
        {"maglev.json", "tf", 2,
         "praxa: " + examplePath("maglev.json") + ":6: block 'accel': the expression block needs the module " +
             dir.file("libpraxa_expression.so") + ", which cannot be loaded (" + dir.file("libpraxa_expression.so") +
             ": cannot open shared object file: No such file or directory); put libpraxa_expression.so of the same build "
             "beside praxa\n"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.diagram + " " + row.command);
        std::string command = exe + " --plugin " + plugin + " --settings " + dir.file("s.ini") + " --out " + out + " " +
                              examplePath(row.diagram) + " " + row.command + " >/dev/null 2>" + dir.file("err") + " </dev/null";
        int raw = std::system(command.c_str());
        EXPECT_EQ(WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, row.status);
        EXPECT_EQ(readFile(dir.file("err")), row.error);
    }
    EXPECT_NE(readFile(out + "/Bode-Phase.svg").find("</svg>"), std::string::npos);
}

}
