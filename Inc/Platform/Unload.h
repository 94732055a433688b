// Floor: Platform
// Whether the library's static objects are destroyed on unload or at process exit.
#pragma once

namespace ORL {
namespace Unload {
namespace Platform {

/// For destructors of static objects. Returns true if the library is being unloaded while the process continues:
/// nothing uses the library any more. Returns false at process exit: threads may still use all of it. Never throws.
bool IsUnloading_Impl() noexcept;

} // namespace Platform
} // namespace Unload
} // namespace ORL
