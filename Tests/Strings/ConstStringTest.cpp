#include <ORLConstString.h>

#include <TextHelpers.h>

#include <tvxcore/SmallBlockAllocator.h>
#include <tvxcore/StringStream.h>

#include <gtest/gtest.h>

#include <cstring>
#include <iomanip>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

using namespace ORL;
using ORLTest::Show;
using ORLTest::Units;

namespace {

// The three words of a handle in memory.
template <class Unit>
struct Words
{
    const void* mShared;
    const Unit* mText;
    std::uint32_t mHash;
};

Words<unsigned short> WordsOf(const ConstString& inString)
{
    Words<unsigned short> words;
    static_assert(sizeof(words) == sizeof(ConstString), "a handle is three words");
    std::memcpy(&words, &inString, sizeof(words));
    return words;
}

Words<char> WordsOf(const StdConstString& inString)
{
    Words<char> words;
    static_assert(sizeof(words) == sizeof(StdConstString), "a handle is three words");
    std::memcpy(&words, &inString, sizeof(words));
    return words;
}

// Reads the count in the shared record.
AtomicValue CountOf(const ConstString& inString)
{
    return static_cast<const Internal::ConstStringShared<UTF16String>*>(WordsOf(inString).mShared)->mReferenceCount;
}

using Snapshot = tvxcore::utility::SmallBlockAllocator::Metrics::Snapshot;

Snapshot Blocks()
{
    Snapshot snapshot{};
    EXPECT_TRUE(tvxcore::utility::SmallBlockAllocator::Metrics::GetSnapshot(snapshot));
    return snapshot;
}

// Returns the number of allocations during inWork, freed or not.
template <class Work>
unsigned long long AllocationsOf(const Work& inWork)
{
    const Snapshot before = Blocks();
    inWork();
    return Blocks().mSmallBlockCountTotal - before.mSmallBlockCountTotal;
}

// Expects that a handle to inText owns inBlocks blocks of inBytes in total, all freed with the last copy.
template <class Handle, class Text>
void ExpectOwned(const Text& inText, unsigned inBlocks, std::size_t inBytes)
{
    const Snapshot before = Blocks();
    {
        Handle last;
        {
            const Handle first(inText);
            const Handle second(first);
            last = second;
        }
        const Snapshot between = Blocks();
        EXPECT_EQ(before.mSmallBlockCountCurrent + inBlocks, between.mSmallBlockCountCurrent);
        EXPECT_EQ(before.mSmallBlockBytesCurrent + inBytes, between.mSmallBlockBytesCurrent);
    }
    const Snapshot after = Blocks();
    EXPECT_EQ(before.mSmallBlockCountCurrent, after.mSmallBlockCountCurrent);
    EXPECT_EQ(before.mSmallBlockBytesCurrent, after.mSmallBlockBytesCurrent);
}

template <class Handle, class Unit>
void ExpectOnlyConstructionAllocates(const Unit* inText)
{
    EXPECT_EQ(0u, AllocationsOf([inText] {
                  Handle none;
                  Handle adopted = Handle::Adoptor::Adopt(inText);
                  const Handle copy(adopted);
                  none = copy;
                  none.swap(adopted);
              }));
    Handle shared(inText);
    EXPECT_EQ(0u, AllocationsOf([&shared] {
                  const Handle copy(shared);
                  Handle assigned;
                  assigned = copy;
                  assigned.swap(shared);
              }));
    EXPECT_EQ(0u, AllocationsOf([&shared] { shared = Handle(); })) << "giving the text up";
    EXPECT_EQ(1u, AllocationsOf([inText] { const Handle made(inText); })) << "the record of a short text";
}

std::uint32_t PlainHash(const UTF16String& inText)
{
    std::uint32_t hash = 0;
    for (const unsigned short unit : inText) {
        hash = hash * 5 + unit;
    }
    return hash;
}

} // namespace

TEST(ConstString, DefaultAndEmptyLiteral_AreEqual_ThoughOnlyTheSecondOwnsARecord)
{
    const ConstString none;
    const ConstString empty("");
    EXPECT_TRUE(none == empty);
    EXPECT_FALSE(none != empty);
    EXPECT_FALSE(none < empty);
    EXPECT_FALSE(none > empty);
    EXPECT_EQ(0u, WordsOf(none).mHash);
    EXPECT_EQ(0u, WordsOf(empty).mHash);
    EXPECT_EQ(nullptr, WordsOf(none).mShared);
    EXPECT_NE(nullptr, WordsOf(empty).mShared);
    EXPECT_TRUE(none.empty() && empty.empty());
    EXPECT_EQ(0u, none.size());
    ASSERT_NE(nullptr, none.c_str());
    EXPECT_EQ(0, *none.c_str());
}

