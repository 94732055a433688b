// Makes the C++ runtime's own data of a thread ready at the load.
//
// The runtime makes them at the first use in the process, under locks. Windows ends a process by stopping all threads but
// one, wherever they are, and the last one destroys the static objects; the standard streams among them ask for exceptions
// in flight, which are such data. If a stopped thread was in the middle of the very first use, the last one would wait
// for it for good. So the first use is here, when no thread of ours runs yet.
#include <exception>

namespace {

__attribute__((used)) const int sExceptionsAtLoad = std::uncaught_exceptions();

} // namespace
