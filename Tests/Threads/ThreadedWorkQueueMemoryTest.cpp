// Tests work queues when memory runs out.
#include <ORLThreadedWorkQueue.h>

#include <AllocationFaults.h>
#include <Signals.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <new>
#include <utility>

using namespace ORL;
using ORLTest::Event;
namespace AllocationFaults = tvxcore::utility::AllocationFaults;

namespace {

using Queue = InterfaceRef<ThreadedWorkQueue, ORLUnknown>;
using Request = ThreadedWorkQueue::Request;

class CountedRequest : public UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
{
public:
    CountedRequest(int& ioLiving, std::function<void()> inFunction)
        : mLiving(ioLiving), mFunction(std::move(inFunction))
    {
        ++mLiving;
    }
    // noinline: if inlined, GCC reports a false warning for the Release of unrelated classes.
    __attribute__((noinline)) ~CountedRequest() override { --mLiving; }
    void Process() override { mFunction(); }

private:
    int& mLiving;
    const std::function<void()> mFunction;
};

AllocationFaults::Plan RefuseOnly(std::uint64_t inNumber)
{
    AllocationFaults::Plan plan;
    plan.mFirst = inNumber;
    plan.mOfThisThreadOnly = true;
    return plan;
}

void Initialize(const Queue& inQueue)
{
    EXPECT_TRUE(inQueue->Initialize(ThreadPriorities::kNormal, 1, ConstString("Thread"), ConstString("Module")));
}

} // namespace

TEST(ThreadedWorkQueueMemory, RequestThatFindsNoMemory_ThrowsAndIsLetGoAndTheNextRuns)
{
    const Queue queue(new ThreadedWorkQueue);
    Initialize(queue);
    int living = 0;
    {
        const Request request(new CountedRequest(living, [] { ADD_FAILURE() << "was never queued"; }));
        const AllocationFaults::Scope faults(RefuseOnly(1));
        EXPECT_THROW(queue->QueueRequest(request), std::bad_alloc);
        EXPECT_EQ(1u, faults.Refused());
        EXPECT_EQ(1, living);
    }
    EXPECT_EQ(0, living) << "somebody still counts on a request that was refused";
    Event ran;
    EXPECT_TRUE(queue->QueueRequest(Request(new CountedRequest(living, [&ran] { ran.Set(); }))));
    ran.Wait();
    queue->Stop();
    EXPECT_EQ(0, living);
}

// Fails each allocation of Initialize once. The queue must be unchanged after the failure, and the next Initialize must
// succeed.
TEST(ThreadedWorkQueueMemory, InitializeThatFindsNoMemory_ThrowsAndMayBeTriedAgain)
{
    const Queue queue(new ThreadedWorkQueue);
    std::uint64_t number = 1;
    for (bool isRefused = true; isRefused; ++number) {
        ASSERT_LT(number, 100u);
        const AllocationFaults::Scope faults(RefuseOnly(number));
        try {
            Initialize(queue);
            EXPECT_EQ(0u, faults.Refused()) << "swallowed the failure of allocation " << number;
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(0u, queue->GetNumberOfThreads());
        }
        isRefused = faults.Refused() != 0;
    }
    EXPECT_GT(number, 2u) << "nothing was allocated at this door";
    EXPECT_EQ(1u, queue->GetNumberOfThreads());
    Event ran;
    int living = 0;
    EXPECT_TRUE(queue->QueueRequest(Request(new CountedRequest(living, [&ran] { ran.Set(); }))));
    ran.Wait();
    queue->Stop();
}
