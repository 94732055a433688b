#include <Resources/MenuTemplate.h>

#include "TemplateReader.h"

namespace ORL {
namespace Resources {

namespace {

constexpr unsigned int kPopup = 0x10;
constexpr unsigned int kEnd = 0x80; // marks the last item; not a flag of the menu
constexpr unsigned int kSeparator = 0x800;
constexpr unsigned int kExtendedPopup = 0x01;
constexpr std::uint16_t kExtended = 1;
constexpr int kMaxDepth = 64;

bool ReadPlainItem(TemplateReader& ioReader, ParsedMenuItem& outItem, bool& outIsLast, bool& outIsPopup)
{
    std::uint16_t flags = 0;
    std::uint16_t id = 0;
    if (!ioReader.Read(flags)) {
        return false;
    }
    outIsPopup = (flags & kPopup) != 0;
    outIsLast = (flags & kEnd) != 0;
    if ((!outIsPopup && !ioReader.Read(id)) || !ioReader.ReadText(outItem.mText)) {
        return false;
    }
    outItem.mFlags = flags & ~kEnd;
    outItem.mID = id;
    if (!outIsPopup && outItem.mText.empty()) {
        outItem.mFlags |= kSeparator;
    }
    return true;
}

bool ReadExtendedItem(TemplateReader& ioReader, ParsedMenuItem& outItem, bool& outIsLast, bool& outIsPopup)
{
    std::uint32_t type = 0;
    std::uint32_t state = 0;
    std::uint32_t id = 0;
    std::uint16_t marks = 0;
    if (!ioReader.Read(type) || !ioReader.Read(state) || !ioReader.Read(id) || !ioReader.Read(marks)
        || !ioReader.ReadText(outItem.mText)) {
        return false;
    }
    ioReader.AlignTo4();
    outIsPopup = (marks & kExtendedPopup) != 0;
    outIsLast = (marks & kEnd) != 0;
    std::uint32_t help = 0;
    if (outIsPopup && !ioReader.Read(help)) {
        return false;
    }
    outItem.mFlags = type | state | (outIsPopup ? kPopup : 0);
    outItem.mID = id;
    return true;
}

bool ReadItems(TemplateReader& ioReader, bool inIsExtended, int inDepth, ParsedMenu& outMenu)
{
    if (inDepth == kMaxDepth) {
        return false;
    }
    for (bool isLast = false; !isLast;) {
        ParsedMenuItem item;
        bool isPopup = false;
        const bool isWhole = inIsExtended ? ReadExtendedItem(ioReader, item, isLast, isPopup)
                                          : ReadPlainItem(ioReader, item, isLast, isPopup);
        if (!isWhole) {
            return false;
        }
        if (isPopup) {
            item.mSubMenu = std::make_unique<ParsedMenu>();
            if (!ReadItems(ioReader, inIsExtended, inDepth + 1, *item.mSubMenu)) {
                return false;
            }
        }
        outMenu.mItems.push_back(std::move(item));
    }
    return true;
}

} // namespace

std::unique_ptr<ParsedMenu> ReadMenuTemplate(const Bytes& inTemplate)
{
    TemplateReader reader(inTemplate);
    std::uint16_t version = 0;
    std::uint16_t offset = 0;
    if (!reader.Read(version) || !reader.Read(offset) || version > kExtended) {
        return nullptr;
    }
    reader.Skip(offset);
    auto menu = std::make_unique<ParsedMenu>();
    return ReadItems(reader, version == kExtended, 0, *menu) ? std::move(menu) : nullptr;
}

} // namespace Resources
} // namespace ORL
