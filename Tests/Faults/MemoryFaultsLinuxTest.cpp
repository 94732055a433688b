// On Linux no heap request bypasses the sweeps.
#include "MemoryFaults.h"

TEST(MemoryFaults, RequestsOfTheStandardLibrary_ComeToTheHeapsDoor)
{
    EXPECT_TRUE(ORLTest::WholeHeapIsWatched());
}
