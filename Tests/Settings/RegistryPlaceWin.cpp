#include "RegistryPlace.h"

namespace ORLTest {

class RegistryPlace::Impl
{
};

RegistryPlace::RegistryPlace() = default;
RegistryPlace::~RegistryPlace() = default;

std::string RegistryPlace::Folder() const
{
    return std::string();
}

} // namespace ORLTest
