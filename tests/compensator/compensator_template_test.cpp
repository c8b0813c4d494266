/*
** tests/compensator/compensator_template_test.cpp: the COMPENSATORDESIGN template as the
** resource script declares it: title, font, size, frame, and every control in tab order
** with its id, class, text, place and the styles the dialog relies on.
*/
#include <gtest/gtest.h>
#include <string>

#include "platform/resource_script.h"
#include "resources/prxdlg.h"
#include "support.h"

namespace {

DWORD symbol(const char *name) { return testing_support::styleSymbol(name); }

struct Expected {
    int id;
    const char *className;
    const char *text;
    int x, y, cx, cy;
};

}

TEST(CompensatorTemplate, TitleFontSizeFrameAndControlsInTabOrder)
{
    platform::ResourceScript script = testing_support::projectResourceScript();
    ASSERT_EQ(script.error, "");
    const platform::DialogTemplate *dialog = testing_support::findTemplate(script, "COMPENSATORDESIGN");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->caption, "Compensator Design");
    EXPECT_EQ(dialog->fontFace, "Microsoft Sans Serif");
    EXPECT_EQ(dialog->fontSize, 10);
    EXPECT_EQ(dialog->cx, 288);
    EXPECT_EQ(dialog->cy, 131);
    DWORD frame = symbol("DS_MODALFRAME") | symbol("WS_CAPTION") | symbol("WS_SYSMENU");
    EXPECT_EQ(dialog->style & frame, frame);

    const Expected controls[] = {
        {1021, "Edit", "", 6, 32, 70, 12},
        {107, "ListBox", "", 6, 46, 70, 49},
        {1020, "Edit", "", 79, 32, 70, 12},
        {108, "ListBox", "", 79, 46, 70, 49},
        {303, "Button", "&Add", 6, 97, 34, 13},
        {304, "Button", "&Del", 42, 97, 34, 13},
        {301, "Button", "&Change", 79, 97, 34, 13},
        {302, "Button", "&Replot", 116, 97, 34, 13},
        {1022, "ListBox", "", 159, 24, 124, 83},
        {1, "Button", "&OK", 78, 114, 27, 14},
        {2, "Button", "Ca&ncel", 132, 114, 27, 14},
        {109, "Static", "Zeros                           Poles", 34, 24, 107, 8},
        {-1, "Button", "Compensator", 4, 3, 148, 109},
        {-1, "Button", "Plant", 156, 3, 130, 109},
        {111, "Static", "Zeros            Poles", 185, 14, 93, 8},
        {-1, "Static", "Gain:", 52, 13, 22, 8},
        {1023, "Edit", "", 74, 11, 51, 12},
        {9, "Button", "Help", 185, 114, 27, 14},
    };
    ASSERT_EQ(dialog->controls.size(), std::size(controls));
    for (size_t i = 0; i < std::size(controls); i++) {
        const platform::ControlTemplate &c = dialog->controls[i];
        const Expected &e = controls[i];
        SCOPED_TRACE("control " + std::to_string(i) + " \"" + e.text + "\"");
        EXPECT_EQ(c.id, e.id);
        EXPECT_EQ(c.className, e.className);
        EXPECT_EQ(c.text, e.text);
        EXPECT_EQ(c.x, e.x);
        EXPECT_EQ(c.y, e.y);
        EXPECT_EQ(c.cx, e.cx);
        EXPECT_EQ(c.cy, e.cy);
        if (std::string(e.className) == "Edit") {
            EXPECT_EQ(c.style & symbol("ES_AUTOHSCROLL"), symbol("ES_AUTOHSCROLL"));
        }
        if (std::string(e.className) == "ListBox") {
            DWORD list = symbol("LBS_NOTIFY") | symbol("LBS_USETABSTOPS") | symbol("WS_VSCROLL");
            EXPECT_EQ(c.style & list, list);
            /* entries stay in the order they are added */
            EXPECT_EQ(c.style & symbol("LBS_SORT"), 0u);
            EXPECT_EQ(c.style & symbol("LBS_NOINTEGRALHEIGHT"), e.id == 1022 ? symbol("LBS_NOINTEGRALHEIGHT") : 0u);
        }
    }
    /* Enter presses Replot; the other buttons are plain, the two frames group boxes */
    EXPECT_EQ(dialog->controls[7].style & 0xF, symbol("BS_DEFPUSHBUTTON"));
    for (size_t i : {4u, 5u, 6u, 9u, 10u, 17u})
        EXPECT_EQ(dialog->controls[i].style & 0xF, symbol("BS_PUSHBUTTON")) << i;
    for (size_t i : {12u, 13u})
        EXPECT_EQ(dialog->controls[i].style & 0xF, symbol("BS_GROUPBOX")) << i;
}
