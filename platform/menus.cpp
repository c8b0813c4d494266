/*
** platform/menus.cpp: menus and menu bars. Items are found by position, or by command id
** searching popups depth first as Win32 does; check marks, texts and states.
*/
#include <algorithm>
#include <map>
#include <memory>

#include "platform/window_system.h"

namespace platform {

namespace {

constexpr int MAX_MENU_DEPTH = 16;      /* a menu inserted into itself is not searched forever */
constexpr UINT ITEM_STATE_FLAGS = MF_CHECKED | MF_GRAYED | MF_DISABLED | MF_POPUP | MF_SEPARATOR |
                                  0x0004 /* MF_BITMAP */ | 0x0020 /* MF_MENUBARBREAK */ |
                                  0x0040 /* MF_MENUBREAK */ | 0x0100 /* MF_OWNERDRAW */;
constexpr UINT MISSING = static_cast<UINT>(-1);

struct MenuItem {
    UINT flags = 0;         /* MF_ state and type flags of the item */
    UINT id = 0;
    HMENU popup = nullptr;
    std::string text;
};

struct Menu {
    std::vector<MenuItem> items;
};

struct MenuSystem {
    std::map<uintptr_t, std::unique_ptr<Menu>> menus;
    uintptr_t nextHandle = 0x20010;
};

MenuSystem &menuSystem()
{
    static MenuSystem system;
    return system;
}

Menu *findMenu(HMENU menu)
{
    auto &menus = menuSystem().menus;
    auto it = menus.find(reinterpret_cast<uintptr_t>(menu));
    return it == menus.end() ? nullptr : it->second.get();
}

struct ItemPlace {
    Menu *menu = nullptr;
    size_t index = 0;
    MenuItem *item() const { return menu ? &menu->items[index] : nullptr; }
};

ItemPlace findByCommand(Menu &menu, UINT id, int depth)
{
    if (depth > MAX_MENU_DEPTH)
        return {};
    for (size_t i = 0; i < menu.items.size(); ++i) {
        MenuItem &item = menu.items[i];
        if (!(item.flags & MF_POPUP) && item.id == id)
            return {&menu, i};
        if (item.flags & MF_POPUP)
            if (Menu *sub = findMenu(item.popup))
                if (ItemPlace found = findByCommand(*sub, id, depth + 1); found.menu)
                    return found;
    }
    return {};
}

ItemPlace findItem(HMENU handle, UINT idOrPosition, UINT flags)
{
    Menu *menu = findMenu(handle);
    if (!menu)
        return {};
    if (flags & MF_BYPOSITION)
        return idOrPosition < menu->items.size() ? ItemPlace{menu, idOrPosition} : ItemPlace{};
    return findByCommand(*menu, idOrPosition, 0);
}

/* Builds the item of InsertMenuA/AppendMenuA; false for a popup that is no menu. */
bool makeItem(UINT flags, uintptr_t idOrPopup, LPCSTR text, MenuItem &item)
{
    item.flags = flags & ITEM_STATE_FLAGS;
    if (flags & MF_POPUP) {
        item.popup = reinterpret_cast<HMENU>(idOrPopup);
        if (!findMenu(item.popup))
            return false;
    } else {
        item.id = static_cast<UINT>(idOrPopup);
    }
    if (!(flags & MF_SEPARATOR) && text)
        item.text = text;
    return true;
}

}

void resetMenus()
{
    menuSystem().menus.clear();
}

HMENU createMainMenuBar()
{
    HMENU bar = CreateMenu();
    for (const char *title : {"&File", "&Edit", "&View", "&Simulate", "&Help"})
        AppendMenuA(bar, MF_POPUP, reinterpret_cast<uintptr_t>(CreateMenu()), title);
    return bar;
}

}

using namespace platform;

