// Floor: System
// Menus in resources.
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
    unsigned int mFlags = 0; // Windows bits
    unsigned int mID = 0;
    std::unique_ptr<ParsedMenu> mSubMenu;
};

struct ParsedMenu
{
    std::vector<ParsedMenuItem> mItems;
};

/// Reads a plain or extended menu template. Returns null if the template cannot be parsed to its end mark, or is nested
/// deeper than any usable menu. Throws std::bad_alloc.
std::unique_ptr<ParsedMenu> ReadMenuTemplate(const Bytes& inTemplate);

} // namespace Resources
} // namespace ORL
