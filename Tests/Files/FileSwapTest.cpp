// Tests File::SwapTempFile and File::MakeUniqueTempPath.
#include <FileSupport.h>

#include <filesystem>
#include <gtest/gtest.h>

using namespace ORL;
using namespace ORLTest;

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

TEST(File, SwapTempFileThatFails_LeavesBothFiles)
{
    const TempFolder folder;
    folder.MakeFile("real.txt", "old");
    folder.MakeFile("temp.txt", "new");
    EXPECT_EQ(kFileNotFound, File::SwapTempFile(folder.Path(u"temp.txt"), folder.Path(u"none.txt")));
    EXPECT_EQ(kFileNotFound, File::SwapTempFile(folder.Path(u"none.txt"), folder.Path(u"real.txt")));
    {
        const Opened held(folder.Path(u"temp.txt"), kRead, kShareEverything);
        EXPECT_EQ(kSharingViolation, File::SwapTempFile(folder.Path(u"temp.txt"), folder.Path(u"real.txt")));
    }
    EXPECT_EQ("old", ContentsOf(folder, "real.txt"));
    EXPECT_EQ("new", ContentsOf(folder, "temp.txt"));
    EXPECT_EQ("<none>", ContentsOf(folder, "real~1.txt"));
}

// A reader that shares delete access continues to read the old contents.
TEST(File, SwapTempFile_LeavesAReaderItsContents)
{
    const TempFolder folder;
    folder.MakeFile("real.txt", "old");
    folder.MakeFile("temp.txt", "new");
    Opened reader(folder.Path(u"real.txt"), kRead, kShareReaders | Share::kFileShare_Delete);
    EXPECT_EQ(kSuccess, File::SwapTempFile(folder.Path(u"temp.txt"), folder.Path(u"real.txt")));
    EXPECT_EQ("old", ReadText(reader.mFile, 10));
    reader.mFile.Close();
    EXPECT_EQ("new", ContentsOf(folder, "real.txt"));
}

TEST(File, MakeUniqueTempPath_CountsUpToAFreeName)
{
    const TempFolder folder;
    const auto unique = [&](const char16_t* inName) { return Show(File::MakeUniqueTempPath(folder.Path(inName))); };
    const std::string base = Show(folder.Path()) + "\\";
    EXPECT_EQ(base + "photo~1.jpg", unique(u"photo.jpg"));
    folder.MakeFile("photo~1.jpg");
    folder.MakeFolder("photo~2.jpg");
    EXPECT_EQ(base + "photo~3.jpg", unique(u"photo.jpg"));
    EXPECT_EQ(base + "noext~1", unique(u"noext"));
    EXPECT_EQ(base + "a.b~1.c", unique(u"a.b.c"));
    EXPECT_FALSE(std::filesystem::exists(folder.Host() / "photo~3.jpg")) << "nothing is made";
}

TEST(File, MakeUniqueTempPathOfALongName_CutsItTo250)
{
    const TempFolder folder;
    const UTF16String path = folder.Path((std::u16string(300, u'n') + u".jpg").c_str());
    const UTF16String expected = folder.Path((std::u16string(246, u'n') + u"~1.jpg").c_str());
    EXPECT_EQ(Show(expected), Show(File::MakeUniqueTempPath(path)));
    const UTF16String fits = folder.Path((std::u16string(246, u'n') + u".jpg").c_str());
    EXPECT_EQ(Show(expected), Show(File::MakeUniqueTempPath(fits)));
    const UTF16String longExtension = folder.Path((u"name." + std::u16string(300, u'e')).c_str());
    EXPECT_EQ(Show(folder.Path((u"~1." + std::u16string(300, u'e')).c_str())),
              Show(File::MakeUniqueTempPath(longExtension)));
}
