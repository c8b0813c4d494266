/*
** tests/compensator/compensator_cli_test.cpp: the compensator command through the praxa
** executable on the servo example: filled by its options and by a script, the plots
** written, the record handed to the host and kept for the next invocation.
*/
#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

TEST(CompensatorCommand, SessionsOnTheServo)
{
    const Session sessions[] = {
        /* The servo 20/(s (s + 1)(s + 10)): no zeros, three poles, one row each. With the
        ** compensator, 200 (s + 1)/(s (s + 1)(s + 10)^2): phase -90 - 2 atan(w/10) degrees, so
        ** the phase margin at the tracked gain crossover 1.67683 is 90 - 2 atan(0.167683). */
        {"options fill the dialog, Replot draws, OK hands the compensator over", {},
         "{examples}servo.json compensator --gain 10 --add-zero -1 --add-pole '(-10,0)' --replot --ok", 0,
         {"  listbox 1022: \"\t(-10,0)\" | \"\t(-1,0)\" | \"\t(0,0)\"", "  edit 1023 \"1\"", "  > click 302",
          "[dialog] Phase and Gain Margins", "  edit 105 \"70.962\" (disabled)", "[plot] Bode-Magnitude.svg",
          "[plot] Bode-Phase.svg", "[plot] Root-Locus.svg", "  > click 1", "[end] Compensator Design: 1",
          "[compensator] gain 10 zeros (-1,0) poles (-10,0)",
          "[host] the diagram has no compensator block, so the design is not kept: add a block of type "
          "\"compensator\" to the diagram to receive it"},
         ""},
        /* A lag compensator, then the dialog reopened with it and left with Cancel: nothing
        ** drawn without Replot. */
        {"the record is kept for the next invocation of a script",
         {{"design.txt", "compensator\n  type 1023 2.5\n  type 1021 -0.1\n  click 303\n  type 1020 -0.01\n"
                         "  click 303\n  click 1\ncompensator\n  cancel\n"}},
         "--script {dir}/design.txt {examples}servo.json", 0,
         {"[compensator] gain 2.5 zeros (-0.1,0) poles (-0.01,0)", "[dialog] Compensator Design",
          "  listbox 107: \"(-.1,0)\"", "  listbox 108: \"(-.01,0)\"", "  edit 1023 \"2.5\"",
          "[end] Compensator Design: 2"},
         "", {{"Bode-Phase.svg", nullptr}, {"Root-Locus.svg", nullptr}}},
    };
    for (const Session &session : sessions)
        expectSession(session);

}

}
