#include <Platform/Unload.h>

#include <ORLDebug.h>
#include <tvxcore/Unload.h>

namespace ORL {
namespace Unload {
namespace Platform {

namespace {

// At an unload, the destructor functions of a library run before its static destructors. At process exit the destructor
// functions run last, except in a library that is linked to the program.
bool sEndingFunctionRan = false;

__attribute__((destructor)) void OnEnding()
{
    sEndingFunctionRan = true;
}

const bool sBelongsToProgram =
    tvxcore::utility::BelongsToProgram(reinterpret_cast<const void*>(&Debug::ThrowInputContractError));

} // namespace

bool IsUnloading_Impl() noexcept
{
    return sEndingFunctionRan && !sBelongsToProgram;
}

} // namespace Platform
} // namespace Unload
} // namespace ORL
