// Opening, reading, writing and whole-file operations, as hosts use them.
#include "FileSupport.h"

#include <ORLFile.h>

#include <gtest/gtest.h>

using namespace ORL;
using namespace ORLTest;

TEST(File, WhatIsWritten_IsReadBack)
{
    const TempFolder folder;
    const UTF16String path = folder.Path(u"clip.bin");
    {
        Opened file(path, kReadWrite, kShareNone, Disposition::kFileCreate_New);
        ASSERT_EQ(kSuccess, file.mResult);
        EXPECT_TRUE(file.mFile.IsOpen());
        EXPECT_TRUE(WriteText(file.mFile, "hello world"));
        EXPECT_EQ(11, PositionOf(file.mFile));
        EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(6, Method::kFilePointer_Begin));
        EXPECT_EQ("world", ReadText(file.mFile, 100));
        EXPECT_EQ("", ReadText(file.mFile, 100));
        EXPECT_EQ(11u, file.mFile.SizeOnDisk());
        EXPECT_EQ(kSuccess, file.mFile.SetFilePointer(5, Method::kFilePointer_Begin));
        EXPECT_EQ(kSuccess, file.mFile.SetEndOfFile());
        EXPECT_EQ(5u, file.mFile.SizeOnDisk());
    }
    EXPECT_EQ("hello", ContentsOf(folder, "clip.bin"));
    unsigned __int64 size = 0;
    EXPECT_EQ(kSuccess, File::SizeOnDisk(path, size));
    EXPECT_EQ(5u, size);
    EXPECT_EQ(kSuccess, File::Copy(path, folder.Path(u"copy.bin")));
    EXPECT_EQ("hello", ContentsOf(folder, "copy.bin"));
    EXPECT_EQ(kSuccess, File::Move(folder.Path(u"copy.bin"), folder.Path(u"moved.bin")));
    EXPECT_EQ(kAlreadyExists, File::Move(folder.Path(u"moved.bin"), path));
    EXPECT_EQ(kSuccess, File::Delete(folder.Path(u"moved.bin")));
    EXPECT_EQ(kFileNotFound, File::Delete(folder.Path(u"moved.bin")));
}

TEST(File, SwapTempFile_PutsTheNewContentsInPlace)
{
    const TempFolder folder;
    folder.MakeFile("real.txt", "old");
    folder.MakeFile("temp.txt", "new");
    EXPECT_EQ(kSuccess, File::SwapTempFile(folder.Path(u"temp.txt"), folder.Path(u"real.txt")));
    EXPECT_EQ("new", ContentsOf(folder, "real.txt"));
    EXPECT_EQ("<none>", ContentsOf(folder, "temp.txt"));
    EXPECT_EQ("<none>", ContentsOf(folder, "real~1.txt"));
}
