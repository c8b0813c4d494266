/*
** tests/platform/resource_script_test.cpp: the resource-script reader on scripts with every
** statement it knows, and on malformed scripts (the message names file and line).
*/
#include <gtest/gtest.h>

#include <map>

#include "platform/resource_script.h"

using platform::ControlTemplate;
using platform::DialogTemplate;
using platform::ResourceScript;

namespace {

/* Window style values, written out (Win32 numbering) so the test does not reuse the reader's table. */
constexpr DWORD CHILD_VISIBLE = 0x50000000, TABSTOP = 0x00010000, GROUP = 0x00020000, BORDER = 0x00800000,
                DISABLED = 0x08000000;

ResourceScript parse(const std::string &text, const std::map<std::string, std::string> &headers = {})
{
    return platform::parseResourceScript("test.rc", text, [&headers](const std::string &name) -> const std::string * {
        auto it = headers.find(name);
        return it == headers.end() ? nullptr : &it->second;
    });
}

const char *const header = R"(/* ids */
#ifndef TEST_IDS
#define TEST_IDS
#define IDC_START   102
#define IDC_END     (IDC_START + 1)
#define IDC_STEPS   0x68
#define MY_FLAGS    WS_TABSTOP | WS_GROUP
#endif
#define TEST_IDS_AGAIN
)";

const char *const script = R"(// Every statement kind.
#include "ids.h"
#include "ids.h"           /* a second include is harmless: the guard skips it */
#include <windows.h>
LANGUAGE LANG_ENGLISH, SUBLANG_ENGLISH_US

#ifdef NOT_DEFINED
THIS IS NOT READ
#else
#define HELP_ID 9
#endif
#if defined(TEST_IDS) && HELP_ID == 9
#define FROM_IF 1
#endif

PRX_OPTIONS DIALOG DISCARDABLE 0, 0, 114, 85
STYLE DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU
CAPTION "Bode Frequency Range"
FONT 10, "Microsoft Sans Serif"
BEGIN
    LTEXT           "Start:", IDC_STATIC, 5, 8, 40, 8
    RTEXT           "End:", -1, 5, 24, 40, 8
    CTEXT           "Say ""hi""\tthere // not a comment /* nor this */", 4, 5, 40, 40, 8
    EDITTEXT        IDC_START, 50, 6, 55, 12, ES_AUTOHSCROLL
    EDITTEXT        IDC_END, 50, 22, 55, 12, ES_AUTOHSCROLL | NOT WS_TABSTOP
    EDITTEXT        IDC_STEPS, 50, 38, 55, 12, ES_NUMBER | WS_DISABLED
    AUTOCHECKBOX    "Auto Range", 1029, 5, 54, 60, 10
    CHECKBOX        "Plain", 1030, 5, 54, 60, 10, NOT WS_TABSTOP
    AUTORADIOBUTTON "Hertz", 210, 5, 60, 50, 10, MY_FLAGS
    RADIOBUTTON     "Auto", 211, 5, 70, 50, 10, BS_AUTORADIOBUTTON
    GROUPBOX        "Units", 701, 0, 0, 100, 40
    LISTBOX         107, 2, 20, 140, 117, LBS_NOTIFY | WS_VSCROLL | WS_BORDER
    DEFPUSHBUTTON   "OK", IDOK, 5, 68, 30, 14
    PUSHBUTTON      "Cancel", IDCANCEL, 40, 68, 30, 14
    PUSHBUTTON      "Help", HELP_ID + FROM_IF - 1, 75, 68, 30, 14
END

/* Generic controls in a DIALOGEX with braces. */
polezero_box DIALOGEX 0, 0, 288, 157, 0
STYLE DS_MODALFRAME | WS_POPUP | WS_CAPTION
EXSTYLE WS_EX_CONTEXTHELP
CAPTION "Zeros and Poles"
FONT 10, "Microsoft Sans Serif", 400, 0, 0x1
{
    CONTROL "Zeros\t\tPoles", 109, "Static", SS_LEFT, 56, 5, 163, 8
    CONTROL "", 108, "ListBox", LBS_NOTIFY | WS_VSCROLL | WS_BORDER | WS_TABSTOP, 146, 20, 140, 117
    CONTROL "&OK", IDOK, "Button", BS_DEFPUSHBUTTON | WS_TABSTOP, 127, 139, 34, 14, 0, 77
    CONTROL "x", 5, EDIT, ES_LEFT | NOT WS_VISIBLE, 1, 1, 1, 1
    CONTROL "y", 6, "button", BS_AUTOCHECKBOX, 1, 1, 1, 1
    AUTORADIOBUTTON "z", 7, 1, 1, 1, 1, WS_TABSTOP, WS_EX_STATICEDGE, 12
}

1 VERSIONINFO
BEGIN
    BLOCK "StringFileInfo" BEGIN VALUE "x", "y" END
END
STRINGTABLE
BEGIN
    1, "one"
