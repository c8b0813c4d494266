/*
** tests/platform/resource_script_test.cpp: the resource-script reader on malformed scripts
** (the message names file and line) and on line breaks and continued defines.
*/
#include <gtest/gtest.h>

#include <map>

#include "platform/resource_script.h"

using platform::ResourceScript;

namespace {

ResourceScript parse(const std::string &text, const std::map<std::string, std::string> &headers = {})
{
    return platform::parseResourceScript("test.rc", text, [&headers](const std::string &name) -> const std::string * {
        auto it = headers.find(name);
        return it == headers.end() ? nullptr : &it->second;
    });
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
        {"X DIALOG " + std::string(5000, '(') + "1, 0, 1, 1\nBEGIN\nEND\n",
         "test.rc:1: expression nested too deeply"},
        {"X DIALOG 99999999999, 0, 1, 1\nBEGIN\nEND\n", "test.rc:1: number too large '99999999999'"},
    };
    std::map<std::string, std::string> headers = {{"bad.h", "#define A 1\n\n#endif\n"},
                                                  {"self.h", "#include \"self.h\"\n"}};
    for (const Case &c : cases) {
        ResourceScript r = parse(c.text, headers);
        EXPECT_EQ(r.error, c.error) << c.text.substr(0, 80);
        EXPECT_TRUE(r.dialogs.empty());
    }
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
