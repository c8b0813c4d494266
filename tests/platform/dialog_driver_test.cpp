/*
** tests/platform/dialog_driver_test.cpp: modal dialogs run by queued user actions: the
** messages each action produces and their order, the transcript, refusals, nesting, errors.
*/
#include <gtest/gtest.h>

#include <cstdlib>

#include "test_dialogs.h"

using platform::ActionKind;
using platform::DialogAction;
using testdialogs::Procedure;

namespace {

class DialogDriver : public ::testing::Test {
protected:
    void SetUp() override { platform::resetWindowing(); }

    static void queue(const std::string &dialog, ActionKind kind, int control = 0, const std::string &text = "",
                      int index = 0)
    {
        platform::queueDialogAction(DialogAction{dialog, kind, control, text, index});
    }

    static std::string text(HWND dialog, int id)
    {
        char buffer[256];
        GetDlgItemTextA(dialog, id, buffer, sizeof buffer);
        return buffer;
    }

    std::vector<std::string> log;
};

TEST_F(DialogDriver, TranscriptShowsTheDialogAsItWaitsThenEveryAction)
{
    Procedure small = [this](HWND dialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            SetDlgItemTextA(dialog, 101, "1.5");
            CheckDlgButton(dialog, 1035, BST_CHECKED);
            CheckRadioButton(dialog, 215, 216, 216);
            SendDlgItemMessageA(dialog, 108, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>("(-1,0)"));
            SendDlgItemMessageA(dialog, 108, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>("(-2,0)"));
            return TRUE;
        }
        if (message == WM_COMMAND && LOWORD(wParam) == IDOK) {
            log.push_back(text(dialog, 101) + " " + std::to_string(IsDlgButtonChecked(dialog, 1035)) +
                          std::to_string(IsDlgButtonChecked(dialog, 215)) +
                          std::to_string(IsDlgButtonChecked(dialog, 216)) + " sel " +
                          std::to_string(SendDlgItemMessageA(dialog, 108, LB_GETCURSEL, 0, 0)));
            EndDialog(dialog, 1);
        }
        return FALSE;
    };
    queue("", ActionKind::Type, 101, "2.5");
    queue("", ActionKind::Uncheck, 1035);
    queue("", ActionKind::Check, 215);
    queue("", ActionKind::Select, 108, "", 1);
    queue("", ActionKind::Focus, 101);
    queue("", ActionKind::Click, 1);
    EXPECT_EQ(testdialogs::run("SMALL", small), 1);
    EXPECT_EQ(testdialogs::run("SMALL", small), 1);

    EXPECT_EQ(platform::transcriptText(),
              "[dialog] Small\n"
              "  static 5 \"Gain\t\tvalue\"\n"
              "  edit 101 \"1.5\"\n"
              "  checkbox 1035 \"Negative\" [x]\n"
              "  radio 215 \"A\" [ ]\n"
              "  radio 216 \"B\" [x]\n"
              "  listbox 108: \"(-1,0)\" | \"(-2,0)\"\n"
              "  static 110 \"Hidden\" (hidden)\n"
              "  button 1 \"OK\"\n"
              "  button 112 \"Off\" (disabled)\n"
              "  > type 101 \"2.5\"\n"
              "  > uncheck 1035\n"
              "  > check 215\n"
              "  > select 108 1\n"
              "  > focus 101\n"
              "  > click 1\n"
              "[end] Small: 1\n"
              "[dialog] Small\n"
              "  static 5 \"Gain\t\tvalue\"\n"
              "  edit 101 \"1.5\"\n"
              "  checkbox 1035 \"Negative\" [x]\n"
              "  radio 215 \"A\" [ ]\n"
              "  radio 216 \"B\" [x]\n"
              "  listbox 108: \"(-1,0)\" | \"(-2,0)\"\n"
              "  static 110 \"Hidden\" (hidden)\n"
              "  button 1 \"OK\"\n"
              "  button 112 \"Off\" (disabled)\n"
              "  > default 1\n"
              "[end] Small: 1\n");
    EXPECT_EQ(log, (std::vector<std::string>{"2.5 010 sel 1", "1.5 101 sel -1"}));
}

