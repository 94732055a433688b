// Properties of the UTF conversions that must hold for any bytes. Used by the fuzzer and by the replay of its corpus.
#pragma once

#include <UtfReference.h>

#include <Text/Utf.h>

#include <tvxcore/Text.h>

#include <vector>

namespace ORLTest {

/// Returns null, or a description of the property that failed.
inline const char* CheckUtf(const unsigned char* inBytes, std::size_t inCount)
{
    namespace utf = tvxcore::utf;
    namespace utility = tvxcore::utility;
    const UTF8String bytes(inBytes, inBytes + inCount);
    const UTF16String units = ReferenceToUTF16(bytes);
    if (utility::UTF8to16(bytes) != units) {
        return "UTF-8 becomes other units than by the standard's table";
    }
    if (utility::UTF8to16(utility::UTF16to8(units)) != units) {
        return "well-formed text does not survive the way to UTF-8 and back";
    }
    UTF16String wild;
    for (std::size_t i = 0; i + 1 < inCount; i += 2) {
        wild.push_back(static_cast<unsigned short>(inBytes[i] | inBytes[i + 1] << 8));
    }
    const UTF8String wildBytes = ReferenceToUTF8(wild);
    if (utility::UTF16to8(wild) != wildBytes) {
        return "UTF-16 becomes other bytes than by the standard's table";
    }
    for (const utf::Kernel& kernel : utf::kKernels) {
        if (!kernel.mIsSupported()) {
            continue;
        }
        std::vector<unsigned short> outUnits(utf::UTF16Bound(bytes.size()));
        outUnits.resize(kernel.mToUTF16(bytes.data(), bytes.size(), outUnits.data()));
        std::vector<unsigned char> outBytes(utf::UTF8Bound(wild.size()));
        outBytes.resize(kernel.mToUTF8(wild.data(), wild.size(), outBytes.data()));
        if (UTF16String(outUnits.begin(), outUnits.end()) != units
            || UTF8String(outBytes.begin(), outBytes.end()) != wildBytes) {
            return kernel.mName;
        }
    }
    const UTF16String folded = utility::FoldCase(wild);
    if (utility::FoldCase(folded) != folded) {
        return "folding what is folded changes it";
    }
    return nullptr;
}

} // namespace ORLTest
