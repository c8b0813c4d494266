/*
** tests/platform/controls_test.cpp: what controls do with the calls and messages a dialog
** procedure sends them: texts, numbers, check states, enabling, list boxes, stale handles.
*/
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "test_dialogs.h"

using testdialogs::Procedure;

namespace {

/* Runs the ENTRY dialog with `body` as its WM_INITDIALOG handling; OK ends it. */
void insideDialog(const std::function<void(HWND)> &body)
{
    platform::resetWindowing();
    Procedure procedure = [&body](HWND dialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG)
            body(dialog);
        if (message == WM_COMMAND && LOWORD(wParam) == IDOK)
            EndDialog(dialog, 1);
        return FALSE;
    };
    ASSERT_EQ(testdialogs::run("ENTRY", procedure), 1);
}

TEST(Controls, TextsAreCutToTheBufferWithTheirNul)
{
    insideDialog([](HWND dialog) {
        ASSERT_TRUE(SetDlgItemTextA(dialog, 101, "abcdef"));
        char buffer[8];
        std::memset(buffer, 'x', sizeof buffer);
        EXPECT_EQ(GetDlgItemTextA(dialog, 101, buffer, 4), 3u);
        EXPECT_STREQ(buffer, "abc");
        EXPECT_EQ(buffer[4], 'x');
        EXPECT_EQ(GetDlgItemTextA(dialog, 101, buffer, 1), 0u);
        EXPECT_STREQ(buffer, "");
        buffer[0] = 'x';
        EXPECT_EQ(GetDlgItemTextA(dialog, 101, buffer, 0), 0u);
        EXPECT_EQ(buffer[0], 'x');
        EXPECT_EQ(GetWindowTextA(GetDlgItem(dialog, 101), buffer, sizeof buffer), 6);
        EXPECT_STREQ(buffer, "abcdef");
        EXPECT_EQ(SendDlgItemMessageA(dialog, 101, WM_GETTEXTLENGTH, 0, 0), 6);
        EXPECT_EQ(GetDlgItemTextA(dialog, 555, buffer, sizeof buffer), 0u);
        EXPECT_STREQ(buffer, "");
        EXPECT_FALSE(SetDlgItemTextA(dialog, 555, "x"));

        /* Setting the caption is setting the dialog's own text. */
        SetWindowTextA(dialog, "Root Locus Gain Range");
        EXPECT_EQ(GetWindowTextA(dialog, buffer, 5), 4);
        EXPECT_STREQ(buffer, "Root");
    });
    EXPECT_EQ(platform::transcript().back(), "[end] Root Locus Gain Range: 1");
}

TEST(Controls, DialogItemIntegersFollowTheSystemsParsing)
{
    insideDialog([](HWND dialog) {
        struct Case {
            const char *text;
            BOOL isSigned;
            UINT value;
            BOOL translated;
        } cases[] = {
            {"42", FALSE, 42, TRUE},          {"  42", FALSE, 42, TRUE},
            {"42  ", FALSE, 42, TRUE},        {"-7", TRUE, static_cast<UINT>(-7), TRUE},
            {"-7", FALSE, 0, FALSE},          {"4x", FALSE, 0, FALSE},
            {"", FALSE, 0, FALSE},            {"abc", TRUE, 0, FALSE},
            {"-", TRUE, 0, FALSE},            {"+5", TRUE, 0, FALSE},
            {"4294967295", FALSE, 4294967295u, TRUE},
            {"4294967296", FALSE, 0, FALSE},  {"2147483648", TRUE, 0, FALSE},
            {"-2147483648", TRUE, static_cast<UINT>(INT_MIN), TRUE},
        };
        for (const Case &c : cases) {
            SetDlgItemTextA(dialog, 102, c.text);
            BOOL translated = 2;
            EXPECT_EQ(GetDlgItemInt(dialog, 102, &translated, c.isSigned), c.value) << c.text;
            EXPECT_EQ(translated, c.translated) << c.text;
        }
        EXPECT_EQ(GetDlgItemInt(dialog, 102, nullptr, FALSE), 0u);

        char buffer[16];
        SetDlgItemInt(dialog, 102, static_cast<UINT>(-5), TRUE);
        GetDlgItemTextA(dialog, 102, buffer, sizeof buffer);
        EXPECT_STREQ(buffer, "-5");
        SetDlgItemInt(dialog, 102, static_cast<UINT>(-5), FALSE);
        GetDlgItemTextA(dialog, 102, buffer, sizeof buffer);
        EXPECT_STREQ(buffer, "4294967291");
    });
}

