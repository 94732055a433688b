#include <ORLInterface.h>

namespace ORL {

ORLUnknown::~ORLUnknown() = default;

} // namespace ORL