END
300 DIALOG 0, 0, 10, 10
BEGIN
END
)";

const ControlTemplate &control(const DialogTemplate &d, int id)
{
    for (const ControlTemplate &c : d.controls)
        if (c.id == id)
            return c;
    static ControlTemplate none;
    ADD_FAILURE() << "no control " << id;
    return none;
}

TEST(ResourceScript, ReadsEveryStatementKind)
{
    ResourceScript r = parse(script, {{"ids.h", header}});
    ASSERT_EQ(r.error, "");
    ASSERT_EQ(r.dialogs.size(), 3u);

    const DialogTemplate &options = r.dialogs[0];
    EXPECT_EQ(options.name, "PRX_OPTIONS");
    EXPECT_EQ(options.caption, "Bode Frequency Range");
    EXPECT_EQ(options.fontFace, "Microsoft Sans Serif");
    EXPECT_EQ(options.fontSize, 10);
    EXPECT_EQ(options.style, 0x80C80080u);
    EXPECT_EQ(options.cx, 114);
    EXPECT_EQ(options.cy, 85);
    EXPECT_FALSE(options.extended);
    ASSERT_EQ(options.controls.size(), 15u);
    std::vector<int> order;
    for (const ControlTemplate &c : options.controls)
        order.push_back(c.id);
    EXPECT_EQ(order, (std::vector<int>{-1, -1, 4, 102, 103, 104, 1029, 1030, 210, 211, 701, 107, 1, 2, 9}));

    const ControlTemplate &start = options.controls[0];
    EXPECT_EQ(start.text, "Start:");
    EXPECT_EQ(start.className, "Static");
    EXPECT_EQ(start.style, CHILD_VISIBLE | GROUP);
    EXPECT_EQ(start.x, 5);
    EXPECT_EQ(start.y, 8);
    EXPECT_EQ(start.cx, 40);
    EXPECT_EQ(start.cy, 8);
    EXPECT_EQ(options.controls[1].style, CHILD_VISIBLE | GROUP | 0x2u);
    EXPECT_EQ(control(options, 4).text, "Say \"hi\"\tthere // not a comment /* nor this */");
    EXPECT_EQ(control(options, 4).style, CHILD_VISIBLE | GROUP | 0x1u);
    EXPECT_EQ(control(options, 102).className, "Edit");
    EXPECT_EQ(control(options, 102).style, CHILD_VISIBLE | BORDER | TABSTOP | 0x80u);
    EXPECT_EQ(control(options, 103).style, CHILD_VISIBLE | BORDER | 0x80u);
    EXPECT_EQ(control(options, 104).style, CHILD_VISIBLE | BORDER | TABSTOP | DISABLED | 0x2000u);
    EXPECT_EQ(control(options, 1029).style, CHILD_VISIBLE | TABSTOP | 0x3u);
    EXPECT_EQ(control(options, 1030).style, CHILD_VISIBLE | 0x2u);
    EXPECT_EQ(control(options, 210).style, CHILD_VISIBLE | TABSTOP | GROUP | 0x9u);
    EXPECT_EQ(control(options, 211).style, CHILD_VISIBLE | TABSTOP | 0x9u);     /* the type given wins */
    EXPECT_EQ(control(options, 701).style, CHILD_VISIBLE | 0x7u);
    EXPECT_EQ(control(options, 107).className, "ListBox");
    EXPECT_EQ(control(options, 107).style, CHILD_VISIBLE | BORDER | 0x00200001u);
    EXPECT_EQ(control(options, 1).style, CHILD_VISIBLE | TABSTOP | 0x1u);
    EXPECT_EQ(control(options, 2).style, CHILD_VISIBLE | TABSTOP);
    EXPECT_EQ(control(options, 9).text, "Help");

    const DialogTemplate &poles = r.dialogs[1];
    EXPECT_EQ(poles.name, "polezero_box");
    EXPECT_TRUE(poles.extended);
    EXPECT_EQ(poles.exStyle, 0x400u);
    EXPECT_EQ(poles.caption, "Zeros and Poles");
    EXPECT_EQ(control(poles, 109).text, "Zeros\t\tPoles");
    EXPECT_EQ(control(poles, 109).style, CHILD_VISIBLE);
    EXPECT_EQ(control(poles, 108).className, "ListBox");
    EXPECT_EQ(control(poles, 1).style, CHILD_VISIBLE | TABSTOP | 0x1u);
    EXPECT_EQ(control(poles, 5).className, "Edit");
    EXPECT_EQ(control(poles, 5).style, 0x40000000u);
    EXPECT_EQ(control(poles, 6).className, "Button");
    EXPECT_EQ(control(poles, 7).exStyle, 0x20000u);

    EXPECT_EQ(r.dialogs[2].name, "#300");
    EXPECT_TRUE(r.dialogs[2].controls.empty());
}

