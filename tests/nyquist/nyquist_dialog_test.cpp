/*
** tests/nyquist/nyquist_dialog_test.cpp: the NYQUISTINFINITI dialog as a Nyquist run
** opens it: refused and accepted entries, Esc, the Help button, and the template.
*/
#include <cmath>

#include "platform/resource_script.h"
#include "resources/prxdlg.h"
#include "tests/nyquist/nyquist_fixture.h"

using platform::ActionKind;
using platform::DialogAction;

namespace {

void queue(ActionKind kind, int control, const std::string &text = "")
{
    platform::queueDialogAction(DialogAction{"NYQUISTINFINITI", kind, control, text});
}

const char *const NOTICE =
    "[ JW-Poles]  Poles detected on the imaginary axis, There will be circles at infinity\n";
const char *const SHOWN =
    "[dialog] Nyquist\n"
    "  static -1 \"Nyquist Infinity:\"\n"
    "  edit 901 \"10\"\n"
    "  default-button 1 \"&Ok\"\n"
    "  button 9 \"Help\"\n";

}

class NyquistDialog : public NyquistTest {
protected:
    void SetUp() override
    {
        NyquistTest::SetUp();
        poles = {{0, 0}, {-1, 0}};      /* 1 / (s (s + 1)): an integrator */
    }
};

TEST_F(NyquistDialog, ValueBelowTwoIsRefusedAndTwoIsAccepted)
{
    queue(ActionKind::Type, IDC_NYQUIST_INFINITY, "1.5");
    queue(ActionKind::Click, IDOK);
    queue(ActionKind::Type, IDC_NYQUIST_INFINITY, "2");
    queue(ActionKind::Click, IDOK);
    run(1.0, 1.0);
    EXPECT_EQ(transcript(), std::string(NOTICE) + SHOWN +
                                "  > type 901 \"1.5\"\n"
                                "  > click 1\n"
                                "[Error]  The value for infinity must be >= 2\n"
                                "  > type 901 \"2\"\n"
                                "  > click 1\n"
                                "[end] Nyquist: 1\n");
    EXPECT_EQ(nyquistInfinity, 2.0);
    /* With R∞ = 2 the crossing search ends at 0.4296875 (|Y| = 1.96). */
    EXPECT_EQ(W[251], -0.4296875);
    EXPECT_EQ(platform::pendingDialogActions(), 0u);
}

TEST_F(NyquistDialog, TextThatReadsAsZeroIsRefusedButNotANumberIsNotBelowTwo)
{
    queue(ActionKind::Type, IDC_NYQUIST_INFINITY, "abc");   /* atof gives 0 */
    queue(ActionKind::Click, IDOK);
    queue(ActionKind::Type, IDC_NYQUIST_INFINITY, "nan");
    queue(ActionKind::Click, IDOK);
    run(1.0, 1.0);
    std::string t = transcript();
    size_t first = t.find("[Error]  The value for infinity must be >= 2\n");
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(t.find("[Error]", first + 1), std::string::npos) << "nan is accepted";
    EXPECT_NE(t.find("[end] Nyquist: 1\n"), std::string::npos);
    EXPECT_TRUE(std::isnan(nyquistInfinity));
    /* No evaluation compares with a NaN radius: the search keeps the midpoint 10 / 2,
    ** so the detour around the origin starts at -5. */
    EXPECT_EQ(W[251], -5.0);
    EXPECT_EQ(platform::pendingDialogActions(), 0u);
}

TEST_F(NyquistDialog, EscapeKeepsTheValueAndHelpIsNotHandled)
{
    queue(ActionKind::Type, IDC_NYQUIST_INFINITY, "50");
    queue(ActionKind::Click, IDC_HELP);
    queue(ActionKind::Cancel, 0);
    run(1.0, 1.0);
    EXPECT_EQ(transcript(), std::string(NOTICE) + SHOWN +
                                "  > type 901 \"50\"\n"
                                "  > click 9\n"
                                "  > cancel\n"
                                "[end] Nyquist: 2\n");
    EXPECT_EQ(nyquistInfinity, 10.0);
    EXPECT_EQ(W[251], -0.09765625);
}
