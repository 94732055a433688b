#include <ORLStringResources.h>

#include <ORLDebug.h>
#include <ORLString.h>
#include <Resources/StringBlock.h>

#include <cstdint>
#include <cstring>
#include <tvxcore/Text.h>

namespace ORL {

namespace {

using Resources::StringBlock;

using Lookup = void* (ResourceCollection::*)(const unsigned short*, const unsigned short*, int&) const;

unsigned int FindStringInResource(const ResourceCollection& inCollection, unsigned int inID,
                                  const unsigned char*& outText)
{
    const unsigned short* const block = MakeResourceID(Resources::BlockOfString(inID));
    const Lookup lookups[] = {&ResourceCollection::FindLocalizedResource,
                              &ResourceCollection::FindNonLocalizedResource};
    for (const Lookup lookup : lookups) {
        int size = 0;
        void* const rsrc = (inCollection.*lookup)(block, MakeResourceID(Resources::kStringType), size);
        ORL_ASSERT_MESSAGE_AT(rsrc != nullptr, "rsrc != NULL", "", "StringUtils", 293,
                              "ORL::`anonymous-namespace'::FindStringInResource");
        if (rsrc == nullptr) {
            continue;
        }
        StringBlock data(rsrc, static_cast<unsigned int>(size));
        data.Skip(inID % Resources::kStringsInBlock);
        const bool isInside = data.HasEntry();
        if (isInside && data.Length() == 0) {
            continue;
        }
        ORL_ASSERT_MESSAGE_AT(isInside, "data < dataEnd", "", "StringUtils", 308,
                              "ORL::`anonymous-namespace'::FindStringInResource");
        outText = data.Text();
        return isInside ? data.Length() : 0;
    }
    return 0;
}

bool LoadLocalizedString(const ResourceCollection& inCollection, unsigned int inID, UTF16String& outString)
{
    const unsigned char* text = nullptr;
    const unsigned int length = FindStringInResource(inCollection, inID, text);
    if (length == 0) {
        return false;
    }
    ORL_ASSERT_AT(length > 0, "StringUtils", 449, "ORL::LoadLocalizedString");
    const bool isAligned = (reinterpret_cast<std::uintptr_t>(text) & 1) == 0;
    if (isAligned) {
        outString.assign(reinterpret_cast<const unsigned short*>(text), length);
    } else {
        outString.resize(length);
        std::memcpy(&outString[0], text, 2 * std::size_t{length});
    }
    return true;
}

} // namespace

bool LoadStringW(const ResourceCollection& inCollection, unsigned int inID, UTF16String& outString)
{
    return LoadLocalizedString(inCollection, inID, outString);
}

UTF16String LoadStringW(const ResourceCollection& inCollection, unsigned int inID)
{
    UTF16String text;
    LoadLocalizedString(inCollection, inID, text);
    return text;
}

bool LoadStdString(const ResourceCollection& inCollection, unsigned int inID, std::string& outString)
{
    UTF16String text;
    if (!LoadLocalizedString(inCollection, inID, text)) {
        return false;
    }
    outString = reinterpret_cast<const char*>(tvxcore::utility::UTF16to8(text).c_str());
    return true;
}

std::string LoadStdString(const ResourceCollection& inCollection, unsigned int inID)
{
    std::string text;
    LoadStdString(inCollection, inID, text);
    return text;
}

} // namespace ORL
