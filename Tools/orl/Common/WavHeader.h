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

/// Nothing where the file is no WAV file, or its header is not whole. The data that the header tells of is counted only
/// as far as the file goes.
std::optional<WavLength> ReadWavLength(const UTF16String& inPath);

} // namespace orl
