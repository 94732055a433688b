// Here nothing of the heap goes past the sweeps.
#include "MemoryFaults.h"

TEST(MemoryFaults, RequestsOfTheStandardLibrary_ComeToTheHeapsDoor)
{
    EXPECT_TRUE(ORLTest::WholeHeapIsWatched());
}
