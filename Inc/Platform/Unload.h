// Floor: Platform
// Why the static objects of the library are destroyed.
#pragma once

namespace ORL {
namespace Unload {
namespace Platform {

/// For the destructor of a static object: true if the library is unloaded from a process that goes on without it, so nobody
/// uses it any more; false at the end of the process, where threads may still use all of it. Never throws.
bool IsUnloading_Impl() noexcept;

} // namespace Platform
} // namespace Unload
} // namespace ORL
