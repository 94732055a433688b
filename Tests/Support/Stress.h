// Scales the number of rounds of the stress tests.
#pragma once

#include <cstdlib>

namespace ORLTest {

/// Returns inRounds times the number in the environment variable ORL_STRESS, if that is set.
inline int Rounds(int inRounds)
{
    const char* const text = std::getenv("ORL_STRESS");
    const int factor = text != nullptr ? std::atoi(text) : 1;
    return factor > 0 ? inRounds * factor : inRounds;
}

} // namespace ORLTest
