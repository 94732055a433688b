#include <tvxcore/Unload.h>

#include <CorePlatform/Thread.h>

#include <windows.h>

namespace tvxcore {
namespace utility {

bool BelongsToProgram(const void* inExported) noexcept
{
    HMODULE module = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         static_cast<LPCWSTR>(inExported), &module);
    return module == nullptr || module == ::GetModuleHandleW(nullptr);
}

bool AreOtherThreadsStopped() noexcept
{
    return threads::Platform::ProcessIsEnding_Impl();
}

} // namespace utility
} // namespace tvxcore
