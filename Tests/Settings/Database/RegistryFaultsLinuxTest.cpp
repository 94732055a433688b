// Fails each system call and each allocation of the registry store once. No acknowledged change may be lost, no call
// may hang, and the store must stay intact.
#include "TestRegistry.h"

#include <FaultySystemCallsLinux.h>
#include <Linux/Settings/Store/LinuxRegistryStore.h>

#include <ORLRegistryStore.h>
#include <ORLString.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <functional>
#include <sqlite3.h>
#include <sys/types.h>

using namespace ORL;
using namespace ORLTest;
using ORL::Registry::Linux::ReleaseStores;

namespace {

constexpr auto kUser = RegistryRootKeys::kUser;
constexpr auto kAll = static_cast<RegistryKeyAccess::Type>(0);

// SQLite calls the system through its own table. While a fault is armed, the table holds the wrappers below.
struct SqliteFault
{
    unsigned mCountdown = 0; // 1 fails the next call, 0 fails no call
    int mErrno = 0;
    unsigned mCalls = 0;
    bool mWritesAlone = false; // counts and fails only calls that write

    bool Hits(bool inWrites = false)
    {
        if (mWritesAlone && !inWrites) {
            return false;
        }
        ++mCalls;
        if (mCountdown == 0 || --mCountdown != 0) {
            return false;
        }
        errno = mErrno;
        return true;
    }
};

SqliteFault sFault;

using Function = sqlite3_syscall_ptr;

// The wrapper of one system call of SQLite.
template <int Index, bool Writes, class Result, class... Arguments>
struct Wrapped
{
    static inline Result (*sReal)(Arguments...) = nullptr;

    static Result Call(Arguments... inArguments)
    {
        return sFault.Hits(Writes) ? static_cast<Result>(-1) : sReal(inArguments...);
    }

    static void Install(const char* inName)
    {
        sqlite3_vfs* const vfs = sqlite3_vfs_find(nullptr);
        const Function real = vfs->xGetSystemCall(vfs, inName);
        if (real != nullptr) {
            sReal = reinterpret_cast<Result (*)(Arguments...)>(real);
            vfs->xSetSystemCall(vfs, inName, reinterpret_cast<Function>(&Call));
        }
    }
};

int FaultyFcntl(int inFile, int inCommand, ...)
{
    va_list list;
    va_start(list, inCommand);
    void* const argument = va_arg(list, void*);
    va_end(list);
    // Releasing a lock never fails on any system, and SQLite would poll until its timeout for a lock that seems to be
    // held.
    const bool isUnlock = inCommand == F_SETLK && static_cast<struct flock*>(argument)->l_type == F_UNLCK;
    return !isUnlock && sFault.Hits() ? -1 : ::fcntl(inFile, inCommand, argument);
}

/// Routes SQLite's system calls through the fault during its lifetime.
struct FaultySqlite
{
    FaultySqlite()
    {
        sFault = SqliteFault();
        Wrapped<0, false, int, const char*, int, int>::Install("open");
        Wrapped<1, true, ssize_t, int, const void*, size_t>::Install("write");
        Wrapped<2, false, ssize_t, int, void*, size_t>::Install("read");
        Wrapped<3, false, ssize_t, int, void*, size_t, off_t>::Install("pread");
        Wrapped<4, false, ssize_t, int, void*, size_t, off_t>::Install("pread64");
        Wrapped<5, true, ssize_t, int, const void*, size_t, off_t>::Install("pwrite");
        Wrapped<6, true, ssize_t, int, const void*, size_t, off_t>::Install("pwrite64");
        Wrapped<7, false, int, int, off_t>::Install("ftruncate");
        Wrapped<8, false, int, int, struct stat*>::Install("fstat");
        sqlite3_vfs* const vfs = sqlite3_vfs_find(nullptr);
        vfs->xSetSystemCall(vfs, "fcntl", reinterpret_cast<Function>(&FaultyFcntl));
    }
    ~FaultySqlite()
    {
        sqlite3_vfs* const vfs = sqlite3_vfs_find(nullptr);
        vfs->xSetSystemCall(vfs, nullptr, nullptr);
    }
};

// Each part covers every fourth call, so that every test is short on a busy machine.
constexpr unsigned kParts = 4;

class RegistryFaults : public RegistryTest
{
protected:
    RegistryFaults()
    {
        EXPECT_EQ(kSuccess, mKey.SetUInt32Value(MakeString("old"), 77));
        RegistryKey().Swap(mKey);
        ReleaseStores();
    }

