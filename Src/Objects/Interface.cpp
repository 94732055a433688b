#include <ORLInterface.h>

namespace ORL {

ORLUnknown::~ORLUnknown() = default;

namespace Internal {

void ThrowNullInterface()
{
    throw NullInterfaceException();
}

} // namespace Internal
} // namespace ORL
