/*
** tests/platform/menu_test.cpp: the host's menu bar, a popup inserted by position as a
** plug-in inserts its own, items found by command in popups, check marks, texts and states.
*/
#include <gtest/gtest.h>

#include "platform/driver.h"

namespace {

std::string itemText(HMENU menu, UINT idOrPosition, UINT flags)
{
    char buffer[64];
    int n = GetMenuStringA(menu, idOrPosition, buffer, sizeof buffer, flags);
    return std::string(buffer, static_cast<size_t>(n));
}

std::vector<std::string> titles(HMENU menu)
{
    std::vector<std::string> result;
    for (int i = 0; i < GetMenuItemCount(menu); ++i)
        result.push_back(itemText(menu, static_cast<UINT>(i), MF_BYPOSITION));
    return result;
}

class Menus : public ::testing::Test {
protected:
    void SetUp() override
    {
        platform::resetWindowing();
        main = platform::createMainWindow("Tervan");
        bar = GetMenu(main);
        popup = CreateMenu();
        ASSERT_TRUE(InsertMenuA(bar, 4, MF_BYPOSITION | MF_POPUP, reinterpret_cast<uintptr_t>(popup), "&Praxa"));
        ASSERT_TRUE(AppendMenuA(popup, 0, 206, "&Linearize..."));
        ASSERT_TRUE(AppendMenuA(popup, 0, 243, "&Transfer Function Info"));
        ASSERT_TRUE(AppendMenuA(popup, 0, 296, "Re&use Plots"));
        ASSERT_TRUE(DrawMenuBar(main));
    }

    HWND main = nullptr;
    HMENU bar = nullptr, popup = nullptr;
};

TEST_F(Menus, PopupInsertedByPositionStandsBeforeHelp)
{
    EXPECT_EQ(titles(bar), (std::vector<std::string>{"&File", "&Edit", "&View", "&Simulate", "&Praxa", "&Help"}));
    EXPECT_EQ(GetSubMenu(bar, 4), popup);
    EXPECT_EQ(GetMenuItemID(bar, 4), static_cast<UINT>(-1));    /* a popup has no id */
    EXPECT_EQ(GetMenuItemID(popup, 0), 206u);
    EXPECT_EQ(GetMenuItemID(popup, 3), static_cast<UINT>(-1));
    EXPECT_EQ(GetSubMenu(popup, 0), nullptr);
    EXPECT_EQ(GetMenuItemCount(popup), 3);
    EXPECT_EQ(GetMenuState(bar, 4, MF_BYPOSITION), (3u << 8) | MF_POPUP);
    EXPECT_EQ(GetMenuItemCount(GetSubMenu(bar, 0)), 0);
}

TEST_F(Menus, CheckMarksByCommandAlsoFromTheMenuBar)
{
    EXPECT_EQ(CheckMenuItem(popup, 296, MF_CHECKED), static_cast<DWORD>(MF_UNCHECKED));
    EXPECT_EQ(GetMenuState(popup, 296, MF_BYCOMMAND), static_cast<UINT>(MF_CHECKED));
    EXPECT_EQ(CheckMenuItem(popup, 296, MF_CHECKED), static_cast<DWORD>(MF_CHECKED));
    EXPECT_EQ(CheckMenuItem(bar, 296, MF_UNCHECKED), static_cast<DWORD>(MF_CHECKED));   /* found in the popup */
    EXPECT_EQ(GetMenuState(popup, 2, MF_BYPOSITION), static_cast<UINT>(MF_UNCHECKED));
    EXPECT_EQ(CheckMenuItem(popup, 1, MF_BYPOSITION | MF_CHECKED), static_cast<DWORD>(MF_UNCHECKED));
    EXPECT_EQ(GetMenuState(popup, 243, MF_BYCOMMAND), static_cast<UINT>(MF_CHECKED));
    EXPECT_EQ(CheckMenuItem(popup, 999, MF_CHECKED), static_cast<DWORD>(-1));
    EXPECT_EQ(GetMenuState(popup, 999, MF_BYCOMMAND), static_cast<UINT>(-1));
}

TEST_F(Menus, TextsByCommandOrPositionAreCutToTheBuffer)
{
    EXPECT_EQ(itemText(bar, 243, MF_BYCOMMAND), "&Transfer Function Info");
    EXPECT_EQ(itemText(popup, 0, MF_BYPOSITION), "&Linearize...");
    char small[5];
    EXPECT_EQ(GetMenuStringA(popup, 206, small, sizeof small, MF_BYCOMMAND), 4);
    EXPECT_STREQ(small, "&Lin");
    EXPECT_EQ(GetMenuStringA(popup, 206, nullptr, 0, MF_BYCOMMAND), 13);
    EXPECT_EQ(GetMenuStringA(popup, 1234, small, sizeof small, MF_BYCOMMAND), 0);
    EXPECT_STREQ(small, "");
}

TEST_F(Menus, InsertByCommandAndPastTheEnd)
{
    EXPECT_TRUE(InsertMenuA(bar, 296, MF_BYCOMMAND, 250, "&Nyquist Response"));    /* into the popup */
    EXPECT_TRUE(InsertMenuA(popup, 99, MF_BYPOSITION, 300, "Last"));
    EXPECT_TRUE(InsertMenuA(popup, static_cast<UINT>(-1), MF_BYPOSITION, 301, "Very last"));
    EXPECT_EQ(titles(popup), (std::vector<std::string>{"&Linearize...", "&Transfer Function Info",
                                                       "&Nyquist Response", "Re&use Plots", "Last", "Very last"}));
    EXPECT_FALSE(InsertMenuA(popup, 4242, MF_BYCOMMAND, 302, "Nowhere"));
    EXPECT_FALSE(AppendMenuA(popup, MF_POPUP, 0x1234, "Not a menu"));
    EXPECT_FALSE(AppendMenuA(nullptr, 0, 1, "x"));
    EXPECT_TRUE(AppendMenuA(popup, MF_SEPARATOR, 0, nullptr));
    EXPECT_EQ(GetMenuState(popup, 6, MF_BYPOSITION), static_cast<UINT>(MF_SEPARATOR));
    EXPECT_EQ(GetMenuItemCount(nullptr), -1);
}

TEST_F(Menus, MenuInsertedIntoItselfIsSearchedWithoutEnd)
{
    ASSERT_TRUE(AppendMenuA(popup, MF_POPUP, reinterpret_cast<uintptr_t>(popup), "Loop"));
    EXPECT_EQ(CheckMenuItem(bar, 4711, MF_CHECKED), static_cast<DWORD>(-1));
}

TEST_F(Menus, ResetRemovesMenusAndWindows)
{
    platform::resetWindowing();
    EXPECT_EQ(GetMenu(main), nullptr);
    EXPECT_EQ(GetMenuItemCount(popup), -1);
    EXPECT_FALSE(DrawMenuBar(main));
    HMENU own = CreateMenu();
    HWND second = platform::createMainWindow("Second");
    EXPECT_TRUE(SetMenu(second, own));
    EXPECT_EQ(GetMenu(second), own);
    EXPECT_FALSE(SetMenu(second, popup));
}

}
