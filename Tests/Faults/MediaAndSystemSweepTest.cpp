// Fails each allocation in splines, hashes, the process search and AutomationDataCollector.
#include "MemoryFaults.h"

#include <ORLAutomationDataCollector.h>
#include <ORLGeometry.h>
#include <ORLHashValue.h>
#include <ORLProcess.h>
#include <ORLSystemInfo.h>

#include <tvxcore/StringStream.h>

#include <algorithm>
#include <sstream>

using namespace ORL;
using namespace ORLTest;

namespace {

UTF16String Text(const std::string& inText)
{
    return UTF16String(inText.begin(), inText.end());
}

const std::string kLong(100, 'l');

} // namespace

TEST(GeometrySweep, SolveWithoutMemory_ReturnsFalseAndLeavesTheResults)
{
    float x[] = {0, 1, 2, 3};
    float y[] = {0, 1, 0, 1};
    float bends[] = {9, 9, 9, 9};
    {
        const MemoryFaults faults(FaultyAllocator::kHeap, 1, false);
        EXPECT_FALSE(Geometry::SolveNaturalCubicSpline2D(x, y, 4, bends));
        EXPECT_EQ(1u, faults.Refused());
    }
    EXPECT_EQ(4, std::count(bends, bends + 4, 9.0f));
    EXPECT_TRUE(Geometry::SolveNaturalCubicSpline2D(x, y, 4, bends));
}

TEST(HashValueSweep, ReadingAndWriting)
{
    SweepMemory(
        [] {
            HashValue hash(1, 2, 3);
            tvxcore::oUTF16StringStream out;
            out << hash;
            tvxcore::iUTF16StringStream in(Text("1a:2b:00000000000000000000000000000000000000000000000000000000003c"));
            in >> hash;
        },
        [] {});
}

TEST(ProcessSweep, IsProcessRunning)
{
    SweepMemory([] { Process::IsProcessRunning(Text(kLong), Process::ProcessSearchFlags::kContains); },
                [] { EXPECT_TRUE(Process::IsProcessRunning(UTF16String(), Process::ProcessSearchFlags::kContains)); });
}

TEST(SystemInfoSweep, AsksForNoMemory)
{
    SystemInfo::GetSystemLoad();
    SweepMemory([] { SystemInfo::GetSystemLoad(); }, [] {});
    EXPECT_GT(SystemInfo::GetTotalPhysicalMemory(), 0u);
}

// If a result cannot be stored, the earlier ones remain.
TEST(AutomationDataCollectorSweep, AddResults)
{
    using Collector = AutomationDataCollector;
    Collector::Instance()->Clear();
    SweepMemory(
        [] {
            struct AtEnd
            {
                ~AtEnd() { Collector::Instance()->Clear(); }
            } const atEnd;
            Collector::Instance()->AddResult(Text("name"), {Text(kLong), Text(kLong)});
            Collector::Instance()->AddResults(Text(kLong), {{Text("a"), Text(kLong)}, {Text(kLong), Text("b")}});
            std::ostringstream stream;
            WriteAutomationResults(stream, Collector::Instance()->GetCollection());
            Collector::Instance()->SpecifyPerformanceTest();
        },
        [] { EXPECT_TRUE(Collector::Instance()->GetCollection().empty()); });
}
