// A plug-in that uses the shared library's small block allocator, for tests that load and unload both.
#include <tvxcore/SmallBlockAllocator.h>
#include <tvxcore/String.h>

#include <cstddef>
#include <string>
#include <thread>
#include <vector>

using tvxcore::utility::SmallBlockAllocator;

namespace {

void* sKept = nullptr;
UTF16String sStaticText(5000, static_cast<unsigned short>('s'));

bool UseMuch()
{
    std::vector<void*> blocks;
    for (std::size_t size = 0; size < 20000; size += 40) {
        blocks.push_back(SmallBlockAllocator::Allocate(size));
    }
    bool isServed = true;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        isServed = isServed && blocks[i] != nullptr;
        SmallBlockAllocator::Dispose(blocks[i], 40 * i);
    }
    return isServed && sStaticText.size() == 5000;
}

} // namespace

#if defined(_WIN32)
#  define GUEST_API extern "C" __declspec(dllexport)
#else
#  define GUEST_API extern "C" __attribute__((visibility("default")))
#endif

/// Uses the allocator on the caller's thread.
GUEST_API bool GuestUse()
{
    return UseMuch();
}

/// Uses the allocator on a thread that ends before the call returns.
GUEST_API bool GuestUseOnThread()
{
    bool isServed = false;
    std::thread([&] { isServed = UseMuch(); }).join();
    return isServed;
}

/// Allocates a block that is not freed before the plug-in is unloaded.
GUEST_API void* GuestKeep()
{
    sKept = SmallBlockAllocator::Allocate(100);
    return sKept;
}
