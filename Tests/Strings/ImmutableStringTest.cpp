#include <ORLImmutableString.h>

#include <CheckRecorder.h>
#include <ExpectReport.h>
#include <ORLString.h>
#include <Strings/ImmutableStringRecord.h>
#include <Strings/ImmutableStringTable.h>

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <thread>
#include <vector>

using namespace ORL;

namespace {

using Lifetime = ImmutableStringTable::Lifetime;
using Record = ImmutableString::InternalRepresentation;

Record* RecordOf(const char* inText)
{
    Record* const record =
        ImmutableStringTable::Get().Enter(reinterpret_cast<const unsigned char*>(inText), Lifetime::kDynamic);
    record->RemoveRef();
    return record;
}

const unsigned char* Bytes(const char* inText)
{
    return reinterpret_cast<const unsigned char*>(inText);
}

std::string TextOf(const ImmutableString& inString)
{
    return reinterpret_cast<const char*>(inString.c_str());
}

} // namespace

TEST(ImmutableString, SameTextTwice_IsOneRecordWithTwoHandles)
{
    const ImmutableString first = ImmutableString::CreateDynamic("abc");
    const ImmutableString second = ImmutableString::CreateDynamic(std::string("abc"));
    EXPECT_EQ(first.c_str(), second.c_str());
    EXPECT_EQ(2, RecordOf("abc")->CountOfHandles());
}

TEST(ImmutableString, StaticThenDynamic_PointsIntoTheCallersStorage)
{
    static const char text[] = "static then dynamic";
    const ImmutableString first = ImmutableString::CreateStatic(text);
    const ImmutableString second = ImmutableString::CreateDynamic(std::string(text));
    EXPECT_EQ(Bytes(text), first.c_str());
    EXPECT_EQ(Bytes(text), second.c_str());
}

TEST(ImmutableString, DynamicThenStatic_KeepsTheCopy)
{
    static const char text[] = "dynamic then static";
    const ImmutableString first = ImmutableString::CreateDynamic(std::string(text));
    const ImmutableString second = ImmutableString::CreateStatic(text);
    EXPECT_NE(Bytes(text), second.c_str());
    EXPECT_EQ(first.c_str(), second.c_str());
}

TEST(ImmutableString, LastHandleGone_TheRecordIsFoundAgainUntilAPurge)
{
    const Record* record = nullptr;
    {
        const ImmutableString handle = ImmutableString::CreateDynamic("comes back");
        record = RecordOf("comes back");
    }
    EXPECT_EQ(record, RecordOf("comes back"));
    const std::size_t before = ImmutableStringTable::Get().GetCount();
    EXPECT_TRUE(ImmutableString::PurgeUnusedStrings());
    EXPECT_LT(ImmutableStringTable::Get().GetCount(), before);
}

TEST(ImmutableString, NothingUnused_PurgeAnswersFalse)
{
    const ImmutableString handle = ImmutableString::CreateDynamic("held");
    ImmutableString::PurgeUnusedStrings();
    EXPECT_FALSE(ImmutableString::PurgeUnusedStrings());
    EXPECT_EQ("held", TextOf(handle));
}

TEST(ImmutableString, UnusedStaticRecord_StaysInPlace)
{
    static const char text[] = "unused static";
    ImmutableString::CreateStatic(text);
    ImmutableString::PurgeUnusedStrings();
    EXPECT_EQ(Bytes(text), ImmutableString::CreateDynamic(std::string(text)).c_str());
}

TEST(ImmutableString, BytesAbove127_AreOrderedAsUnsigned)
{
    const ImmutableString low = ImmutableString::CreateDynamic("a\x7F");
    const ImmutableString high = ImmutableString::CreateDynamic("a\x80");
    EXPECT_EQ(-1, low.Compare(high));
    EXPECT_EQ(1, high.Compare(low));
    EXPECT_EQ(1, high.Compare("a\x7F"));
}

TEST(ImmutableString, NullHandle_IsAnEmptyTextThatEqualsOnlyNull)
{
    const ImmutableString none;
    EXPECT_EQ(0u, none.size());
    EXPECT_STREQ("", reinterpret_cast<const char*>(none.c_str()));
    EXPECT_TRUE(none.ToString().empty());
    EXPECT_EQ(0, none.Compare(static_cast<const char*>(nullptr)));
    EXPECT_EQ(0, none.Compare(static_cast<const unsigned char*>(nullptr)));
    EXPECT_EQ(0, none.Compare(ImmutableString()));
    EXPECT_EQ(-1, none.Compare(""));
    EXPECT_EQ(-1, none.Compare(std::string()));
    EXPECT_EQ(-1, none.Compare(UTF8String()));
    EXPECT_EQ(-1, none.Compare(UTF16String()));
    EXPECT_EQ(-1, none.Compare(TVX_UTF16("")));
    EXPECT_EQ(-1, none.Compare(static_cast<const unsigned short*>(nullptr))) << "a null 16-bit text is the empty one";
    EXPECT_EQ(-1, none.Compare(ImmutableString::CreateDynamic("")));
}

