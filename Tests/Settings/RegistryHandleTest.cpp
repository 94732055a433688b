// Tests registry handles with a transaction manager, which RegistryKey never uses.
#include "TestRegistry.h"

#include <System/RegistryHandle.h>

using namespace ORL;
using namespace ORLTest;

namespace {

using namespace Registry::Platform;
using namespace SystemErrors;

class RegistryHandleTest : public RegistryTest
{
protected:
    SystemError Open(RegistryHandle& ioHandle, const std::u16string& inBelow = std::u16string()) const
    {
        return ioHandle.Open(GetUserRoot_Impl(), Path(inBelow).c_str(), kAccessAll);
    }

    SystemError Create(RegistryHandle& ioHandle, const std::u16string& inBelow) const
    {
        return ioHandle.Create(GetUserRoot_Impl(), Path(inBelow).c_str(), kAccessAll);
    }

    bool Exists(const std::u16string& inBelow) const
    {
        RegistryHandle handle;
        return Open(handle, inBelow) == kNoError;
    }
};

} // namespace

TEST_F(RegistryHandleTest, WithoutAManager_WorksOnTheRegistryItself)
{
    RegistryHandle handle;
    EXPECT_EQ(kNoError, Create(handle, u"a\\b\\c"));
    RegistryHandle base;
    ASSERT_EQ(kNoError, Open(base));
    EXPECT_EQ(kNoError, base.DeleteTree(Units(u"a").c_str()));
    EXPECT_FALSE(Exists(u"a"));
}

TEST_F(RegistryHandleTest, ManagerThatFallsBack_WorksOnTheRegistryItself)
{
    RegistryTransactionManager manager;
    manager.mFallsBack = true;
    RegistryHandle handle(&manager);
    EXPECT_EQ(kNoError, Create(handle, u"a\\b\\c"));
    EXPECT_EQ(kNoError, Create(handle, u"a\\d"));
    RegistryHandle base(&manager);
    ASSERT_EQ(kNoError, Open(base));
    EXPECT_EQ(kNoError, base.DeleteTree(Units(u"a").c_str()));
    EXPECT_FALSE(Exists(u"a"));
    EXPECT_EQ(kErrorFileNotFound, base.DeleteTree(Units(u"a").c_str()));
}

TEST_F(RegistryHandleTest, ManagerWithoutATransaction_FailsWithOne)
{
    RegistryTransactionManager manager;
    RegistryHandle handle(&manager);
    EXPECT_EQ(kErrorInvalidFunction, Open(handle));
    EXPECT_EQ(kErrorInvalidFunction, Create(handle, u"a"));
    EXPECT_EQ(nullptr, handle.Get());
    EXPECT_FALSE(Exists(u"a"));
    manager.mFallsBack = true;
    ASSERT_EQ(kNoError, Open(handle));
    ASSERT_EQ(kNoError, Create(handle, u"a"));
    ASSERT_EQ(kNoError, Open(handle));
    manager.mFallsBack = false;
    EXPECT_EQ(kErrorInvalidFunction, handle.DeleteTree(Units(u"a").c_str()));
    EXPECT_TRUE(Exists(u"a"));
}
