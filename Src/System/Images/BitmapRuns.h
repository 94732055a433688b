// Decodes run-length encoded pixels of 4 or 8 bits.
#pragma once

#include "BitmapHeader.h"

namespace ORL {
namespace Images {

/// Writes the pixels of the runs, except those outside the picture. Returns false if the runs have no end mark and do
/// not reach the end of the last row.
bool ReadRuns(const BitmapHeader& inHeader, std::uint32_t* outPixels);

} // namespace Images
} // namespace ORL
