// Reading templates of menus and dialogs from front to back.
#pragma once

#include "ByteReader.h"

#include <tvxcore/String.h>

namespace ORL {
namespace Resources {

/// Each read returns false if its bytes are not all there; then every further one does.
class TemplateReader
{
public:
    explicit TemplateReader(const Bytes& inTemplate) : mTemplate(inTemplate) {}

    template <class Number>
    bool Read(Number& outNumber)
    {
        const bool isThere = ReadNumber(mTemplate, mPlace, outNumber);
        mPlace += sizeof(outNumber);
        return isThere;
    }

    /// A text with its terminator.
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

    void Skip(std::uint64_t inSize) noexcept { mPlace += inSize; }
    void AlignTo4() noexcept { mPlace = (mPlace + 3) & ~std::uint64_t{3}; }
    bool IsInside() const noexcept { return mPlace <= mTemplate.mSize; }

private:
    const Bytes mTemplate;
    std::uint64_t mPlace = 0;
};

} // namespace Resources
} // namespace ORL
