// Tests operations on paths whose host path exceeds the kernel's 4095 bytes: everything works as for short paths.
#include <FileSupport.h>

#include <Files/AsyncFileReaderImpl.h>
#include <ORLAsyncFileReader.h>
#include <ORLDirectory.h>
#include <ORLDiskUtils.h>
#include <ORLPathUtils.h>
#include <Platform/File.h>
#include <SystemProbes.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace ORL;
using namespace ORLTest;

namespace {

// 40 nested folders with names of 200 units: more than 8000 bytes.
class LongPaths : public testing::Test
{
protected:
    LongPaths()
    {
        mDeep = PathUtils::ToNormalizedPath(mFolder.Path(u"top"));
        for (int i = 0; i < 40; ++i) {
            mDeep += Units(u"\\") + UTF16String(200, 'n');
        }
        mHandles = OpenHandles();
    }

    ~LongPaths() override
    {
        EXPECT_EQ(mHandles, OpenHandles());
        EXPECT_EQ(kSuccess, Directory::DeleteNotEmpty(mFolder.Path(u"top")));
    }

    UTF16String Deep(const char16_t* inName) const { return mDeep + Units(u"\\") + Units(inName); }

    void MakeDeepFile(const char16_t* inName, const std::string& inText)
    {
        Opened file(Deep(inName), kReadWrite, kShareNone, Disposition::kFileCreate_New);
        ASSERT_EQ(kSuccess, file.mResult);
        ASSERT_TRUE(WriteText(file.mFile, inText));
    }

    std::string ReadDeepFile(const char16_t* inName)
    {
        Opened file(Deep(inName), kRead);
        return file.mResult == kSuccess ? ReadText(file.mFile, 100) : "result " + std::to_string(file.mResult);
    }

    TempFolder mFolder;
    UTF16String mDeep;
    unsigned mHandles = 0;
};

} // namespace

TEST_F(LongPaths, Folders_AreMadeAskedListedAndDeleted)
{
    EXPECT_FALSE(PathUtils::IsDirectory(mDeep));
    EXPECT_FALSE(PathUtils::ExistsOnDisk(mDeep));
    ASSERT_EQ(kSuccess, Directory::CreateOnDisk(mDeep, true));
    EXPECT_EQ(kSuccess, Directory::CreateOnDisk(mDeep, true)) << "one that is there is fine";
    EXPECT_TRUE(PathUtils::IsDirectory(mDeep));
    EXPECT_TRUE(PathUtils::ExistsOnDisk(mDeep));
    EXPECT_TRUE(PathUtils::IsDirectoryEmpty(mDeep));
    EXPECT_FALSE(PathUtils::IsHidden(mDeep));
    EXPECT_FALSE(PathUtils::IsReadOnly(mDeep));
    MakeDeepFile(u"f", "text");
    EXPECT_FALSE(PathUtils::IsDirectoryEmpty(mDeep));
    EXPECT_EQ(Deep(u"f_1"), PathUtils::MakeUniqueFilename(Deep(u"f")));
    const Directory directory = Directory::ConstructDirectory(mDeep);
    EXPECT_TRUE(directory.IsDirectoryWriteable());
    std::vector<UTF16String> paths;
    directory.GetContainedPaths(paths, true, Directory::kNoLimit);
    EXPECT_EQ(std::vector<UTF16String>{Deep(u"f")}, paths);
    EXPECT_EQ(kGeneralFailure, Directory::Delete(mDeep));
    EXPECT_EQ(kSuccess, File::Delete(Deep(u"f")));
    EXPECT_EQ(kSuccess, Directory::Delete(mDeep));
    EXPECT_FALSE(PathUtils::IsDirectory(mDeep));
    EXPECT_EQ(kFileNotFound, Directory::Delete(mDeep));
    EXPECT_EQ(kPathNotFound, File::Delete(Deep(u"f")));
}

