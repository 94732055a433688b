// Floor: Platform
// What the search for a process needs of the system.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

#include <cstddef>

namespace ORL {
namespace Process {
namespace Platform {

/// A process that was opened for its name; null if it could not be, and always null where a name needs no handle.
using ProcessHandle = void*;

/// Stores the identifiers of at most inCapacity running processes, in the system's order. outCount is untouched on
/// failure.
SystemError ListProcesses_Impl(unsigned int* outIdentifiers, std::size_t inCapacity, std::size_t& outCount);

ProcessHandle OpenProcess_Impl(unsigned int inIdentifier);

/// The file name of the process's executable, without its folder. Returns false if the process has ended or does not
/// tell.
bool GetExecutableName_Impl(ProcessHandle inProcess, unsigned int inIdentifier, UTF16String& outName);

/// Null is fine.
void CloseProcess_Impl(ProcessHandle inProcess);

} // namespace Platform
} // namespace Process
} // namespace ORL
