#include "LinuxLinkTarget.h"

#include "../Calls/SystemCalls.h"

#include <cerrno>

namespace ORL {
namespace Linux {

int LinkTarget::Read(int inFolder, const char* inName) noexcept
{
    const ssize_t size = System().mReadLinkAt(inFolder, inName, mText, sizeof(mText));
    const bool fits = size < static_cast<ssize_t>(sizeof(mText));
    mSize = size > 0 && fits ? static_cast<std::size_t>(size) : 0;
    mText[mSize] = '\0';
    return size < 0 ? errno : fits ? 0 : ENAMETOOLONG;
}

} // namespace Linux
} // namespace ORL