TEST(Controls, CheckStatesAndRadioRanges)
{
    insideDialog([](HWND dialog) {
        EXPECT_TRUE(CheckDlgButton(dialog, 1029, BST_CHECKED));
        EXPECT_EQ(IsDlgButtonChecked(dialog, 1029), BST_CHECKED);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 1029, BM_GETCHECK, 0, 0), BST_CHECKED);
        SendDlgItemMessageA(dialog, 1029, BM_SETCHECK, BST_UNCHECKED, 0);
        EXPECT_EQ(IsDlgButtonChecked(dialog, 1029), BST_UNCHECKED);

        /* The range may name ids that do not exist, as 206 to 208 does here. */
        EXPECT_TRUE(CheckRadioButton(dialog, 206, 208, 208));
        EXPECT_EQ(IsDlgButtonChecked(dialog, 207), BST_UNCHECKED);
        EXPECT_EQ(IsDlgButtonChecked(dialog, 208), BST_CHECKED);
        CheckRadioButton(dialog, 206, 208, 207);
        EXPECT_EQ(IsDlgButtonChecked(dialog, 207), BST_CHECKED);
        EXPECT_EQ(IsDlgButtonChecked(dialog, 208), BST_UNCHECKED);

        /* Setting a radio button by program does not uncheck its group. */
        CheckDlgButton(dialog, 210, BST_CHECKED);
        CheckDlgButton(dialog, 211, BST_CHECKED);
        EXPECT_EQ(IsDlgButtonChecked(dialog, 210), BST_CHECKED);

        /* BM_CLICK is a user's click: the automatic radio button clears its group. */
        SendDlgItemMessageA(dialog, 210, BM_CLICK, 0, 0);
        EXPECT_EQ(IsDlgButtonChecked(dialog, 210), BST_CHECKED);
        EXPECT_EQ(IsDlgButtonChecked(dialog, 211), BST_UNCHECKED);

        EXPECT_EQ(IsDlgButtonChecked(dialog, 101), BST_UNCHECKED);   /* an edit */
        EXPECT_EQ(IsDlgButtonChecked(dialog, 999), BST_UNCHECKED);
    });
}

TEST(Controls, EnablingShowingAndFocus)
{
    insideDialog([](HWND dialog) {
        HWND help = GetDlgItem(dialog, 9);
        EXPECT_FALSE(IsWindowEnabled(help));
        EXPECT_TRUE(EnableWindow(help, TRUE));      /* it was disabled */
        EXPECT_TRUE(IsWindowEnabled(help));
        EXPECT_FALSE(EnableWindow(help, FALSE));
        HWND box = GetDlgItem(dialog, 1029);
        EXPECT_TRUE(IsWindowVisible(box));
        EXPECT_TRUE(ShowWindow(box, SW_HIDE));      /* it was visible */
        EXPECT_FALSE(IsWindowVisible(box));
        EXPECT_FALSE(ShowWindow(box, SW_HIDE));     /* it was hidden already */

        HWND gain = GetDlgItem(dialog, 102);
        HWND before = SetFocus(gain);
        EXPECT_EQ(SetFocus(GetDlgItem(dialog, 101)), gain);
        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 101));
        EXPECT_NE(before, gain);
        EXPECT_EQ(GetDlgItem(dialog, 4242), nullptr);
        EXPECT_EQ(GetDlgCtrlID(gain), 102);
        EXPECT_EQ(GetDlgItem(dialog, -1), GetDlgItem(dialog, 0xFFFF));  /* IDC_STATIC */
    });
    EXPECT_NE(platform::transcriptText().find("(disabled)"), std::string::npos);   /* 9 again */
    EXPECT_NE(platform::transcriptText().find("  checkbox 1029 \"Auto Range\" [ ] (hidden)\n"), std::string::npos);
}