TEST_F(DialogDriver, TypingAndClickingMoveTheFocusLikeTheKeyboardAndMouse)
{
    queue("", ActionKind::Type, 101, "sys.m");
    queue("", ActionKind::Type, 102, "3");     /* the next tab stop after 102 is radio 210 */
    queue("", ActionKind::Focus, 101);
    queue("", ActionKind::Click, 1);
    EXPECT_EQ(testdialogs::run("ENTRY", testdialogs::recorder(log)), 1);
    EXPECT_EQ(log, (std::vector<std::string>{"init first=101", "EN_SETFOCUS 101", "EN_CHANGE 101",
                                             "EN_KILLFOCUS 101", "EN_SETFOCUS 102", "EN_CHANGE 102",
                                             "EN_KILLFOCUS 102", "EN_SETFOCUS 101", "EN_KILLFOCUS 101",
                                             "BN_CLICKED 1"}));
}

TEST_F(DialogDriver, KillFocusHandlerThatTakesTheFocusBackKeepsIt)
{
    Procedure validating = [this](HWND dialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG)
            return FALSE;   /* no focus given */
        if (message != WM_COMMAND)
            return FALSE;
        int id = LOWORD(wParam);
        UINT code = HIWORD(wParam);
        if (code == EN_SETFOCUS || code == EN_KILLFOCUS)
            log.push_back((code == EN_SETFOCUS ? "set " : "kill ") + std::to_string(id));
        if (code == EN_KILLFOCUS && id == 101 && std::atof(text(dialog, 101).c_str()) < 0) {
            MessageBoxA(dialog, "Gain value must be >= 0", "Error", MB_OK);
            SetFocus(GetDlgItem(dialog, 101));
        }
        if (code == BN_CLICKED && id == IDOK) {
            log.push_back("focus " + std::to_string(GetDlgCtrlID(GetFocus())));
            EndDialog(dialog, 1);
        }
        return TRUE;
    };
    queue("", ActionKind::Type, 101, "-1");
    EXPECT_EQ(testdialogs::run("ENTRY", validating), 1);
    /* The focus went to 102 first, so 102 hears it lost it when the handler takes it back. */
    EXPECT_EQ(log, (std::vector<std::string>{"set 101", "kill 101", "kill 102", "set 101", "focus 101"}));
    EXPECT_NE(platform::transcriptText().find("  > type 101 \"-1\"\n[Error] Gain value must be >= 0\n  > default 1\n"),
              std::string::npos);
}

TEST_F(DialogDriver, AutomaticButtonsChangeStatePlainOnesOnlyNotify)
{
    std::string states;
    Procedure recorder = testdialogs::recorder(log);
    Procedure procedure = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            CheckRadioButton(dialog, 210, 211, 210);
            CheckRadioButton(dialog, 212, 213, 212);
        }
        if (message == WM_COMMAND && LOWORD(wParam) == IDOK)
            for (int id : {210, 211, 212, 213, 1029, 1030, 207, 208})
                states += std::to_string(IsDlgButtonChecked(dialog, id));
        return recorder(dialog, message, wParam, lParam);
    };
    queue("", ActionKind::Click, 211);      /* unchecks 210, not 212 of the next group */
    queue("", ActionKind::Check, 211);      /* already checked: no click */
    queue("", ActionKind::Click, 1029);     /* automatic: checked */
    queue("", ActionKind::Uncheck, 1029);   /* clicked: unchecked */
    queue("", ActionKind::Uncheck, 1029);   /* already unchecked: no click */
    queue("", ActionKind::Click, 1030);     /* plain check box: only notifies */
    queue("", ActionKind::Check, 207);      /* plain radio button: only notifies */
    EXPECT_EQ(testdialogs::run("ENTRY", procedure), 1);
    EXPECT_EQ(states, "01100000");
    EXPECT_EQ(log, (std::vector<std::string>{"init first=101", "EN_SETFOCUS 101", "EN_KILLFOCUS 101",
                                             "BN_CLICKED 211", "BN_CLICKED 1029", "BN_CLICKED 1029",
                                             "BN_CLICKED 1030", "BN_CLICKED 207", "BN_CLICKED 1"}));
}

