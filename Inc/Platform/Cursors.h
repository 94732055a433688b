// Floor: Platform
// What pointers need of the system.
#pragma once

namespace ORL {
namespace Cursors {
namespace Platform {

/// Sets the pointer to a standard shape, by the home platform's number of it. Does nothing where there is no pointer.
void SetCursor_Impl(unsigned short inShape);

} // namespace Platform
} // namespace Cursors
} // namespace ORL
