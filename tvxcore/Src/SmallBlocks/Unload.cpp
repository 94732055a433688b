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

// The first static object of this library to be constructed and the last to be destroyed: static strings are destroyed
// earlier.
__attribute__((init_priority(101))) AtUnload sAtUnload;

} // namespace

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