TEST_F(DialogDriver, RefusedDefaultButtonIsCancelled)
{
    Procedure refusing = [](HWND dialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_COMMAND && LOWORD(wParam) == IDOK) {
            MessageBoxA(dialog, "Start must be less than Stop", "Error", MB_OK);
            return TRUE;    /* stays open */
        }
        if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL)
            EndDialog(dialog, 2);
        return FALSE;
    };
    EXPECT_EQ(testdialogs::run("ENTRY", refusing), 2);
    EXPECT_EQ(platform::refusedDialogCount(), 1);
    const std::string &t = platform::transcriptText();
    EXPECT_NE(t.find("  > default 1\n[Error] Start must be less than Stop\n[refused] Entry\n[end] Entry: 2\n"),
              std::string::npos);

    /* A dialog that ignores Cancel as well is ended by force, with IDCANCEL. */
    Procedure deaf = [this](HWND, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_COMMAND)
            log.push_back(std::to_string(LOWORD(wParam)));
        return FALSE;
    };
    EXPECT_EQ(testdialogs::run("NODEFAULT", deaf), IDCANCEL);
    EXPECT_EQ(log, (std::vector<std::string>{"1", "2"}));
    EXPECT_EQ(platform::refusedDialogCount(), 2);
}

TEST_F(DialogDriver, NestedDialogAndMessageBoxGetTheActionsWhileTheyAreOpen)
{
    INT_PTR nestedResult = 0;
    std::string focusAfterNested, innerValue;
    Procedure inner = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            SetDlgItemTextA(dialog, 901, "10");
            SetFocus(GetDlgItem(dialog, 901));
            return FALSE;
        }
        if (message == WM_COMMAND && LOWORD(wParam) == IDOK) {
            innerValue = text(dialog, 901);
            if (std::atof(innerValue.c_str()) < 2.0)
                MessageBoxA(dialog, " The value for infinity must be >= 2", "Error", MB_OK);
            else
                EndDialog(dialog, 1);
            return TRUE;
        }
        return FALSE;
    };
    Procedure outer = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message != WM_COMMAND)
            return FALSE;
        if (LOWORD(wParam) == 302) {
            nestedResult = testdialogs::run("INNER", inner);
            focusAfterNested = std::to_string(GetDlgCtrlID(GetFocus()));
        }
        if (LOWORD(wParam) == IDOK)
            EndDialog(dialog, 1);
        return TRUE;
    };
    queue("No Default", ActionKind::Click, 302);
    queue("", ActionKind::Type, 901, "1");
    queue("inner", ActionKind::Click, 1);
    queue("NODEFAULT", ActionKind::Click, 1);   /* waits until the inner dialog has ended */
    queue("INNER", ActionKind::Type, 901, "5");
    EXPECT_EQ(testdialogs::run("NODEFAULT", outer), 1);
    EXPECT_EQ(nestedResult, 1);
    EXPECT_EQ(innerValue, "5");
    EXPECT_EQ(focusAfterNested, "302");
    EXPECT_EQ(platform::transcriptText(),
              "[dialog] No Default\n"
              "  button 1 \"&OK\"\n"
              "  button 302 \"Replot\"\n"
              "  > click 302\n"
              "[dialog] Inner\n"
              "  edit 901 \"10\"\n"
              "  default-button 1 \"&Ok\"\n"
              "  > type 901 \"1\"\n"
              "  > click 1\n"
              "[Error]  The value for infinity must be >= 2\n"
              "  > type 901 \"5\"\n"
              "  > default 1\n"
              "[end] Inner: 1\n"
              "  > click 1\n"
              "[end] No Default: 1\n");
    EXPECT_EQ(platform::pendingDialogActions(), 0u);
}

