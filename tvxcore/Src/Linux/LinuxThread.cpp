#include <CorePlatform/Thread.h>

#include <tvxcore/Executor.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <new>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

namespace tvxcore {
namespace threads {

namespace {

// Cached, since the system call costs fifty times the load. A forked child inherits the memory but not the thread ID.
// Initial-exec: one load, and eight bytes of the TLS space that the loader reserves for libraries loaded late.
__attribute__((tls_model("initial-exec"))) thread_local unsigned long tThreadID = 0;

void ForgetThreadID()
{
    tThreadID = 0;
}

const int sForkHandler = ::pthread_atfork(nullptr, nullptr, &ForgetThreadID);

} // namespace

unsigned long GetCurrentThreadID()
{
    if (tThreadID == 0) {
        const auto id = static_cast<unsigned long>(::gettid());
        if (sForkHandler != 0) {
            return id;
        }
        tThreadID = id;
    }
    return tThreadID;
}

namespace Platform {

namespace {

struct Start
{
    void (*mFunction)(void*);
    void* mArgument;
};

void* RunThread(void* inStart)
{
    const Start start = *static_cast<Start*>(inStart);
    delete static_cast<Start*>(inStart);
    start.mFunction(start.mArgument);
    return nullptr;
}

static_assert(sizeof(pthread_t) <= sizeof(ThreadHandle));

// Returns the largest number of bytes, up to inCount, that does not split a character. ORLFoundation has its own such
// function: sharing this one would need a public header, and hosts do not cut names.
std::size_t CutAtCharacter(const char* inText, std::size_t inCount)
{
    std::size_t count = 0;
    while (count < inCount && inText[count] != '\0') {
        ++count;
    }
    if (inText[count] != '\0') {
        while (count > 0 && (static_cast<unsigned char>(inText[count]) & 0xC0u) == 0x80u) {
            --count;
        }
    }
    return count;
}

} // namespace

bool StartThread_Impl(void (*inFunction)(void*), void* inArgument, ThreadHandle& outThread) noexcept
{
    Start* const start = new (std::nothrow) Start{inFunction, inArgument};
    pthread_t thread{};
    if (start == nullptr || ::pthread_create(&thread, nullptr, &RunThread, start) != 0) {
        delete start;
        return false;
    }
    outThread = static_cast<ThreadHandle>(thread);
    return true;
}

void JoinThread_Impl(ThreadHandle inThread) noexcept
{
    ::pthread_join(static_cast<pthread_t>(inThread), nullptr);
}

void DetachThread_Impl(ThreadHandle inThread) noexcept
{
    ::pthread_detach(static_cast<pthread_t>(inThread));
}

void NameCurrentThread_Impl(const char* inName) noexcept
{
    constexpr std::size_t kKeptBytes = 15;
    char name[kKeptBytes + 1] = {};
    std::copy_n(inName, CutAtCharacter(inName, kKeptBytes), name);
    ::pthread_setname_np(::pthread_self(), name);
}

// A thread inherits its creator's nice level; that of the process is the level of its first thread. An ordinary user
// may lower a priority but not raise it. So if the requested level is refused, the thread gets that of the process or,
// if this is refused too, keeps that of its creator.
void SetCurrentThreadPriority_Impl(int inPriority) noexcept
{
    static constexpr int kOffsets[] = {15, 10, 5, 0, -5, -10};
    const id_t thread = static_cast<id_t>(::gettid());
    const int own = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::getpid()));
    if (::setpriority(PRIO_PROCESS, thread, own + kOffsets[inPriority]) != 0) {
        ::setpriority(PRIO_PROCESS, thread, own);
    }
}

unsigned int ProcessorCount_Impl() noexcept
{
    return static_cast<unsigned int>(std::max(::sysconf(_SC_NPROCESSORS_ONLN), 1l));
}

unsigned int UsableProcessorCount_Impl() noexcept
{
    cpu_set_t usable;
    CPU_ZERO(&usable);
    if (::sched_getaffinity(0, sizeof(usable), &usable) != 0) {
        return ProcessorCount_Impl(); // the machine has more processors than the set can hold
    }
    return static_cast<unsigned int>(std::max(CPU_COUNT(&usable), 1));
}

void YieldThread_Impl() noexcept
{
    ::sched_yield();
}

bool ProcessIsEnding_Impl() noexcept
{
    return false;
}

std::int64_t MonotonicNanoseconds_Impl() noexcept
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

} // namespace Platform
} // namespace threads
} // namespace tvxcore
