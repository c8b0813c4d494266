/*
** tests/nyquist/nyquist_dialog_test.cpp: the NYQUISTINFINITI dialog as a Nyquist run
** opens it after its notice: the default button, refused and accepted entries, a large
** value, Esc, the Help button, and the template.
*/
#include <cmath>

#include "platform/resource_script.h"
#include "resources/prxdlg.h"
#include "tests/nyquist/nyquist_fixture.h"

using platform::DialogAction;
using namespace testing_support;

namespace {

const char *const NOTICE =
    "[ JW-Poles]  Poles detected on the imaginary axis, There will be circles at infinity\n";
const char *const SHOWN =
    "[dialog] Nyquist\n"
    "  static -1 \"Nyquist Infinity:\"\n"
    "  edit 901 \"10\"\n"
    "  default-button 1 \"&Ok\"\n"
    "  button 9 \"Help\"\n";

}

/* Each row, a run on 1 / (s (s + 1)): the actions, the whole transcript after the notice and
** the dialog, the value kept and where the search for the infinity crossing ended (the
** detour's first point). */
using NyquistDialog = NyquistTest;

TEST_F(NyquistDialog, EntriesBelowTwoAreRefusedEscKeepsTheValueHelpIsNotHandled)
{
    struct Row {
        const char *name;
        std::vector<DialogAction> actions;
        const char *after;
        double infinity;
        double detourStart;
    } rows[] = {
        /* See the integrator's curve test for the crossing search with the default R = 10. */
        {"nothing typed, the default button", {}, "  > default 1\n[end] Nyquist: 1\n", 10.0, -0.09765625},
        /* With R = 2 the crossing search ends at 0.4296875 (|Y| = 1.96). */
        {"1.5 refused, 2 accepted",
         {typed(IDC_NYQUIST_INFINITY, "1.5"), press(IDOK), typed(IDC_NYQUIST_INFINITY, "2"), press(IDOK)},
         "  > type 901 \"1.5\"\n  > click 1\n[Error]  The value for infinity must be >= 2\n"
         "  > type 901 \"2\"\n  > click 1\n[end] Nyquist: 1\n",
         2.0, -0.4296875},
        /* "nan" is not below 2. No evaluation compares with a NaN radius: the search keeps
        ** the midpoint 10 / 2, so the detour starts at -5. */
        {"NaN taken", {typed(IDC_NYQUIST_INFINITY, "nan"), press(IDOK)},
         "  > type 901 \"nan\"\n  > click 1\n[end] Nyquist: 1\n", NAN, -5.0},
        /* With R = 1e6 the search takes all its 26 evaluations: halving from 5 down to
        ** 5.96e-7 (too close), then two steps out to 1.043081283569336e-06 (|Y| = 958698). */
        {"a large value", {typed(IDC_NYQUIST_INFINITY, "1e6"), press(IDOK)},
         "  > type 901 \"1e6\"\n  > click 1\n[end] Nyquist: 1\n", 1e6, -1.043081283569336e-06},
        {"Esc keeps the value, Help does nothing", {typed(IDC_NYQUIST_INFINITY, "50"), press(IDC_HELP), escape()},
         "  > type 901 \"50\"\n  > click 9\n  > cancel\n[end] Nyquist: 2\n", 10.0, -0.09765625},
    };
    for (const Row &row : rows) {
        SetUp();
        poles = {{0, 0}, {-1, 0}};
        queueActions(row.actions);
        run(1.0, 1.0);
        EXPECT_EQ(platform::transcriptText(), std::string(NOTICE) + SHOWN + row.after) << row.name;
        if (std::isnan(row.infinity)) {
            EXPECT_TRUE(std::isnan(nyquistInfinity)) << row.name;
        } else {
            EXPECT_EQ(nyquistInfinity, row.infinity) << row.name;
        }
        EXPECT_EQ(W[251], row.detourStart) << row.name;
        EXPECT_EQ(platform::pendingDialogActions(), 0u) << row.name;
    }
}
