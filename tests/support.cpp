/*
** tests/support.cpp: see support.h.
*/
#include "support.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "compensator/compensator.h"
#include "host/host.h"
#include "hostapp/host_state.h"
#include "linearize/linearize.h"
#include "numeric/matrix.h"
#include "platform/driver.h"
#include "shell/praxa.h"

namespace testing_support {

TempDir::TempDir()
{
    char pattern[] = "/tmp/praxa-test-XXXXXX";
    path = mkdtemp(pattern);
}

TempDir::~TempDir()
{
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

void startHostWithPlugin(const std::string &settingsPath, const std::string &outputDir)
{
    platform::resetWindowing();
    hostapp::resetHost();
    hostapp::HostState &host = hostapp::host();
    host.settingsPath = settingsPath;
    host.outputDir = outputDir;
    host.plugin.init = praxaInit;
    host.plugin.command = praxaCmd;
    host.plugin.event = praxaEvent;
    host.plugin.selectRefPoint = selLinRefPoint;
    host.plugin.resetRefPoints = linResetRefPoints;
    host.plugin.model = &stateSpaceModel;
    host.plugin.samplePeriod = &samplePeriod;
    host.mainWindow = platform::createMainWindow("Tervan");
    praxaInit(host.mainWindow);
}

void releasePluginRecords()
{
    for (Matrix **m : {&stateSpaceModel.A, &stateSpaceModel.B, &stateSpaceModel.C, &stateSpaceModel.D}) {
        gfree(*m);
        *m = nullptr;
    }
    for (Complex **roots : {&currentCompensator.zeros, &currentCompensator.poles, &loopZeros, &loopPoles}) {
        gfree(*roots);
        *roots = nullptr;
    }
    currentCompensator = Compensator{};
    loopZeroCount = loopPoleCount = 0;
}

const char *const SERVO_MODEL_FILE = "function [a,b,c,d] = servo\n"
                                     "a = [-10 0 0 ;\n"
                                     "    10 -1 0 ;\n"
                                     "    0 1 0 ];\n"
                                     "b = [2 ;\n"
                                     "    0 ;\n"
                                     "    0 ];\n"
                                     "c = [0 0 1 ];\n"
                                     "d = [0 ];\n";

std::string examplePath(const std::string &name)
{
    return std::string(PRAXA_SOURCE_DIR) + "/examples/" + name;
}

Matrix *matrixFromRows(uint32_t rows, uint32_t cols, std::initializer_list<double> values)
{
    Matrix *m = matDecl(rows, cols);
    auto it = values.begin();
    for (uint32_t i = 0; i < rows; i++)
        for (uint32_t j = 0; j < cols && it != values.end(); j++)
            m->data[j * rows + i] = *it++;
    return m;
}

std::string readFile(const std::string &path)
{
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeFile(const std::string &path, const std::string &text)
{
    std::ofstream(path) << text;
}

RunResult runPraxa(const std::string &arguments)
{
    TempDir dir;
    std::string command = std::string(PRAXA_EXE) + " " + arguments + " >" + dir.file("out") + " 2>" + dir.file("err") + " </dev/null";
    RunResult result;
    int raw = std::system(command.c_str());
    result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    result.out = readFile(dir.file("out"));
    result.err = readFile(dir.file("err"));
    return result;
}

}