TEST(ConstString, SameTextTwice_IsEqualWithoutSharing)
{
    const ConstString first("name");
    const ConstString second(Units(u"name"));
    EXPECT_TRUE(first == second);
    EXPECT_NE(first.c_str(), second.c_str());
}

TEST(ConstString, EqualHashesOfDifferentTexts_AreOrderedByContent)
{
    const ConstString af("af");
    const ConstString ba("ba");
    EXPECT_EQ(587u, WordsOf(af).mHash);
    EXPECT_EQ(587u, WordsOf(ba).mHash);
    EXPECT_FALSE(af == ba);
    EXPECT_TRUE(af != ba);
    EXPECT_TRUE(af < ba);
    EXPECT_FALSE(ba < af);
    EXPECT_TRUE(ba > af);
    EXPECT_FALSE(af > ba);
}

TEST(ConstString, Order_IsByHashFirst)
{
    EXPECT_TRUE(ConstString("b") < ConstString("aa"));
    std::set<ConstString> names;
    for (const char* name : {"aa", "ba", "b", "af", ""}) {
        names.insert(ConstString(name));
    }
    std::string listed;
    for (const ConstString& name : names) {
        listed += MakeStdString(name) + ",";
    }
    EXPECT_EQ(",b,aa,af,ba,", listed);
}

TEST(ConstString, EmbeddedZeroUnit_EndsTheText)
{
    const ConstString cut(UTF16String({'a', 'b', 0, 'c'}));
    EXPECT_EQ(2u, cut.size());
    EXPECT_EQ(WordsOf(ConstString("ab")).mHash, WordsOf(cut).mHash);
    EXPECT_TRUE(cut == ConstString("ab"));
}

TEST(ConstString, AdoptedHandleAndItsCopies_StayRecordFree)
{
    const unsigned short* const text = TVX_UTF16("literal");
    const ConstString adopted = ConstString::Adoptor::Adopt(text);
    const ConstString copy(adopted);
    ConstString assigned("other");
    assigned = copy;
    for (const ConstString* handle : {&adopted, &copy, static_cast<const ConstString*>(&assigned)}) {
        EXPECT_EQ(nullptr, WordsOf(*handle).mShared);
        EXPECT_EQ(text, handle->c_str());
        EXPECT_EQ(PlainHash(Units(u"literal")), WordsOf(*handle).mHash);
    }
    EXPECT_TRUE(adopted == ConstString("literal"));
}

TEST(ConstString, CopyingTheAdoptedTextAway_LeavesTheHandleOnTheOldMemory)
{
    unsigned short text[] = {'a', 'b', 0};
    const ConstString adopted = ConstString::Adoptor::Adopt(text);
    const ConstString copy(adopted);
    text[0] = 'z';
    EXPECT_EQ("zb", MakeStdString(copy));
    EXPECT_FALSE(copy == ConstString("zb")) << "the hash was taken once";
}

TEST(ConstString, AssignmentToItself_ChangesNothing)
{
    ConstString handle("alone");
    const unsigned short* const text = handle.c_str();
    EXPECT_EQ(1, CountOf(handle));
    ConstString& same = handle;
    const Snapshot before = Blocks();
    handle = same;
    EXPECT_EQ(before.mSmallBlockCountCurrent, Blocks().mSmallBlockCountCurrent) << "the record has not been given back";
    EXPECT_EQ(1, CountOf(handle));
    EXPECT_EQ(text, handle.c_str());
    EXPECT_EQ("alone", MakeStdString(handle));
}

TEST(ConstString, HashWithTheHighestBit_IsAboveThoseWithoutIt)
{
    const ConstString high("zzzzzzzzzzzz");
    const ConstString low("a");
    ASSERT_EQ(0xBBD55A88u, WordsOf(high).mHash);
    EXPECT_TRUE(low < high);
    EXPECT_FALSE(high < low);
    EXPECT_TRUE(high > low);
    const StdConstString highBytes("zzzzzzzzzzzz");
    const StdConstString lowBytes("a");
    ASSERT_EQ(0xBBD55A88u, WordsOf(highBytes).mHash);
    EXPECT_TRUE(lowBytes < highBytes);
    EXPECT_FALSE(highBytes < lowBytes);
}

