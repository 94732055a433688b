#include <SmallBlocks/CachePool.h>

#include <CorePlatform/SmallBlockSystem.h>
#include <SmallBlocks/CurrentCache.h>
#include <SmallBlocks/Ledger.h>
#include <SmallBlocks/List.h>
#include <SmallBlocks/Pages.h>
#include <SmallBlocks/Sanitizer.h>

#include <atomic>
#include <new>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

namespace {

constexpr std::size_t kCachePages = (sizeof(ThreadCache) + 4095) / 4096 * 4096;
constexpr std::size_t kCacheAlignment = 4096;

threads::CoreMutex sSharedMutex;
ThreadCache sShared;
bool sSharedIsReady TVXCORE_GUARDED_BY(sSharedMutex) = false;

threads::CoreMutex sPoolMutex;
List<ThreadCache> sIdle TVXCORE_GUARDED_BY(sPoolMutex);
enum : int { kNotYet, kWatching, kCannotWatch } sThreadEnds TVXCORE_GUARDED_BY(sPoolMutex) = kNotYet;

// Runs on the exiting thread. Later allocations and frees of that thread use the shared cache.
void OnThreadEnd(CacheHead* inCache) noexcept
{
    ThreadCache& cache = *static_cast<ThreadCache*>(inCache);
    SetCurrentCache(&sEndedThreadCache);
    cache.Drain();
    LeaveCache(cache);
    const Guard guard(sPoolMutex);
    sIdle.PushFront(cache);
}

// The locks stay held during the fork.
void BeforeFork() TVXCORE_UNCHECKED_LOCKING
{
    sSharedMutex.lock();
    sPoolMutex.lock();
    LockStores();
    LockClusters();
    LockLedger();
}

void AfterFork() TVXCORE_UNCHECKED_LOCKING
{
    UnlockLedger();
    UnlockClusters();
    UnlockStores();
    sPoolMutex.unlock();
    sSharedMutex.unlock();
}

void WatchForks() noexcept
{
    static std::atomic<bool> sIsWatching{false};
    if (!sIsWatching.exchange(true)) {
        Platform::WatchForks_Impl(&BeforeFork, &AfterFork);
    }
}

// If this returns false, threads get no caches: each would leak when its thread exits.
bool CanWatchThreadEnds() noexcept TVXCORE_REQUIRES(sPoolMutex)
{
    if (sThreadEnds == kNotYet) {
        sThreadEnds = Platform::WatchThreadEnds_Impl(&OnThreadEnd) ? kWatching : kCannotWatch;
        WatchForks();
    }
    return sThreadEnds == kWatching;
}

ThreadCache* IdleOrNewCache() noexcept
{
    const Guard guard(sPoolMutex);
    if (!CanWatchThreadEnds()) {
        return nullptr;
    }
    if (ThreadCache* const idle = sIdle.PopFront()) {
        return idle;
    }
    void* const pages = TakePages(kCachePages, kCacheAlignment);
    return pages != nullptr ? new (pages) ThreadCache(ThreadCache::OnFreshPages()) : nullptr;
}

ThreadCache* GiveThisThreadACache() noexcept
{
    ThreadCache* const cache = IdleOrNewCache();
    if (cache == nullptr) {
        return nullptr;
    }
    if (!Platform::WatchThisThread_Impl(cache)) {
        const Guard guard(sPoolMutex);
        sIdle.PushFront(*cache);
        return nullptr;
    }
    cache->MakeEmpty();
    EnterCache(*cache);
    SetCurrentCache(cache);
    return cache;
}

bool IsAnyBlockOutstanding() noexcept
{
    SmallBlockAllocator::Metrics::Snapshot snapshot;
    ReadSmallBlockCounters(snapshot);
    return snapshot.mSmallBlockCountCurrent != 0;
}

void UnmapCaches() noexcept
{
    while (ThreadCache* const cache = FirstCache()) {
        LeaveCache(*cache);
        if (cache != &sShared) {
            GivePages(cache, kCachePages);
        }
    }
    const Guard guard(sPoolMutex);
    while (ThreadCache* const cache = sIdle.PopFront()) {
        GivePages(cache, kCachePages);
    }
}

} // namespace

ThreadCache* CacheOfThisThread() noexcept
{
    CacheHead* const head = GetCurrentCache();
    if (head == &sEndedThreadCache || kBlocksAreTheSystems) {
        return nullptr;
    }
    return head != &sNewThreadCache ? static_cast<ThreadCache*>(head) : GiveThisThreadACache();
}

SharedCacheUse::SharedCacheUse() noexcept : mGuard(sSharedMutex)
{
    if (!sSharedIsReady) {
        sShared.MakeEmpty();
        EnterSharedCache(sShared);
        WatchForks();
        sSharedIsReady = true;
    }
}

// Returns all quota: threads cannot claim what the shared cache keeps, so new claims would raise the peak needlessly.
SharedCacheUse::~SharedCacheUse()
{
    ReturnAllQuota(sShared);
}

ThreadCache* SharedCacheUse::operator->() const noexcept
{
    return &sShared;
}

void ReleaseAllIfUnused() noexcept
{
    Platform::ForgetThreadEnds_Impl();
    {
        const Guard guard(sPoolMutex);
        sThreadEnds = kCannotWatch;
    }
    if (IsAnyBlockOutstanding()) {
        return;
    }
    SetCurrentCache(&sEndedThreadCache);
    UnmapCaches();
    {
        const Guard guard(sSharedMutex);
        sSharedIsReady = false;
    }
    ForgetStores();
    DeleteClusters();
}

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
