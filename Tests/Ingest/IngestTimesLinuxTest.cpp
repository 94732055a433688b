// Tests a destination whose file system rounds times: verified files must still be recognised.
#include "IngestRunSupport.h"

#include <LinuxIngestCalls.h>

#include <algorithm>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

using namespace ORLTest;
using orl::IngestItem;

namespace {

namespace fs = std::filesystem;

// Rounds times like the FAT file systems.
int SetTimeInStepsOfTwoSeconds(int inFile, const struct timespec* inTimes)
{
    const struct timespec time = {inTimes[1].tv_sec / 2 * 2, 0};
    const struct timespec times[] = {time, time};
    return ::futimens(inFile, times);
}

class IngestTimes : public IngestRun
{
protected:
    ~IngestTimes() override { orl::sIngestCalls = mSystem; }

    void SetTime(const std::string& inName, long inSeconds, long inNanoseconds) const
    {
        const struct timespec time = {inSeconds, inNanoseconds};
        const struct timespec times[] = {time, time};
        ASSERT_EQ(0, ::utimensat(AT_FDCWD, (Card() / inName).c_str(), times, 0));
    }

    /// Returns the number of files that the last run recognised.
    std::ptrdiff_t Known() const
    {
        return std::count_if(mPlan.mItems.begin(), mPlan.mItems.end(),
                             [](const IngestItem& inItem) { return inItem.mState == IngestItem::kVerifiedBefore; });
    }

    const orl::IngestCalls mSystem = orl::sIngestCalls;
};

} // namespace

TEST_F(IngestTimes, InSteps_AreKnownAgain)
{
    orl::sIngestCalls.mFUTimens = &SetTimeInStepsOfTwoSeconds;
    SetTime("a", 1000000001, 123456789);
    SetTime("b", 1000000002, 0);
    SetTime("c", 1000000003, 999999999);
    ASSERT_TRUE(Run({}).mTroubles.empty());
    EXPECT_EQ(0, Known());
    ASSERT_TRUE(Run({}).mTroubles.empty());
    EXPECT_EQ(3, Known());
    ExpectInPlace("abc");
    SetTime("a", 1000000002, 0);
    SetTime("c", 1000000001, 0);
    ASSERT_TRUE(Run({}).mTroubles.empty());
    EXPECT_EQ(1, Known()) << "other steps are other times";
    ExpectInPlace("abc");
}

// A time in whole seconds does not mean that the file system rounds.
TEST_F(IngestTimes, KeptExactly_AreComparedExactly)
{
    SetTime("a", 1000000000, 0);
    ASSERT_TRUE(Run({}).mTroubles.empty());
    SetTime("a", 1000000000, 100);
    ASSERT_TRUE(Run({}).mTroubles.empty());
    EXPECT_EQ(2, Known());
    ExpectInPlace("abc");
}
