/*
** tests/support.h: helpers shared by the test binaries: a fresh host with the plug-in
** linked in, temporary folders, running the praxa executable, matrices from their rows,
** and the transcript read back.
*/
#ifndef PRAXA_TEST_SUPPORT_H
#define PRAXA_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "host/host.h"
#include "platform/driver.h"

/* Complex numbers compare part for part (so EXPECT_EQ takes them, and vectors of them) and
** print as (re,im). */
inline bool operator==(const Complex &a, const Complex &b) { return a.re == b.re && a.im == b.im; }
inline void PrintTo(const Complex &z, std::ostream *out) { *out << "(" << z.re << "," << z.im << ")"; }

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

/* Runs the praxa executable (or a copy of it at `executable`) with `arguments` (a shell
** word list). */
struct RunResult {
    int status = -1;
    std::string out;
    std::string err;
};
RunResult runPraxa(const std::string &arguments, const std::string &executable = PRAXA_EXE);

/* runPraxa in `dir`: "{dir}" in the arguments stands for the folder and "{examples}" for
** the bundled examples' (with its slash), and --settings (tervan.ini) and --out name the
** folder's unless the arguments do. */
RunResult runPraxaIn(const TempDir &dir, const std::string &arguments);

/* One run of the praxa executable in a fresh folder, as a table row: `files` are written
** there first, then runPraxaIn runs the arguments; "{dir}" and "{examples}" stand as there
** in every text.
** `out` lines must appear in order in stdout (with `whole`, they are all of it); `err`,
** unless null, is the whole of stderr; `after` are files that must then hold exactly the
** given text (nullptr: must not exist); no `absent` text may appear in stdout. */
struct Session {
    const char *name;
    std::vector<std::pair<std::string, std::string>> files;
    std::string arguments;
    int status;
    std::vector<std::string> out;
    const char *err = nullptr;
    std::vector<std::pair<std::string, const char *>> after = {};
    std::vector<std::string> absent = {};
    bool whole = false;
};
void expectSession(const Session &session);
/* The same in `dir`, whose files the test reads afterwards. */
void expectSession(const Session &session, const TempDir &dir);

/* The servo example's model as the Linearize command writes it to servo.m (hand-derived:
** amplifier 10/(s+10) after a gain of 2, motor 1/(s(s+1)), output the motor position). */
extern const char *const SERVO_MODEL_FILE;

/* The path of a bundled example diagram, examples/NAME. */
std::string examplePath(const std::string &name);

/* Loads examples/NAME into the host and clicks its own reference points, as the command
** line does. */
::testing::AssertionResult loadExample(const std::string &name);

/* The plug-in's analysis settings as the tests take them: 50 frequencies from 0.1 to 100
** rad/s, 50 gains from 0 to 100 without the automatic range, phases in degrees, magnitudes
** in log10, six significant digits, no plots counted or reused. */
void defaultAnalysisSettings();

/* A fresh host with the plug-in, an empty tervan.ini in the test's own folder (also the
** output folder), the analysis settings at their defaults, no plug-in records and an
** empty transcript; afterwards the records released, the plots forgotten, the host reset. */
class PluginTest : public ::testing::Test {
protected:
    TempDir dir;
    void SetUp() override;
    void TearDown() override;
};

/* Frees the plug-in's process-wide records that a test may have filled (the model's
** matrices, the compensator's and the loop's root lists) and clears them, as a fresh
** load has them. A test that put matrices of its own into the model takes them out first. */
void releasePluginRecords();

/* A rows x cols matrix from its rows, as written on paper (cols 0: a vector of `rows`
** values); freed by the caller (gfree). */
Matrix *matrixFromRows(uint32_t rows, uint32_t cols, const std::vector<double> &values);

/* Each of `lines` is a whole line of `text`, in this order (others may come between). */
::testing::AssertionResult hasLinesInOrder(const std::string &text, const std::vector<std::string> &lines);

/* The windowing stand-in's transcript read back: the index of the n-th line that is `text`
** (-1: none), and how many lines are `text`. */
int transcriptLine(const std::string &text, int occurrence = 0);
int transcriptCount(const std::string &text);

/* The snapshot line of control `id` of kind `kind` ("edit", "listbox", ...) in the n-th
** dialog of the transcript with this caption, such as `  edit 1023 "1"`; "<no dialog>" or
** "<no control>" where there is none. */
std::string shownControl(const std::string &caption, const std::string &kind, int id, int occurrence = 0);

/* What the scripted user does in a dialog (`dialog`: its template or title; empty: the
** next one), and the actions queued in order. */
platform::DialogAction typed(int control, const std::string &text, const std::string &dialog = "");
platform::DialogAction press(int control, const std::string &dialog = "");
platform::DialogAction escape(const std::string &dialog = "");
void queueActions(const std::vector<platform::DialogAction> &actions);

std::string readFile(const std::string &path);
void writeFile(const std::string &path, const std::string &text);

}

#endif
