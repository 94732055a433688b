#include <Platform/SystemMessages.h>

#include "../Calls/WinText.h"

#include <memory>
#include <windows.h>

namespace ORL {
namespace FailureReport {
namespace Platform {

UTF16String SystemErrorMessage_Impl(unsigned int inError)
{
    constexpr DWORD kFlags =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    wchar_t* text = nullptr;
    const DWORD length = ::FormatMessageW(kFlags, nullptr, inError, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                                          reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    const std::unique_ptr<wchar_t, decltype(&::LocalFree)> buffer(text, &::LocalFree);
    if (length == 0) {
        return UTF16String();
    }
    return UTF16String(Win::AsUnits(text), length);
}

} // namespace Platform
} // namespace FailureReport
} // namespace ORL