    // Uses the store as a process does from its first call on, and records which changes were acknowledged.
    void Work(unsigned inRound)
    {
        mWritten = mCreated = mDeleted = false;
        RegistryKey key;
        if (!ResultSucceeded(key.Create(kUser, mPath))) {
            return;
        }
        mWritten = key.SetUInt32Value(MakeString("new"), inRound) == kSuccess;
        RegistryKey child;
        mCreated = ResultSucceeded(child.Create(key, MakeString("tree\\child")));
        unsigned value = 0;
        if (mWritten && key.GetUInt32Value(MakeString("new"), value) == kSuccess) {
            EXPECT_EQ(inRound, value);
        }
        mDeleted = mCreated && key.DeleteSubKey(MakeString("tree")) == kSuccess;
    }

    void ExpectAcknowledged(unsigned inRound)
    {
        for (int pass = 0; pass < 2; ++pass) { // reads first from the cache, then from the disk
            unsigned value = 0;
            RegistryKey key;
            ASSERT_EQ(kSuccess, key.Open(kUser, mPath, kAll));
            EXPECT_EQ(kSuccess, key.GetUInt32Value(MakeString("old"), value));
            EXPECT_EQ(77u, value);
            if (mWritten) {
                EXPECT_EQ(kSuccess, key.GetUInt32Value(MakeString("new"), value));
                EXPECT_EQ(inRound, value);
            }
            if (mCreated) {
                EXPECT_EQ(mDeleted ? kFileNotFound : kSuccess, RegistryKey().Open(key, MakeString("tree")));
            }
            ReleaseStores();
        }
        const RegistryStoreState state = RegistryStore::Check(kUser);
        EXPECT_EQ("", state.mProblem);
        EXPECT_TRUE(state.mSetAside.empty()) << state.mSetAside[0].mReason;
        RegistryKey key;
        ASSERT_EQ(kSuccess, key.Open(kUser, mPath, kAll));
        key.DeleteSubKey(MakeString("tree"));
        RegistryKey().Swap(key);
        ReleaseStores();
    }

    bool mWritten = false;
    bool mCreated = false;
    bool mDeleted = false;
};

class RegistryFaultParts : public RegistryFaults, public testing::WithParamInterface<unsigned>
{
};

} // namespace

TEST_F(RegistryFaults, EachSystemCallOfTheLibrary_FailsOnce)
{
    for (const int error : {EIO, ENOSPC, EACCES}) {
        for (unsigned call = 1;; ++call) {
            SCOPED_TRACE("call " + std::to_string(call) + ", errno " + std::to_string(error));
            unsigned count = 0;
            {
                FaultySystemCalls calls;
                calls.Fail(FaultySystemCalls::kAny, call, error);
                Work(call);
                count = calls.Count(FaultySystemCalls::kAny);
                ReleaseStores();
            }
            ExpectAcknowledged(call);
            if (count < call || HasFatalFailure()) {
                ASSERT_LT(5u, call);
                break;
            }
        }
    }
}