TEST_F(DialogDriver, ActionsTheDialogCannotTakeAreReportedAndDropped)
{
    queue("", ActionKind::Click, 999);
    queue("", ActionKind::Click, 9);            /* disabled */
    queue("", ActionKind::Type, 1, "x");        /* a button */
    queue("", ActionKind::Select, 107, "", 5);  /* empty list */
    queue("", ActionKind::Check, 101);          /* an edit */
    queue("", ActionKind::Select, 101, "", 0);  /* not a list */
    EXPECT_EQ(testdialogs::run("ENTRY", testdialogs::recorder(log)), 1);
    EXPECT_EQ(platform::scriptErrorCount(), 6);
    EXPECT_EQ(log, (std::vector<std::string>{"init first=101", "EN_SETFOCUS 101", "BN_CLICKED 1"}));
    std::string t = platform::transcriptText();
    for (const char *expected : {
             "  > click 999\n[error] Dialog \"Entry\" has no control 999\n",
             "  > click 9\n[error] Dialog \"Entry\": control 9 is disabled\n",
             "  > type 1 \"x\"\n[error] Dialog \"Entry\": control 1 is not an edit control\n",
             "  > select 107 5\n[error] Dialog \"Entry\": list 107 has no entry 5\n",
             "  > check 101\n[error] Dialog \"Entry\": control 101 is not a check box or radio button\n",
             "  > select 101 0\n[error] Dialog \"Entry\": control 101 is not a list box\n"})
        EXPECT_NE(t.find(expected), std::string::npos) << expected;
}

TEST_F(DialogDriver, ActionsWaitForTheDialogTheyNameByTemplateOrCaption)
{
    queue("OTHER", ActionKind::Click, 1);
    queue("entry", ActionKind::Type, 101, "a");     /* template name, any case */
    queue("Entry", ActionKind::Type, 102, "b");     /* caption */
    std::string typed;
    Procedure procedure = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_COMMAND && LOWORD(wParam) == IDOK) {
            typed = text(dialog, 101) + text(dialog, 102);
            EndDialog(dialog, 1);
        }
        return FALSE;
    };
    EXPECT_EQ(testdialogs::run("ENTRY", procedure), 1);
    EXPECT_EQ(typed, "ab");
    EXPECT_EQ(platform::pendingDialogActions(), 1u);
    platform::clearDialogActions();
    EXPECT_EQ(platform::pendingDialogActions(), 0u);
}

TEST_F(DialogDriver, EndlessScriptIsCutAfterAThousandActions)
{
    for (int i = 0; i < 1003; ++i)
        queue("", ActionKind::Focus, i % 2 ? 101 : 102);
    EXPECT_EQ(testdialogs::run("ENTRY", testdialogs::recorder(log)), 1);
    EXPECT_EQ(platform::pendingDialogActions(), 3u);
    EXPECT_EQ(platform::scriptErrorCount(), 1);
    EXPECT_NE(platform::transcriptText().find(
                  "[error] Dialog \"Entry\": more than 1000 actions, the rest are left for later dialogs\n"
                  "  > default 1\n"),
              std::string::npos);
}

TEST_F(DialogDriver, EscapeAndCloseBecomeCancel)
{
    queue("", ActionKind::Cancel);
    EXPECT_EQ(testdialogs::run("ENTRY", testdialogs::recorder(log)), IDCANCEL);
    EXPECT_EQ(log.back(), "BN_CLICKED 2");
    EXPECT_NE(platform::transcriptText().find("  > cancel\n[end] Entry: 2\n"), std::string::npos);

    log.clear();
    Procedure recorder = testdialogs::recorder(log);
    Procedure closing = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            SendMessageA(dialog, WM_CLOSE, 0, 0);   /* not handled: the dialog manager cancels */
            return TRUE;
        }
        return recorder(dialog, message, wParam, lParam);
    };
    EXPECT_EQ(testdialogs::run("ENTRY", closing), IDCANCEL);
    EXPECT_EQ(log, (std::vector<std::string>{"BN_CLICKED 2"}));
}

TEST_F(DialogDriver, DialogEndedDuringInitIsNeverShown)
{
    Procedure quick = [](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG)
            EndDialog(dialog, 7);
        return TRUE;
    };
    EXPECT_EQ(testdialogs::run("ENTRY", quick), 7);
    EXPECT_EQ(platform::transcriptText(), "[end] Entry: 7\n");
}

TEST_F(DialogDriver, SetFocusDuringInitWinsOverTheDefaultFocus)
{
    std::string focus;
    Procedure procedure = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            SendDlgItemMessageA(dialog, 102, EM_SETSEL, 0, 0x7FFF0000);
            SetFocus(GetDlgItem(dialog, 102));
            return FALSE;
        }
        if (message == WM_COMMAND && LOWORD(wParam) == IDOK) {
            focus = std::to_string(GetDlgCtrlID(GetFocus()));
            EndDialog(dialog, 1);
        }
        return FALSE;
    };
    EXPECT_EQ(testdialogs::run("ENTRY", procedure), 1);
    EXPECT_EQ(focus, "102");
}

