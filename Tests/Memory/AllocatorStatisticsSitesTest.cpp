// Tests that a trace site queries the configuration only after a change, and caches the result. A query on every pass
// would slow the fast path of traced code.
#include <Memory/AllocatorStatistics.h>
#include <tvxcore/Trace.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

// The linker redirects calls to the real function to WrappedTraceEnabled.
bool WrappedTraceEnabled(const unsigned char*, long, bool) __asm__("__wrap__ZN7tvxcore5debug12TraceEnabledEPKhlb");
bool RealTraceEnabled(const unsigned char*, long, bool) __asm__("__real__ZN7tvxcore5debug12TraceEnabledEPKhlb");

namespace {

std::vector<std::string> sQuestions;

} // namespace

bool WrappedTraceEnabled(const unsigned char* inCategory, long inLevel, bool inFollowsAll)
{
    sQuestions.push_back(std::string(reinterpret_cast<const char*>(inCategory)) + ", " + std::to_string(inLevel)
                         + (inFollowsAll ? ", true" : ", false"));
    return RealTraceEnabled(inCategory, inLevel, inFollowsAll);
}

using namespace ORL;

namespace {

void Ignore(const unsigned char*)
{
}

/// Reports two regions and three heaps.
class FewRegions : public RegionSource
{
public:
    bool QueryRegion(std::uint64_t, MemoryRegions::Region& outRegion) override
    {
        outRegion = {4096, 4096};
        return mQueried++ < 2;
    }
    unsigned long HeapCount() override { return 3; }

private:
    int mQueried = 0;
};

std::vector<std::string> QuestionsOfOnePass()
{
    sQuestions.clear();
    FewRegions regions;
    TraceAllocatorStatisticsFrom(regions);
    return std::exchange(sQuestions, {});
}

class AllocatorStatisticsSites : public testing::Test
{
protected:
    AllocatorStatisticsSites()
    {
        tvxcore::debug::ShutdownTraceManager();
        tvxcore::debug::InstallTraceSink(&Ignore);
    }
    ~AllocatorStatisticsSites() override { tvxcore::debug::ShutdownTraceManager(); }

    // Six subjects, the regions and the heaps have one site each.
    const std::vector<std::string> mOneOfEachSite = std::vector<std::string>(8, "ORL.Allocator, 1, false");
    const std::vector<std::string> mNone;
};

} // namespace

TEST_F(AllocatorStatisticsSites, WhileTheyAreOn_AskOnceForEachChange)
{
    for (int change = 0; change < 2; ++change) {
        tvxcore::debug::SetTraceLevel("ORL.Allocator", 1 + change);
        EXPECT_EQ(mOneOfEachSite, QuestionsOfOnePass());
        EXPECT_EQ(mNone, QuestionsOfOnePass());
        EXPECT_EQ(mNone, QuestionsOfOnePass());
    }
}

TEST_F(AllocatorStatisticsSites, WhileTheyAreOff_AskOnceForEachChangeToo)
{
    for (int change = 0; change < 2; ++change) {
        tvxcore::debug::SetTraceLevel("another category", change);
        EXPECT_EQ(mOneOfEachSite, QuestionsOfOnePass());
        EXPECT_EQ(mNone, QuestionsOfOnePass());
    }
}
