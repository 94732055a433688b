// Floor: Platform
// The system functions for finding a process.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

#include <cstddef>

namespace ORL {
namespace Process {
namespace Platform {

/// A process opened to query its name. Null if opening it failed, and on platforms that query without a handle.
using ProcessHandle = void*;

/// Stores the identifiers of at most inCapacity running processes, in the system's order. outCount is untouched on
/// failure.
SystemError ListProcesses_Impl(unsigned int* outIdentifiers, std::size_t inCapacity, std::size_t& outCount);

ProcessHandle OpenProcess_Impl(unsigned int inIdentifier);

/// Stores the file name of the process's executable, without its folder. Returns false if the process has exited or its
/// name is not available.
bool GetExecutableName_Impl(ProcessHandle inProcess, unsigned int inIdentifier, UTF16String& outName);

/// Ignores null.
void CloseProcess_Impl(ProcessHandle inProcess);

} // namespace Platform
} // namespace Process
} // namespace ORL
