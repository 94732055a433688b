// How a host touches what it only has to link: by naming it where the compiler cannot see that nobody calls it.
#pragma once

namespace Consumer {

inline volatile bool sIsWanted = false;

/// Always false, which the compiler does not know: what stands behind it is linked and never run.
inline bool IsWanted()
{
    return sIsWanted;
}

inline void Keep(const void* inThing)
{
    __asm__ volatile("" : : "r"(inThing) : "memory");
}

/// Keeps the addresses of functions, members and objects in the program.
template <class... Things>
void Touch(const Things&... inThings)
{
    (Keep(&inThings), ...);
}

} // namespace Consumer