TEST_P(RegistryFaultParts, EachSystemCallOfTheDatabase_FailsOnce)
{
    for (const int error : {EIO, ENOSPC}) {
        for (unsigned call = 1 + GetParam();; call += kParts) {
            SCOPED_TRACE("call " + std::to_string(call) + ", errno " + std::to_string(error));
            unsigned count = 0;
            {
                const FaultySqlite faulty;
                sFault.mCountdown = call;
                sFault.mErrno = error;
                Work(call);
                count = sFault.mCalls;
                ReleaseStores();
            }
            ExpectAcknowledged(call);
            if (count < call || HasFatalFailure()) {
                ASSERT_LT(20u, call);
                break;
            }
        }
    }
}

// On a full disk every write fails, and stored values can still be read.
TEST_F(RegistryFaults, FullDisk_RefusesEachWriteAndLosesNothing)
{
    RegistryKey key;
    ASSERT_EQ(kSuccess, key.Open(kUser, mPath, kAll));
    ASSERT_EQ(kSuccess, key.SetUInt32Value(MakeString("new"), 1));
    {
        const FaultySqlite faulty;
        for (int i = 0; i < 20; ++i) {
            sFault.mWritesAlone = true;
            sFault.mCountdown = 1;
            sFault.mErrno = ENOSPC;
            const Result result = key.SetUInt32Value(MakeString("new"), 2);
            unsigned value = 0;
            sFault.mCountdown = 0;
            EXPECT_EQ(kRegistryFailure, result);
            EXPECT_EQ(kSuccess, key.GetUInt32Value(MakeString("new"), value));
            EXPECT_EQ(1u, value);
        }
    }
    EXPECT_EQ(kSuccess, key.SetUInt32Value(MakeString("new"), 3)) << "there is room again";
    unsigned value = 0;
    EXPECT_EQ(kSuccess, key.GetUInt32Value(MakeString("new"), value));
    EXPECT_EQ(3u, value);
}

namespace {

// SQLite's allocator. One allocation fails when the countdown reaches 0.
sqlite3_mem_methods sMemory;
unsigned sAllocationCountdown = 0;
unsigned sAllocations = 0;

bool IsRefused()
{
    ++sAllocations;
    return sAllocationCountdown != 0 && --sAllocationCountdown == 0;
}

void* FaultyAllocate(int inSize)
{
    return IsRefused() ? nullptr : sMemory.xMalloc(inSize);
}

void* FaultyReallocate(void* ioBlock, int inSize)
{
    return IsRefused() ? nullptr : sMemory.xRealloc(ioBlock, inSize);
}

} // namespace

TEST_P(RegistryFaultParts, EachAllocationOfTheDatabase_FailsOnce)
{
    ASSERT_EQ(SQLITE_OK, sqlite3_shutdown());
    ASSERT_EQ(SQLITE_OK, sqlite3_config(SQLITE_CONFIG_GETMALLOC, &sMemory));
    sqlite3_mem_methods faulty = sMemory;
    faulty.xMalloc = &FaultyAllocate;
    faulty.xRealloc = &FaultyReallocate;
    ASSERT_EQ(SQLITE_OK, sqlite3_config(SQLITE_CONFIG_MALLOC, &faulty));
    ASSERT_EQ(SQLITE_OK, sqlite3_initialize());
    unsigned allocation = 1 + GetParam();
    for (; !HasFatalFailure(); allocation += kParts) {
        SCOPED_TRACE("allocation " + std::to_string(allocation));
        sAllocations = 0;
        sAllocationCountdown = allocation;
        Work(allocation);
        sAllocationCountdown = 0;
        const unsigned count = sAllocations;
        ReleaseStores();
        ExpectAcknowledged(allocation);
        if (count < allocation) {
            break;
        }
    }
    EXPECT_LT(50u, allocation);
    ReleaseStores();
    ASSERT_EQ(SQLITE_OK, sqlite3_shutdown());
    ASSERT_EQ(SQLITE_OK, sqlite3_config(SQLITE_CONFIG_MALLOC, &sMemory));
}

INSTANTIATE_TEST_SUITE_P(Parts, RegistryFaultParts, testing::Range(0u, kParts));
