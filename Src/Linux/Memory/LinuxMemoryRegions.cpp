#include <Platform/MemoryRegions.h>

#include "../Files/LinuxDescriptor.h"

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <new>
#include <utility>

namespace ORL {
namespace MemoryRegions {
namespace Platform {

namespace {

// The end of a process's address space with four-level paging. The list also contains the kernel's own page above
// this address, which does not belong to the process.
constexpr std::uint64_t kTop = 0x7ffffffff000;

struct Mapping
{
    std::uint64_t mBegin = 0;
    std::uint64_t mEnd = 0;
    bool mHasAccess = false;
};

} // namespace

// Reads the list of mappings as the walk proceeds. A line is shorter than the buffer: its longest part is a path.
struct Walk
{
    Linux::Descriptor mFile;
    off_t mPosition = 0;
    std::size_t mBegin = 0; // start of the unread part of mText
    std::size_t mEnd = 0;
    bool mIsOver = false;
    bool mHasFailed = false;
    Mapping mNext;
    char mText[16 * 1024];
};

namespace {

// Moves the unread text to the front of the buffer and reads more text after it.
bool ReadMore(Walk& ioWalk)
{
    std::memmove(ioWalk.mText, ioWalk.mText + ioWalk.mBegin, ioWalk.mEnd - ioWalk.mBegin);
    ioWalk.mEnd -= ioWalk.mBegin;
    ioWalk.mBegin = 0;
    ssize_t size = -1;
    do {
        size = Linux::System().mPRead(ioWalk.mFile.Get(), ioWalk.mText + ioWalk.mEnd,
                                      sizeof(ioWalk.mText) - ioWalk.mEnd, ioWalk.mPosition);
    } while (size < 0 && errno == EINTR);
    if (size <= 0) {
        ioWalk.mHasFailed = size < 0;
        return false;
    }
    ioWalk.mEnd += static_cast<std::size_t>(size);
    ioWalk.mPosition += size;
    return true;
}

// Returns the next line, zero-terminated, or null at the end of the list.
char* ReadLine(Walk& ioWalk)
{
    for (;;) {
        char* const begin = ioWalk.mText + ioWalk.mBegin;
        char* const end = static_cast<char*>(std::memchr(begin, '\n', ioWalk.mEnd - ioWalk.mBegin));
        if (end != nullptr) {
            *end = '\0';
            ioWalk.mBegin = static_cast<std::size_t>(end + 1 - ioWalk.mText);
            return begin;
        }
        if (ioWalk.mEnd - ioWalk.mBegin == sizeof(ioWalk.mText) || !ReadMore(ioWalk)) {
            return nullptr;
        }
    }
}

// Parses a line such as "7f0c1a000000-7f0c1a021000 rw-p ...".
bool ReadMapping(Walk& ioWalk)
{
    char access[5];
    const char* const line = ReadLine(ioWalk);
    if (line == nullptr
        || std::sscanf(line, "%" SCNx64 "-%" SCNx64 " %4s", &ioWalk.mNext.mBegin, &ioWalk.mNext.mEnd, access) != 3
        || ioWalk.mNext.mBegin >= kTop) {
        ioWalk.mIsOver = true;
        return false;
    }
    ioWalk.mNext.mHasAccess = std::strncmp(access, "---", 3) != 0;
    return true;
}

// Stops at the first mapping that ends after the address.
bool FindMapping(Walk& ioWalk, std::uint64_t inAddress)
{
    while (!ioWalk.mIsOver && ioWalk.mNext.mEnd <= inAddress) {
        ReadMapping(ioWalk);
    }
    return !ioWalk.mIsOver;
}

} // namespace

Walk* OpenWalk_Impl()
{
    Linux::Descriptor file = Linux::OpenByPath("/proc/self/maps", O_RDONLY);
    Walk* const walk = file ? new (std::nothrow) Walk : nullptr;
    if (walk != nullptr) {
        walk->mFile = std::move(file);
    }
    return walk;
}

void CloseWalk_Impl(Walk* inWalk)
{
    delete inWalk;
}

bool QueryRegion_Impl(Walk& ioWalk, std::uint64_t inAddress, Region& outRegion)
{
    if (inAddress >= kTop) {
        return false;
    }
    const bool hasMapping = FindMapping(ioWalk, inAddress);
    if (ioWalk.mHasFailed) {
        return false; // the rest of the address space is unknown, not free
    }
    if (!hasMapping || inAddress < ioWalk.mNext.mBegin) {
        outRegion = Region{(hasMapping ? ioWalk.mNext.mBegin : kTop) - inAddress, kFree};
    } else {
        outRegion = Region{ioWalk.mNext.mEnd - inAddress, ioWalk.mNext.mHasAccess ? kCommitted : kReserved};
    }
    return true;
}

// The C library reports its arenas as <heap nr="0">, <heap nr="1"> ...
unsigned long HeapCount_Impl()
{
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* const file = ::open_memstream(&text, &size);
    if (file == nullptr) {
        return 0;
    }
    const bool isTold = ::malloc_info(0, file) == 0;
    const bool isWhole = std::fclose(file) == 0;
    unsigned long count = 0;
    if (isTold && isWhole) {
        for (const char* heap = text; (heap = std::strstr(heap, "<heap nr=")) != nullptr; ++heap) {
            ++count;
        }
    }
    std::free(text);
    return count;
}

} // namespace Platform
} // namespace MemoryRegions
} // namespace ORL
