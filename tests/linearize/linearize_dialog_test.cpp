/*
** tests/linearize/linearize_dialog_test.cpp: the Linearize command (206) through its
** dialog, as a user drives it: the result file, the screen output, point selection.
*/
#include "fixture.h"

#include "hostapp/host_state.h"
#include "resources/prxdlg.h"
#include "shell/praxa.h"
#include "shell/text.h"

namespace {

class LinearizeDialog : public DiagramTest {
protected:
    void act(platform::ActionKind kind, int control, const std::string &text = "")
    {
        platform::queueDialogAction({"LINEARIZE", kind, control, text, 0});
    }
    std::string transcript() const { return platform::transcriptText(); }
};

TEST_F(LinearizeDialog, ServoToANamedResultFile)
{
    loadExample("servo.json");
    act(platform::ActionKind::Click, IDC_LIN_TO_FILE);
    act(platform::ActionKind::Type, IDC_LIN_RESULT_FILE, "servo.m");
    act(platform::ActionKind::Click, IDOK);
    EXPECT_EQ(praxaCmd(CMD_LINEARIZE), 1);
    EXPECT_EQ(platform::pendingDialogActions(), 0u) << transcript();
    EXPECT_EQ(testing_support::readFile(dir.file("servo.m")), testing_support::SERVO_MODEL_FILE) << transcript();
    EXPECT_EQ(linOutputChoice, LIN_OUTPUT_SCREEN);

    /* The name is remembered without its extension, and screen display is chosen again. */
    platform::clearTranscript();
    act(platform::ActionKind::Cancel, 0);
    EXPECT_EQ(praxaCmd(CMD_LINEARIZE), 1);
    std::string shown = transcript();
    EXPECT_NE(shown.find("System Linearization"), std::string::npos) << shown;
    EXPECT_NE(shown.find("\"servo\""), std::string::npos) << shown;
    EXPECT_EQ(shown.find("[Tervan]"), std::string::npos) << shown;
}

TEST_F(LinearizeDialog, FileChoiceOffersVabcdAndDiscardsTypedText)
{
    loadExample("servo.json");
    act(platform::ActionKind::Type, IDC_LIN_RESULT_FILE, "sys.m");
    act(platform::ActionKind::Click, IDC_LIN_TO_FILE);
    EXPECT_EQ(praxaCmd(CMD_LINEARIZE), 1);
    std::string written = testing_support::readFile(dir.file("vabcd.m"));
    EXPECT_EQ(written.substr(0, written.find('\n') + 1), "function [a,b,c,d] = vabcd\n");
    EXPECT_EQ(testing_support::readFile(dir.file("sys.m")), "");
}

TEST_F(LinearizeDialog, NameWithoutDotIsWrittenWholeAndAnEmptyNameBeeps)
{
    loadExample("sampled_loop.json");
    act(platform::ActionKind::Click, IDC_LIN_TO_FILE);
    act(platform::ActionKind::Type, IDC_LIN_RESULT_FILE, "");
    act(platform::ActionKind::Click, IDOK);
    act(platform::ActionKind::Type, IDC_LIN_RESULT_FILE, "loop");
    act(platform::ActionKind::Click, IDOK);
    EXPECT_EQ(praxaCmd(CMD_LINEARIZE), 1);
    EXPECT_EQ(hostapp::host().beeps, 1);
    std::string written = testing_support::readFile(dir.file("loop"));
    EXPECT_EQ(written.substr(0, written.find('\n') + 1), "function [a,b,c,d] = loop\n") << transcript();
    EXPECT_NE(written.find("\nd = [0 ];\n"), std::string::npos) << written;
}

TEST_F(LinearizeDialog, ResultFileNameKeepsAtMost31Characters)
{
    loadExample("servo.json");
    act(platform::ActionKind::Click, IDC_LIN_TO_FILE);
    act(platform::ActionKind::Type, IDC_LIN_RESULT_FILE, "abcdefghijklmnopqrstuvwxyz0123456789.m");
    EXPECT_EQ(praxaCmd(CMD_LINEARIZE), 1);
    std::string written = testing_support::readFile(dir.file("abcdefghijklmnopqrstuvwxyz01234"));
    EXPECT_EQ(written.substr(0, written.find('\n') + 1), "function [a,b,c,d] = abcdefghijklmnopqrstuvwxyz01234\n")
        << transcript();
}

TEST_F(LinearizeDialog, UnopenableFileIsReported)
{
    loadExample("servo.json");
    act(platform::ActionKind::Click, IDC_LIN_TO_FILE);
    act(platform::ActionKind::Type, IDC_LIN_RESULT_FILE, "no/such/dir.m");
    EXPECT_EQ(praxaCmd(CMD_LINEARIZE), 1);
    EXPECT_NE(transcript().find("[Tervan] Can't open no/such/dir.m"), std::string::npos) << transcript();
}

TEST_F(LinearizeDialog, SelectPointsEndsTheDialogAndAsksTheHost)
{
    loadExample("servo.json");
    std::vector<WPARAM> commands;
    platform::setMainWindowHandler([&](UINT message, WPARAM wParam, LPARAM) -> LRESULT {
        if (message == WM_COMMAND)
            commands.push_back(wParam);
        return 0;
    });
    act(platform::ActionKind::Click, IDC_LIN_TO_FILE);
    act(platform::ActionKind::Click, IDC_LIN_SELECT_POINTS);
    EXPECT_EQ(praxaCmd(CMD_LINEARIZE), 1);
    EXPECT_EQ(commands, std::vector<WPARAM>{CMD_SELECT_POINTS});
    EXPECT_EQ(testing_support::readFile(dir.file("vabcd.m")), "");
    EXPECT_EQ(linOutputChoice, LIN_OUTPUT_SCREEN);
}

TEST_F(LinearizeDialog, HelpAsksTheHostForItsTopic)
{
    loadExample("servo.json");
    act(platform::ActionKind::Click, IDC_HELP);
    act(platform::ActionKind::Click, IDCANCEL);
    EXPECT_EQ(praxaCmd(CMD_LINEARIZE), 1);
    EXPECT_NE(transcript().find("[help] file 43528 topic 1177"), std::string::npos) << transcript();
}

TEST_F(LinearizeDialog, FailedLinearizationStillOpensTheDialog)
{
    load(R"({"blocks": [{"id": "src", "type": "constant", "value": 1}, {"id": "k", "type": "gain", "gain": 2}],
             "wires": [["src", "k"]]})");
    act(platform::ActionKind::Cancel, 0);
    EXPECT_EQ(praxaCmd(CMD_LINEARIZE), 1);
    std::string shown = transcript();
    size_t message = shown.find("[Tervan] No blocks with state in selection");
    ASSERT_NE(message, std::string::npos) << shown;
    EXPECT_NE(shown.find("System Linearization", message), std::string::npos) << shown;
}

}
