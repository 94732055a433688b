// What the system knows of the calling thread.
#pragma once

#include <cstddef>
#include <string>

namespace ORLTest {

/// Its name, as far as the system keeps it; UTF-8.
std::string SystemNameOfThisThread();

/// Bytes of a name that the system keeps at least.
extern const std::size_t kKeptNameBytes;

/// Its priority from 0 to 5, counted from the process's own at 3; -1 for none of these.
int PriorityOfThisThread();

} // namespace ORLTest
