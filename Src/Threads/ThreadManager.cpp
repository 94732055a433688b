#include <ORLThreadManager.h>

#include <Core/UntilUnload.h>
#include <ORLDebug.h>
#include <ORLString.h>
#include <Platform/ThreadManager.h>
#include <tvxcore/Executor.h>
#include <tvxcore/Trace.h>

#include <atomic>
#include <cstdint>
#include <string>

namespace ORL {
namespace ThreadManager {

ThreadInfo::ThreadInfo(const ConstString& inThreadName, const ConstString& inCurrentModule, bool inIsMainThread)
    : mThreadName(inThreadName), mCurrentModule(inCurrentModule), mIsMainThread(inIsMainThread)
{
}

ThreadInfo::~ThreadInfo() = default;

ConstString ThreadInfo::GetThreadName() const
{
    return mThreadName;
}

ConstString ThreadInfo::GetCurrentModule() const
{
    return mCurrentModule;
}

namespace Platform {

namespace {

// Names for the values of the parameter inIsMainThread, which the public header declares as a bool.
constexpr bool kMainThread = true;
constexpr bool kOtherThread = false;

class PrivateThreadInfo : public ThreadInfo
{
public:
    using ThreadInfo::ThreadInfo;
};

// Written under the foundation lock. Other threads read the first two without a lock, so these are atomic; relaxed
// order is enough.
std::atomic<std::uint32_t> sThreadLocalStorage_InfoIndex{kNoSlot};
std::atomic<bool> sInfoIndexAllocated{false};
ThreadInfo* sMainThreadInfo = nullptr;

UntilUnload<ThreadInfo> sUnnamedThreadInfo(ConstString("Unnamed Thread"), ConstString("Unnamed Module"), kOtherThread);

std::uint32_t InfoIndex()
{
    return sThreadLocalStorage_InfoIndex.load(std::memory_order_relaxed);
}

bool IsInfoIndexAllocated()
{
    return sInfoIndexAllocated.load(std::memory_order_relaxed);
}

// The trace begins each line with the thread's identifier, so this line shows which name belongs to that identifier.
void TraceThread(const std::string& inName, const ThreadInfo& inInfo)
{
    static tvxcore::debug::TraceSite sSite("ORL.ThreadManager", 1, true);
    if (sSite.IsEnabled()) {
        tvxcore::debug::TraceLine(sSite) << "This thread is \"" << inName.c_str() << "\" of \""
                                         << MakeStdString(inInfo.GetCurrentModule()).c_str() << "\".\n";
    }
}

void NameThread(const ThreadInfo& inInfo)
{
    const std::string name = MakeStdString(inInfo.GetThreadName());
    NameThread_Impl(name.c_str());
    TraceThread(name, inInfo);
}

// The index is not reset when the slot is freed, so a second start fails the first assertion and continues.
void AllocateInfoIndex()
{
    ORL_ASSERT_MESSAGE_AT(InfoIndex() == kNoSlot, "sThreadLocalStorage_InfoIndex == TLS_OUT_OF_INDEXES", "", __FILE__,
                          __LINE__, "ORL::ThreadManager::Platform::RegisterMainThread");
    sThreadLocalStorage_InfoIndex.store(AllocateSlot_Impl(), std::memory_order_relaxed);
    ORL_ASSERT_MESSAGE_AT(InfoIndex() != kNoSlot, "sThreadLocalStorage_InfoIndex != TLS_OUT_OF_INDEXES", "", __FILE__,
                          __LINE__, "ORL::ThreadManager::Platform::RegisterMainThread");
    sInfoIndexAllocated.store(true, std::memory_order_relaxed);
}

void RegisterMainThread()
{
    ORL_CONTRACT_AT_(!IsInfoIndexAllocated(), "sInfoIndexAllocated == false", __FILE__, __LINE__,
                     ::ORL::Debug::ThrowInputContractError);
    if (!IsInfoIndexAllocated()) {
        AllocateInfoIndex();
    }
    if (InfoIndex() == kNoSlot) {
        return;
    }
    sMainThreadInfo = new PrivateThreadInfo(ConstString("CorvantoMain"), ConstString("Corvanto"), kMainThread);
    SetSlotValue_Impl(InfoIndex(), sMainThreadInfo);
    NameThread(*sMainThreadInfo);
}

void UnregisterMainThread()
{
    if (sMainThreadInfo != nullptr) {
        SetSlotValue_Impl(InfoIndex(), nullptr);
        delete sMainThreadInfo;
        sMainThreadInfo = nullptr;
    }
    if (IsInfoIndexAllocated()) {
        FreeSlot_Impl(InfoIndex());
        sInfoIndexAllocated.store(false, std::memory_order_relaxed);
    }
}

void RegisterThread(const ConstString& inThreadName, const ConstString& inCurrentModule)
{
    ORL_CONTRACT_AT_(IsInfoIndexAllocated(), "sInfoIndexAllocated", __FILE__, __LINE__,
                     ::ORL::Debug::ThrowInputContractError);
    if (InfoIndex() == kNoSlot) {
        return;
    }
    ThreadInfo* const info = new PrivateThreadInfo(inThreadName, inCurrentModule, kOtherThread);
    SetSlotValue_Impl(InfoIndex(), info);
    NameThread(*info);
}

// Does not clear the slot: a thread unregisters immediately before it exits.
void UnregisterThread()
{
    ORL_CONTRACT_AT_(IsInfoIndexAllocated(), "sInfoIndexAllocated", __FILE__, __LINE__,
                     ::ORL::Debug::ThrowInputContractError);
    if (InfoIndex() == kNoSlot) {
        return;
    }
    ThreadInfo* const info = static_cast<ThreadInfo*>(GetSlotValue_Impl(InfoIndex()));
    ORL_INPUT_CONTRACT(info);
    delete info;
}

ThreadInfo* GetCurrentThreadInfo()
{
    return InfoIndex() == kNoSlot ? nullptr : static_cast<ThreadInfo*>(GetSlotValue_Impl(InfoIndex()));
}

} // namespace
} // namespace Platform

namespace {

enum class MainThreadID { kSet, kCheck };

// The only function that accesses the main thread's identifier, which is set once and never reset. Returns true if the
// calling thread is the main thread.
bool SetOrCheckMainThreadID(MainThreadID inAction)
{
    static std::atomic<std::uint32_t> mainThreadID{0};
    const std::uint32_t thisThreadID = static_cast<std::uint32_t>(tvxcore::threads::GetCurrentThreadID());
    if (inAction == MainThreadID::kSet) {
        std::uint32_t none = 0;
        if (!mainThreadID.compare_exchange_strong(none, thisThreadID)) {
            ORL_ASSERT_MESSAGE_AT(mainThreadID.load() == thisThreadID,
                                  "tvxcore::threads::AtomicRead(mainThreadID) == thisThreadID",
                                  "RegisterMainThread has been called from more than one thread.\r\n", __FILE__,
                                  __LINE__, "ORL::ThreadManager::`anonymous-namespace'::SetOrCheckMainThreadID");
        }
    }
    return mainThreadID.load() == thisThreadID;
}

} // namespace

void RegisterMainThread()
{
    SetOrCheckMainThreadID(MainThreadID::kSet);
    Platform::RegisterMainThread();
}

void UnregisterMainThread()
{
    Platform::UnregisterMainThread();
}

void RegisterThread(ConstString& inThreadName, ConstString& inCurrentModule)
{
    ORL_INPUT_CONTRACT(!inThreadName.empty() && !inCurrentModule.empty());
    Platform::RegisterThread(inThreadName, inCurrentModule);
}

void UnregisterThread()
{
    Platform::UnregisterThread();
}

ThreadInfo* GetCurrentThreadInfo()
{
    ThreadInfo* const info = Platform::GetCurrentThreadInfo();
    return info != nullptr ? info : &Platform::sUnnamedThreadInfo.Get();
}

bool CurrentThreadIsMainThread()
{
    return SetOrCheckMainThreadID(MainThreadID::kCheck);
}

} // namespace ThreadManager
} // namespace ORL
