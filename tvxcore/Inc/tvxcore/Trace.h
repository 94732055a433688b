// Diagnostic lines that a host can enable, disable and redirect at run time.
//
// Tracing code declares a site and queries it first. While no level changes, the query costs a call and a compare:
//
//   static tvxcore::debug::TraceSite sSite("ORL.Allocator", 1, false);
//   if (sSite.IsEnabled()) {
//       tvxcore::debug::TraceLine(sSite) << "There are currently " << count << " heaps.\n";
//   }
//
// All categories start disabled. Lines go to standard error unless a sink is installed. Thread-safe. Never throws.
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/Types.h>

#include <atomic>
#include <cstddef>

namespace tvxcore {
namespace debug {

/// The level that disables a category: the levels of all sites are higher.
inline constexpr long kTraceOff = -1;

/// Enables levels 0 to inLevel of one category, independent of all others. The name is compared byte by byte.
/// Has no effect if out of memory.
TVXCORE_API void SetTraceLevel(const char* inCategory, long inLevel);

/// Sets the level of every category without its own level. Sites with inFollowsAll false ignore this level: only
/// SetTraceLevel enables them.
TVXCORE_API void SetTraceLevelOfAll(long inLevel);

/// Receives one finished message: zero-terminated UTF-8, of one line or several. Called on any thread, and
/// concurrently. Exceptions from a sink are swallowed.
using TraceSink = void (*)(const unsigned char* inText);

/// Installs a sink and returns the previous one. Null selects standard error; a line end is then added to messages
/// without one, and messages are dropped if the reader does not keep up, so tracing never blocks the process. A message
/// in progress may still reach the previous sink.
TVXCORE_API TraceSink InstallTraceSink(TraceSink inSink);

/// Ends tracing: clears all levels and the sink. Nothing is written after this, not even messages whose site was
/// enabled before, until a level or a sink is set again.
TVXCORE_API void ShutdownTraceManager();

/// Returns whether a category is enabled at a level. With inFollowsAll a category without its own level uses that of
/// SetTraceLevelOfAll; otherwise it must be enabled by name.
TVXCORE_API bool TraceEnabled(const unsigned char* inCategory, long inLevel, bool inFollowsAll);

/// Returns a number that changes whenever a level does. Never 0.
TVXCORE_API int TraceChangeCount();

/// Writes one finished message unchanged.
TVXCORE_API void Trace(const unsigned char* inText);

/// Composes a message and writes it on destruction, unless it is empty. If out of memory, the message is cut: the part
/// that did not fit and all later parts are dropped.
///
/// Owner:    a scope.
/// Threads:  not thread-safe: belongs to one thread.
/// Failure:  never throws.
class TVXCORE_API SafeTraceStream
{
public:
    SafeTraceStream() noexcept;
    ~SafeTraceStream();
    SafeTraceStream(const SafeTraceStream&) = delete;
    SafeTraceStream& operator=(const SafeTraceStream&) = delete;

    /// Null writes nothing.
    SafeTraceStream& operator<<(const char* inText);
    SafeTraceStream& operator<<(unsigned int inNumber);
    SafeTraceStream& operator<<(long inNumber);
    SafeTraceStream& operator<<(unsigned long inNumber);
    SafeTraceStream& operator<<(unsigned __int64 inNumber);

private:
    void Append(const char* inBytes, std::size_t inCount) noexcept;

    // Most lines fit in this buffer. For longer messages mText points to a larger block.
    char mInline[256];
    char* mText;
    std::size_t mCapacity; // bytes at mText, including the terminator
    std::size_t mCount;
    bool mIsCut; // out of memory: later parts are dropped
};

/// A trace location in the code: its category, its level, and whether the current levels enable it (cached). Must
/// be static, and inCategory must live as long. Thread-safe. Never throws.
class TraceSite
{
public:
    constexpr TraceSite(const char* inCategory, long inLevel, bool inFollowsAll) noexcept
        : mCategory(inCategory), mLevel(inLevel), mFollowsAll(inFollowsAll)
    {
    }

    /// Returns whether the site is enabled. A change to the levels takes effect on the next call.
    bool IsEnabled() noexcept
    {
        const auto count = static_cast<unsigned int>(TraceChangeCount());
        const unsigned __int64 cached = mCached.load(std::memory_order_relaxed);
        return static_cast<unsigned int>(cached >> 32) == count ? (cached & 1) != 0 : Ask(count);
    }

    const char* Category() const noexcept { return mCategory; } ///< returns the category
    long Level() const noexcept { return mLevel; }              ///< returns the level

private:
    bool Ask(unsigned int inCount) noexcept
    {
        const bool answer = TraceEnabled(reinterpret_cast<const unsigned char*>(mCategory), mLevel, mFollowsAll);
        mCached.store(static_cast<unsigned __int64>(inCount) << 32 | (answer ? 1u : 0u), std::memory_order_relaxed);
        return answer;
    }

    const char* mCategory;
    long mLevel;
    bool mFollowsAll;
    // The upper half is the change count of the last query, the lower half its result. Count and result are one word,
    // so that no thread pairs a result with the wrong count. A count is never 0, so the first call queries.
    std::atomic<unsigned __int64> mCached{0};
};

/// A stream that first writes "<" thread identifier "> <" category "> <" level "> ". Otherwise like SafeTraceStream.
class TVXCORE_API TraceLine : public SafeTraceStream
{
public:
    explicit TraceLine(const TraceSite& inSite);
};

} // namespace debug
} // namespace tvxcore
