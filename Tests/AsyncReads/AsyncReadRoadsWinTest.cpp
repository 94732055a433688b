#include "AsyncReadRoads.h"

TEST(AsyncReadRoads, ReadsGoThroughACompletionPort)
{
    ORLTest::ExpectReadThrough("a completion port", "reading_host");
}
