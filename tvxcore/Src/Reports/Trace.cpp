#include <tvxcore/Trace.h>

#include <CorePlatform/SmallBlockSystem.h>
#include <Executors/CoreMutex.h>
#include <Reports/StandardError.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <cstring>
#include <new>

namespace tvxcore {
namespace debug {

namespace {

using utility::SmallBlockAllocator;
using Lock = threads::CoreMutexLock;

// A category with its own level. The category's name follows the record in the same block.
struct Category
{
    Category* mNext;
    std::size_t mSize;
    long mLevel;

    char* Name() noexcept { return reinterpret_cast<char*>(this + 1); }
};

// Constant-initialised and without destructors: sites may trace during the static construction and destruction of other
// files.
threads::CoreMutex sMutex;
Category* sCategories TVXCORE_GUARDED_BY(sMutex) = nullptr;
long sLevelOfAll TVXCORE_GUARDED_BY(sMutex) = kTraceOff;
std::atomic<int> sChangeCount{1};

// The sink while the trace is shut down: drops messages from sites that were enabled before.
void DropText(const unsigned char*)
{
}

// Null selects standard error. One word holds both the shutdown state and the sink, so that a message never reaches
// standard error after its host has redirected it. Written under sMutex, read without it.
std::atomic<TraceSink> sSink{nullptr};

void EndShutdown() TVXCORE_REQUIRES(sMutex)
{
    if (sSink == &DropText) {
        sSink = nullptr;
    }
}

void ForgetCategories() TVXCORE_REQUIRES(sMutex)
{
    while (sCategories != nullptr) {
        Category* const category = sCategories;
        sCategories = category->mNext;
        SmallBlockAllocator::Dispose(category, category->mSize);
    }
}

// Frees the categories if a host unloads the library without ShutdownTraceManager. At process exit it keeps them:
// threads may still trace.
struct AtUnload
{
    ~AtUnload()
    {
        if (utility::Platform::IsUnloading_Impl()) {
            const Lock lock(sMutex);
            ForgetCategories();
        }
    }
} sAtUnload;

Category* FindCategory(const char* inName) TVXCORE_REQUIRES(sMutex)
{
    Category* category = sCategories;
    while (category != nullptr && std::strcmp(category->Name(), inName) != 0) {
        category = category->mNext;
    }
    return category;
}

Category* AddCategory(const char* inName) TVXCORE_REQUIRES(sMutex)
{
    const std::size_t nameSize = std::strlen(inName) + 1;
    const std::size_t size = sizeof(Category) + nameSize;
    void* const block = SmallBlockAllocator::Allocate(size);
    if (block == nullptr) {
        return nullptr;
    }
    sCategories = new (block) Category{sCategories, size, kTraceOff};
    std::memcpy(sCategories->Name(), inName, nameSize);
    return sCategories;
}

// Called after the change, so that a site that sees the new count also sees the new levels.
void CountChange()
{
    const int next = sChangeCount.load(std::memory_order_relaxed) + 1;
    sChangeCount.store(next > 0 ? next : 1, std::memory_order_release);
}

void WriteToStandardError(const unsigned char* inText)
{
    const char* const text = reinterpret_cast<const char*>(inText);
    const std::size_t count = std::strlen(text);
    WriteStandardError(text, count, count == 0 || text[count - 1] != '\n' ? "\n" : "");
}

} // namespace

void SetTraceLevel(const char* inCategory, long inLevel)
{
    const Lock lock(sMutex);
    Category* category = FindCategory(inCategory);
    if (category == nullptr) {
        category = AddCategory(inCategory);
    }
    if (category != nullptr) {
        category->mLevel = inLevel;
        EndShutdown();
        CountChange();
    }
}

void SetTraceLevelOfAll(long inLevel)
{
    const Lock lock(sMutex);
    sLevelOfAll = inLevel;
    EndShutdown();
    CountChange();
}

TraceSink InstallTraceSink(TraceSink inSink)
{
    const Lock lock(sMutex);
    const TraceSink old = sSink.exchange(inSink);
    return old == &DropText ? nullptr : old;
}

void ShutdownTraceManager()
{
    const Lock lock(sMutex);
    sSink = &DropText;
    sLevelOfAll = kTraceOff;
    ForgetCategories();
    CountChange();
}

bool TraceEnabled(const unsigned char* inCategory, long inLevel, bool inFollowsAll)
{
    const Lock lock(sMutex);
    Category* const category = FindCategory(reinterpret_cast<const char*>(inCategory));
    const long level = category != nullptr ? category->mLevel : inFollowsAll ? sLevelOfAll : kTraceOff;
    return level > kTraceOff && inLevel <= level;
}

int TraceChangeCount()
{
    return sChangeCount.load(std::memory_order_acquire);
}

void Trace(const unsigned char* inText)
{
    const TraceSink sink = sSink.load();
    try {
        (sink != nullptr ? sink : &WriteToStandardError)(inText);
    } catch (...) {
        // If the sink throws, the message is lost. The exception does not propagate, since the tracing code may be a
        // destructor.
    }
}

} // namespace debug
} // namespace tvxcore
