#include <StandardErrorPipe.h>

#include <stdexcept>
#include <windows.h>

namespace ORLTest {

namespace {

HANDLE File(std::intptr_t inFile)
{
    return reinterpret_cast<HANDLE>(inFile);
}

std::intptr_t StandardError()
{
    return reinterpret_cast<std::intptr_t>(::GetStdHandle(STD_ERROR_HANDLE));
}

} // namespace

StandardErrorPipe::StandardErrorPipe() : mOld(StandardError())
{
    HANDLE reader = nullptr;
    HANDLE writer = nullptr;
    if (!::CreatePipe(&reader, &writer, nullptr, 65536)) {
        throw std::runtime_error("no pipe");
    }
    ::SetStdHandle(STD_ERROR_HANDLE, writer);
    mReader = reinterpret_cast<std::intptr_t>(reader);
    mWriter = reinterpret_cast<std::intptr_t>(writer);
}

StandardErrorPipe::~StandardErrorPipe()
{
    ::SetStdHandle(STD_ERROR_HANDLE, File(mOld));
    ::CloseHandle(File(mWriter));
    CloseReader();
}

std::string StandardErrorPipe::TakeAll()
{
    std::string taken;
    char buffer[4096];
    DWORD waiting = 0;
    while (::PeekNamedPipe(File(mReader), nullptr, 0, nullptr, &waiting, nullptr) && waiting != 0) {
        DWORD count = 0;
        ::ReadFile(File(mReader), buffer, sizeof(buffer), &count, nullptr);
        taken.append(buffer, count);
    }
    return taken;
}

void StandardErrorPipe::CloseReader()
{
    if (mReader != 0) {
        ::CloseHandle(File(mReader));
        mReader = 0;
    }
}

NoStandardError::NoStandardError() : mOld(StandardError())
{
    ::SetStdHandle(STD_ERROR_HANDLE, nullptr);
}

NoStandardError::~NoStandardError()
{
    ::SetStdHandle(STD_ERROR_HANDLE, File(mOld));
}

void SetLastSystemError(int inError)
{
    ::SetLastError(static_cast<DWORD>(inError));
}

int LastSystemError()
{
    return static_cast<int>(::GetLastError());
}

} // namespace ORLTest
