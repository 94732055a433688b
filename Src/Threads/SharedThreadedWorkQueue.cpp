#include <ORLSharedThreadedWorkQueue.h>

#include <ORLAtomic.h>
#include <ORLConstString.h>
#include <ORLCriticalSection.h>
#include <ORLImpl.h>

#include <map>
#include <memory>

namespace ORL {

namespace {

using QueueRef = SharedThreadedWorkQueue::QueueRef;
using QueueMap = std::map<ThreadPriorities::Type, QueueRef>;

// How the queues of one map are created.
struct Kind
{
    int mThreadAllocationPolicy;
    const char* mThreadName;
};

constexpr Kind kMultiThreaded = {-1, "Multi-threaded ORL::SharedThreadedWorkQueue"};
constexpr Kind kSingleThreaded = {0, "Single-threaded ORL::SharedThreadedWorkQueue"};

SharedThreadedWorkQueue* sInstance = nullptr; // changed only by atomic operations

QueueRef Find(const QueueMap& inQueues, ThreadPriorities::Type inPriority)
{
    const QueueMap::const_iterator found = inQueues.find(inPriority);
    return found != inQueues.end() ? found->second : QueueRef();
}

// The caller must hold mLock, which guards both maps.
QueueRef FindOrMake(QueueMap& ioQueues, ThreadPriorities::Type inPriority, const Kind& inKind)
{
    if (const QueueRef found = Find(ioQueues, inPriority)) {
        return found;
    }
    const QueueRef queue(new ThreadedWorkQueue);
    queue->Initialize(inPriority, inKind.mThreadAllocationPolicy, ConstString(inKind.mThreadName),
                      ConstString("ORL::Foundation"));
    try {
        ioQueues.insert(QueueMap::value_type(inPriority, queue));
    } catch (...) {
        queue->Stop(); // because StopAll would not find the queue
        throw;
    }
    return queue;
}

// Stops queues of lower priority first.
void StopAll(QueueMap& ioQueues)
{
    while (!ioQueues.empty()) {
        ioQueues.begin()->second->Stop();
        ioQueues.erase(ioQueues.begin());
    }
}

} // namespace

struct ORL_LOCAL SharedThreadedWorkQueue::PrivateImpl : public Impl
{
    CriticalSection mLock;
    QueueMap mMultiThreadedQueues TVXCORE_GUARDED_BY(mLock);
    QueueMap mSingleThreadedQueues TVXCORE_GUARDED_BY(mLock);
};

SharedThreadedWorkQueue::SharedThreadedWorkQueue() : mImpl(new PrivateImpl)
{
}

SharedThreadedWorkQueue::~SharedThreadedWorkQueue()
{
    delete mImpl;
}

// Two threads may both create an instance; one is published, and the other, still empty, is deleted.
SharedThreadedWorkQueue* SharedThreadedWorkQueue::Instance()
{
    SharedThreadedWorkQueue* const existing = AtomicReadPtr(sInstance);
    if (existing != nullptr) {
        return existing;
    }
    SharedThreadedWorkQueue* const made = new SharedThreadedWorkQueue;
    if (AtomicSetPtrIfNull(sInstance, made)) {
        return made;
    }
    delete made;
    return AtomicReadPtr(sInstance);
}

QueueRef SharedThreadedWorkQueue::Retrieve(ThreadPriorities::Type inPriority)
{
    if (mImpl == nullptr) {
        return QueueRef();
    }
    const CriticalSectionLock lock(mImpl->mLock);
    return Find(mImpl->mMultiThreadedQueues, inPriority);
}

QueueRef SharedThreadedWorkQueue::RetrieveOrCreate(ThreadPriorities::Type inPriority)
{
    if (mImpl == nullptr) {
        return QueueRef();
    }
    const CriticalSectionLock lock(mImpl->mLock);
    return FindOrMake(mImpl->mMultiThreadedQueues, inPriority, kMultiThreaded);
}

QueueRef SharedThreadedWorkQueue::RetrieveSingleThreaded(ThreadPriorities::Type inPriority)
{
    if (mImpl == nullptr) {
        return QueueRef();
    }
    const CriticalSectionLock lock(mImpl->mLock);
    return Find(mImpl->mSingleThreadedQueues, inPriority);
}

QueueRef SharedThreadedWorkQueue::RetrieveOrCreateSingleThreaded(ThreadPriorities::Type inPriority)
{
    if (mImpl == nullptr) {
        return QueueRef();
    }
    const CriticalSectionLock lock(mImpl->mLock);
    return FindOrMake(mImpl->mSingleThreadedQueues, inPriority, kSingleThreaded);
}

void SharedThreadedWorkQueue::Shutdown()
{
    SharedThreadedWorkQueue* const instance = AtomicNullifyPtr(sInstance);
    if (instance == nullptr) {
        return;
    }
    if (instance->mImpl != nullptr) {
        const CriticalSectionLock lock(instance->mImpl->mLock);
        StopAll(instance->mImpl->mMultiThreadedQueues);
        StopAll(instance->mImpl->mSingleThreadedQueues);
    }
    delete instance;
}

} // namespace ORL
