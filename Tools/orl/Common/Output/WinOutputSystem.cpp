#include "OutputSystem.h"

#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

namespace orl {

std::FILE* CreateNewFile(const std::filesystem::path& inPath)
{
    const int descriptor = ::_wopen(inPath.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _S_IREAD | _S_IWRITE);
    if (descriptor < 0) {
        return nullptr;
    }
    std::FILE* const file = ::_wfdopen(descriptor, L"wb");
    if (file == nullptr) {
        const int error = errno;
        ::_close(descriptor);
        ::_wunlink(inPath.c_str());
        errno = error;
    }
    return file;
}

std::FILE* OpenForWriting(const std::filesystem::path& inPath)
{
    return ::_wfopen(inPath.c_str(), L"wb");
}

bool CanWrite(const std::filesystem::path& inPath)
{
    const int descriptor = ::_wopen(inPath.c_str(), _O_WRONLY | _O_BINARY);
    if (descriptor >= 0) {
        ::_close(descriptor);
    }
    return descriptor >= 0;
}

// Converts only paths that begin with a drive; returns all others unchanged.
std::filesystem::path WithoutLimit(const std::filesystem::path& inPath)
{
    std::error_code error;
    std::filesystem::path full = std::filesystem::absolute(inPath, error);
    const std::wstring& text = full.make_preferred().native();
    const bool hasDrive = !error && text.size() > 2 && text[1] == L':' && text[2] == L'\\';
    return hasDrive ? std::filesystem::path(L"\\\\?\\" + full.lexically_normal().native()) : inPath;
}

} // namespace orl
