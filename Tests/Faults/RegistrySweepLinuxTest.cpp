// Fails each allocation in the registry store. Other tests fail the allocations in its database.
#include "MemoryFaults.h"

#include <Linux/Settings/Store/LinuxRegistryStore.h>
#include <PrivateHost.h>

#include <ORLRegistryKey.h>
#include <ORLRegistryStore.h>
#include <ORLString.h>

using namespace ORL;
using namespace ORLTest;
using ORL::Registry::Linux::ReleaseStores;

namespace {

constexpr auto kUser = RegistryRootKeys::kUser;

class RegistrySweep : public testing::Test
{
protected:
    RegistrySweep() : mPath(MakeString("Software\\Zerin\\" + UsePrivateHost()))
    {
        RegistryKey key;
        EXPECT_TRUE(ResultSucceeded(key.Create(kUser, mPath)));
        EXPECT_EQ(kSuccess, key.SetUInt32Value(MakeString("a name that is long enough to need memory"), 77));
        RegistryKey child;
        EXPECT_TRUE(ResultSucceeded(child.Create(key, MakeString("child"))));
        RegistryKey().Swap(key);
        RegistryKey().Swap(child);
        ReleaseStores();
    }

    ~RegistrySweep() override { DeletePrivateHostSettings(); }

    void Sweep(const std::function<void()>& inWork)
    {
        SweepMemory(
            [&] {
                struct AtEnd
                {
                    ~AtEnd() { ReleaseStores(); }
                } const atEnd;
                inWork();
            },
            [&] { ExpectWhole(); });
    }

    void ExpectWhole() const
    {
        {
            RegistryKey key;
            unsigned value = 0;
            ASSERT_EQ(kSuccess, key.Open(kUser, mPath, RegistryKeyAccess::kRead));
            EXPECT_EQ(kSuccess, key.GetUInt32Value(MakeString("a name that is long enough to need memory"), value));
            EXPECT_EQ(77u, value);
            EXPECT_EQ(kSuccess, RegistryKey().Open(key, MakeString("child")));
            const RegistryStoreState state = RegistryStore::Check(kUser);
            EXPECT_TRUE(state.mIsWhole) << state.mProblem;
            EXPECT_TRUE(state.mSetAside.empty());
        }
        ReleaseStores();
    }

    const UTF16String mPath;
};

} // namespace

TEST_F(RegistrySweep, ReadingWithoutMemory_LosesNothing)
{
    Sweep([this] {
        RegistryKey key;
        if (key.Open(kUser, mPath, RegistryKeyAccess::kRead) != kSuccess) {
            return;
        }
        unsigned value = 0;
        if (key.GetUInt32Value(MakeString("a name that is long enough to need memory"), value) == kSuccess) {
            EXPECT_EQ(77u, value);
        }
        std::vector<RegistryKey> keys;
        key.EnumerateSubKeys(keys);
        std::vector<RegistryValue> values;
        RegistryStore::ListValues(kUser, mPath, values);
    });
}

// A value whose write succeeded can be read, unless memory runs out while reading.
TEST_F(RegistrySweep, WritingWithoutMemory_KeepsWhatIsAcknowledged)
{
    unsigned round = 0;
    Sweep([&] {
        ++round;
        RegistryKey key;
        if (!ResultSucceeded(key.Create(kUser, mPath))) {
            return;
        }
        const UTF16String name = MakeString("new");
        if (key.SetUInt32Value(name, round) == kSuccess) {
            unsigned value = 0;
            EXPECT_TRUE(key.GetUInt32Value(name, value) != kSuccess || value == round);
        }
        RegistryKey made;
        if (ResultSucceeded(made.Create(key, MakeString("tree\\deeper\\deepest")))) {
            key.DeleteSubKey(MakeString("tree"));
        }
        key.DeleteValue(name);
    });
}

TEST_F(RegistrySweep, SeveralEditsWithoutMemory_AreDoneAsAWholeOrNot)
{
    const UTF16String path = mPath + MakeString("\\several");
    const auto numbered = [&](const char* inName, unsigned char inByte) {
        RegistryEdit edit;
        edit.mKind = RegistryEdit::kSetValue;
        edit.mPath = path;
        edit.mValue.mName = MakeString(inName);
        edit.mValue.mType = RegistryValueTypes::kBinary;
        edit.mValue.mData.assign(100, inByte);
        return edit;
    };
    const std::vector<RegistryEdit> edits = {numbered("one", 1), numbered("two", 2), numbered("three", 3)};
    Sweep([&] {
        const bool isDone = RegistryStore::Apply(edits) == kSuccess;
        std::vector<RegistryValue> values;
        if (RegistryStore::ListValues(kUser, path, values) == kSuccess) {
            EXPECT_EQ(3u, values.size());
        } else if (isDone) {
            values.resize(3); // out of memory while reading: nothing to check
        }
        EXPECT_TRUE(!isDone || values.size() == 3);
        RegistryEdit remove;
        remove.mKind = RegistryEdit::kDeleteKey;
        remove.mPath = path;
        RegistryStore::Apply({remove});
    });
}
