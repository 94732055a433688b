// Run-length encoded pixels of 4 or 8 bits.
#pragma once

#include "BitmapHeader.h"

namespace ORL {
namespace Images {

/// Writes the pixels that the runs reach; those outside of the picture are left out. False if the runs end before their
/// end mark and before the last row is done.
bool ReadRuns(const BitmapHeader& inHeader, std::uint32_t* outPixels);

} // namespace Images
} // namespace ORL
