// Tests a reader on a file that Windows refuses to open.
#include "AsyncReadsFixture.h"

#include <gtest/gtest.h>

#include <string>
#include <windows.h>

using namespace ORL;
using namespace ORLTest;

TEST_P(AsyncReads, FileThatTheSystemDoesNotOpen_IsRefusedWithTheReaderClosed)
{
    const UTF16String path = MakeClip("held.mov", kBlock);
    AsyncFileReader reader;
    {
        const HANDLE holder =
            ::CreateFileW((mFolder.Host() / "held.mov").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
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

TEST_P(AsyncReads, NameWithHalfASurrogatePair_IsReadByItsLibraryPath)
{
    const std::u16string name = {u'a', char16_t{0xD83D}, u'.', u'm', u'o', u'v'};
    const UTF16String path = mFolder.Path(name);
    const HANDLE file = ::CreateFileW(reinterpret_cast<const wchar_t*>(path.c_str()), GENERIC_WRITE, 0, nullptr,
                                      CREATE_NEW, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        GTEST_SKIP() << "the volume takes no such name, error " << ::GetLastError();
    }
    const std::string contents = MakeContents(kBlock);
    DWORD written = 0;
    EXPECT_NE(FALSE, ::WriteFile(file, contents.data(), kBlock, &written, nullptr));
    ::CloseHandle(file);
    AsyncFileReader reader;
    EXPECT_EQ(kSuccess, AsyncFileReader::Open(path, reader));
    const AlignedBuffer buffer(kBlock);
    EXPECT_EQ(kBlock, ReadOne(reader, 0, kBlock, buffer).mBytesRead);
    EXPECT_EQ(kBlock, FirstWrongByte(buffer.Get(), kBlock, 0));
}
