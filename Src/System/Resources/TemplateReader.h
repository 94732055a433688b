// Reads templates of menus and dialogs sequentially.
#pragma once

#include "ByteReader.h"

#include <tvxcore/String.h>

namespace ORL {
namespace Resources {

/// A read past the end of the template returns false, and so do all further reads.
class TemplateReader
{
public:
    explicit TemplateReader(const Bytes& inTemplate) : mTemplate(inTemplate) {}

    template <class Number>
    bool Read(Number& outNumber)
    {
        const bool isThere = ReadNumber(mTemplate, mOffset, outNumber);
        mOffset += sizeof(outNumber);
        return isThere;
    }

    /// Appends a string and skips its terminator.
    bool ReadText(UTF16String& outText)
    {
        unsigned short unit = 0;
        while (Read(unit)) {
            if (unit == 0) {
                return true;
            }
            outText += unit;
        }
        return false;
    }

    void Skip(std::uint64_t inSize) noexcept { mOffset += inSize; }
    void AlignTo4() noexcept { mOffset = (mOffset + 3) & ~std::uint64_t{3}; }
    bool IsInside() const noexcept { return mOffset <= mTemplate.mSize; }

private:
    const Bytes mTemplate;
    std::uint64_t mOffset = 0;
};

} // namespace Resources
} // namespace ORL
