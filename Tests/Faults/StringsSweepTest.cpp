// Fails each allocation in interned strings, parameter templates, locales and number formatting.
#include "MemoryFaults.h"

#include <ORLConstString.h>
#include <ORLDiskUtils.h>
#include <ORLImmutableString.h>
#include <ORLLocale.h>
#include <ORLParamString.h>
#include <ORLString.h>
#include <Strings/ImmutableStringTable.h>
#include <Strings/LocaleInternals.h>
#include <Strings/Tokenizer.h>
#include <tvxcore/Number.h>

#include <thread>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

using Lifetime = ImmutableStringTable::Lifetime;

UTF16String Units(const std::u16string& inText)
{
    return UTF16String(inText.begin(), inText.end());
}

const unsigned char* Bytes(const char* inText)
{
    return reinterpret_cast<const unsigned char*>(inText);
}

// Too long for the inline storage of std::string.
const std::string kLong(100, 'l');

class ImmutableStringSweep : public testing::Test
{
protected:
    // Sweeps inWork, which must keep no handle. Purges the strings that inWork interned, to restore the table.
    void Sweep(const std::function<void()>& inWork)
    {
        const std::size_t before = ImmutableStringTable::Get().GetCount();
        const auto workAndPurge = [&inWork] {
            struct AtEnd
            {
                ~AtEnd() { ImmutableString::PurgeUnusedStrings(); }
            } const atEnd;
            inWork();
        };
        SweepMemory(workAndPurge, [before] {
            EXPECT_EQ(before, ImmutableStringTable::Get().GetCount());
            ExpectUsable();
        });
    }

    // Uses the table from another thread, which would hang if the table's lock were still held.
    static void ExpectUsable()
    {
        std::thread([] {
            const ImmutableString first = ImmutableString::CreateDynamic("usable");
            const ImmutableString second = ImmutableString::CreateDynamic("usable");
            EXPECT_EQ(first.c_str(), second.c_str());
        }).join();
        EXPECT_TRUE(ImmutableString::PurgeUnusedStrings());
    }
};

} // namespace

TEST_F(ImmutableStringSweep, CreateDynamic_OfEachForm)
{
    Sweep([] {
        const ImmutableString texts[] = {
            ImmutableString::CreateDynamic("a"),
            ImmutableString::CreateDynamic(Bytes("b")),
            ImmutableString::CreateDynamic(kLong),
            ImmutableString::CreateDynamic(UTF8String(Bytes("another text that is longer than what a string keeps"))),
            ImmutableString::CreateDynamic(Units(u"a text of 16-bit units \u00e9\u4e2d that is long, too")),
            ImmutableString::CreateDynamic(Units(u"units").c_str()),
            ImmutableString::CreateDynamic(static_cast<const char*>(nullptr)),
        };
        ASSERT_STREQ("a", reinterpret_cast<const char*>(texts[0].c_str()));
        ASSERT_EQ(100u, texts[2].size());
    });
}

// Uses a new table, because the index of the process's table already exists. Strings entered before a failed allocation
// must be found again; a string whose allocation failed must be absent.
TEST(ImmutableStringTableSweep, IndexThatIsMadeAndGrows)
{
    constexpr std::size_t kTexts = 140; // the index starts with 128 slots and is at most half full: two growths
    SweepMemory(
        [] {
            const CriticalSection guard;
            ImmutableStringTable table(guard);
            std::size_t entered = 0;
            const auto expectWhole = [&table, &entered] {
                EXPECT_EQ(entered, table.GetCount());
                for (std::size_t i = 0; i < entered; ++i) {
                    table.Enter(Bytes(std::to_string(i).c_str()), Lifetime::kDynamic)->RemoveRef();
                }
                EXPECT_EQ(entered, table.GetCount()) << "each was found again";
            };
            try {
                for (; entered < kTexts; ++entered) {
                    table.Enter(Bytes(std::to_string(entered).c_str()), Lifetime::kDynamic)->RemoveRef();
                }
            } catch (const std::bad_alloc&) {
                expectWhole();
                throw;
            }
            expectWhole();
        },
        [] {});
}

