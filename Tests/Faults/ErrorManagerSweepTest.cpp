// Fails each allocation while an error manager traces a warning.
#include "MemoryFaults.h"

#include <ORLTVXErrorManager.h>
#include <tvxcore/Trace.h>

using namespace ORL;
using namespace ORLTest;

namespace {

int sLines = 0;

} // namespace

TEST(TVXErrorManagerSweep, AWarning_NeverThrowsAndIsLostAtMost)
{
    const tvxcore::debug::TraceSink old = tvxcore::debug::InstallTraceSink([](const unsigned char*) { ++sLines; });
    tvxcore::debug::SetTraceLevel("ORLFoundation::TVXErrorManager", 1);
    const TVXErrorManager manager;
    const tvxcore::config::ReplacementValue none;
    const auto warn = [&] {
        EXPECT_NO_THROW(manager.ThrowError(tvxcore::config::kErrorLevel_Warning, "$$$/a/b=Text", 105, 25, true, none,
                                           none, none, none));
    };
    SweepMemory(warn, [] {});
    sLines = 0;
    warn();
    EXPECT_EQ(1, sLines);
    if (HeapIsFullyIntercepted()) {
        unsigned int refused = 0;
        {
            const MemoryFaults faults(FaultyAllocator::kHeap, 1, true);
            warn();
            refused = faults.Refused();
        }
        EXPECT_GT(refused, 0u);
        EXPECT_EQ(1, sLines) << "a line without memory is lost";
    }
    tvxcore::debug::SetTraceLevel("ORLFoundation::TVXErrorManager", tvxcore::debug::kTraceOff);
    tvxcore::debug::InstallTraceSink(old);
}
