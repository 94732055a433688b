// How long a WAV file plays, from its header: RIFF, and RF64 or BW64 for sizes past 4 GB.
#pragma once

#include <cstdint>
#include <optional>
#include <tvxcore/String.h>

namespace orl {

struct WavLength
{
    std::uint32_t mSamplesPerSecond;
    std::uint64_t mSamples; // of one channel
};

/// Nothing where the file is no WAV file, its header is not whole, or its format packs several samples into a block and no
/// "fact" chunk tells how many there are. The data that the header tells of is counted only as far as the file goes; a packed
/// file that is cut has no length.
std::optional<WavLength> ReadWavLength(const UTF16String& inPath);

} // namespace orl
