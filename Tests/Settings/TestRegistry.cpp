#include "TestRegistry.h"

#include <random>

namespace ORLTest {

RegistryTest::RegistryTest()
    : mPath(Units(u"Software\\ORL test ") + Units([] {
                const std::string number = std::to_string(std::random_device()());
                return std::u16string(number.begin(), number.end());
            }()))
{
    EXPECT_EQ(ORL::kSuccess, mKey.Create(ORL::RegistryRootKeys::kUser, mPath));
}

RegistryTest::~RegistryTest()
{
    ORL::RegistryKey software;
    EXPECT_EQ(ORL::kSuccess,
              software.Open(ORL::RegistryRootKeys::kUser, Units(u"Software"), ORL::RegistryKeyAccess::kRead));
    software.DeleteSubKey(mPath.substr(mPath.find('\\') + 1));
}

UTF16String RegistryTest::Path(const std::u16string& inBelow) const
{
    return inBelow.empty() ? mPath : mPath + Units(u"\\" + inBelow);
}

} // namespace ORLTest
