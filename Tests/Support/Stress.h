// How long the stress tests go on.
#pragma once

#include <cstdlib>

namespace ORLTest {

/// That many rounds, times the number in the environment variable ORL_STRESS if there is one.
inline int Rounds(int inRounds)
{
    const char* const text = std::getenv("ORL_STRESS");
    const int factor = text != nullptr ? std::atoi(text) : 1;
    return factor > 0 ? inRounds * factor : inRounds;
}

} // namespace ORLTest
