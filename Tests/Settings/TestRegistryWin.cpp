#include "TestRegistry.h"

namespace ORLTest {

class TestRegistry::Impl
{
};

TestRegistry::TestRegistry() = default;
TestRegistry::~TestRegistry() = default;

std::string TestRegistry::Folder() const
{
    return std::string();
}

} // namespace ORLTest
