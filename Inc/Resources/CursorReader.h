// Floor: System
// Cursors in resources.
#pragma once

#include <ORLResources.h>
#include <Resources/ResourceReaders.h>

namespace ORL {
namespace Resources {

/// Stores the identifier of the cursor in a group that best fits a pointer of 32 by 32 pixels: the nearest size, then
/// the most colours. Returns false if the group is empty.
bool ChooseCursor(const Bytes& inGroup, unsigned short& outID) noexcept;

/// Reads one cursor: hot spot, picture and mask, uncompressed, with 1, 4, 8, 24 or 32 bits a pixel. Pixels that would
/// invert the screen become opaque black. Returns false, with outPicture untouched, if the data is invalid. Throws
/// std::bad_alloc.
bool ReadCursor(const Bytes& inCursor, Linux::CursorPicture& outPicture);

} // namespace Resources
} // namespace ORL
