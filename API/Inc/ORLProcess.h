// Floor: System
// Finds a running process by the name of its executable.
//
// Thread-safe. Throws std::bad_alloc only.
#pragma once

#include <ORLConfig.h>

#include <tvxcore/String.h>

namespace ORL {
namespace Process {

namespace ProcessSearchFlags {

/// How the name of a process is matched, unit by unit: case matters. Any other value matches nothing.
enum Type : int {
    kExactMatch = 0, ///< equals the text
    kStartsWith = 1, ///< begins with the text; an empty text matches every name
    kEndsWith = 2,   ///< ends with the text; an empty text matches no name
    kContains = 3    ///< contains the text; an empty text matches every name
};

} // namespace ProcessSearchFlags

/// Returns whether one of the first 1024 processes that the system lists has an executable of that name. The name is
/// that of the file without its folder, extension included. Processes that this user may not look at are passed over.
///
/// On Windows each true answer keeps one handle, to the process found, open until this process ends.
/// On Linux processes are listed by ascending identifier, this user's view of /proc. The name is that of the file that
/// the exe link names, as library paths hold it, also after the file was deleted. Where the link may not be read, it is
/// taken from the first word of the command line, less a folder, a login shell's "-", and the text after ": " of a
/// process that writes its state there. Kernel threads have no name.
ORL_API bool IsProcessRunning(const UTF16String& inName, ProcessSearchFlags::Type inFlags);

/// Does nothing and returns false.
ORL_API bool FocusProcess(const UTF16String& inName, ProcessSearchFlags::Type inFlags);

} // namespace Process
} // namespace ORL
