// Fails each allocation in every path and volume function.
#include "FilesSweep.h"

#include <ORLDiskUtils.h>
#include <ORLHostPath.h>
#include <ORLPathUtils.h>
#include <ORLResult.h>
#include <TextHelpers.h>

using namespace ORL;
using namespace ORL::PathUtils;
using namespace ORLTest;

namespace {

class PathsSweep : public FilesSweep
{
protected:
    const UTF16String mLong =
        Units(u"C:\\a folder of some length\\another one beside it\\a file of some length.extension");
};

} // namespace

TEST_F(PathsSweep, TextAlone)
{
    SweepReadOnly([this] {
        UTF16String drive;
        UTF16String directory;
        UTF16String file;
        UTF16String extension;
        SplitPath(mLong, &drive, &directory, &file, &extension);
        EXPECT_EQ(mLong, MakePath(drive, directory, file, extension));
        EXPECT_EQ(mLong, MakeFullPath(drive, directory, file, extension));
        EXPECT_EQ(mLong, GetFullDirectoryPart(mLong) + GetFullFilePart(mLong));
        EXPECT_EQ(mLong, GetDrivePart(mLong) + GetDirectoryPart(mLong) + GetFilePart(mLong) + GetExtensionPart(mLong));
        EXPECT_EQ(kPathSeparator, GetPathSeparator());
        EXPECT_TRUE(IsValidPath(mLong));
        EXPECT_TRUE(IsValidFileName(file));
        UTF16String name = file + kPathSeparator;
        EXPECT_TRUE(RemoveIllegalFileNameCharacters(name));
        EXPECT_EQ(mLong, RemoveTrailingSlash(AddTrailingSlash(mLong)));
        EXPECT_FALSE(HasTrailingSlash(mLong));
        EXPECT_TRUE(FileHasExtension(mLong, extension));
        EXPECT_EQ(mLong, PathUtils::Win::StripUNC(ToNormalizedPath(mLong)));
        UTF16String relative;
        EXPECT_TRUE(ArePathsRelative(mLong, mLong, relative));
        EXPECT_FALSE(CombinePaths(mLong, file).empty());
    });
}

TEST_F(PathsSweep, QuestionsToTheDisk)
{
    mFolder.MakeFile("real.txt");
    const UTF16String path = mFolder.Path(u"real.txt");
    SweepReadOnly([&] {
        EXPECT_TRUE(ExistsOnDisk(path));
        EXPECT_TRUE(IsDirectory(mFolder.Path()));
        EXPECT_FALSE(IsDirectoryEmpty(mFolder.Path()));
        EXPECT_FALSE(IsHidden(path));
        EXPECT_TRUE(PreparePathForWrite(AddTrailingSlash(mFolder.Path())));
        EXPECT_NE(path, MakeUniqueFilename(path));
        EXPECT_FALSE(GetTempDirectory().empty());
        EXPECT_FALSE(GetLeafDisplayStringFromPath(ToNormalizedPath(path)).empty());
        EXPECT_FALSE(GetDisplayStringFromPath(ToNormalizedPath(path)).empty());
        std::string host;
        EXPECT_EQ(kSuccess, ToHostPath(path, host));
        EXPECT_EQ(path, FromHostPath(host));
    });
}

TEST_F(PathsSweep, QuestionsToTheVolume)
{
    mFolder.MakeFile("real.txt");
    const UTF16String path = mFolder.Path(u"real.txt");
    SweepReadOnly([&] {
        unsigned int sector = 0;
        unsigned __int64 largest = 0;
        UTF16String name;
        EXPECT_NE(0u, GetFreeDriveSpace(path));
        EXPECT_NE(0u, DiskUtils::GetFreeSpaceFromPath(path));
        EXPECT_EQ(kSuccess, DiskUtils::GetEfficientDiskBufferSizeFromPath(path, sector));
        EXPECT_EQ(kSuccess, DiskUtils::GetMaxFileSize(path, largest));
        EXPECT_EQ(kSuccess, DiskUtils::GetFileSystemName(path, name));
        EXPECT_FALSE(DiskUtils::MakeDiskSpaceString(12).empty());
        EXPECT_FALSE(DiskUtils::MakeDiskSpaceString(12345).empty());
    });
}
