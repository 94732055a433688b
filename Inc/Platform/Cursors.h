// Floor: Platform
// The system functions for the mouse pointer.
#pragma once

namespace ORL {
namespace Cursors {
namespace Platform {

/// Sets the mouse pointer to a standard shape, identified by its Windows number. Does nothing on a platform without a
/// pointer.
void SetCursor_Impl(unsigned short inShape);

} // namespace Platform
} // namespace Cursors
} // namespace ORL
