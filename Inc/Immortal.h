// Floor: Core
// A static object that is never destroyed.
#pragma once

namespace ORL {

/// Keeps its value past the end of the process's static objects, for threads that a host has not stopped by then. The
/// value is made at compile time, and what it holds at the end is left to the system.
template <class T>
union Immortal
{
    constexpr Immortal() : mValue() {}
    ~Immortal() {}

    T mValue;
};

} // namespace ORL
