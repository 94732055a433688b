// Floor: System
// Dialogs in resources.
#pragma once

#include <Resources/ResourceReaders.h>
#include <tvxcore/String.h>

#include <cstdint>
#include <vector>

namespace ORL {
namespace Resources {

/// A class, title or menu in a template: a number, or a string, which may be empty.
struct TemplateName
{
    bool mIsNumber = false;
    unsigned short mNumber = 0;
    UTF16String mText;
};

struct DialogItem
{
    std::uint32_t mStyle = 0;
    std::uint32_t mExtendedStyle = 0;
    std::uint32_t mID = 0;
    std::int16_t mX = 0; // in dialog units, as are mY, mWidth and mHeight
    std::int16_t mY = 0;
    std::int16_t mWidth = 0;
    std::int16_t mHeight = 0;
    TemplateName mClass; // 0x80 button, 0x81 edit, 0x82 static, 0x83 list, 0x84 scroll bar, 0x85 combo box
    TemplateName mTitle;
};

struct Dialog
{
    bool mIsExtended = false;
    std::uint32_t mStyle = 0;
    std::uint32_t mExtendedStyle = 0;
    std::int16_t mX = 0;
    std::int16_t mY = 0;
    std::int16_t mWidth = 0;
    std::int16_t mHeight = 0;
    TemplateName mMenu;
    TemplateName mClass;
    UTF16String mTitle;
    std::uint16_t mFontSize = 0; // 0: the template names no font
    UTF16String mFont;
    std::vector<DialogItem> mItems;
};

/// Reads a plain or extended dialog template. Returns false, with outDialog partly filled, if the template is
/// truncated. Throws std::bad_alloc.
bool ReadDialogTemplate(const Bytes& inTemplate, Dialog& outDialog);

} // namespace Resources
} // namespace ORL
