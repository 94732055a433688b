#include <Platform/ThreadManager.h>

#include <pthread.h>

#include <cstddef>
#include <cstring>
#include <unistd.h>

namespace ORL {
namespace ThreadManager {
namespace Platform {

namespace {

constexpr std::size_t kNameLimit = 15; // the kernel's limit for a thread name

// Returns the length of the longest UTF-8 prefix that fits and ends at a character boundary. tvxcore has a similar
// function for its executors' threads; sharing one would need a public header, which hosts have no use for.
std::size_t FittingLength(const char* inName)
{
    const std::size_t length = std::strlen(inName);
    if (length <= kNameLimit) {
        return length;
    }
    std::size_t end = kNameLimit;
    while (end > 0 && (static_cast<unsigned char>(inName[end]) & 0xC0u) == 0x80u) {
        --end;
    }
    return end;
}

} // namespace

std::uint32_t AllocateSlot_Impl()
{
    pthread_key_t key = 0;
    return ::pthread_key_create(&key, nullptr) == 0 ? static_cast<std::uint32_t>(key) : kNoSlot;
}

void FreeSlot_Impl(std::uint32_t inSlot)
{
    ::pthread_key_delete(inSlot);
}

void* GetSlotValue_Impl(std::uint32_t inSlot)
{
    return ::pthread_getspecific(inSlot);
}

void SetSlotValue_Impl(std::uint32_t inSlot, void* inValue)
{
    ::pthread_setspecific(inSlot, inValue);
}

// The first thread's name is the process name, by which ps, pgrep and killall find the host.
void NameThread_Impl(const char* inName)
{
    if (::gettid() == ::getpid()) {
        return;
    }
    char name[kNameLimit + 1] = {};
    std::memcpy(name, inName, FittingLength(inName));
    ::pthread_setname_np(::pthread_self(), name);
}

} // namespace Platform
} // namespace ThreadManager
} // namespace ORL