// Fails only page requests of the index, which is created for the first string and grows for the 65th and the 129th.
TEST(ImmutableStringTableFaults, EachIndexThatIsRefused_LeavesTheTextOutUntilItIsTriedAgain)
{
    for (unsigned refused = 1; refused <= 3; ++refused) {
        const CriticalSection guard;
        ImmutableStringTable table(guard);
        const std::size_t last = refused == 1 ? 0 : refused == 2 ? 64 : 128;
        const MemoryFaults faults(FaultyAllocator::kPages, refused, false);
        for (std::size_t i = 0; i < last; ++i) {
            table.Enter(Bytes(std::to_string(i).c_str()), Lifetime::kDynamic);
        }
        EXPECT_EQ(0u, faults.Refused());
        EXPECT_THROW(table.Enter(Bytes("one more"), Lifetime::kDynamic), std::bad_alloc);
        EXPECT_EQ(1u, faults.Refused());
        EXPECT_EQ(last, table.GetCount());
        table.Enter(Bytes("one more"), Lifetime::kDynamic);
        EXPECT_EQ(last + 1, table.GetCount());
    }
}

TEST_F(ImmutableStringSweep, CreateStatic_StaysEvenWhenItsHandleIsGone)
{
    static const char* const kTexts[] = {"static one of the sweep", "static two of the sweep"};
    ImmutableString::CreateStatic(kTexts[0]);
    ImmutableString::CreateStatic(kTexts[1]);
    Sweep([] {
        const ImmutableString one = ImmutableString::CreateStatic(kTexts[0]);
        const ImmutableString two = ImmutableString::CreateStatic(Bytes(kTexts[1]));
        ASSERT_EQ(Bytes(kTexts[0]), one.c_str());
    });
}

// A static string cannot be removed once it has a record, so each round uses a new string.
TEST(ImmutableStringFaults, NewStaticTextThatFindsNoMemory_IsNotEntered)
{
    static std::vector<std::string> sTexts;
    for (int i = 0; i < 20; ++i) {
        sTexts.push_back("static text " + std::to_string(i));
    }
    const ImmutableString first = ImmutableString::CreateStatic("first");
    unsigned refusals = 0;
    for (unsigned i = 0; i < 10; ++i) {
        const std::size_t before = ImmutableStringTable::Get().GetCount();
        bool isRefused = false;
        {
            const MemoryFaults faults(FaultyAllocator::kSmallBlocks, i + 1, false);
            try {
                ImmutableString::CreateStatic(sTexts[i].c_str());
            } catch (const std::bad_alloc&) {
                isRefused = true;
            }
        }
        refusals += isRefused ? 1 : 0;
        EXPECT_EQ(before + (isRefused ? 0 : 1), ImmutableStringTable::Get().GetCount());
        EXPECT_EQ(Bytes(sTexts[i].c_str()), ImmutableString::CreateStatic(sTexts[i].c_str()).c_str());
    }
    EXPECT_GE(refusals, 2u) << "the record and its place in the table";
}

TEST_F(ImmutableStringSweep, CopyCompareAndToString)
{
    const ImmutableString held = ImmutableString::CreateDynamic(kLong);
    Sweep([&held] {
        ImmutableString copy(held);
        const ImmutableString other = ImmutableString::CreateDynamic("other");
        copy = other;
        copy = held;
        static_cast<void>(copy.Compare(Units(u"a text that is longer than what a string keeps in itself")));
        static_cast<void>(copy.Compare(Units(u"units").c_str()));
        static_cast<void>(copy.Compare(kLong));
        static_cast<void>(copy.Compare(UTF8String(Bytes("narrow"))));
        static_cast<void>(copy.ToString());
    });
    EXPECT_EQ(0, held.Compare(kLong));
}

TEST(ConstStringSweep, Construction_OfEachForm)
{
    const ConstString held("held");
    SweepMemory(
        [&held] {
            ConstString texts[] = {
                ConstString("a"),
                ConstString(kLong.c_str()),
                ConstString(Units(u"units").c_str()),
                ConstString(Units(u"a text of 16-bit units that is longer than what a string keeps in itself")),
            };
            ASSERT_EQ(100u, texts[1].size());
            texts[0] = held;
        },
        [&held] { EXPECT_TRUE(held == ConstString("held")); });
}

TEST(StdConstStringSweep, Construction_OfEachForm)
{
    SweepMemory(
        [] {
            const StdConstString texts[] = {StdConstString("a"), StdConstString(kLong.c_str()), StdConstString(kLong)};
            ASSERT_EQ(100u, texts[1].size());
        },
        [] { EXPECT_TRUE(StdConstString(kLong) == StdConstString(kLong.c_str())); });
}

