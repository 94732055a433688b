#include <CurrentThread.h>

#include <windows.h>

namespace ORLTest {

const std::size_t kMinThreadNameBytes = 255;

std::string SystemNameOfThisThread()
{
    using GetThreadDescription = HRESULT(WINAPI*)(HANDLE, PWSTR*);
    const auto getDescription = reinterpret_cast<GetThreadDescription>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "GetThreadDescription")));
    PWSTR description = nullptr;
    if (getDescription == nullptr || getDescription(::GetCurrentThread(), &description) < 0) {
        return "the system tells no names";
    }
    char name[1024] = {};
    ::WideCharToMultiByte(CP_UTF8, 0, description, -1, name, sizeof(name), nullptr, nullptr);
    ::LocalFree(description);
    return name;
}

int LevelOfThisThread()
{
    return ::GetThreadPriority(::GetCurrentThread());
}

int ExpectedThreadLevel(int inPriority)
{
    return inPriority == 0 ? THREAD_PRIORITY_IDLE : inPriority - 3;
}

} // namespace ORLTest
