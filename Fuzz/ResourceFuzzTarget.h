// Properties of parsing arbitrary bytes as resources. The fuzzers and the plain tests check the same properties.
#pragma once

#include <Resources/CursorReader.h>
#include <Resources/DialogTemplate.h>
#include <Resources/MenuTemplate.h>
#include <Resources/ResourceReaders.h>
#include <Resources/StringBlock.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ORLFuzz {

using ResourceReader = ORL::Resources::ReadOutcome (*)(const ORL::Resources::Bytes&, ORL::Resources::ResourceIndex&);

inline bool IsInside(const ORL::Resources::Bytes& inBytes, const ORL::Resources::ResourceEntry& inEntry)
{
    const auto start = reinterpret_cast<std::uintptr_t>(inBytes.mData);
    const auto data = reinterpret_cast<std::uintptr_t>(inEntry.mData);
    return data >= start && data - start <= inBytes.mSize && inEntry.mSize <= inBytes.mSize - (data - start);
}

inline ORL::Resources::NameView ViewOf(const ORL::Resources::ResourceIndex& inIndex,
                                       const ORL::Resources::StoredName& inName)
{
    using ORL::Resources::NameView;
    return inName.mIsText ? NameView::OfText(inIndex.Text(inName), inName.mCount) : NameView::OfNumber(inName.mID);
}

/// Parses the contents of a resource with every parser.
inline void ReadContents(const ORL::Resources::ResourceEntry& inEntry)
{
    using namespace ORL::Resources;
    Bytes bytes;
    bytes.mData = inEntry.mData;
    bytes.mSize = inEntry.mSize;
    ReadMenuTemplate(bytes);
    Dialog dialog;
    ReadDialogTemplate(bytes, dialog);
    unsigned short chosen = 0;
    ChooseCursor(bytes, chosen);
    Linux::CursorPicture picture{};
    ReadCursor(bytes, picture);
    StringBlock block(inEntry.mData, inEntry.mSize);
    block.Skip(kStringsInBlock);
}

/// Returns null, or a description of the property that failed.
inline const char* CheckResources(ResourceReader inReader, const std::uint8_t* inData, std::size_t inSize)
{
    using namespace ORL::Resources;
    Bytes bytes;
    bytes.mData = inData;
    bytes.mSize = inSize;
    ResourceIndex index;
    const ReadOutcome outcome = inReader(bytes, index);
    index.Finish();
    if (outcome == ReadOutcome::kRefused && !index.Entries().empty()) {
        return "a refused file has resources";
    }
    for (const ResourceEntry& entry : index.Entries()) {
        if (!IsInside(bytes, entry)) {
            return "the data of a resource is not inside of the file";
        }
        const NameView type = ViewOf(index, entry.mType);
        const NameView name = ViewOf(index, entry.mName);
        if (index.FindExact(type, name, entry.mLanguage) != &entry) {
            return "a resource is not found by its own name";
        }
        if (index.Find(type, name, entry.mLanguage, 1033) != &entry || index.Find(type, name, 0, 1033) == nullptr) {
            return "a resource is not found in its own language";
        }
        ReadContents(entry);
    }
    return nullptr;
}

} // namespace ORLFuzz
