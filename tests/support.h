/*
** tests/support.h: helpers shared by the test binaries: a fresh host with the plug-in
** linked in, temporary folders, and running the praxa executable.
*/
#ifndef PRAXA_TEST_SUPPORT_H
#define PRAXA_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

struct Matrix;

namespace testing_support {

/* A new empty folder under /tmp, removed by the caller's TempDir destructor. */
struct TempDir {
    std::string path;
    TempDir();
    ~TempDir();
    std::string file(const std::string &name) const { return path + "/" + name; }
};

/* Resets host and windowing, points the settings at `settingsPath`, creates the main
** window, wires the plug-in's entry points (linked into the test) and calls praxaInit. */
void startHostWithPlugin(const std::string &settingsPath, const std::string &outputDir = "/tmp");

/* Runs the praxa executable with `arguments` (a shell word list). */
struct RunResult {
    int status = -1;
    std::string out;
    std::string err;
};
RunResult runPraxa(const std::string &arguments);

/* One run of the praxa executable in a fresh folder, as a table row: `files` are written
** there first (the settings file is tervan.ini), "{dir}" in the arguments and texts stands
** for the folder and "{examples}" for the bundled examples' (with its slash), and --settings and --out name the folder's unless the arguments do.
** `out` lines must appear in order in stdout; `err`, unless null, is the whole of stderr;
** `after` are files that must then hold exactly the given text (nullptr: must not exist). */
struct Session {
    const char *name;
    std::vector<std::pair<std::string, std::string>> files;
    std::string arguments;
    int status;
    std::vector<std::string> out;
    const char *err = nullptr;
    std::vector<std::pair<std::string, const char *>> after = {};
};
void expectSession(const Session &session);

/* The servo example's model as the Linearize command writes it to servo.m (hand-derived:
** amplifier 10/(s+10) after a gain of 2, motor 1/(s(s+1)), output the motor position). */
extern const char *const SERVO_MODEL_FILE;

/* The path of a bundled example diagram, examples/NAME. */
std::string examplePath(const std::string &name);

/* Frees the plug-in's process-wide records that a test may have filled (the model's
** matrices, the compensator's and the loop's root lists) and clears them, as a fresh
** load has them. A test that put matrices of its own into the model takes them out first. */
void releasePluginRecords();

/* A rows x cols matrix from its rows, as written on paper; freed by the caller (gfree). */
Matrix *matrixFromRows(uint32_t rows, uint32_t cols, std::initializer_list<double> values);

/* Each of `lines` is a whole line of `text`, in this order (others may come between). */
::testing::AssertionResult hasLinesInOrder(const std::string &text, const std::vector<std::string> &lines);

std::string readFile(const std::string &path);
void writeFile(const std::string &path, const std::string &text);

}

#endif
