#include <ORLImpl.h>

namespace ORL {

Impl::~Impl() = default;

} // namespace ORL
