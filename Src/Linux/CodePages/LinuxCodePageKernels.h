// The conversions that use the code page tables: portable kernels, and faster kernels for AVX-512.
#pragma once

#include "LinuxCodePageTables.h"

#include <cstddef>

namespace ORL {
namespace Linux {

/// Converts inCount elements, at least one, and returns the number of elements written. outText must have room for all
/// elements written; a conversion writes nothing past them.
template <class Page, class Source, class Result>
using ConversionFunction = std::size_t(const Page& inPage, const Source* inText, std::size_t inCount,
                                       Result* outText) noexcept;

using SinglesToUnitsFunction = ConversionFunction<SingleBytePage, unsigned char, unsigned short>;
using PairsToUnitsFunction = ConversionFunction<DoubleBytePage, unsigned char, unsigned short>;
using PairsToBytesFunction = ConversionFunction<DoubleBytePage, unsigned short, unsigned char>;

struct CodePageKernel
{
    const char* mName;
    bool (*mIsSupported)() noexcept; // returns whether this processor can run the kernel
    SinglesToUnitsFunction* mSinglesToUnits;
    PairsToUnitsFunction* mPairsToUnits;
    PairsToBytesFunction* mPairsToBytes;
};

constexpr std::size_t kKernelCount = 2;

/// All kernels, the fastest first; the last one runs on every processor.
extern const CodePageKernel kCodePageKernels[kKernelCount];

/// Returns the first kernel that this processor supports.
const CodePageKernel& BestCodePageKernel() noexcept;

SinglesToUnitsFunction SinglesToUnitsAVX512;
PairsToUnitsFunction PairsToUnitsAVX512;
PairsToBytesFunction PairsToBytesAVX512;
SinglesToUnitsFunction SinglesToUnitsPlain;
PairsToUnitsFunction PairsToUnitsPlain;
PairsToBytesFunction PairsToBytesPlain;

/// Like the conversions above; this direction has only one implementation.
std::size_t SinglesToBytes(const SingleBytePage& inPage, const unsigned short* inText, std::size_t inUnits,
                           unsigned char* outBytes) noexcept;

/// Returns the number of elements in the converted text.
std::size_t CountUnits(const DoubleBytePage& inPage, const unsigned char* inText, std::size_t inBytes) noexcept;
std::size_t CountBytes(const DoubleBytePage& inPage, const unsigned short* inText, std::size_t inUnits) noexcept;

} // namespace Linux
} // namespace ORL
