// Tests reads of special files that exist only on Linux, and reads at invalid positions.
#include "AsyncReadsFixture.h"

#include <FaultySystemCallsLinux.h>
#include <ORLHostPath.h>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <pthread.h>
#include <string>
#include <sys/fsuid.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace ORL;
using namespace ORLTest;

namespace {

constexpr uid_t kNobody = 65534;

/// While an instance exists, the calling thread accesses files with an ordinary user's rights.
class AsOrdinaryUser
{
public:
    AsOrdinaryUser() : mEarlier(static_cast<uid_t>(::setfsuid(kNobody))) {}
    ~AsOrdinaryUser() { ::setfsuid(mEarlier); }

    AsOrdinaryUser(const AsOrdinaryUser&) = delete;
    AsOrdinaryUser& operator=(const AsOrdinaryUser&) = delete;

private:
    uid_t mEarlier;
};

/// An in-memory file. Its path, in /proc, is valid during the lifetime of the object.
class FileInMemory
{
public:
    explicit FileInMemory(const std::string& inContents) : mFile(::memfd_create("clip.mov", MFD_CLOEXEC))
    {
        EXPECT_EQ(static_cast<ssize_t>(inContents.size()), ::write(mFile, inContents.data(), inContents.size()));
    }
    ~FileInMemory() { ::close(mFile); }

    FileInMemory(const FileInMemory&) = delete;
    FileInMemory& operator=(const FileInMemory&) = delete;

    UTF16String Path() const { return PathUtils::FromHostPath("/proc/self/fd/" + std::to_string(mFile)); }

private:
    int mFile;
};

std::string NameOfThisThread()
{
    char name[16] = "";
    ::pthread_getname_np(::pthread_self(), name, sizeof(name));
    return name;
}

struct FailureWatch
{
    int mCalls = 0;
    unsigned mBytesRead = 77;
    int mResult = 0;
    std::string mThread;

    static void OnRead(const AsyncFileReader*, unsigned __int64, unsigned int, unsigned int inBytesRead, void*,
                       void* inWatch, void*, void*, int inResult)
    {
        FailureWatch& watch = *static_cast<FailureWatch*>(inWatch);
        ++watch.mCalls;
        watch.mBytesRead = inBytesRead;
        watch.mResult = inResult;
        watch.mThread = NameOfThisThread();
    }
};

FailureWatch ExpectRefused(AsyncFileReader& ioReader, std::uint64_t inPosition, unsigned inSize, void* outBuffer)
{
    FailureWatch watch;
    EXPECT_EQ(
        0, ioReader.QueueReadRequest(inPosition, inSize, outBuffer, &FailureWatch::OnRead, &watch, nullptr, nullptr));
    ioReader.WaitForPendingReads();
    EXPECT_EQ(1, watch.mCalls);
    EXPECT_EQ(0u, watch.mBytesRead);
    EXPECT_EQ(kGeneralFailure, watch.mResult);
    return watch;
}

// Expects that a read fails when it starts: its callback runs on the thread that starts reads, and later reads work.
void ExpectRefusedAtItsStart(AsyncFileReader& ioReader, std::uint64_t inPosition, unsigned inSize, void* outBuffer)
{
    const FailureWatch watch = ExpectRefused(ioReader, inPosition, inSize, outBuffer);
    EXPECT_EQ(std::string("WinAsyncFileReader Async Read Thread").substr(0, 15), watch.mThread);
}

} // namespace

TEST_P(AsyncReads, StartAtOrPastTheEnd_FailsAtItsStartAndLaterReadsGoOn)
{
    const AlignedBuffer buffer(kBlock);
    AsyncFileReader empty;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("empty", 0), empty));
    ExpectRefusedAtItsStart(empty, 0, kBlock, buffer.Get());

    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", kBlock), reader));
    for (const std::uint64_t position : {std::uint64_t{kBlock}, std::uint64_t{2 * kBlock}, std::uint64_t{1} << 40}) {
        ExpectRefusedAtItsStart(reader, position, kBlock, buffer.Get());
    }
    EXPECT_EQ(kBlock, ReadOne(reader, 0, kBlock, buffer).mBytesRead);
}

TEST_P(AsyncReads, PositionSizeOrBufferOffTheSector_FailsAtItsStartAndLaterReadsGoOn)
{
    const AlignedBuffer buffer(2 * kBlock);
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", 2 * kBlock), reader));
    const unsigned sector = reader.GetDiskSectorSize();
    ExpectRefusedAtItsStart(reader, sector - 1, kBlock, buffer.Get());
    ExpectRefusedAtItsStart(reader, 0, kBlock - 1, buffer.Get());
    ExpectRefusedAtItsStart(reader, 0, kBlock, buffer.Get() + 1);
    EXPECT_EQ(kBlock, ReadOne(reader, sector, kBlock, buffer).mBytesRead);
}

// Windows checks the buffer when a read starts. On Linux a bad buffer might not be reported until the read completes;
// this must not stop asynchronous reads in the whole process.
TEST_P(AsyncReads, BufferThatMayNotBeWritten_FailsAtItsStartAndLaterReadsGoOn)
{
    const AlignedBuffer buffer(kBlock);
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(MakeClip("clip.mov", 2 * kBlock), reader));
    ExpectRefusedAtItsStart(reader, 0, kBlock, nullptr);
    ExpectRefusedAtItsStart(reader, 2 * kBlock, kBlock, nullptr);
    void* const constant = ::mmap(nullptr, kBlock, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(MAP_FAILED, constant);
    ExpectRefused(reader, 0, kBlock, constant);
    ::munmap(constant, kBlock);
    ExpectRefused(reader, 0, kBlock, constant);
    EXPECT_EQ(kBlock, ReadOne(reader, 0, kBlock, buffer).mBytesRead);
    EXPECT_EQ(kBlock, FirstWrongByte(buffer.Get(), kBlock, 0));
}

