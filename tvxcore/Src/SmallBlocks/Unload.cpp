#include <CorePlatform/SmallBlockSystem.h>
#include <SmallBlocks/CachePool.h>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

namespace {

struct AtUnload
{
    ~AtUnload()
    {
        if (Platform::IsUnloading_Impl()) {
            ReleaseAllIfUnused();
        }
    }
};

// The first of this library's static objects to be made, so the last to go: texts of static life are gone by then.
__attribute__((init_priority(101))) AtUnload sAtUnload;

} // namespace

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
