#include <tvxcore/Throw.h>

#include <new>
#include <stdexcept>

namespace tvxcore {
namespace utility {
namespace Internal {

void ThrowBadAlloc()
{
    throw std::bad_alloc();
}

void ThrowInvalidArgument(const char* inText)
{
    throw std::invalid_argument(inText);
}

} // namespace Internal
} // namespace utility
} // namespace tvxcore
