#include <Resources/DialogTemplate.h>

#include "TemplateReader.h"

namespace ORL {
namespace Resources {

namespace {

constexpr std::uint16_t kNumberFollows = 0xFFFF;
constexpr std::uint32_t kSetFont = 0x40;

bool ReadName(TemplateReader& ioReader, TemplateName& outName)
{
    std::uint16_t unit = 0;
    if (!ioReader.Read(unit)) {
        return false;
    }
    if (unit == kNumberFollows) {
        outName.mIsNumber = true;
        return ioReader.Read(outName.mNumber);
    }
    if (unit == 0) {
        return true;
    }
    outName.mText = unit;
    return ioReader.ReadText(outName.mText);
}

template <class Box>
bool ReadBox(TemplateReader& ioReader, Box& outBox)
{
    return ioReader.Read(outBox.mX) && ioReader.Read(outBox.mY) && ioReader.Read(outBox.mWidth)
           && ioReader.Read(outBox.mHeight);
}

// Reads the fields whose order differs between the two formats.
bool ReadHead(TemplateReader& ioReader, Dialog& outDialog)
{
    std::uint32_t first = 0;
    if (!ioReader.Read(first)) {
        return false;
    }
    outDialog.mIsExtended = first == 0xFFFF0001;
    if (!outDialog.mIsExtended) {
        outDialog.mStyle = first;
        return ioReader.Read(outDialog.mExtendedStyle);
    }
    std::uint32_t help = 0;
    return ioReader.Read(help) && ioReader.Read(outDialog.mExtendedStyle) && ioReader.Read(outDialog.mStyle);
}

bool ReadFont(TemplateReader& ioReader, Dialog& outDialog)
{
    if ((outDialog.mStyle & kSetFont) == 0) {
        return true;
    }
    if (!ioReader.Read(outDialog.mFontSize)) {
        return false;
    }
    std::uint16_t weight = 0;
    std::uint16_t slantAndSet = 0;
    if (outDialog.mIsExtended && (!ioReader.Read(weight) || !ioReader.Read(slantAndSet))) {
        return false;
    }
    return ioReader.ReadText(outDialog.mFont);
}

bool ReadItem(TemplateReader& ioReader, bool inIsExtended, DialogItem& outItem)
{
    ioReader.AlignTo4();
    if (inIsExtended) {
        std::uint32_t help = 0;
        if (!ioReader.Read(help) || !ioReader.Read(outItem.mExtendedStyle) || !ioReader.Read(outItem.mStyle)
            || !ReadBox(ioReader, outItem) || !ioReader.Read(outItem.mID)) {
            return false;
        }
    } else {
        std::uint16_t id = 0;
        if (!ioReader.Read(outItem.mStyle) || !ioReader.Read(outItem.mExtendedStyle) || !ReadBox(ioReader, outItem)
            || !ioReader.Read(id)) {
            return false;
        }
        outItem.mID = id;
    }
    std::uint16_t extraSize = 0;
    if (!ReadName(ioReader, outItem.mClass) || !ReadName(ioReader, outItem.mTitle) || !ioReader.Read(extraSize)) {
        return false;
    }
    // In the older format the size includes the field itself.
    ioReader.Skip(!inIsExtended && extraSize >= 2 ? extraSize - 2u : extraSize);
    return ioReader.IsInside();
}

} // namespace

bool ReadDialogTemplate(const Bytes& inTemplate, Dialog& outDialog)
{
    TemplateReader reader(inTemplate);
    std::uint16_t count = 0;
    if (!ReadHead(reader, outDialog) || !reader.Read(count) || !ReadBox(reader, outDialog)
        || !ReadName(reader, outDialog.mMenu) || !ReadName(reader, outDialog.mClass)
        || !reader.ReadText(outDialog.mTitle) || !ReadFont(reader, outDialog)) {
        return false;
    }
    for (unsigned int i = 0; i < count; ++i) {
        DialogItem item;
        if (!ReadItem(reader, outDialog.mIsExtended, item)) {
            return false;
        }
        outDialog.mItems.push_back(std::move(item));
    }
    return true;
}

} // namespace Resources
} // namespace ORL
