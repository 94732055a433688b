// Runs the shipped pool of read requests under a model checker.
#include <ModelRun.h>

namespace {

using ORL::Sync::Step;

struct Request
{
    Request() { mOwner($) = 0; }
    rl::var<unsigned> mOwner; // two simultaneous owners of a record would race on this member
};

/// Three threads each need one of two records, so one may have to sleep. kNextIndex is the initial index.
template <class Policy, std::uint32_t kNextIndex>
struct MoreThreadsThanRecords : rl::test_suite<MoreThreadsThanRecords<Policy, kNextIndex>, 3>
{
    ORL::AsyncReadRequestPool<Request, 2, Policy> mPool{kNextIndex};

    void thread(unsigned inIndex)
    {
        Request* const request = mPool.AllocateAsyncReadRequest();
        request->mOwner($) = inIndex;
        RL_ASSERT(request->mOwner($) == inIndex);
        mPool.FreeAsyncReadRequest(request);
    }
    void after() { RL_ASSERT(mPool.CountBusyRecords() == 0); }
};

/// One record is allocated on one thread and freed on another, like the record of a read, while a third thread looks
/// for a free record.
template <class Policy>
struct FreedElsewhere : rl::test_suite<FreedElsewhere<Policy>, 3>
{
    ORL::AsyncReadRequestPool<Request, 1, Policy> mPool;
    rl::atomic<Request*> mQueued{nullptr};

    void thread(unsigned inIndex)
    {
        if (inIndex == 0) {
            Request* const request = mPool.AllocateAsyncReadRequest();
            request->mOwner($) = 7;
            mQueued($).store(request, rl::mo_release);
        } else if (inIndex == 1) {
            Request* request = nullptr;
            while ((request = mQueued($).load(rl::mo_acquire)) == nullptr) {
                rl::yield(1, $);
            }
            RL_ASSERT(request->mOwner($) == 7u);
            mPool.FreeAsyncReadRequest(request);
        } else {
            Request* const request = mPool.AllocateAsyncReadRequest();
            request->mOwner($) = 9;
            RL_ASSERT(request->mOwner($) == 9u);
            mPool.FreeAsyncReadRequest(request);
        }
    }
    void after() { RL_ASSERT(mPool.CountBusyRecords() == 0); }
};

using Ships = Model::RelacyPolicy<0>;
using Looks = Model::RelacyPolicy<0, Step::kRequestPoolClaims>;

} // namespace

int main(int argc, char** argv)
{
    Model::Run run(argc, argv);
    run.Exhaust<MoreThreadsThanRecords<Ships, 0>>("3 threads, 2 records", 3);
    run.Exhaust<MoreThreadsThanRecords<Ships, 0xFFFFFFFEu>>("the same, the index wraps", 3);
    run.Exhaust<FreedElsewhere<Ships>>("freed on another thread", 3);
    run.Random<MoreThreadsThanRecords<Ships, 0>>("3 threads, 2 records", 200000);
    run.Random<MoreThreadsThanRecords<Ships, 0xFFFFFFFEu>>("the same, the index wraps", 200000);
    run.Random<FreedElsewhere<Ships>>("freed on another thread", 200000);
    run.FindMutant<MoreThreadsThanRecords<Looks, 0>>("looks, then takes");
    return run.Finish();
}
