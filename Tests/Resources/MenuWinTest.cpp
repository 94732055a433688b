// Tests that menus and cursors are native Windows handles.
#include "PlugIns.h"

#include <windows.h>

using namespace ORLTest;

TEST(Menu, OfTheOlderForm_InTheCurrentLanguage)
{
    const LanguageScope language(1031);
    const ModulePtr module = LoadPlugIn("resources_lookup");
    const HMENU menu = module->LoadMenuW(1);
    ASSERT_NE(nullptr, menu);
    EXPECT_EQ(1, ::GetMenuItemCount(menu));
    EXPECT_EQ(101u, ::GetMenuItemID(::GetSubMenu(menu, 0), 0));
    ::DestroyMenu(menu);
}

TEST(Menu, OfTheExtendedForm)
{
    const ModulePtr module = LoadPlugIn("resources_lookup");
    const HMENU menu = module->LoadMenuW(2);
    ASSERT_NE(nullptr, menu);
    EXPECT_EQ(2, ::GetMenuItemCount(menu));
    EXPECT_EQ(203u, ::GetMenuItemID(menu, 1));
    ::DestroyMenu(menu);
}