TEST(ConstString, CopiesAssignmentsAndDestruction_KeepTheCount)
{
    ConstString first("shared");
    {
        const ConstString second(first);
        ConstString third("old");
        third = second;
        EXPECT_EQ(3, CountOf(first));
        EXPECT_EQ(first.c_str(), third.c_str());
        third = ConstString();
        EXPECT_EQ(2, CountOf(first));
    }
    EXPECT_EQ(1, CountOf(first));
}

TEST(ConstString, Swap_ExchangesAllFieldsAndCountsNothing)
{
    ConstString left("left");
    ConstString right = ConstString::Adoptor::Adopt(TVX_UTF16("right"));
    const auto leftWords = WordsOf(left);
    const auto rightWords = WordsOf(right);
    left.swap(right);
    EXPECT_EQ(rightWords.mText, WordsOf(left).mText);
    EXPECT_EQ(nullptr, WordsOf(left).mShared);
    EXPECT_EQ(rightWords.mHash, WordsOf(left).mHash);
    EXPECT_EQ(leftWords.mText, WordsOf(right).mText);
    EXPECT_EQ(leftWords.mShared, WordsOf(right).mShared);
    EXPECT_EQ(leftWords.mHash, WordsOf(right).mHash);
    EXPECT_EQ(1, CountOf(right));
}

TEST(ConstString, TextRecordAndHandle_AgreeOnTheFirstCharacter)
{
    const ConstString handle("text");
    const auto* const shared = static_cast<const Internal::ConstStringShared<UTF16String>*>(WordsOf(handle).mShared);
    EXPECT_EQ(shared->mText, handle.c_str());
    EXPECT_EQ(shared->mString.c_str(), handle.c_str());
    EXPECT_EQ(handle.c_str(), handle.data());
    EXPECT_EQ(handle.c_str(), static_cast<const unsigned short*>(handle));
}

TEST(ConstString, NarrowText_IsDecodedAsUTF8)
{
    EXPECT_EQ(UTF16String({'e', 0xE9, 0xD83D, 0xDE00}), UTF16String(ConstString("e\xC3\xA9\xF0\x9F\x98\x80").c_str()));
    EXPECT_EQ("e\xC3\xA9\xF0\x9F\x98\x80", MakeStdString(ConstString("e\xC3\xA9\xF0\x9F\x98\x80")));
    EXPECT_EQ("\xEF\xBF\xBD", MakeStdString(ConstString(UTF16String({0xD800}))));
}

TEST(ConstString, Hash_IsTheSameRuleAtEveryLengthAndPlace)
{
    UTF16String text;
    for (unsigned length = 0; length < 200; ++length) {
        EXPECT_EQ(PlainHash(text), WordsOf(ConstString(text)).mHash) << length;
        for (std::size_t start = 0; start < 9 && start < text.size(); ++start) {
            EXPECT_EQ(PlainHash(text.substr(start)), WordsOf(ConstString::Adoptor::Adopt(text.c_str() + start)).mHash);
        }
        text.push_back(static_cast<unsigned short>(length * 2654435761u >> 13 | 1));
    }
}

TEST(ConstString, Size_IsCountedOnEveryCall)
{
    unsigned short text[] = {'a', 'b', 'c', 0};
    const ConstString adopted = ConstString::Adoptor::Adopt(text);
    EXPECT_EQ(3u, adopted.size());
    text[1] = 0;
    EXPECT_EQ(1u, adopted.size());
    text[0] = 0;
    EXPECT_TRUE(adopted.empty());
}

