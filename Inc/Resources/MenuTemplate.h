// Floor: System
// Menus as resources hold them.
#pragma once

#include <Resources/ResourceReaders.h>
#include <tvxcore/String.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace ORL {
namespace Resources {

struct ParsedMenu;

struct ParsedMenuItem
{
    UTF16String mText;
    unsigned int mFlags = 0; // the home platform's bits
    unsigned int mID = 0;
    std::unique_ptr<ParsedMenu> mSubMenu;
};

struct ParsedMenu
{
    std::vector<ParsedMenuItem> mItems;
};

/// Reads a menu template of either form. Null if it does not parse to its end mark, or is deeper than any menu that a
/// person could use. Throws std::bad_alloc.
std::unique_ptr<ParsedMenu> ReadMenuTemplate(const Bytes& inTemplate);

} // namespace Resources
} // namespace ORL
