#include <AsyncReadRequestBusyList.h>
#include <AsyncReadRequestPool.h>

#include <gtest/gtest.h>

using namespace ORL;

namespace {

struct Request
{
    int mValue;
};

using Pool = AsyncReadRequestPool<Request, 2048>;
using BusyList = AsyncReadRequestBusyList<Request>;

Pool sPool;

} // namespace

TEST(AsyncReadRequestPool, EachRequest_IsLentOnce)
{
    Request* const first = sPool.AllocateAsyncReadRequest();
    Request* const second = sPool.AllocateAsyncReadRequest();
    EXPECT_NE(first, second);
    EXPECT_EQ(2u, sPool.CountBusyRecords());
    sPool.FreeAsyncReadRequest(second);
    sPool.FreeAsyncReadRequest(first);
    EXPECT_EQ(0u, sPool.CountBusyRecords());
}

TEST(AsyncReadRequestBusyList, WaitWithNothingInFlight_ReturnsAtOnceAndTakesNoGate)
{
    BusyList list;
    list.WaitForPendingReads();
    EXPECT_EQ(nullptr, list.GetDrainedGate());
    EXPECT_EQ(0u, list.CountWaiters());
}
