// Tests that on Linux the sweeps see every request to the C++ heap.
#include "MemoryFaults.h"

TEST(MemoryFaults, RequestsOfTheStandardLibrary_ComeToTheHeapsDoor)
{
    EXPECT_TRUE(ORLTest::HeapIsFullyIntercepted());
}
