// The playing time of a WAV file, from its header: RIFF, and RF64 or BW64 for sizes above 4 GB.
#pragma once

#include <cstdint>
#include <optional>
#include <tvxcore/String.h>

namespace orl {

struct WavLength
{
    std::uint32_t mSamplesPerSecond;
    std::uint64_t mSamples; // per channel
};

/// Returns nothing if the file is not a WAV file, if its header is incomplete, or if its format packs several samples
/// into a block and no "fact" chunk counts them. In a truncated file, counts only the samples present, or returns
/// nothing if its format is packed.
std::optional<WavLength> ReadWavLength(const UTF16String& inPath);

} // namespace orl
