#include <SmallBlocks/LastBlocks.h>

#include <CorePlatform/SmallBlockSystem.h>
#include <tvxcore/SmallBlockCache.h>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

namespace {

constexpr std::size_t kRunSize = 64 * 1024;

char* sRun = nullptr;
std::size_t sLeft = 0;

} // namespace

void* TakeLastBlock(std::size_t inSize) noexcept
{
    if (inSize > kLargestSmall) {
        return Platform::MapPages_Impl(inSize, kGrain);
    }
    const std::size_t size = inSize != 0 ? (inSize + kGrain - 1) / kGrain * kGrain : kGrain;
    if (size > sLeft) {
        char* const run = static_cast<char*>(Platform::MapPages_Impl(kRunSize, kGrain));
        if (run == nullptr) {
            return nullptr;
        }
        sRun = run;
        sLeft = kRunSize;
    }
    char* const block = sRun;
    sRun += size;
    sLeft -= size;
    return block;
}

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
