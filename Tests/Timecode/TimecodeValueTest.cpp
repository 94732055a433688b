#include <ORLConstants.h>
#include <ORLTimecode.h>

#include <gtest/gtest.h>

#include <functional>
#include <iomanip>
#include <sstream>
#include <string>
#include <unordered_set>

using namespace ORL;
using tvxmediatypes::FrameRate;
using tvxmediatypes::TickTime;
using tvxmediatypes::TimeDisplay;

namespace {

Timecode Code(long long inFrames, const Timecode::Style& inStyle = Timecode::Style())
{
    return Timecode(TickTime(inFrames, kFrameRate_VideoNTSC), kFrameRate_VideoNTSC,
                    tvxmediatypes::kTimeDisplay_2997DropTimecode, inStyle);
}

} // namespace

TEST(TimecodeEquality, CopiesAndEqualArguments_AreEqual)
{
    const Timecode code = Code(1800);
    const Timecode copy(code);
    EXPECT_TRUE(code == copy);
    EXPECT_FALSE(code != copy);
    EXPECT_TRUE(code == Code(1800));
    EXPECT_EQ(std::hash<Timecode>()(code), std::hash<Timecode>()(copy));
    EXPECT_TRUE(Timecode() == Timecode());
}

TEST(TimecodeEquality, EachOtherProperty_MakesThemDifferent)
{
    Timecode::Style sign;
    sign.mShowSign = true;
    Timecode::Style zeros;
    zeros.mNoLeadingZeros = true;
    Timecode::Style hours;
    hours.mHoursMode = 0;
    Timecode::Style previous;
    previous.mPreviousFrame = true;
    const TickTime time(1800, kFrameRate_VideoNTSC);
    const Timecode others[] = {
        Code(1801),
        Code(1800, sign),
        Code(1800, zeros),
        Code(1800, hours),
        Code(1800, previous),
        Timecode(time, kFrameRate_VideoNTSC, tvxmediatypes::kTimeDisplay_2997NonDropTimecode),
        Timecode(time, kFrameRate_Video30, tvxmediatypes::kTimeDisplay_2997DropTimecode),
    };
    for (const Timecode& other : others) {
        EXPECT_FALSE(Code(1800) == other) << other;
        EXPECT_TRUE(Code(1800) != other) << other;
    }
}

TEST(TimecodeEquality, AfterFeetWereAdded_DependsOnTheTimeOnly)
{
    Timecode code(TickTime(0, kFrameRate_Film24), kFrameRate_Film24, tvxmediatypes::kTimeDisplay_35mmFeetFrames);
    code.IncrementFeetFrames(2, 3); // leaves the fields stale
    const Timecode same(TickTime(35, kFrameRate_Film24), kFrameRate_Film24, tvxmediatypes::kTimeDisplay_35mmFeetFrames);
    EXPECT_TRUE(code == same);
    EXPECT_EQ(std::hash<Timecode>()(code), std::hash<Timecode>()(same));
}

TEST(TimecodeStream, Code_IsWrittenAsItsTextWithTheWidth)
{
    std::ostringstream stream;
    stream << Code(1800) << std::setw(13) << Code(0);
    EXPECT_EQ("00;01;00;02  00;00;00;00", stream.str());
}

TEST(TimecodeHash, FramesOfOneMinute_RarelyCollide)
{
    std::unordered_set<std::size_t> hashes;
    std::unordered_set<Timecode> codes;
    for (long long frame = 0; frame < 1800; ++frame) {
        hashes.insert(std::hash<Timecode>()(Code(frame)));
        codes.insert(Code(frame));
        codes.insert(Code(frame));
    }
    EXPECT_LE(1798u, hashes.size());
    EXPECT_EQ(1800u, codes.size());
}