extern "C" {

HMENU CreateMenu(void)
{
    MenuSystem &system = menuSystem();
    HMENU handle = reinterpret_cast<HMENU>(system.nextHandle);
    system.nextHandle += 0x10;
    system.menus[reinterpret_cast<uintptr_t>(handle)] = std::make_unique<Menu>();
    return handle;
}

HMENU GetMenu(HWND window)
{
    Window *w = findWindow(window);
    return w && findMenu(w->menu) ? w->menu : nullptr;
}

BOOL SetMenu(HWND window, HMENU menu)
{
    Window *w = findWindow(window);
    if (!w || (menu && !findMenu(menu)))
        return FALSE;
    w->menu = menu;
    return TRUE;
}

/* By position: before the item at `position`; -1 or a position past the end appends.
** By command: before the item with that id, wherever it is; FALSE when there is none. */
BOOL InsertMenuA(HMENU menu, UINT position, UINT flags, uintptr_t idOrPopup, LPCSTR text)
{
    Menu *m = findMenu(menu);
    MenuItem item;
    if (!m || !makeItem(flags, idOrPopup, text, item))
        return FALSE;
    if (flags & MF_BYPOSITION) {
        size_t at = std::min<size_t>(position, m->items.size());
        m->items.insert(m->items.begin() + static_cast<std::ptrdiff_t>(at), item);
        return TRUE;
    }
    ItemPlace place = findByCommand(*m, position, 0);
    if (!place.menu)
        return FALSE;
    place.menu->items.insert(place.menu->items.begin() + static_cast<std::ptrdiff_t>(place.index), item);
    return TRUE;
}

BOOL AppendMenuA(HMENU menu, UINT flags, uintptr_t idOrPopup, LPCSTR text)
{
    Menu *m = findMenu(menu);
    MenuItem item;
    if (!m || !makeItem(flags, idOrPopup, text, item))
        return FALSE;
    m->items.push_back(item);
    return TRUE;
}

BOOL DrawMenuBar(HWND window)
{
    return findWindow(window) ? TRUE : FALSE;
}

DWORD CheckMenuItem(HMENU menu, UINT idOrPosition, UINT flags)
{
    MenuItem *item = findItem(menu, idOrPosition, flags).item();
    if (!item)
        return static_cast<DWORD>(-1);
    DWORD previous = item->flags & MF_CHECKED;
    if (flags & MF_CHECKED)
        item->flags |= MF_CHECKED;
    else
        item->flags &= ~static_cast<UINT>(MF_CHECKED);
    return previous;
}

int GetMenuItemCount(HMENU menu)
{
    Menu *m = findMenu(menu);
    return m ? static_cast<int>(m->items.size()) : -1;
}

UINT GetMenuItemID(HMENU menu, int position)
{
    Menu *m = findMenu(menu);
    if (!m || position < 0 || static_cast<size_t>(position) >= m->items.size())
        return MISSING;
    const MenuItem &item = m->items[static_cast<size_t>(position)];
    return (item.flags & MF_POPUP) ? MISSING : item.id;
}

HMENU GetSubMenu(HMENU menu, int position)
{
    Menu *m = findMenu(menu);
    if (!m || position < 0 || static_cast<size_t>(position) >= m->items.size())
        return nullptr;
    const MenuItem &item = m->items[static_cast<size_t>(position)];
    return (item.flags & MF_POPUP) ? item.popup : nullptr;
}

/* Returns the characters copied (at most size - 1), or the text's length without a buffer. */
int GetMenuStringA(HMENU menu, UINT idOrPosition, LPSTR buffer, int size, UINT flags)
{
    MenuItem *item = findItem(menu, idOrPosition, flags).item();
    if (!item) {
        if (buffer && size > 0)
            buffer[0] = '\0';
        return 0;
    }
    if (!buffer || size <= 0)
        return static_cast<int>(item->text.size());
    size_t n = std::min(item->text.size(), static_cast<size_t>(size - 1));
    item->text.copy(buffer, n);
    buffer[n] = '\0';
    return static_cast<int>(n);
}

/* A popup's state carries its item count in the high byte, as in Win32. */
UINT GetMenuState(HMENU menu, UINT idOrPosition, UINT flags)
{
    MenuItem *item = findItem(menu, idOrPosition, flags).item();
    if (!item)
        return MISSING;
    if (item->flags & MF_POPUP) {
        Menu *sub = findMenu(item->popup);
        UINT count = sub ? static_cast<UINT>(std::min<size_t>(sub->items.size(), 0xFF)) : 0;
        return (count << 8) | (item->flags & 0xFF);
    }
    return item->flags;
}

}
