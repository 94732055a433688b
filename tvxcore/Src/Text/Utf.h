// Conversion between UTF-8 and UTF-16 into the caller's buffer: the kernels of the string functions.
#pragma once

#include <cstddef>

namespace tvxcore {
namespace utf {

/// UTF-16 never needs more units than UTF-8 has bytes.
constexpr std::size_t UTF16Bound(std::size_t inBytes) noexcept
{
    return inBytes;
}

/// A unit of UTF-16 never needs more than three bytes of UTF-8.
constexpr std::size_t UTF8Bound(std::size_t inUnits) noexcept
{
    return 3 * inUnits;
}

/// Writes inText as UTF-16 to outText, a buffer of UTF16Bound(inLength) units, and returns the number of units
/// written. May overwrite the rest of the buffer, up to the bound. Each maximal subpart of an ill-formed sequence
/// becomes one U+FFFD.
using ToUTF16Function = std::size_t(const unsigned char* inText, std::size_t inLength,
                                    unsigned short* outText) noexcept;

/// Writes inText as UTF-8 to outText, a buffer of UTF8Bound(inLength) bytes, in the same way. Each unpaired
/// surrogate becomes U+FFFD.
using ToUTF8Function = std::size_t(const unsigned short* inText, std::size_t inLength, unsigned char* outText) noexcept;

/// The fastest kernels that this processor supports.
ToUTF16Function ToUTF16;
ToUTF8Function ToUTF8;

/// An implementation of the conversions. All of them produce the same output.
struct Kernel
{
    const char* mName;
    bool (*mIsSupported)() noexcept; // returns whether this processor can run it
    ToUTF16Function* mToUTF16;
    ToUTF8Function* mToUTF8;
};

/// Fastest first; the last two run on every x86-64 processor.
inline constexpr std::size_t kKernelCount = 4;
extern const Kernel kKernels[kKernelCount];

ToUTF16Function ToUTF16Avx512;
ToUTF8Function ToUTF8Avx512;
ToUTF16Function ToUTF16Avx2;
ToUTF8Function ToUTF8Avx2;
ToUTF16Function ToUTF16Sse2;
ToUTF8Function ToUTF8Sse2;
ToUTF16Function ToUTF16Plain;
ToUTF8Function ToUTF8Plain;

} // namespace utf
} // namespace tvxcore
