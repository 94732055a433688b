// What the system knows of the calling thread.
#pragma once

#include <cstddef>
#include <string>

namespace ORLTest {

/// Its name, as far as the system keeps it; UTF-8.
std::string SystemNameOfThisThread();

/// Bytes of a name that the system keeps at least.
extern const std::size_t kKeptNameBytes;

/// Its level, as the system counts.
int LevelOfThisThread();

/// The level of a thread that asks for a priority from 0 to 5, of which 3 is the process's own: a user who may not raise a
/// level stays at the process's, and no level goes beyond what the system has.
int LevelOfPriority(int inPriority);

} // namespace ORLTest
