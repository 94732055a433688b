// Fails each allocation in code page conversions, in fetching the language, and in reading and writing debug settings.
#include "MemoryFaults.h"

#include <Diagnostics/DebugDatabaseLifecycle.h>
#include <ORLDebugDatabase.h>
#include <ORLHostSettings.h>
#include <PrivateHost.h>
#include <System/CodePageConversion.h>
#include <System/LanguageInternals.h>

#include <new>

using namespace ORL;
using namespace ORLTest;

namespace {

UTF16String Converted(std::size_t inUnits)
{
    return Internal::To16BitUnicode(std::string(2 * inUnits, '\x82'), 932); // pairs of "<82><82>"
}

bool FailsWithout(FaultyAllocator inAllocator, unsigned inNumber, bool inAllFurther,
                  const std::function<void()>& inWork)
{
    const MemoryFaults faults(inAllocator, inNumber, inAllFurther);
    try {
        inWork();
    } catch (const std::bad_alloc&) {
        return true;
    }
    return false;
}

} // namespace

// The result itself uses the small block allocator. Up to 1024 units are converted on the stack; longer strings are
// written directly into the result, so that no second block is allocated.
TEST(CodePagesSweep, UnitsOfAnyCount_TakeNoWorkingMemory)
{
    for (const std::size_t count : {1024u, 1025u, 5000u}) {
        const std::string bytes(2 * count, '\x82');
        UTF16String result;
        EXPECT_FALSE(FailsWithout(FaultyAllocator::kHeap, 1, true, [&] {
            result = Internal::To16BitUnicode(bytes, 932);
        })) << count;
        EXPECT_EQ(count, result.size());
    }
}

TEST(CodePagesSweep, BytesOfAnyCount_TakeNoWorkingMemory)
{
    if (!HeapIsFullyIntercepted()) {
        return; // on this platform the allocations of std::string are not intercepted
    }
    for (const std::size_t count : {512u, 513u, 5000u}) {
        const UTF16String units(count, 0x65E5);
        std::string result;
        EXPECT_FALSE(FailsWithout(FaultyAllocator::kHeap, 2, true, [&] {
            result = Internal::ToMultiByteWithCodePage(units, 932);
        })) << count;
        EXPECT_EQ(2 * count, result.size());
        EXPECT_TRUE(FailsWithout(FaultyAllocator::kHeap, 1, true, [&] {
            Internal::ToMultiByteWithCodePage(units, 932);
        })) << count;
    }
}

TEST(CodePagesSweep, Conversions_LeaveNothingBehind)
{
    for (const std::size_t count : {1u, 100u, 1024u, 1025u, 3000u}) {
        const std::string bytes(2 * count, '\x82');
        const UTF16String units(count, 0x65E5);
        SweepMemory([&] { Internal::To16BitUnicode(bytes, 932); }, [] { EXPECT_EQ(5u, Converted(5).size()); });
        SweepMemory([&] { Internal::ToMultiByteWithCodePage(units, 932); }, [] { EXPECT_EQ(5u, Converted(5).size()); });
    }
}

TEST(LanguageSweep, FetchWithoutMemory_LeavesTheLanguageUnknown)
{
    UsePrivateHost();
    GetRegistrySettingsKey(); // caches the settings key before the sweep
    SweepMemory(
        [] {
            Internal::ForgetLanguage();
            GetLanguageString();
        },
        [] { EXPECT_EQ(1033, GetLanguageID()); });
    Internal::ForgetLanguage();
}

TEST(DebugDatabaseSweep, EntriesWithoutMemory_AreWholeOrNotThere)
{
    UsePrivateHost();
    DebugDatabase::Instance().GetEntry("warm", "up");
    const std::string name(100, 'n');
    const std::string value(100, 'v');
    SweepMemory(
        [&] {
            struct AtEnd
            {
                ~AtEnd() { ReleaseDebugDatabase(); }
            } const atEnd;
            DebugDatabase::Instance().GetEntry(name, value);
            DebugDatabase::Instance().SetEntry(name, value);
        },
        [&] {
            EXPECT_EQ(value, DebugDatabase::Instance().GetEntry(name, value));
            ReleaseDebugDatabase();
        });
    DeletePrivateHostSettings();
}
