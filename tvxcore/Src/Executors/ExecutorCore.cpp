#include <Executors/ExecutorCore.h>

#include <CorePlatform/Thread.h>
#include <tvxcore/ErrorManager.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <new>

namespace tvxcore {
namespace threads {

namespace {

using utility::SmallBlockAllocator;

// A queued function. The node copies the function once, outside every lock, and runs its copy.
class FunctionNode : public WorkNode
{
public:
    explicit FunctionNode(const boost::function<void()>& inFunction) : mFunction(inFunction) {}

    const boost::function<void()>& GetFunction() const { return mFunction; }

    static void* operator new(std::size_t inSize)
    {
        void* const block = SmallBlockAllocator::Allocate(inSize);
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        return block;
    }

    static void operator delete(void* inBlock, std::size_t inSize) { SmallBlockAllocator::Dispose(inBlock, inSize); }

private:
    const boost::function<void()> mFunction;
};

thread_local const ExecutorCore* tCurrent = nullptr;

// Returns a number of turns that take about as long as waking a thread on another processor.
unsigned int SpinTurns()
{
    return Platform::UsableProcessorCount_Impl() > 1 ? 600 : 0;
}

constexpr unsigned long kPackage = 110;
constexpr long kErrorID_FunctionThrew = 1;

} // namespace

ExecutorCore::ExecutorCore(const std::string& inName, ThreadPriority inPriority,
                           const boost::function<void()>& inThreadStart, const boost::function<void()>& inThreadEnd)
    : mChannel(SpinTurns()), mName(inName), mPriority(std::clamp(inPriority, 0, 5)), mThreadStart(inThreadStart),
      mThreadEnd(inThreadEnd)
{
}

bool ExecutorCore::Queue(const boost::function<void()>& inFunction)
{
    auto node = std::make_unique<FunctionNode>(inFunction);
    const bool isTaken = mChannel.Push(*node);
    if (isTaken) {
        static_cast<void>(node.release());
    }
    return isTaken;
}

void ExecutorCore::RunThread() noexcept
{
    tCurrent = this;
    Platform::NameCurrentThread_Impl(mName.c_str());
    Platform::SetCurrentThreadPriority_Impl(mPriority);
    RunGuarded(mThreadStart);
    while (WorkNode* const taken = mChannel.Take()) {
        FunctionNode* const node = static_cast<FunctionNode*>(taken);
        RunGuarded(node->GetFunction());
        delete node;
    }
    RunGuarded(mThreadEnd);
    tCurrent = nullptr;
}

// During process exit no executor thread is left, so the result does not matter. The thread-local is not read
// then: a thread's first access to its thread-locals may take locks that a stopped thread holds forever.
bool ExecutorCore::OwnsCurrentThread() const noexcept
{
    return !Platform::ProcessIsEnding_Impl() && tCurrent == this;
}

void ExecutorCore::RunGuarded(const boost::function<void()>& inFunction) const noexcept
{
    try {
        if (inFunction) {
            inFunction();
        }
    } catch (const std::exception& exception) {
        ReportThrow(exception.what());
    } catch (...) {
        ReportThrow("an exception of no standard type");
    }
}

// The error manager does not use the message after it returns, so a local string suffices. Exceptions from the report
// itself are caught too: the thread continues.
void ExecutorCore::ReportThrow(const char* inWhat) const noexcept
{
    try {
        const std::string text =
            "$$$/tvxcore/threads/Error/FunctionThrew=A function on the thread \"" + mName + "\" has thrown: " + inWhat;
        const config::ReplacementValue none;
        config::ThrowError(config::kErrorLevel_Warning, text.c_str(), kPackage, kErrorID_FunctionThrew, true, none,
                           none, none, none);
    } catch (...) {
    }
}

} // namespace threads
} // namespace tvxcore
