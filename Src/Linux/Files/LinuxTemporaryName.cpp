#include "LinuxTemporaryName.h"

#include <atomic>
#include <unistd.h>

namespace ORL {
namespace Linux {

std::string TemporaryName(const char* inPurpose)
{
    static std::atomic<unsigned> sCount{0};
    return std::string(".orl-") + inPurpose + "-" + std::to_string(::getpid()) + "-"
           + std::to_string(sCount.fetch_add(1));
}

} // namespace Linux
} // namespace ORL