TEST(StringConversionSweep, MakeStringAndMakeStdString_OfEachForm)
{
    const UTF16String units = Units(u"a text of 16-bit units that is longer than what a string keeps in itself");
    SweepMemory(
        [&units] {
            static_cast<void>(MakeString(kLong.c_str()));
            static_cast<void>(MakeString(Bytes(kLong.c_str())));
            static_cast<void>(MakeString(kLong));
            static_cast<void>(MakeString(UTF8String(Bytes(kLong.c_str()))));
            static_cast<void>(MakeString(units.c_str()));
            static_cast<void>(MakeStdString(units));
            static_cast<void>(MakeStdString(ConstString(units)));
        },
        [&units] { EXPECT_EQ(units, MakeString(MakeStdString(units))); });
}

// A parser that runs out of memory must leave its output unchanged, and must not throw after it has stored a result.
template <class Text, class Parse>
void SweepParser(const Text& inUntouched, const Text& inExpected, const Parse& inParse)
{
    SweepMemory(
        [&] {
            Text result = inUntouched;
            try {
                EXPECT_EQ(kSuccess, inParse(result));
                EXPECT_EQ(inExpected, result);
            } catch (const std::bad_alloc&) {
                EXPECT_EQ(inUntouched, result);
                throw;
            }
        },
        [] {});
}

TEST(ParamStringSweep, ParseString_LeavesTheResultAlone)
{
    const UTF16String format = Units(u"from %1 to %2, and a tail that makes it longer than a string keeps");
    const ParamVector params{Units(u"a parameter of some length, too"), Units(u"another one of some length")};
    const UTF16String expected =
        Units(u"from a parameter of some length, too to another one of some length, and a tail that "
              u"makes it longer than a string keeps");
    SweepParser(Units(u"x"), expected, [&](UTF16String& outResult) { return ParseString(format, params, outResult); });
}

TEST(ParamStringSweep, ParseStdString_LeavesTheResultAlone)
{
    const std::string format = "from %1 to %2, and a tail that makes it longer than a string keeps";
    const StdParamVector params{"a parameter of some length, too", "another one of some length"};
    const std::string expected =
        "from a parameter of some length, too to another one of some length, and a tail that makes "
        "it longer than a string keeps";
    SweepParser(std::string("x"), expected,
                [&](std::string& outResult) { return ParseStdString(format, params, outResult); });
}

TEST(ParamStringSweep, SplitStringAndTokenizer)
{
    const UTF16String text = Units(u"a first token of some length==a second token of some length=rest");
    const UTF16String separator = Units(u"=");
    SweepMemory(
        [&] {
            UTF16String first;
            UTF16String second;
            SplitString(text, separator, first, second);
            Tokenizer tokenizer(text, separator, Tokenizer::Runs::kKeep);
            static_cast<void>(tokenizer.Next());
            static_cast<void>(tokenizer.Next());
        },
        [&] {
            UTF16String first;
            UTF16String second;
            SplitString(text, separator, first, second);
            EXPECT_EQ(Units(u"a first token of some length"), first);
            EXPECT_EQ(Units(u"a second token of some length"), second);
        });
}

TEST(LocaleSweep, GetValueFromDisplayString)
{
    const UTF16String text = Units(u"1234567890.5 and words that follow the number");
    SweepMemory([&text] { static_cast<void>(Locale::GetValueFromDisplayString(text)); },
                [&text] { EXPECT_EQ(1234567890.5, Locale::GetValueFromDisplayString(text)); });
}

TEST(NumberSweep, NumberToStringAndSizesInWords)
{
    const auto show = [] { return tvxcore::utility::NumberToString(1234567890.25, 1, 2, {}, 31); };
    const UTF16String number = show();
    const UTF16String size = DiskUtils::MakeDiskSpaceString(3 * DiskUtils::kSize_teraByte / 2);
    SweepMemory(
        [&] {
            EXPECT_EQ(number, show());
            EXPECT_EQ(size, DiskUtils::MakeDiskSpaceString(3 * DiskUtils::kSize_teraByte / 2));
        },
        [&] { EXPECT_EQ(number, show()); });
}

TEST(LocaleSweep, Initialize)
{
    SweepMemory([] { Locale::Initialize(); }, [] { EXPECT_EQ(std::locale::classic(), std::locale()); });
}