TEST_F(DialogDriver, MissingOrMalformedTemplateGivesMinusOneAndAClearError)
{
    EXPECT_EQ(testdialogs::run("NOPE", testdialogs::recorder(log)), -1);
    EXPECT_EQ(platform::transcriptText(), "[error] Dialog template NOPE not found\n");

    platform::clearTranscript();
    testdialogs::registerExtraScript("300 DIALOG 0, 0, 10, 10\nCAPTION \"Numbered\"\nBEGIN\n"
                                     "  DEFPUSHBUTTON \"OK\", IDOK, 0, 0, 10, 10\nEND\n");
    EXPECT_EQ(DialogBoxParamA(testdialogs::testModule(), MAKEINTRESOURCEA(300), nullptr, nullptr, 0), IDCANCEL);
    EXPECT_NE(platform::transcriptText().find("[dialog] Numbered\n"), std::string::npos);

    platform::clearTranscript();
    testdialogs::registerExtraScript("BROKEN DIALOG 0, 0, 10, 10\nBEGIN\n  COMBOBOX 1, 0, 0, 10, 10\nEND\n");
    EXPECT_EQ(testdialogs::run("BROKEN", testdialogs::recorder(log)), -1);
    EXPECT_EQ(platform::transcriptText(), "[error] extra.rc:3: control COMBOBOX is not supported\n");
    testdialogs::registerExtraScript("");
    EXPECT_TRUE(log.empty());
}

TEST_F(DialogDriver, MessageBoxesAnswerWithTheirDefaultOrTheQueuedAnswer)
{
    EXPECT_EQ(MessageBoxA(nullptr, "Saved.", "Praxa", MB_OK), IDOK);
    EXPECT_EQ(MessageBoxA(nullptr, "Replace?", "Praxa", MB_YESNO), IDYES);
    EXPECT_EQ(MessageBoxA(nullptr, "Go on?", "Praxa", MB_OKCANCEL | MB_DEFBUTTON2), IDCANCEL);
    platform::queueMessageBoxAnswer(IDNO);
    EXPECT_EQ(MessageBoxA(nullptr, "Replace?", "Praxa", MB_YESNO), IDNO);
    EXPECT_EQ(MessageBoxA(nullptr, "a = [1 ];\n", nullptr, MB_OK), IDOK);
    EXPECT_EQ(platform::transcriptText(),
              "[Praxa] Saved.\n[Praxa] Replace?\n[Praxa] Go on?\n[Praxa] Replace?\n[Error] a = [1 ];\n");
    EXPECT_EQ(platform::transcript().back(), "[Error] a = [1 ];\n");
}

TEST_F(DialogDriver, MainWindowHasTheFocusWithoutDialogsAndReceivesCommands)
{
    EXPECT_EQ(GetFocus(), nullptr);
    HWND main = platform::createMainWindow("Tervan");
    EXPECT_EQ(GetFocus(), main);
    std::vector<std::string> received;
    platform::setMainWindowHandler([&](UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
        received.push_back(std::to_string(message) + " " + std::to_string(wParam) + " " + std::to_string(lParam));
        return 5;
    });
    EXPECT_EQ(SendMessageA(main, WM_COMMAND, 234, 0), 5);
    EXPECT_TRUE(PostMessageA(main, WM_COMMAND, 255, 0));
    EXPECT_EQ(received, (std::vector<std::string>{"273 234 0", "273 255 0"}));

    std::string owner;
    Procedure procedure = [&](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            owner = GetFocus() == main ? "main" : "other";
            EndDialog(dialog, 1);
        }
        return FALSE;
    };
    testdialogs::run("ENTRY", procedure);
    EXPECT_EQ(owner, "main");
    EXPECT_EQ(GetFocus(), main);
    char title[16];
    EXPECT_EQ(GetWindowTextA(main, title, sizeof title), 6);
    EXPECT_STREQ(title, "Tervan");

    platform::resetWindowing();
    EXPECT_EQ(GetFocus(), nullptr);
    EXPECT_EQ(SendMessageA(main, WM_COMMAND, 234, 0), 0);
    EXPECT_EQ(received.size(), 2u);
}

}
