// Floor: System
// Finds a running process by the name of its executable.
//
// Thread-safe. Throws only std::bad_alloc.
#pragma once

#include <ORLConfig.h>

#include <tvxcore/String.h>

namespace ORL {
namespace Process {

namespace ProcessSearchFlags {

/// How a process name is compared with inName, unit by unit and case-sensitively. Any other value matches nothing.
enum Type : int {
    kExactMatch = 0, ///< equals inName
    kStartsWith = 1, ///< begins with inName; an empty inName matches every name
    kEndsWith = 2,   ///< ends with inName; an empty inName matches no name
    kContains = 3    ///< contains inName; an empty inName matches every name
};

} // namespace ProcessSearchFlags

/// Returns whether one of the first 1024 processes that the system lists has an executable whose name matches. The name
/// is the file name with its extension, without its folder. Processes that this user has no permission to query are
/// skipped.
///
/// On Windows each call that returns true leaks one handle to the process found, until this process exits.
/// On Linux: processes are listed from /proc as this user sees it, by ascending identifier. The name is that of the
///           file that the exe link points to, as a library path, even if the file was deleted. If the link is not
///           readable, the name is the first word of the command line, minus its folder, the "-" of a login shell and
///           any text from ": " on, where some processes show their state. Kernel threads have no name.
ORL_API bool IsProcessRunning(const UTF16String& inName, ProcessSearchFlags::Type inFlags);

/// Does nothing and returns false.
ORL_API bool FocusProcess(const UTF16String& inName, ProcessSearchFlags::Type inFlags);

} // namespace Process
} // namespace ORL