TEST(Controls, EditSelectionIsKept)
{
    insideDialog([](HWND dialog) {
        SetDlgItemTextA(dialog, 102, "103");
        SendDlgItemMessageA(dialog, 102, EM_SETSEL, 0, 0x7FFF0000);
        DWORD start = 9, end = 9;
        LRESULT both = SendDlgItemMessageA(dialog, 102, EM_GETSEL, reinterpret_cast<WPARAM>(&start),
                                           reinterpret_cast<LPARAM>(&end));
        EXPECT_EQ(start, 0u);
        EXPECT_EQ(end, 3u);
        EXPECT_EQ(both, MAKELPARAM(0, 3));
        SendDlgItemMessageA(dialog, 102, EM_SETSEL, 2, 1);
        SendDlgItemMessageA(dialog, 102, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
        EXPECT_EQ(start, 1u);
        EXPECT_EQ(end, 2u);
    });
}

TEST(Controls, ListBoxesKeepEntriesAndSelection)
{
    insideDialog([](HWND dialog) {
        auto add = [dialog](const char *text) {
            return SendDlgItemMessageA(dialog, 107, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
        };
        auto entry = [dialog](int index) {
            char buffer[64] = "";
            LRESULT length = SendDlgItemMessageA(dialog, 107, LB_GETTEXT, index, reinterpret_cast<LPARAM>(buffer));
            return std::to_string(length) + ":" + buffer;
        };
        EXPECT_EQ(add("(-1,0)"), 0);
        EXPECT_EQ(add("(-2,0)"), 1);
        EXPECT_EQ(add("(0,0)"), 2);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_GETCOUNT, 0, 0), 3);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_GETCURSEL, 0, 0), LB_ERR);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_SETCURSEL, 1, 0), 1);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_INSERTSTRING, 0, reinterpret_cast<LPARAM>("-2, 1")), 0);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_GETCURSEL, 0, 0), 2);     /* moved with its entry */
        EXPECT_EQ(entry(0), "5:-2, 1");
        EXPECT_EQ(entry(2), "6:(-2,0)");
        EXPECT_EQ(entry(4), "-1:");
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_GETTEXTLEN, 3, 0), 5);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_GETTEXTLEN, 9, 0), LB_ERR);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_DELETESTRING, 0, 0), 3);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_GETCURSEL, 0, 0), 1);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_DELETESTRING, 1, 0), 2);  /* the selected one */
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_GETCURSEL, 0, 0), LB_ERR);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_DELETESTRING, 7, 0), LB_ERR);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_SETCURSEL, 5, 0), LB_ERR);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_INSERTSTRING, 9, reinterpret_cast<LPARAM>("x")), LB_ERR);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_INSERTSTRING, static_cast<WPARAM>(-1),
                                      reinterpret_cast<LPARAM>("last")), 2);
        int stops[] = {64};
        EXPECT_TRUE(SendDlgItemMessageA(dialog, 107, LB_SETTABSTOPS, 1, reinterpret_cast<LPARAM>(stops)));
        SendDlgItemMessageA(dialog, 107, LB_SETCURSEL, 0, 0);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_SETCURSEL, static_cast<WPARAM>(-1), 0), LB_ERR);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_GETCURSEL, 0, 0), LB_ERR);
    });
    EXPECT_NE(platform::transcriptText().find("  listbox 107: \"(-1,0)\" | \"(0,0)\" | \"last\"\n"),
              std::string::npos);

    insideDialog([](HWND dialog) {
        SendDlgItemMessageA(dialog, 107, LB_RESETCONTENT, 0, 0);
        EXPECT_EQ(SendDlgItemMessageA(dialog, 107, LB_GETCOUNT, 0, 0), 0);
    });
    EXPECT_NE(platform::transcriptText().find("  listbox 107:\n"), std::string::npos);
}

TEST(Controls, SortedListBoxOrdersWithoutRegardToCase)
{
    platform::resetWindowing();
    testdialogs::registerTestTemplates();
    testdialogs::registerExtraScript(
        "SORTED DIALOG 0, 0, 10, 10\nCAPTION \"Sorted\"\nBEGIN\n"
        "  LISTBOX 5, 0, 0, 10, 10, LBS_SORT\nEND\n");
    Procedure procedure = [](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            for (const char *text : {"beta", "Alpha", "gamma", "alpha"})
                SendDlgItemMessageA(dialog, 5, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
            EXPECT_EQ(SendDlgItemMessageA(dialog, 5, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>("Beta")), 3);
            EndDialog(dialog, 1);
        }
        return FALSE;
    };
    EXPECT_EQ(testdialogs::run("SORTED", procedure), 1);
    testdialogs::registerExtraScript("");
    EXPECT_EQ(platform::transcriptText(), "[end] Sorted: 1\n");
}

TEST(Controls, HandlesOfAnEndedDialogFindNothing)
{
    HWND kept = nullptr, keptDialog = nullptr;
    insideDialog([&](HWND dialog) {
        keptDialog = dialog;
        kept = GetDlgItem(dialog, 101);
        SetWindowTextA(kept, "x");
    });
    char buffer[8] = "zz";
    EXPECT_EQ(GetWindowTextA(kept, buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "");
    EXPECT_FALSE(SetWindowTextA(kept, "y"));
    EXPECT_FALSE(IsWindowEnabled(kept));
    EXPECT_EQ(SendMessageA(kept, WM_GETTEXTLENGTH, 0, 0), 0);
    EXPECT_EQ(GetDlgItem(keptDialog, 101), nullptr);
    EXPECT_FALSE(EndDialog(keptDialog, 1));
    EXPECT_EQ(SetFocus(kept), nullptr);
    EXPECT_FALSE(PostMessageA(kept, WM_CLOSE, 0, 0));
}

TEST(Controls, ProgramSetTextOfAnEditIsReportedAsAChange)
{
    platform::resetWindowing();
    std::vector<std::string> log;
    Procedure recorder = testdialogs::recorder(log);
    Procedure procedure = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            SetDlgItemTextA(dialog, 101, "vabcd.m");
            SetDlgItemTextA(dialog, 1029, "Auto");      /* a button: no notification */
            EndDialog(dialog, 1);
            return FALSE;
        }
        return recorder(dialog, message, wParam, lParam);
    };
    testdialogs::run("ENTRY", procedure);
    EXPECT_EQ(log, (std::vector<std::string>{"EN_CHANGE 101"}));
}

}
