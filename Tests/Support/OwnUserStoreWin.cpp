#include "OwnUserStore.h"

namespace ORLTest {

OwnUserStore::OwnUserStore() = default;

OwnUserStore::~OwnUserStore() = default;

} // namespace ORLTest
