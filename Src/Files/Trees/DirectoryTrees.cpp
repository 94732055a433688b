// Deletes, copies and moves whole trees with SHFileOperation, or its Linux equivalent.
#include <ORLDirectory.h>

#include <Platform/Directory.h>

#include <ORLDebug.h>
#include <ORLPathUtils.h>

namespace ORL {

namespace {

using namespace Directories::Platform;

constexpr const char* kFunction = "ORL::`anonymous-namespace'::FileOperation";
constexpr const char* kMessage = "UNC paths are not supported by SHFileOperation!";

// Operates on the contents of inSource, not on the directory itself. The shell accepts only plain paths.
Result FileOperation(const UTF16String& inSource, const UTF16String& inDestination, ShellFunction inFunction)
{
    if (PathUtils::IsNormalizedPath(inSource)) {
        ORL_ASSERT_MESSAGE_AT(false, "false", kMessage, "WinDirectory", __LINE__, kFunction);
        return kPathNotFound;
    }
    // IsNormalizedPath has already reported an empty path as a contract failure. Return here, because the pattern would
    // otherwise refer to the current folder.
    if (inSource.empty()) {
        return kPathNotFound;
    }
    const UTF16String from = PathUtils::AddTrailingSlash(inSource) + TVX_UTF16("*.*");
    if (inFunction == ShellFunction::kDelete) {
        return OperateOnFiles_Impl(inFunction, from, nullptr) == 0 ? kSuccess : kGeneralFailure;
    }
    if (PathUtils::IsNormalizedPath(inDestination)) {
        ORL_ASSERT_MESSAGE_AT(false, "false", kMessage, "WinDirectory", __LINE__, kFunction);
        return kPathNotFound;
    }
    return OperateOnFiles_Impl(inFunction, from, &inDestination) == 0 ? kSuccess : kGeneralFailure;
}

} // namespace

Result Directory::DeleteNotEmpty(const UTF16String& inPath)
{
    const Result result = FileOperation(inPath, UTF16String(), ShellFunction::kDelete);
    return ResultSucceeded(result) ? Delete(inPath) : result;
}

Result Directory::Copy(const UTF16String& inSource, const UTF16String& inDestination)
{
    return FileOperation(inSource, inDestination, ShellFunction::kCopy);
}

Result Directory::Move(const UTF16String& inSource, const UTF16String& inDestination)
{
    return FileOperation(inSource, inDestination, ShellFunction::kMove);
}

} // namespace ORL