TEST(ConstString, HandlesOnSeveralThreads_ShareOneRecord)
{
    const ConstString shared("shared between threads");
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&shared] {
            for (int i = 0; i < 20000; ++i) {
                ConstString copy(shared);
                ConstString other;
                other = copy;
                ASSERT_TRUE(other == shared);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(1, CountOf(shared));
}

TEST(ConstString, OnlyConstructionFromText_Allocates)
{
    ExpectOnlyConstructionAllocates<ConstString>(TVX_UTF16("short"));
}

TEST(ConstString, LastRelease_GivesTheRecordBackWithItsSize)
{
    const std::size_t record = sizeof(Internal::ConstStringShared<UTF16String>);
    ExpectOwned<ConstString>(TVX_UTF16("short"), 1, record);
    // A long string has its own block, including the terminating zero.
    const UTF16String text(100, 'x');
    ExpectOwned<ConstString>(text.c_str(), 2, record + 101 * sizeof(unsigned short));
}

TEST(ConstString, OnAStream_HonoursWidthFillAndAdjustment)
{
    tvxcore::oUTF16StringStream stream;
    stream << std::setfill(static_cast<unsigned short>('.')) << std::setw(6) << ConstString("ab") << std::left
           << std::setw(6) << ConstString("ab") << std::internal << std::setw(6) << ConstString("ab")
           << ConstString("cd");
    EXPECT_EQ("....abab........abcd", Show(stream.str()));
    EXPECT_EQ(0, stream.width());
}

TEST(ConstString, OnAStreamWhoseBufferFails_SetsTheBadBit)
{
    std::basic_ostream<unsigned short> stream(nullptr);
    stream.clear();
    class Full : public std::basic_streambuf<unsigned short>
    {
    } full;
    stream.rdbuf(&full);
    stream << ConstString("a");
    EXPECT_TRUE(stream.bad());
}

TEST(StdConstString, Bytes_AreCopiedWithoutDecoding)
{
    const StdConstString text("e\xC3\xA9");
    EXPECT_STREQ("e\xC3\xA9", text.c_str());
    EXPECT_EQ(3u, text.size());
    EXPECT_EQ((('e' * 5u) + 0xC3u) * 5u + 0xA9u, WordsOf(text).mHash) << "bytes count as unsigned";
    EXPECT_FALSE((std::is_convertible_v<StdConstString, const char*>));
}

TEST(StdConstString, EmbeddedZeroByte_EndsTheText)
{
    EXPECT_EQ(2u, StdConstString(std::string("ab\0c", 4)).size());
    EXPECT_TRUE(StdConstString(std::string("ab\0c", 4)) == StdConstString("ab"));
}

TEST(StdConstString, BehavesAsTheSixteenBitHandle)
{
    StdConstString none;
    const StdConstString empty("");
    EXPECT_TRUE(none == empty && none.empty());
    EXPECT_EQ(nullptr, WordsOf(none).mShared);
    EXPECT_NE(nullptr, WordsOf(empty).mShared);
    EXPECT_TRUE(StdConstString("af") < StdConstString("ba"));
    EXPECT_TRUE(StdConstString("ba") > StdConstString("af"));
    EXPECT_TRUE(StdConstString("b") < StdConstString("aa"));
    EXPECT_TRUE(StdConstString("af") != StdConstString("ba"));
    const char* const literal = "literal";
    StdConstString adopted = StdConstString::Adoptor::Adopt(literal);
    EXPECT_EQ(literal, adopted.data());
    EXPECT_EQ(nullptr, WordsOf(adopted).mShared);
    adopted.swap(none);
    EXPECT_EQ(literal, none.c_str());
    EXPECT_TRUE(adopted.empty());
    none = *&none;
    EXPECT_EQ(literal, none.c_str());
}

TEST(StdConstString, OnlyConstructionFromText_Allocates)
{
    ExpectOnlyConstructionAllocates<StdConstString>("short");
}

TEST(StdConstString, LastRelease_GivesTheRecordBackWithItsSize)
{
    ExpectOwned<StdConstString>("short", 1, sizeof(Internal::ConstStringShared<std::string>));
    ExpectOwned<StdConstString>(std::string(100, 'x'), 1, sizeof(Internal::ConstStringShared<std::string>));
}

TEST(StdConstString, EqualHashesAboveSevenBits_CompareAsUnsigned)
{
    // The two hashes are equal: 0x7F * 5 + 0x85 is 0x80 * 5 + 0x80.
    EXPECT_TRUE(StdConstString("\x7F\x85") < StdConstString("\x80\x80"));
    EXPECT_FALSE(StdConstString("\x80\x80") < StdConstString("\x7F\x85"));
}

TEST(StdConstString, OnAStream_IsWidenedByteByByte)
{
    tvxcore::oUTF16StringStream stream;
    stream << std::setw(5) << StdConstString("e\xC3\xA9") << std::left << std::setw(3) << StdConstString("x")
           << StdConstString("|");
    EXPECT_EQ("  e<00c3><00a9>x  |", Show(stream.str()));
    EXPECT_EQ(0, stream.width());
}
