// Queries the operating system about the calling thread.
#pragma once

#include <cstddef>
#include <string>

namespace ORLTest {

/// Returns the calling thread's name, UTF-8, as the OS stores it, possibly truncated.
std::string SystemNameOfThisThread();

/// The OS keeps at least this many bytes of a thread's name.
extern const std::size_t kMinThreadNameBytes;

/// Returns the calling thread's scheduling level in the unit of the OS: the nice value, or the Windows priority.
int LevelOfThisThread();

/// Returns the level that a thread gets for a priority from 0 to 5; 3 is the level of the process. If the user may not
/// raise a level, the thread stays at the level of the process. Levels are clamped to the range of the OS.
int ExpectedThreadLevel(int inPriority);

} // namespace ORLTest
