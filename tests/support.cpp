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
#include "hostapp/in_process_host.h"
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
    hostapp::startInProcessHost(settingsPath, outputDir);
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

::testing::AssertionResult hasLinesInOrder(const std::string &text, const std::vector<std::string> &lines)
{
    size_t at = 0;
    for (const std::string &line : lines) {
        size_t found = text.find(line + "\n", at);
        while (found != std::string::npos && found > 0 && text[found - 1] != '\n')
            found = text.find(line + "\n", found + 1);
        if (found == std::string::npos)
            return ::testing::AssertionFailure() << "no line \"" << line << "\" in order in\n" << text;
        at = found + line.size() + 1;
    }
    return ::testing::AssertionSuccess();
}

void expectSession(const Session &session)
{
    TempDir dir;
    auto inDir = [&](std::string text) {
        for (size_t at; (at = text.find("{dir}")) != std::string::npos;)
            text.replace(at, 5, dir.path);
        for (size_t at; (at = text.find("{examples}")) != std::string::npos;)
            text.replace(at, 10, examplePath(""));
        return text;
    };
    for (const auto &[name, text] : session.files)
        writeFile(dir.file(name), inDir(text));
    std::string arguments = inDir(session.arguments);
    if (arguments.find("--settings ") == std::string::npos)
        arguments = "--settings " + dir.file("tervan.ini") + " " + arguments;
    if (arguments.find("--out ") == std::string::npos)
        arguments = "--out " + dir.path + " " + arguments;
    RunResult run = runPraxa(arguments);
    EXPECT_EQ(run.status, session.status) << session.name << "\n" << run.out << run.err;
    std::vector<std::string> out;
    for (const std::string &line : session.out)
        out.push_back(inDir(line));
    EXPECT_TRUE(hasLinesInOrder(run.out, out)) << session.name;
    if (session.err) {
        EXPECT_EQ(run.err, inDir(session.err)) << session.name;
    }
    for (const auto &[name, text] : session.after) {
        bool exists = std::filesystem::exists(dir.file(name));
        if (!text)
            EXPECT_FALSE(exists) << session.name << ": " << name;
        else if (!exists)
            ADD_FAILURE() << session.name << ": no file " << name;
        else
            EXPECT_EQ(readFile(dir.file(name)), inDir(text)) << session.name << ": " << name;
    }
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
