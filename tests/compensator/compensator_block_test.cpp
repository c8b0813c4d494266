/*
** tests/compensator/compensator_block_test.cpp: the compensator command through the praxa
** executable: filled by its options and by a script, the plots written, the record kept
** for the next invocation, the design handed over into the diagram's compensator block
** (analysed with it in the same session, --save writing the block back with the rest
** kept), and what is said without a block or OK.
*/
#include <gtest/gtest.h>

#include <filesystem>

#include "support.h"

using namespace testing_support;

namespace {

const char *const COMPENSATED_SERVO = R"({
  "title": "Servo with a compensator block in front of the gain",
  "blocks": [
    {"id": "ref",   "type": "step", "value": 1},
    {"id": "err",   "type": "sum", "signs": "+-"},
    {"id": "comp",  "type": "compensator", "gain": 1},
    {"id": "ctrl",  "type": "gain", "gain": 2},
    {"id": "amp",   "type": "transferFunction", "num": [10], "den": [1, 10]},
    {"id": "motor", "type": "transferFunction", "num": [1], "den": [1, 1, 0]}
  ],
  "wires": [["ref", "err.1"], ["err", "comp"], ["comp", "ctrl"], ["ctrl", "amp"], ["amp", "motor"], ["motor", "err.2"]],
  "selection": ["comp", "ctrl", "amp", "motor"],
  "input": "comp.in",
  "output": "motor.out"
}
)";

TEST(CompensatorBlock, TheDesignHandedOverIsAnalysedAndSavedInTheBlock)
{
    std::string expected = COMPENSATED_SERVO;
    std::string old = R"({"id": "comp",  "type": "compensator", "gain": 1})";
    expected.replace(expected.find(old), old.size(),
                     R"({"id":"comp","type":"compensator","gain":10.0,"zeros":[-1.0],"poles":[-10.0]})");
    /* 10 (s + 1)/(s + 10) before the servo 20/(s (s + 1)(s + 10)): gain 200, the zero at -1 */
    TempDir dir;
    expectSession({"saved", {{"servo.json", COMPENSATED_SERVO},
                   {"design.txt", "compensator --gain 10 --add-zero -1 --add-pole -10 --ok --save\ntf\n"}},
                   "--out {dir}/out {dir}/servo.json --script {dir}/design.txt", 0,
                   {"[compensator] gain 10 zeros (-1,0) poles (-10,0)", "[host] compensator block 'comp' updated",
                    "[host] compensator block 'comp' saved in {dir}/servo.json", "  static 109 \"200\"",
                    "  listbox 107: \"(-1,0)\""}, nullptr, {{"servo.json", expected.c_str()}}}, dir);
    size_t files = 0;
    for (const auto &entry : std::filesystem::directory_iterator(dir.path))
        files += entry.is_regular_file();
    EXPECT_EQ(files, 2u) << "no temporary file is left beside the diagram and the script";

    /* The saved design is the block's design from then on. */
    expectSession({"analysed", {}, "--out {dir}/out {dir}/servo.json tf", 0, {"  static 109 \"200\""}}, dir);
    expectSession({"selected", {}, "{dir}/servo.json select-compensator", 0, {"[host] compensator block: 'comp'"},
                   nullptr, {}, {}, true}, dir);
}

TEST(CompensatorBlock, SessionsOnTheServo)
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
        {"without OK", {}, "{examples}servo.json compensator --gain 2", 0,
         {"  > cancel", "[end] Compensator Design: 2", "[host] the compensator design was not handed over: add --ok "
          "to the compensator options (in a script: click 1) to hand it over"}, ""},
        /* A design the block cannot take leaves it as it was. */
        {"an improper design", {{"servo.json", COMPENSATED_SERVO}},
         "{dir}/servo.json compensator --add-zero -1 --add-zero -2 --ok --save", 0,
         {"[host] compensator block 'comp' not updated: 2 zeros but 0 poles make an improper compensator; add a "
          "pole for each zero beyond the poles"}, nullptr, {{"servo.json", COMPENSATED_SERVO}}},
    };
    for (const Session &session : sessions)
        expectSession(session);
}

}
