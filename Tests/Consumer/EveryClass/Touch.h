// References functions without calling them: the code that names them never runs, but the compiler cannot know that.
#pragma once

namespace Consumer {

inline volatile bool sIsWanted = false;

/// Returns false, but the compiler cannot know that: the guarded code is linked but never run.
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
