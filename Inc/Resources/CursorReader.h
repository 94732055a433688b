// Floor: System
// Cursors as resources hold them.
#pragma once

#include <ORLResources.h>
#include <Resources/ResourceReaders.h>

namespace ORL {
namespace Resources {

/// The identifier of the cursor in a group that fits a pointer of 32 by 32 best: the nearest size, then the most
/// colours. False if the group holds none.
bool ChooseCursor(const Bytes& inGroup, unsigned short& outID) noexcept;

/// Reads one cursor: hot spot, picture and mask, uncompressed, of 1, 4, 8, 24 or 32 bits. A pixel that would invert the
/// screen becomes opaque black. False, with outPicture untouched, if it cannot be read. Throws std::bad_alloc.
bool ReadCursor(const Bytes& inCursor, Linux::CursorPicture& outPicture);

} // namespace Resources
} // namespace ORL
