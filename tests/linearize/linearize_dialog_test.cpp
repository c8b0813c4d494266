/*
** tests/linearize/linearize_dialog_test.cpp: the Linearize command through its dialog,
** as a user drives it: the result file and its name, the screen output, point selection,
** help, and the dialog after a failed linearization.
*/
#include <gtest/gtest.h>

#include "support.h"

using namespace testing_support;

namespace {

/* The servo's model file under another function name. */
std::string servoModelNamed(const std::string &name)
{
    std::string text = SERVO_MODEL_FILE;
    return text.replace(text.find("servo"), 5, name);
}

TEST(LinearizeDialog, SessionsThroughTheDialog)
{
    const std::string vabcd = servoModelNamed("vabcd"), longName = servoModelNamed("abcdefghijklmnopqrstuvwxyz01234");
    const Session sessions[] = {
        /* The name is remembered without its extension, and screen display is chosen again. */
        {"servo to a named result file", {{"s.txt", "linearize\n  click 207\n  type 101 servo.m\n  click 1\n"
                                                    "linearize\n  cancel\n"}},
         "{examples}servo.json --script {dir}/s.txt", 0,
         {"[file written] {dir}/servo.m", "[dialog] System Linearization", "  edit 101 \"servo\"",
          "  radio 207 \"Linearize to .m File\" [ ]", "  radio 208 \"Linearize to Screen Display\" [x]",
          "[end] System Linearization: 2"},
         "", {{"servo.m", SERVO_MODEL_FILE}}},
        {"the file choice offers vabcd and discards typed text", {},
         "{examples}servo.json linearize --type 101=sys.m --click 207", 0, {}, "",
         {{"vabcd.m", vabcd.c_str()}, {"sys.m", nullptr}}},
        {"screen display needs no name", {}, "{examples}servo.json linearize --type 101= --click 1", 0,
         {"[end] System Linearization: 1", "[Tervan] a = [-10 0 0 ;", "    10 -1 0 ;", "[Tervan] d = [0 ];"}},
        /* The name keeps at most 31 characters, and without a dot it is written whole. */
        {"an empty name beeps; a long one is cut", {},
         "{examples}servo.json linearize --click 207 --type 101= --click 1 "
         "--type 101=abcdefghijklmnopqrstuvwxyz0123456789.m",
         0, {"  > click 1", "[beep]", "[file written] {dir}/abcdefghijklmnopqrstuvwxyz01234"}, "",
         {{"abcdefghijklmnopqrstuvwxyz01234", longName.c_str()}}},
        {"an unopenable file is reported", {}, "{examples}servo.json linearize --click 207 --type 101=no/such/dir.m",
         0, {"[Tervan] Can't open no/such/dir.m"}},
        {"select points ends the dialog and asks the host; screen display is chosen again",
         {{"s.txt", "linearize\n  click 207\n  click 234\nlinearize\n  cancel\n"}},
         "{examples}servo.json --script {dir}/s.txt", 0,
         {"[end] System Linearization: 234", "[host] point selection: pick points with --input/--output BLOCK.PORT",
          "  radio 208 \"Linearize to Screen Display\" [x]"},
         "", {{"vabcd.m", nullptr}}},
        {"help asks the host for its topic", {}, "{examples}servo.json linearize --click 9 --click 2", 0,
         {"  > click 9", "[help] file 43528 topic 1177", "[end] System Linearization: 2"}},
        {"a failed linearization still opens the dialog",
         {{"d.json", R"({"blocks": [{"id": "src", "type": "constant", "value": 1}, {"id": "k", "type": "gain", "gain": 2}],
                         "wires": [["src", "k"]]})"}},
         "{dir}/d.json linearize --cancel", 0,
         {"[Tervan] No blocks with state in selection", "[dialog] System Linearization"}},
    };
    for (const Session &session : sessions)
        expectSession(session);
}

}
