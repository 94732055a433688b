// Tests registry transactions on Linux, where none exist: each call that needs a transaction fails as it does on a
// Windows version without the transaction function.
#include "TestRegistry.h"

#include <System/RegistryHandle.h>

using namespace ORL;
using namespace ORLTest;

using RegistryTransactionsTest = RegistryTest;

TEST_F(RegistryTransactionsTest, ManagerWithATransaction_FailsWithOne)
{
    using namespace Registry::Platform;
    int transaction = 0;
    RegistryTransactionManager manager;
    RegistryHandle handle(&manager);
    manager.mFallsBack = true;
    ASSERT_EQ(SystemErrors::kNoError, handle.Open(GetUserRoot_Impl(), mPath.c_str(), kAccessAll));
    const KeyHandle open = handle.Get();
    manager.mTransaction = &transaction;
    EXPECT_EQ(SystemErrors::kErrorInvalidFunction, handle.Open(GetUserRoot_Impl(), mPath.c_str(), kAccessAll));
    EXPECT_EQ(SystemErrors::kErrorInvalidFunction, handle.Create(GetUserRoot_Impl(), mPath.c_str(), kAccessAll));
    EXPECT_EQ(open, handle.Get());
    RegistryKey child;
    ASSERT_EQ(kSuccess, child.Create(mKey, Units(u"child")));
    EXPECT_EQ(SystemErrors::kErrorInvalidFunction, handle.DeleteTree(Units(u"child").c_str()));
    EXPECT_EQ(kSuccess, child.Open(mKey, Units(u"child")));
}
