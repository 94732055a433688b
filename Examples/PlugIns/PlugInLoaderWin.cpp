#include "PlugInLoader.h"

#include <windows.h>

#include <system_error>

namespace {

[[noreturn]] void Fail(const std::string& inName)
{
    const DWORD error = ::GetLastError();
    throw std::runtime_error(inName + ": " + std::system_category().message(static_cast<int>(error)));
}

std::wstring Wide(const std::string& inText)
{
    const int size = ::MultiByteToWideChar(CP_UTF8, 0, inText.c_str(), -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, inText.c_str(), -1, wide.data(), size);
    return wide;
}

} // namespace

// Windows adds ".dll" to a name without an extension.
RegisterEffectsFunction* LoadPlugIn(const std::string& inName)
{
    const HMODULE module = ::LoadLibraryW(Wide(inName).c_str());
    if (module == nullptr) {
        Fail(inName);
    }
    const FARPROC function = ::GetProcAddress(module, kRegisterEffects);
    if (function == nullptr) {
        Fail(inName);
    }
    return reinterpret_cast<RegisterEffectsFunction*>(reinterpret_cast<void*>(function));
}