TEST(ResourceScript, MalformedScriptsNameFileAndLine)
{
    const std::string head = "X DIALOG 0, 0, 10, 10\nBEGIN\n";
    struct Case {
        std::string text;
        std::string error;
    } cases[] = {
        {head + "  COMBOBOX 1, 0, 0, 10, 10\nEND\n", "test.rc:3: control COMBOBOX is not supported"},
        {head + "  LTEXT \"a\", IDC_NOPE, 0, 0, 1, 1\nEND\n", "test.rc:3: unknown identifier 'IDC_NOPE'"},
        {head + "  LTEXT \"a\", 1, 0, 0, 1, 1\n", "test.rc:3: dialog X has no END"},
        {head + "  LTEXT \"a, 1, 0, 0, 1, 1\nEND\n", "test.rc:3: unterminated string"},
        {head + "  LTEXT \"a\", 1, 0 0, 1, 1\nEND\n", "test.rc:3: expected ',', found 0"},
        {head + "  LTEXT \"a\", 1, 0, 0, 1, 1, 0, 0, 7\nEND\n",
         "test.rc:3: too many values for a control of a DIALOG (help ids need DIALOGEX)"},
        {head + "  CONTROL \"\", 1, \"msctls_trackbar32\", 0, 0, 0, 1, 1\nEND\n",
         "test.rc:3: window class \"msctls_trackbar32\" is not supported (Button, Edit, Static, ListBox)"},
        {head + "  BUTTON \"a\", 1, 0, 0, 1, 1\nEND\n", "test.rc:3: expected a control or END, found 'BUTTON'"},
        {head + "  LTEXT \"a\", 1 / 0, 0, 0, 1, 1\nEND\n", "test.rc:3: division by zero"},
        {head + "  LTEXT \"a\", 1, 0, 0, 1, 1 $\nEND\n", "test.rc:3: unexpected character '$'"},
        {head + "  LTEXT \"a\", 12ab, 0, 0, 1, 1\nEND\n", "test.rc:3: malformed number '12a'"},
        {"X DIALOG 0, 0, 10, 10\nCAPTION Title\nBEGIN\nEND\n", "test.rc:2: CAPTION needs a quoted text"},
        {"X DIALOG 0, 0, 10, 10\nSIZE 5\nBEGIN\nEND\n", "test.rc:2: expected BEGIN or a dialog option, found 'SIZE'"},
        {"X DIALOG 0, 0, 10, 10\n", "test.rc:1: dialog X has no BEGIN"},
        {"X WIDGET 0, 0, 10, 10\n", "test.rc:1: unknown resource type 'WIDGET' for X"},
        {"#define LOOP LOOP + 1\nX DIALOG LOOP, 0, 1, 1\nBEGIN\nEND\n", "test.rc:2: macro 'LOOP' expands into itself"},
        {"#define F(a) a\n", "test.rc:1: macros with parameters are not supported"},
        {"#include \"missing.h\"\n", "test.rc:1: cannot open include file \"missing.h\""},
        {"#include \"bad.h\"\n", "bad.h:3: #endif without #if"},
        {"#ifdef A\n\n", "test.rc:1: #if without #endif"},
        {"#else\n", "test.rc:1: #else without #if"},
        {"/* open\n\n", "test.rc:1: unterminated comment"},
        {"#error stop here\n", "test.rc:1: #error stop here"},
        {"#frobnicate\n", "test.rc:1: unknown directive #frobnicate"},
        {"#include \"self.h\"\n", "self.h:1: #include nested too deeply"},
    };
    std::map<std::string, std::string> headers = {{"bad.h", "#define A 1\n\n#endif\n"},
                                                  {"self.h", "#include \"self.h\"\n"}};
    for (const Case &c : cases) {
        ResourceScript r = parse(c.text, headers);
        EXPECT_EQ(r.error, c.error) << c.text;
        EXPECT_TRUE(r.dialogs.empty());
    }
}

TEST(ResourceScript, DeeplyNestedExpressionIsAnErrorNotACrash)
{
    std::string deep(5000, '(');
    ResourceScript r = parse("X DIALOG " + deep + "1, 0, 1, 1\nBEGIN\nEND\n");
    EXPECT_EQ(r.error, "test.rc:1: expression nested too deeply");
    std::string big = "X DIALOG 99999999999, 0, 1, 1\nBEGIN\nEND\n";
    EXPECT_EQ(parse(big).error, "test.rc:1: number too large '99999999999'");
}

TEST(ResourceScript, CarriageReturnsAndContinuedDefinesAreRead)
{
    ResourceScript r = parse("#define W \\\r\n  40\r\nY DIALOG 0, 0, W, 10\r\nBEGIN\r\n"
                             "  PUSHBUTTON \"A\", 3, 0, 0, W, W / 4\r\nEND\r\n");
    ASSERT_EQ(r.error, "");
    ASSERT_EQ(r.dialogs.size(), 1u);
    EXPECT_EQ(r.dialogs[0].cx, 40);
    EXPECT_EQ(r.dialogs[0].controls[0].cy, 10);
}

}
