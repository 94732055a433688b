// A static object that is never destroyed.
#pragma once

namespace ORL {

/// Keeps its value after static destruction, for host threads that are still running then. Constant-initialised; the
/// system reclaims its memory at process exit.
template <class T>
union Immortal
{
    constexpr Immortal() : mValue() {}
    ~Immortal() {}

    T mValue;
};

} // namespace ORL
