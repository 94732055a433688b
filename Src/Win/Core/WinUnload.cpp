#include <Platform/Unload.h>

#include <tvxcore/Unload.h>

namespace ORL {
namespace Unload {
namespace Platform {

bool IsUnloading_Impl() noexcept
{
    return !tvxcore::utility::BelongsToProgram(reinterpret_cast<const void*>(&IsUnloading_Impl))
           && !tvxcore::utility::AreOtherThreadsStopped();
}

} // namespace Platform
} // namespace Unload
} // namespace ORL
