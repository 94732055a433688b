// Copies, moves and deletes the contents of directories with SHFileOperation.
#include <Platform/Directory.h>

#include "../Calls/WinText.h"

#include <windows.h>

#include <shellapi.h>

namespace ORL {
namespace Directories {
namespace Platform {

using ORL::Win::AsWide;

// The shell expects double-null-terminated lists of names.
unsigned long OperateOnFiles_Impl(ShellFunction inFunction, const UTF16String& inFrom, const UTF16String* inTo)
{
    const UTF16String from = inFrom + UTF16String(1, 0);
    const UTF16String to = inTo != nullptr ? *inTo + UTF16String(1, 0) : UTF16String();
    SHFILEOPSTRUCTW operation{};
    operation.wFunc = static_cast<UINT>(inFunction);
    operation.pFrom = AsWide(from.c_str());
    operation.pTo = inTo != nullptr ? AsWide(to.c_str()) : nullptr;
    operation.fFlags = FOF_NOCONFIRMATION | FOF_SIMPLEPROGRESS | FOF_NOCONFIRMMKDIR;
    return static_cast<unsigned long>(::SHFileOperationW(&operation));
}

} // namespace Platform
} // namespace Directories
} // namespace ORL