TEST(ImmutableString, EmptyText_EqualsTheEmptyTextAndIsAboveNull)
{
    const ImmutableString empty = ImmutableString::CreateDynamic("");
    EXPECT_EQ(0, empty.Compare(""));
    EXPECT_EQ(0, empty.Compare(std::string()));
    EXPECT_EQ(0, empty.Compare(UTF16String()));
    EXPECT_EQ(1, empty.Compare(static_cast<const char*>(nullptr)));
    EXPECT_EQ(1, empty.Compare(ImmutableString()));
}

TEST(ImmutableString, NullText_IsTheRecordOfTheEmptyText)
{
    const ImmutableString fromNull = ImmutableString::CreateStatic(static_cast<const char*>(nullptr));
    const ImmutableString empty = ImmutableString::CreateDynamic("");
    EXPECT_EQ(empty.c_str(), fromNull.c_str());
    EXPECT_EQ(0u, fromNull.size());
    const unsigned short* const noUnits = nullptr;
    EXPECT_EQ(empty.c_str(), ImmutableString::CreateDynamic(noUnits).c_str());
    EXPECT_EQ(0, empty.Compare(noUnits));
    EXPECT_EQ(1, ImmutableString::CreateDynamic("a").Compare(noUnits));
}

TEST(ImmutableStringTable, StaticNullText_MakesARecordThatOwnsItsText)
{
    const CriticalSection guard;
    ImmutableStringTable table(guard);
    Record* const record = table.Enter(nullptr, Lifetime::kStatic);
    EXPECT_FALSE(record->IsStatic());
    EXPECT_STREQ("", reinterpret_cast<const char*>(record->Text()));
    record->RemoveRef();
    EXPECT_TRUE(table.Purge()) << "so it goes when nobody holds it";
    EXPECT_EQ(0u, table.GetCount());
}

TEST(ImmutableString, EachOverloadOfCompare_AgreesOnOneText)
{
    const ImmutableString text = ImmutableString::CreateDynamic("m\xC3\xA4");
    struct Row
    {
        int mLine;
        const char* mOther;
        int mOrder;
    };
    const Row rows[] = {
        {__LINE__, "m\xC3\xA4", 0}, {__LINE__, "m", 1},           {__LINE__, "m\xC3\xA5", -1},
        {__LINE__, "", 1},          {__LINE__, "m\xC3\xA4x", -1},
    };
    for (const Row& row : rows) {
        const UTF16String wide = MakeString(row.mOther);
        EXPECT_EQ(row.mOrder, text.Compare(row.mOther)) << "row at line " << row.mLine;
        EXPECT_EQ(row.mOrder, text.Compare(Bytes(row.mOther))) << "row at line " << row.mLine;
        EXPECT_EQ(row.mOrder, text.Compare(std::string(row.mOther))) << "row at line " << row.mLine;
        EXPECT_EQ(row.mOrder, text.Compare(UTF8String(Bytes(row.mOther)))) << "row at line " << row.mLine;
        EXPECT_EQ(row.mOrder, text.Compare(wide)) << "row at line " << row.mLine;
        EXPECT_EQ(row.mOrder, text.Compare(wide.c_str())) << "row at line " << row.mLine;
        EXPECT_EQ(row.mOrder, text.Compare(ImmutableString::CreateDynamic(row.mOther))) << "row at line " << row.mLine;
    }
}

TEST(ImmutableString, EachFormOfCreateDynamic_FindsOneRecord)
{
    const ImmutableString text = ImmutableString::CreateDynamic("\xE4\xBD\xA0");
    const UTF16String wide = MakeString("\xE4\xBD\xA0");
    EXPECT_EQ(text.c_str(), ImmutableString::CreateDynamic(Bytes("\xE4\xBD\xA0")).c_str());
    EXPECT_EQ(text.c_str(), ImmutableString::CreateDynamic(std::string("\xE4\xBD\xA0\0tail", 8)).c_str());
    EXPECT_EQ(text.c_str(), ImmutableString::CreateDynamic(UTF8String(Bytes("\xE4\xBD\xA0"))).c_str());
    EXPECT_EQ(text.c_str(), ImmutableString::CreateDynamic(wide).c_str());
    EXPECT_EQ(text.c_str(), ImmutableString::CreateDynamic(wide.c_str()).c_str());
    EXPECT_EQ(3u, text.size());
    EXPECT_EQ(wide, text.ToString());
}

