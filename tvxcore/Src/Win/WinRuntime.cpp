// Initialises the C++ runtime's per-thread data at load.
//
// The runtime initialises the data on first use in the process, under locks. The exit of a Windows process stops all
// threads but one at arbitrary points, and the last thread destroys the static objects; the standard streams then query
// the exceptions in flight, which are part of the data. If a stopped thread was in the middle of the first use, the
// last thread would wait forever. So this file forces the first use, before any thread of this library runs.
#include <exception>

namespace {

__attribute__((used)) const int sExceptionsAtLoad = std::uncaught_exceptions();

} // namespace
