/*
** tests/support.cpp: see support.h.
*/
#include "support.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "compensator/compensator.h"
#include "host/host.h"
#include "hostapp/diagram.h"
#include "hostapp/host_state.h"
#include "hostapp/in_process_host.h"
#include "linearize/linearize.h"
#include "numeric/matrix.h"
#include "platform/driver.h"
#include "shell/plot_output.h"
#include "shell/praxa.h"
#include "shell/settings.h"

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

void defaultAnalysisSettings()
{
    frequencyRange = {50, 0.1, 100.0};
    gainRange = {50, 0.0, 100.0};
    optionsMemory.autoRange = 0;
    frequencyUnit.selected = FREQUENCY_UNIT_RADIANS;
    phaseUnit.selected = PHASE_UNIT_DEGREES;
    magnitudeUnit.selected = MAGNITUDE_UNIT_LOG10;
    displayPrecision = 6;
    frequencyPlotCount = rootLocusPlotCount = 0;
    reusePlots = 0;
}

void PluginTest::SetUp()
{
    writeFile(dir.file("tervan.ini"), "");
    startHostWithPlugin(dir.file("tervan.ini"), dir.path);
    defaultAnalysisSettings();
    releasePluginRecords();
    platform::clearTranscript();
}

void PluginTest::TearDown()
{
    releasePluginRecords();
    bodePhasePlot = bodeMagnitudePlot = nyquistPlot = rootLocusPlot = nullptr;
    hostapp::resetHost();
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

::testing::AssertionResult loadExample(const std::string &name)
{
    std::string error;
    if (!hostapp::loadDiagramFile(examplePath(name), error) || !hostapp::applyDiagramReferencePoints(error))
        return ::testing::AssertionFailure() << error;
    return ::testing::AssertionSuccess();
}

Matrix *matrixFromRows(uint32_t rows, uint32_t cols, const std::vector<double> &values)
{
    Matrix *m = matDecl(rows, cols);
    for (size_t k = 0; k < values.size() && k < (size_t)rows * std::max(cols, 1u); k++)
        m->data[cols ? (k % cols) * rows + k / cols : k] = values[k];
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

int transcriptLine(const std::string &text, int occurrence)
{
    const std::vector<std::string> &lines = platform::transcript();
    for (size_t i = 0; i < lines.size(); i++)
        if (lines[i] == text && occurrence-- == 0)
            return (int)i;
    return -1;
}

int transcriptCount(const std::string &text)
{
    const std::vector<std::string> &lines = platform::transcript();
    return (int)std::count(lines.begin(), lines.end(), text);
}

std::string shownControl(const std::string &caption, const std::string &kind, int id, int occurrence)
{
    const std::vector<std::string> &lines = platform::transcript();
    int start = transcriptLine("[dialog] " + caption, occurrence);
    if (start < 0)
        return "<no dialog>";
    std::string prefix = "  " + kind + " " + std::to_string(id);
    for (size_t i = start + 1; i < lines.size() && lines[i].rfind("  ", 0) == 0; i++)
        if (lines[i].rfind(prefix + " ", 0) == 0 || lines[i].rfind(prefix + ":", 0) == 0)
            return lines[i];
    return "<no control>";
}

platform::DialogAction typed(int control, const std::string &text, const std::string &dialog)
{
    return {dialog, platform::ActionKind::Type, control, text, 0};
}

platform::DialogAction press(int control, const std::string &dialog)
{
    return {dialog, platform::ActionKind::Click, control, "", 0};
}

platform::DialogAction escape(const std::string &dialog) { return {dialog, platform::ActionKind::Cancel, 0, "", 0}; }

void queueActions(const std::vector<platform::DialogAction> &actions)
{
    for (const platform::DialogAction &action : actions)
        platform::queueDialogAction(action);
}

static std::string inFolder(const TempDir &dir, std::string text)
{
    for (size_t at; (at = text.find("{dir}")) != std::string::npos;)
        text.replace(at, 5, dir.path);
    for (size_t at; (at = text.find("{examples}")) != std::string::npos;)
        text.replace(at, 10, examplePath(""));
    return text;
}

RunResult runPraxaIn(const TempDir &dir, const std::string &arguments)
{
    std::string words = inFolder(dir, arguments);
    if (words.find("--settings ") == std::string::npos)
        words = "--settings " + dir.file("tervan.ini") + " " + words;
    if (words.find("--out ") == std::string::npos)
        words = "--out " + dir.path + " " + words;
    return runPraxa(words);
}

void expectSession(const Session &session)
{
    expectSession(session, TempDir());
}

void expectSession(const Session &session, const TempDir &dir)
{
    for (const auto &[name, text] : session.files)
        writeFile(dir.file(name), inFolder(dir, text));
    RunResult run = runPraxaIn(dir, session.arguments);
    EXPECT_EQ(run.status, session.status) << session.name << "\n" << run.out << run.err;
    std::vector<std::string> out;
    std::string whole;
    for (const std::string &line : session.out) {
        out.push_back(inFolder(dir, line));
        whole += out.back() + "\n";
    }
    if (session.whole)
        EXPECT_EQ(run.out, whole) << session.name;
    else
        EXPECT_TRUE(hasLinesInOrder(run.out, out)) << session.name;
    for (const std::string &text : session.absent)
        EXPECT_EQ(run.out.find(inFolder(dir, text)), std::string::npos) << session.name << ": " << text;
    if (session.err) {
        EXPECT_EQ(run.err, inFolder(dir, session.err)) << session.name;
    }
    for (const auto &[name, text] : session.after) {
        bool exists = std::filesystem::exists(dir.file(name));
        if (!text)
            EXPECT_FALSE(exists) << session.name << ": " << name;
        else if (!exists)
            ADD_FAILURE() << session.name << ": no file " << name;
        else
            EXPECT_EQ(readFile(dir.file(name)), inFolder(dir, text)) << session.name << ": " << name;
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

RunResult runPraxa(const std::string &arguments, const std::string &executable)
{
    TempDir dir;
    std::string command = executable + " " + arguments + " >" + dir.file("out") + " 2>" + dir.file("err") + " </dev/null";
    RunResult result;
    int raw = std::system(command.c_str());
    result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    result.out = readFile(dir.file("out"));
    result.err = readFile(dir.file("err"));
    return result;
}

}
