#include <ORLProcess.h>

#include <Platform/Processes.h>

namespace ORL {
namespace Process {

namespace {

using namespace Platform;

constexpr std::size_t kSeenProcesses = 1024;

bool Matches(const UTF16String& inName, const UTF16String& inText, ProcessSearchFlags::Type inFlags)
{
    const std::size_t size = inText.size();
    switch (inFlags) {
    case ProcessSearchFlags::kExactMatch: return inName == inText;
    case ProcessSearchFlags::kStartsWith: return !inName.empty() && inName.compare(0, size, inText) == 0;
    case ProcessSearchFlags::kEndsWith:
        return size != 0 && inName.size() >= size && inName.compare(inName.size() - size, size, inText) == 0;
    case ProcessSearchFlags::kContains: return !inName.empty() && inName.find(inText) != UTF16String::npos;
    }
    return false;
}

} // namespace

bool IsProcessRunning(const UTF16String& inName, ProcessSearchFlags::Type inFlags)
{
    unsigned int identifiers[kSeenProcesses];
    std::size_t count = 0;
    if (ListProcesses_Impl(identifiers, kSeenProcesses, count) != SystemErrors::kNoError) {
        return false;
    }
    UTF16String name;
    for (std::size_t i = 0; i < count; ++i) {
        const ProcessHandle process = OpenProcess_Impl(identifiers[i]);
        if (GetExecutableName_Impl(process, identifiers[i], name) && Matches(name, inName, inFlags)) {
            return true; // leaks the handle, as the header documents
        }
        CloseProcess_Impl(process);
    }
    return false;
}

bool FocusProcess(const UTF16String&, ProcessSearchFlags::Type)
{
    return false;
}

} // namespace Process
} // namespace ORL
