// A file that the system refuses to open, and what a reader makes of it.
#include "AsyncReadsFixture.h"

#include <gtest/gtest.h>
#include <windows.h>

using namespace ORL;
using namespace ORLTest;

TEST_P(AsyncReads, FileThatTheSystemDoesNotOpen_IsRefusedWithTheReaderClosed)
{
    const UTF16String path = MakeClip("held.mov", kBlock);
    AsyncFileReader reader;
    {
        const HANDLE holder = ::CreateFileW((mFolder.Host() / "held.mov").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0,
                                            nullptr);
        ASSERT_NE(INVALID_HANDLE_VALUE, holder);
        EXPECT_EQ(-1, AsyncFileReader::Open(path, reader));
        ::CloseHandle(holder);
    }
    EXPECT_EQ(kSuccess, AsyncFileReader::Open(path, reader)) << "the reader holds no file yet";
}

TEST_P(AsyncReads, FileThatAnotherIsWriting_IsReadMeanwhile)
{
    const UTF16String path = MakeClip("growing.mov", kBlock);
    const HANDLE writer = ::CreateFileW((mFolder.Host() / "growing.mov").c_str(), GENERIC_WRITE,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, writer);
    AsyncFileReader reader;
    EXPECT_EQ(kSuccess, AsyncFileReader::Open(path, reader));
    const AlignedBuffer buffer(kBlock);
    EXPECT_EQ(kBlock, ReadOne(reader, 0, kBlock, buffer).mBytesRead);
    ::CloseHandle(writer);
}
