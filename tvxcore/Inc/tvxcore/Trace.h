// Diagnostic lines that a host can switch on, off and elsewhere while the process runs.
//
// A place that traces owns a site and asks it first; while nothing changes, that is one load and one compare:
//
//   static tvxcore::debug::TraceSite sSite("ORL.Allocator", 1, false);
//   if (sSite.IsEnabled()) {
//       tvxcore::debug::TraceLine(sSite) << "There are currently " << count << " heaps.\n";
//   }
//
// Everything is off at first. Lines go to standard error unless a sink is installed. Every operation may be called
// from any thread, and none of them throws.
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/Types.h>

#include <atomic>
#include <cstddef>

namespace tvxcore {
namespace debug {

/// A level that switches a category off: no site has a level as low as this.
inline constexpr long kTraceOff = -1;

/// Switches one category on for its levels from 0 up to inLevel, whatever the others are set to.
/// The name is compared byte by byte. Without memory for a new name nothing changes.
TVXCORE_API void SetTraceLevel(const char* inCategory, long inLevel);

/// The same for every category that has no level of its own. Categories that write a great deal stay out of this:
/// their sites ask to be switched on by name.
TVXCORE_API void SetTraceLevelOfAll(long inLevel);

/// Takes one finished text: zero-terminated UTF-8, of one line or several. It may be called on any thread, and on
/// two at once. An exception of a sink is swallowed where the text was emitted.
using TraceSink = void (*)(const unsigned char* inText);

/// Installs where texts go and gives back the earlier sink. Null stands for standard error, which gets an end of line
/// where the text has none, and never holds the process back: a reader that takes nothing loses text.
/// A text already under way may still reach the earlier sink.
TVXCORE_API TraceSink InstallTraceSink(TraceSink inSink);

/// Ends tracing: forgets all levels and the sink. It is quiet after this, also for texts that a site has decided to
/// write before, until a level or a sink is set again.
TVXCORE_API void ShutdownTraceManager();

/// Whether a category is on at a level. With inFollowsAll a category without a level of its own follows
/// SetTraceLevelOfAll; without, only its own name switches it on.
TVXCORE_API bool TraceEnabled(const unsigned char* inCategory, long inLevel, bool inFollowsAll);

/// A number that moves with every change of the levels. Never 0.
TVXCORE_API int TraceChangeCount();

/// Emits one finished text, as it is.
TVXCORE_API void Trace(const unsigned char* inText);

/// Composes a text and emits it when it goes out of life, if anything was written. A text that outgrows memory is
/// emitted as far as it got: without the part that found none, and without those behind it.
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

    // Most lines fit here; mText points to a larger block for those that do not.
    char mInline[256];
    char* mText;
    std::size_t mCapacity; // bytes at mText, the terminator's included
    std::size_t mCount;
    bool mIsCut; // a part found no memory, and none follows it
};

/// One place that traces: its category, its level, and what it was told when the levels last changed.
/// Make it static; inCategory must live as long.
class TraceSite
{
public:
    constexpr TraceSite(const char* inCategory, long inLevel, bool inFollowsAll) noexcept
        : mCategory(inCategory), mLevel(inLevel), mFollowsAll(inFollowsAll)
    {
    }

    /// A change of the levels shows on the next pass, and no sooner.
    bool IsEnabled() noexcept
    {
        const auto count = static_cast<unsigned int>(TraceChangeCount());
        const unsigned __int64 cached = mCached.load(std::memory_order_relaxed);
        return static_cast<unsigned int>(cached >> 32) == count ? (cached & 1) != 0 : Ask(count);
    }

    const char* Category() const noexcept { return mCategory; }
    long Level() const noexcept { return mLevel; }

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
    // The change count of the last question above, its answer below: one word, so that no thread sees an answer
    // beside the wrong count. A count is never 0, so the first pass asks.
    std::atomic<unsigned __int64> mCached{0};
};

/// A stream that begins with "<" thread identifier "> <" category "> <" level "> ".
class TVXCORE_API TraceLine : public SafeTraceStream
{
public:
    explicit TraceLine(const TraceSite& inSite);
};

} // namespace debug
} // namespace tvxcore
