#include <AllocationFaults.h>
#include <tvxcore/Executor.h>
#include <tvxcore/SmallBlockAllocator.h>
#include <tvxcore/Trace.h>

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace tvxcore::debug;

namespace {

std::mutex sTextsMutex;
std::vector<std::string> sTexts;

void Record(const unsigned char* inText)
{
    const std::lock_guard<std::mutex> lock(sTextsMutex);
    sTexts.emplace_back(reinterpret_cast<const char*>(inText));
}

void Drop(const unsigned char*)
{
}

std::vector<std::string> TakeTexts()
{
    const std::lock_guard<std::mutex> lock(sTextsMutex);
    return std::exchange(sTexts, {});
}

bool IsOn(const char* inCategory, long inLevel, bool inFollowsAll)
{
    return TraceEnabled(reinterpret_cast<const unsigned char*>(inCategory), inLevel, inFollowsAll);
}

void Emit(const char* inText)
{
    Trace(reinterpret_cast<const unsigned char*>(inText));
}

tvxcore::utility::AllocationFaults::Plan RefuseFrom(std::uint64_t inFirst)
{
    tvxcore::utility::AllocationFaults::Plan plan;
    plan.mFirst = inFirst;
    plan.mFailureCount = tvxcore::utility::AllocationFaults::kAllFurther;
    plan.mOfThisThreadOnly = true;
    return plan;
}

// Each test starts with tracing off and a recording sink, and shuts the trace down.
class TraceTest : public testing::Test
{
protected:
    TraceTest()
    {
        ShutdownTraceManager();
        InstallTraceSink(&Record);
        TakeTexts();
    }
    ~TraceTest() override { ShutdownTraceManager(); }
};

} // namespace

TEST_F(TraceTest, AtFirst_EverythingIsOff)
{
    EXPECT_FALSE(IsOn("ORL.Allocator", 0, false));
    EXPECT_FALSE(IsOn("ORL.Allocator", 0, true));
    EXPECT_FALSE(IsOn("ORL.Allocator", -1, true)) << "a level below 0 is no way around the switch";
    EXPECT_FALSE(IsOn("", LONG_MIN, true));
}

TEST_F(TraceTest, CategorySwitchedOn_IsOnUpToItsLevelOnly)
{
    SetTraceLevel("A", 1);
    EXPECT_TRUE(IsOn("A", 0, false));
    EXPECT_TRUE(IsOn("A", 1, false));
    EXPECT_FALSE(IsOn("A", 2, false));
    EXPECT_FALSE(IsOn("a", 0, true)) << "names are told apart byte by byte";
    EXPECT_FALSE(IsOn("AB", 0, true));
    SetTraceLevel("A", kTraceOff);
    EXPECT_FALSE(IsOn("A", 0, true));
}

TEST_F(TraceTest, LevelOfAll_ReachesOnlySitesThatFollowIt)
{
    SetTraceLevelOfAll(1);
    EXPECT_TRUE(IsOn("A", 1, true));
    EXPECT_FALSE(IsOn("A", 2, true));
    EXPECT_FALSE(IsOn("A", 0, false)) << "a talkative category wants its own name";
    SetTraceLevel("A", kTraceOff);
    EXPECT_FALSE(IsOn("A", 0, true)) << "a level of its own goes before the level of all";
    EXPECT_TRUE(IsOn("B", 0, true));
}

TEST_F(TraceTest, EveryChangeOfLevels_MovesTheChangeCount)
{
    const int first = TraceChangeCount();
    SetTraceLevel("A", 0);
    const int second = TraceChangeCount();
    SetTraceLevelOfAll(0);
    const int third = TraceChangeCount();
    ShutdownTraceManager();
    const int fourth = TraceChangeCount();
    EXPECT_NE(first, second);
    EXPECT_NE(second, third);
    EXPECT_NE(third, fourth);
    EXPECT_NE(0, fourth);
    EXPECT_FALSE(IsOn("A", 0, true));
}

TEST_F(TraceTest, ChangeOfConfiguration_TakesEffectOnTheNextPassAndNoSooner)
{
    static TraceSite site("Site", 1, true);
    EXPECT_FALSE(site.IsEnabled());
    EXPECT_FALSE(site.IsEnabled()) << "from the cache";
    SetTraceLevel("Site", 1);
    EXPECT_TRUE(site.IsEnabled()) << "the next pass";
    EXPECT_TRUE(site.IsEnabled()) << "from the cache";
    const bool decided = site.IsEnabled();
    SetTraceLevel("Site", 0);
    if (decided) {
        TraceLine(site) << "decided before\n";
    }
    EXPECT_EQ(1u, TakeTexts().size()) << "a pass under way keeps its answer";
    EXPECT_FALSE(site.IsEnabled());
    EXPECT_FALSE(site.IsEnabled()) << "from the cache";
}

TEST_F(TraceTest, Line_BeginsWithThreadCategoryAndLevel)
{
    static TraceSite site("ORL.Allocator", 1, false);
    {
        TraceLine line(site);
        line << "Current(" << 12u << ") " << -3l << " " << ULONG_MAX << " " << ~0ull
             << static_cast<const char*>(nullptr);
        EXPECT_TRUE(TakeTexts().empty()) << "only the end of the stream emits";
    }
    const std::string expected = "<" + std::to_string(tvxcore::threads::GetCurrentThreadID())
                                 + "> <ORL.Allocator> <1> Current(12) -3 " + std::to_string(ULONG_MAX)
                                 + " 18446744073709551615";
    EXPECT_EQ(std::vector<std::string>{expected}, TakeTexts());
}