TEST(ImmutableString, CopiedAndAssigned_CountsItsHandles)
{
    ImmutableString first = ImmutableString::CreateDynamic("counted");
    Record* const record = RecordOf("counted");
    {
        ImmutableString second(first);
        EXPECT_EQ(2, record->CountOfHandles());
        second = ImmutableString::CreateDynamic("another");
        EXPECT_EQ(1, record->CountOfHandles());
        second = first;
        EXPECT_EQ(2, record->CountOfHandles());
    }
    ImmutableString& alias = first;
    first = alias;
    EXPECT_EQ(1, record->CountOfHandles());
    EXPECT_EQ("counted", TextOf(first));
    first = ImmutableString();
    EXPECT_EQ(0, record->CountOfHandles());
}

TEST(ImmutableString, StaticText_IsMeasuredAtEachCall)
{
    static const char text[] = "measured";
    EXPECT_EQ(8u, ImmutableString::CreateStatic(text).size());
}

TEST(ImmutableStringRecord, ReleasedBelowZero_IsReportedByItsPublishedSite)
{
    ORLTest::CheckRecorder recorder;
    Record record(Bytes("lone"));
    record.RemoveRef();
    const std::vector<ORLTest::CheckReport> reports = recorder.Reports();
    ASSERT_EQ(1u, reports.size());
    ORLTest::ExpectReport(reports[0])
        .Expression("AtomicRead(mReferenceCount) > 0")
        .File("ImmutableString")
        .Line(70)
        .Function("ORL::ImmutableString::InternalRepresentation::RemoveRef");
    EXPECT_EQ(-1, record.CountOfHandles()) << "the count is changed all the same";
}

TEST(ImmutableStringTable, ManyTexts_AreEachFoundAgainAndPurgedTogether)
{
    std::vector<ImmutableString> handles;
    std::vector<std::string> texts;
    std::mt19937 random(7);
    for (int i = 0; i < 20000; ++i) {
        std::string text = "text " + std::to_string(i) + std::string(random() % 40, 'x');
        handles.push_back(ImmutableString::CreateDynamic(text));
        texts.push_back(std::move(text));
    }
    for (std::size_t i = 0; i < texts.size(); ++i) {
        ASSERT_EQ(handles[i].c_str(), ImmutableString::CreateDynamic(texts[i]).c_str()) << texts[i];
    }
    // Removes every second string; the rebuilt index must still find the others.
    for (std::size_t i = 0; i < handles.size(); i += 2) {
        handles[i] = ImmutableString();
    }
    EXPECT_TRUE(ImmutableString::PurgeUnusedStrings());
    for (std::size_t i = 1; i < texts.size(); i += 2) {
        ASSERT_EQ(handles[i].c_str(), ImmutableString::CreateDynamic(texts[i]).c_str()) << texts[i];
    }
    handles.clear();
    EXPECT_TRUE(ImmutableString::PurgeUnusedStrings());
}

TEST(ImmutableStringTable, WhatNobodyHoldsIsFreed_TheRestIsFoundAndTheTableWorksOn)
{
    const CriticalSection guard;
    ImmutableStringTable table(guard);
    Record* const held = table.Enter(Bytes("held"), Lifetime::kDynamic);
    table.Enter(Bytes("static"), Lifetime::kStatic)->RemoveRef();
    table.Enter(Bytes("dynamic"), Lifetime::kDynamic)->RemoveRef();
    table.FreeUnreferenced();
    EXPECT_EQ(1u, table.GetCount());
    EXPECT_EQ(held, table.Enter(Bytes("held"), Lifetime::kDynamic));
    EXPECT_STREQ("held", reinterpret_cast<const char*>(held->Text()));
    held->RemoveRef();
    held->RemoveRef();
    table.FreeUnreferenced();
    EXPECT_EQ(0u, table.GetCount());
    EXPECT_STREQ("anew", reinterpret_cast<const char*>(table.Enter(Bytes("anew"), Lifetime::kDynamic)->Text()));
}

