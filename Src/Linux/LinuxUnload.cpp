#include <Platform/Unload.h>

#include <ORLDebug.h>
#include <tvxcore/Unload.h>

namespace ORL {
namespace Unload {
namespace Platform {

namespace {

// At an unload the ending functions of a library run before its static destructors. At the end of the process they run after
// these, except in a library that belongs to the program.
bool sEndingFunctionRan = false;

__attribute__((destructor)) void OnEnding()
{
    sEndingFunctionRan = true;
}

const bool sBelongsToProgram = tvxcore::utility::BelongsToProgram(reinterpret_cast<const void*>(&Debug::ThrowInputContractError));

} // namespace

bool IsUnloading_Impl() noexcept
{
    return sEndingFunctionRan && !sBelongsToProgram;
}

} // namespace Platform
} // namespace Unload
} // namespace ORL