TEST_F(LongPaths, Files_AreCopiedMovedSwappedAndDeleted)
{
    ASSERT_EQ(kSuccess, Directory::CreateOnDisk(mDeep, true));
    MakeDeepFile(u"a", "A");
    EXPECT_EQ(kSuccess, File::Copy(Deep(u"a"), Deep(u"b")));
    EXPECT_EQ("A", ReadDeepFile(u"b"));
    EXPECT_EQ(kSuccess, File::Copy(Deep(u"a"), mFolder.Path(u"top\\short")));
    EXPECT_EQ("A", ContentsOf(mFolder, "top/short"));
    EXPECT_EQ(kSharingViolation, File::Copy(Deep(u"a"), Deep(u"a")));
    EXPECT_EQ(kAlreadyExists, File::Move(Deep(u"a"), Deep(u"b")));
    EXPECT_EQ(kSuccess, File::Move(Deep(u"b"), Deep(u"b"))) << "onto itself";
    EXPECT_EQ(kSuccess, File::Move(Deep(u"b"), Deep(u"c")));
    EXPECT_EQ("A", ReadDeepFile(u"c"));
    MakeDeepFile(u"new", "N");
    EXPECT_EQ(Deep(u"c~1"), File::MakeUniqueTempPath(Deep(u"c")));
    EXPECT_EQ(kSuccess, File::SwapTempFile(Deep(u"new"), Deep(u"c")));
    EXPECT_EQ("N", ReadDeepFile(u"c"));
    EXPECT_FALSE(PathUtils::ExistsOnDisk(Deep(u"new")));
    EXPECT_FALSE(PathUtils::ExistsOnDisk(Deep(u"c~1")));
    unsigned __int64 size = 0;
    unsigned __int64 time = 0;
    EXPECT_EQ(kSuccess, File::SizeOnDisk(Deep(u"c"), size));
    EXPECT_EQ(1u, size);
    EXPECT_EQ(kSuccess, File::GetLastModificationTime(Deep(u"c"), time));
    EXPECT_EQ(kSuccess, File::GetLastModificationTimeForFolder(mDeep, time));
    EXPECT_EQ(kSharingViolation, File::Move(mFolder.Path(u"top"), mDeep + Units(u"\\top"))) << "into itself";
    EXPECT_EQ(kSuccess, File::Delete(Deep(u"c")));
    EXPECT_EQ(kSuccess, File::Delete(Deep(u"a")));
}

TEST_F(LongPaths, Trees_AreCopiedAndMoved)
{
    const UTF16String plain = PathUtils::Win::StripUNC(mDeep);
    mFolder.MakeFolder("top/from/sub");
    mFolder.MakeFile("top/from/sub/f", "F");
    EXPECT_EQ(kSuccess, Directory::Copy(mFolder.Path(u"top\\from"), plain));
    EXPECT_EQ("F", ReadDeepFile(u"sub\\f"));
    EXPECT_EQ(kGeneralFailure, Directory::Copy(mFolder.Path(u"top"), plain + Units(u"\\new"))) << "into itself";
    EXPECT_EQ(kSuccess, Directory::Move(plain, mFolder.Path(u"top\\to")));
    EXPECT_EQ("F", ContentsOf(mFolder, "top/to/sub/f"));
    EXPECT_TRUE(PathUtils::IsDirectoryEmpty(mDeep));
    EXPECT_EQ(kSuccess, Directory::DeleteNotEmpty(plain));
    EXPECT_FALSE(PathUtils::ExistsOnDisk(mDeep));
}

TEST_F(LongPaths, VolumesAndReaders_AnswerAsElsewhere)
{
    ASSERT_EQ(kSuccess, Directory::CreateOnDisk(mDeep, true));
    MakeDeepFile(u"f", std::string(5, 'x'));
    EXPECT_NE(0u, DiskUtils::GetFreeSpaceFromPath(Deep(u"f")));
    unsigned int deep = 0;
    unsigned int shallow = 0;
    EXPECT_EQ(kSuccess, DiskUtils::GetEfficientDiskBufferSizeFromPath(mDeep, deep));
    EXPECT_EQ(kSuccess, DiskUtils::GetEfficientDiskBufferSizeFromPath(mFolder.Path(), shallow));
    EXPECT_EQ(shallow, deep);
    StartupAsyncFileOperations();
    {
        AsyncFileReader reader;
        EXPECT_EQ(kSuccess, AsyncFileReader::Open(Deep(u"f"), reader));
    }
    TerminateAsyncFileOperations();
}

// The parent folder stays open until the file has been deleted by its name.
TEST_F(LongPaths, AFileThatGoesWhenItIsClosed_Goes)
{
    using namespace Files::Platform;
    ASSERT_EQ(kSuccess, Directory::CreateOnDisk(mDeep, true));
    Handle file = nullptr;
    ASSERT_EQ(0u, CreateFile_Impl(Deep(u"f"), kGenericWrite | kAccessDelete, 7, kCreateNew, kFlagDeleteOnClose, file));
    EXPECT_TRUE(PathUtils::ExistsOnDisk(Deep(u"f")));
    CloseFile_Impl(file);
    EXPECT_FALSE(PathUtils::ExistsOnDisk(Deep(u"f")));
}

// A single name has its own limit.
TEST_F(LongPaths, ANameThatIsTooLong_IsInvalid)
{
    mFolder.MakeFolder("top");
    const UTF16String name(5000, 'n');
    Opened file(PathUtils::ToNormalizedPath(mFolder.Path(u"top")) + Units(u"\\") + name, kRead);
    EXPECT_EQ(kGeneralFailure, file.mResult);
    EXPECT_FALSE(PathUtils::ExistsOnDisk(mDeep + name));
}