TEST(ImmutableStringTable, SomebodyAtWorkInTheTable_NothingIsFreedAndNobodyWaits)
{
    const CriticalSection guard;
    ImmutableStringTable table(guard);
    table.Enter(Bytes("unused"), Lifetime::kDynamic)->RemoveRef();
    {
        const CriticalSectionLock lock(guard);
        std::thread([&table] { table.FreeUnreferenced(); }).join();
    }
    EXPECT_EQ(1u, table.GetCount());
    table.FreeUnreferenced();
    EXPECT_EQ(0u, table.GetCount());
}

// Covers both sides of every block boundary of the hash. Strings of one size that differ in one byte must be distinct.
TEST(ImmutableStringTable, EachSizeUpTo200_IsFoundAgainAndOneOtherByteIsNot)
{
    for (std::size_t size = 0; size <= 200; ++size) {
        const std::string text(size, 'q');
        const ImmutableString handle = ImmutableString::CreateDynamic(text);
        EXPECT_EQ(size, handle.size());
        EXPECT_EQ(handle.c_str(), ImmutableString::CreateDynamic(text).c_str()) << size;
        for (std::size_t at = 0; at < size; ++at) {
            std::string other = text;
            other[at] = 'r';
            ASSERT_EQ(other, TextOf(ImmutableString::CreateDynamic(other))) << size << ", " << at;
        }
    }
    ImmutableString::PurgeUnusedStrings();
}

// The index is enlarged and rebuilt while other threads search it.
TEST(ImmutableStringTable, EightThreadsAddThousandsBesidePurges_EachTextIsOneRecord)
{
    constexpr int kTexts = 3000;
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    std::vector<std::vector<ImmutableString>> held(8, std::vector<ImmutableString>(kTexts));
    for (unsigned seed = 0; seed < 8; ++seed) {
        threads.emplace_back([seed, &wrong, &mine = held[seed]] {
            for (int i = 0; i < kTexts; ++i) {
                const std::string text = "grown " + std::to_string(i);
                mine[static_cast<std::size_t>(i)] = ImmutableString::CreateDynamic(text);
                wrong += TextOf(ImmutableString::CreateDynamic("dropped " + std::to_string(i % 7)))
                             .compare(0, 8, "dropped ");
                if (i % 500 == static_cast<int>(seed)) {
                    ImmutableString::PurgeUnusedStrings();
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t i = 0; i < kTexts; ++i) {
        ASSERT_EQ("grown " + std::to_string(i), TextOf(held[0][i]));
        for (const std::vector<ImmutableString>& other : held) {
            ASSERT_EQ(held[0][i].c_str(), other[i].c_str());
        }
    }
    EXPECT_EQ(0, wrong.load());
    EXPECT_EQ(8, RecordOf("grown 0")->CountOfHandles());
    held.clear();
    ImmutableString::PurgeUnusedStrings();
}

TEST(ImmutableString, EightThreadsCreateCopyReleaseAndPurge_EachSeesItsOwnText)
{
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < 8; ++seed) {
        threads.emplace_back([seed, &wrong] {
            std::mt19937 random(seed);
            std::vector<ImmutableString> held(16);
            for (int i = 0; i < 2000; ++i) {
                const std::string text = "shared " + std::to_string(random() % 50);
                ImmutableString handle = ImmutableString::CreateDynamic(text);
                wrong += TextOf(handle) != text;
                held[random() % held.size()] = handle;
                if (i % 100 == 0) {
                    ImmutableString::PurgeUnusedStrings();
                }
                const ImmutableString& kept = held[random() % held.size()];
                wrong += kept.size() != 0 && TextOf(kept).compare(0, 7, "shared ") != 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, wrong.load());
}

// If the count of handles dropped to 0 for a moment, a purge on another thread would remove the record.
TEST(ImmutableString, AssignedToItselfBesidePurges_StaysInTheTable)
{
    ImmutableString held = ImmutableString::CreateDynamic("assigned to itself");
    const ImmutableString& same = held;
    ImmutableString::PurgeUnusedStrings();
    std::atomic<bool> isDone{false};
    std::thread assigner([&] {
        while (!isDone) {
            held = same;
        }
    });
    int removals = 0;
    for (int purge = 0; purge < 20000; ++purge) {
        removals += ImmutableString::PurgeUnusedStrings() ? 1 : 0;
    }
    isDone = true;
    assigner.join();
    EXPECT_EQ(0, removals);
    EXPECT_EQ("assigned to itself", TextOf(held));
    EXPECT_EQ(1, RecordOf("assigned to itself")->CountOfHandles());
}
