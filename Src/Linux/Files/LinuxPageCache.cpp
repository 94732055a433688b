#include "LinuxPageCache.h"

#include "../Calls/SystemCalls.h"

namespace ORL {
namespace Linux {

// The kernel drops only whole pages, so this includes the page where the transfer begins: the previous transfer, which
// ended in this page, may have been smaller than a page.
void DropPagesOfTransfer(int inFile, std::uint64_t inPosition, std::uint32_t inCount) noexcept
{
    constexpr std::uint64_t kPage = 4096;
    if (inCount == 0) {
        return;
    }
    const std::uint64_t first = inPosition / kPage * kPage;
    System().mFAdvise(inFile, static_cast<off_t>(first), static_cast<off_t>(inPosition - first + inCount),
                      POSIX_FADV_DONTNEED);
}

} // namespace Linux
} // namespace ORL