TEST_F(TraceTest, StreamThatNothingWasWrittenTo_EmitsNothing)
{
    {
        SafeTraceStream stream;
        stream << "" << static_cast<const char*>(nullptr);
    }
    EXPECT_TRUE(TakeTexts().empty());
}

TEST_F(TraceTest, LongText_ComesThroughWhole)
{
    for (const std::size_t count : {254u, 255u, 256u, 257u, 1000u, 100'000u}) {
        std::string expected;
        {
            SafeTraceStream stream;
            while (expected.size() < count) {
                expected += 'x';
                stream << "x";
            }
        }
        EXPECT_EQ(std::vector<std::string>{expected}, TakeTexts()) << count;
    }
    const std::string atOnce(5000, 'y');
    SafeTraceStream() << atOnce.c_str();
    EXPECT_EQ(std::vector<std::string>{atOnce}, TakeTexts());
}

TEST_F(TraceTest, AfterShutdown_EvenADecidedSiteIsQuietUntilConfiguredAgain)
{
    static TraceSite site("Site", 0, true);
    SetTraceLevel("Site", 0);
    ASSERT_TRUE(site.IsEnabled());
    ShutdownTraceManager();
    testing::internal::CaptureStderr();
    TraceLine(site) << "late\n";
    Emit("late");
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
    EXPECT_TRUE(TakeTexts().empty());
    EXPECT_FALSE(site.IsEnabled());

    SetTraceLevel("Site", 0);
    InstallTraceSink(&Record);
    ASSERT_TRUE(site.IsEnabled());
    Emit("again");
    EXPECT_EQ(std::vector<std::string>{"again"}, TakeTexts());
}

TEST_F(TraceTest, DefaultSink_WritesLinesToStandardError)
{
    EXPECT_EQ(&Record, InstallTraceSink(nullptr));
    testing::internal::CaptureStderr();
    Emit("with an end\n");
    Emit("without");
    Emit("");
    EXPECT_EQ("with an end\nwithout\n\n", testing::internal::GetCapturedStderr());
    EXPECT_EQ(nullptr, InstallTraceSink(&Record));
}

TEST_F(TraceTest, LevelWithoutMemoryForTheName_ChangesNothingAndTheNextTryWorks)
{
    {
        const tvxcore::utility::AllocationFaults::Scope faults(RefuseFrom(1));
        const int count = TraceChangeCount();
        SetTraceLevel("New", 1);
        EXPECT_EQ(1u, faults.Refused());
        EXPECT_FALSE(IsOn("New", 0, false));
        EXPECT_EQ(count, TraceChangeCount());
    }
    SetTraceLevel("New", 1);
    EXPECT_TRUE(IsOn("New", 1, false));
    const tvxcore::utility::AllocationFaults::Scope faults(RefuseFrom(1));
    SetTraceLevel("New", 0);
    EXPECT_FALSE(IsOn("New", 1, false)) << "a known name needs no memory";
}

TEST_F(TraceTest, TextThatOutgrowsMemory_IsEmittedAsFarAsItGot)
{
    const std::string fits(200, 'a');
    const std::string grows(400, 'b');
    const std::string outgrows(4000, 'c');
    for (std::uint64_t refused = 1; refused <= 2; ++refused) {
        const tvxcore::utility::AllocationFaults::Scope faults(RefuseFrom(refused));
        {
            SafeTraceStream stream;
            stream << fits.c_str() << grows.c_str() << outgrows.c_str() << 17l << "end\n";
        }
        EXPECT_EQ(1u, faults.Refused()) << "what follows a text that is cut asks for nothing";
        EXPECT_EQ(std::vector<std::string>{refused == 1 ? fits : fits + grows}, TakeTexts());
    }
}

TEST_F(TraceTest, ThreadsThatConfigureAndTraceAtOnce_LoseNoLine)
{
    constexpr int kThreads = 4;
    constexpr int kRounds = 500;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([i] {
            const std::string own = "Category" + std::to_string(i);
            for (int round = 0; round < kRounds; ++round) {
                SetTraceLevel(own.c_str(), round % 2);
                TraceSite site(own.c_str(), 1, true);
                if (site.IsEnabled()) {
                    TraceLine(site) << static_cast<long>(round) << "\n";
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(static_cast<std::size_t>(kThreads * kRounds / 2), TakeTexts().size());
}

// A message that is being written when the trace ends or restarts reaches the host's sink or is dropped.
TEST_F(TraceTest, EndedAndBegunAgainWhileThreadsTrace_WritesNothingToStandardError)
{
    constexpr int kThreads = 2;
    constexpr int kTexts = 10'000'000;
    testing::internal::CaptureStderr();
    std::atomic<int> running{kThreads};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&running] {
            for (int text = 0; text < kTexts; ++text) {
                Emit("the host's\n");
            }
            --running;
        });
    }
    while (running != 0) {
        ShutdownTraceManager();
        EXPECT_EQ(nullptr, InstallTraceSink(&Drop));
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ("", testing::internal::GetCapturedStderr().substr(0, 100));
}