TEST_P(AsyncReads, FileWithoutPermission_IsRefusedWithTheReaderClosed)
{
    const UTF16String path = MakeClip("secret.mov", kBlock);
    ASSERT_EQ(0, ::chmod((mFolder.Host() / "secret.mov").c_str(), 0));
    AsyncFileReader reader;
    {
        const AsOrdinaryUser user;
        EXPECT_EQ(-1, AsyncFileReader::Open(path, reader));
    }
    ASSERT_EQ(0, ::chmod((mFolder.Host() / "secret.mov").c_str(), 0644));
    EXPECT_EQ(kSuccess, AsyncFileReader::Open(path, reader)) << "the reader holds no file yet";
}

TEST_P(AsyncReads, NameThatIsNotUTF8_IsRead)
{
    const std::string name = "\xFF\xC3(\x80.mov";
    mFolder.MakeFile(name, MakeContents(kBlock));
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(PathUtils::FromHostPath((mFolder.Host() / name).string()), reader));
    const AlignedBuffer buffer(kBlock);
    EXPECT_EQ(kBlock, ReadOne(reader, 0, kBlock, buffer).mBytesRead);
    EXPECT_EQ(kBlock, FirstWrongByte(buffer.Get(), kBlock, 0));
}

// Opening a pipe without a writer must fail at once: a blocking open would wait for a writer.
TEST_P(AsyncReads, WhatIsNoFile_IsRefusedAtOnce)
{
    ASSERT_EQ(0, ::mkfifo((mFolder.Host() / "pipe").c_str(), 0600));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (mFolder.Host() / "socket").string().copy(address.sun_path, sizeof(address.sun_path) - 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(0, ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
    AsyncFileReader reader;
    EXPECT_EQ(-1, AsyncFileReader::Open(mFolder.Path(u"pipe"), reader));
    EXPECT_EQ(-1, AsyncFileReader::Open(mFolder.Path(u"socket"), reader));
    EXPECT_EQ(-1, AsyncFileReader::Open(PathUtils::FromHostPath("/dev/zero"), reader));
    ::close(socket);
}

TEST_P(AsyncReads, FileSystemOfMemory_IsReadLikeAnyOther)
{
    const FileInMemory file(MakeContents(kBlock + 1000));
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(file.Path(), reader));
    const AlignedBuffer buffer(kBlock);
    EXPECT_EQ(kBlock, ReadOne(reader, 0, kBlock, buffer).mBytesRead);
    EXPECT_EQ(kBlock, FirstWrongByte(buffer.Get(), kBlock, 0));
    EXPECT_EQ(1000u, ReadOne(reader, kBlock, kBlock, buffer).mBytesRead);
    EXPECT_EQ(1000u, FirstWrongByte(buffer.Get(), 1000, kBlock));
    ExpectRefusedAtItsStart(reader, 2 * kBlock, kBlock, buffer.Get());
}

TEST_P(AsyncReads, FileSystemThatRefusesDirectReads_IsReadThroughTheCacheThatIsDroppedBehind)
{
    const UTF16String path = MakeClip("clip.mov", 4 * kBlock);
    FaultySystemCalls calls;
    calls.Fail(FaultySystemCalls::kOpen, 1, EINVAL); // the reader first opens the file for direct reads
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(path, reader));
    EXPECT_EQ(2u, calls.Count(FaultySystemCalls::kOpen));
    const AlignedBuffer buffer(kBlock);
    for (std::uint64_t position = 0; position < 4 * kBlock; position += kBlock) {
        EXPECT_EQ(kBlock, ReadOne(reader, position, kBlock, buffer).mBytesRead);
        EXPECT_EQ(kBlock, FirstWrongByte(buffer.Get(), kBlock, position));
    }
    EXPECT_EQ(4u, calls.Count(FaultySystemCalls::kFAdvise));
    ExpectRefusedAtItsStart(reader, 4 * kBlock, kBlock, buffer.Get());
    ExpectRefusedAtItsStart(reader, 1, kBlock, buffer.Get()); // cached reads have the same alignment rule
}

// A read checks the end of the file when it starts; the file may be truncated between that check and the read.
TEST_P(AsyncReads, FileCutBehindTheStartOfARead_GivesNothingAndLaterReadsGoOn)
{
    const UTF16String path = MakeClip("clip.mov", 4 * kBlock);
    AsyncFileReader reader;
    ASSERT_EQ(kSuccess, AsyncFileReader::Open(path, reader));
    const AlignedBuffer buffer(kBlock);
    FaultySystemCalls calls;
    const auto cut = [this] { std::filesystem::resize_file(mFolder.Host() / "clip.mov", 2 * kBlock); };
    calls.Before(FaultySystemCalls::kUringSubmit, 1, cut);
    calls.Before(FaultySystemCalls::kPRead, 1, cut);
    const Delivered beyond = ReadOne(reader, 3 * kBlock, kBlock, buffer);
    EXPECT_EQ(kSuccess, beyond.mResult);
    EXPECT_EQ(0u, beyond.mBytesRead);
    EXPECT_EQ(kBlock, ReadOne(reader, kBlock, kBlock, buffer).mBytesRead);
}
