// Volumes below the seam: what the system tells, and what is made of it.
#include <ORLDiskUtils.h>

#include <FaultySystemCallsLinux.h>
#include <ORLHostPath.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <linux/magic.h>

using namespace ORL;
using namespace ORL::DiskUtils;
using ORLTest::FaultySystemCalls;
using ORLTest::Show;
using ORLTest::TempFolder;
using ORLTest::Units;

namespace {

long sMagic;
unsigned sAlignment; // 0: the file system tells none
unsigned long sFreeBlocks;

int FakeStatFs(const char*, struct statfs* outStatus)
{
    std::memset(outStatus, 0, sizeof(*outStatus));
    outStatus->f_type = sMagic;
    return 0;
}

int FakeStatVfs(const char*, struct statvfs* outStatus)
{
    std::memset(outStatus, 0, sizeof(*outStatus));
    outStatus->f_frsize = 4096;
    outStatus->f_bavail = sFreeBlocks;
    outStatus->f_bfree = sFreeBlocks + 1000;
    return 0;
}

int FakeStatx(int, const char*, int, unsigned, struct statx* outStatus)
{
    std::memset(outStatus, 0, sizeof(*outStatus));
    outStatus->stx_mode = S_IFREG;
    outStatus->stx_mask = sAlignment != 0 ? STATX_DIOALIGN : 0;
    outStatus->stx_dio_offset_align = sAlignment;
    return 0;
}

UTF16String NameOf(long inMagic)
{
    FaultySystemCalls calls;
    calls.Underneath().mStatFs = &FakeStatFs;
    sMagic = inMagic;
    UTF16String name;
    EXPECT_EQ(kSuccess, GetFileSystemName(Units(u"C:\\"), name));
    return name;
}

unsigned int SectorSize(unsigned inAlignment)
{
    FaultySystemCalls calls;
    calls.Underneath().mStatx = &FakeStatx;
    sAlignment = inAlignment;
    unsigned int size = 0;
    EXPECT_EQ(kSuccess, GetEfficientDiskBufferSizeFromPath(Units(u"C:\\f"), size));
    return size;
}

} // namespace

TEST(GetFileSystemName, TheFATFamily_BeginsWithFAT)
{
    EXPECT_EQ(Units(u"FAT32"), NameOf(MSDOS_SUPER_MAGIC));
    EXPECT_EQ(Units(u"ext4"), NameOf(EXT4_SUPER_MAGIC));
    EXPECT_EQ(Units(u"exFAT"), NameOf(EXFAT_SUPER_MAGIC));
    EXPECT_EQ(Units(u"0x12345"), NameOf(0x12345));
}

TEST(GetMaxFileSize, OnALinuxFATVolume_IsLimited)
{
    FaultySystemCalls calls;
    calls.Underneath().mStatFs = &FakeStatFs;
    calls.Underneath().mStatVfs = &FakeStatVfs;
    sMagic = MSDOS_SUPER_MAGIC;
    sFreeBlocks = 5 * kSize_gigaByte / 4096;
    unsigned __int64 size = 0;
    EXPECT_EQ(kSuccess, GetMaxFileSize(Units(u"C:\\f"), size));
    EXPECT_EQ(4294967295u, size);
    sFreeBlocks = kSize_gigaByte / 4096;
    EXPECT_EQ(kSuccess, GetMaxFileSize(Units(u"C:\\f"), size));
    EXPECT_EQ(kSize_gigaByte, size);
    sMagic = EXT4_SUPER_MAGIC;
    sFreeBlocks = 5 * kSize_gigaByte / 4096;
    EXPECT_EQ(kSuccess, GetMaxFileSize(Units(u"C:\\f"), size));
    EXPECT_EQ(5 * kSize_gigaByte, size);
}

TEST(SectorSize, IsTheDirectAlignment_At512AtLeast)
{
    EXPECT_EQ(4096u, SectorSize(4096));
    EXPECT_EQ(512u, SectorSize(512));
    EXPECT_EQ(512u, SectorSize(1));
    EXPECT_EQ(512u, SectorSize(0));
}

// A drive is a tree of many file systems: the one that holds the path answers.
TEST(DiskUtils, BelowAMountPoint_TheMountedFileSystemAnswers)
{
    UTF16String root;
    UTF16String memory;
    ASSERT_EQ(kSuccess, GetFileSystemName(Units(u"C:\\"), root));
    ASSERT_EQ(kSuccess, GetFileSystemName(Units(uR"(C:\proc\no\such\process)"), memory));
    EXPECT_EQ(Units(u"proc"), memory);
    EXPECT_NE(root, memory);
}

TEST(DiskUtils, OfAMountedDrive_AskItsFolder)
{
    const TempFolder folder;
    ASSERT_EQ(kSuccess, PathUtils::Linux::MountDrive('M', folder.Host().string()));
    EXPECT_NE(0u, GetFreeSpaceFromPath(Units(uR"(M:\no\such\file)")));
    std::filesystem::remove(folder.Host());
    // the drive's folder is gone
    unsigned __int64 size = 77;
    EXPECT_EQ(kFileNotFound, GetMaxFileSize(Units(uR"(M:\x)"), size));
    ASSERT_EQ(kSuccess, PathUtils::Linux::UnmountDrive('M'));
}

TEST(DiskUtils, OfAShareThatIsNotMounted_FailAsTheNetworkDoes)
{
    unsigned __int64 size = 77;
    EXPECT_EQ(kGeneralFailure, GetMaxFileSize(Units(uR"(\\nosuch.invalid\share\x)"), size));
    EXPECT_EQ(77u, size);
}

TEST(DiskUtils, FaultsOfTheSystem_BecomeResults)
{
    FaultySystemCalls calls;
    const UTF16String path = Units(u"C:\\");
    unsigned __int64 size = 77;
    calls.Fail(FaultySystemCalls::kStatVfs, 1, EACCES);
    EXPECT_EQ(kAccessDenied, GetMaxFileSize(path, size));
    calls.Fail(FaultySystemCalls::kStatVfs, 1, EIO);
    EXPECT_EQ(kGeneralFailure, GetMaxFileSize(path, size));
    calls.Fail(FaultySystemCalls::kStatVfs, 1, EIO);
    EXPECT_EQ(0u, GetFreeSpaceFromPath(path));
    calls.Underneath().mStatVfs = &FakeStatVfs;
    sFreeBlocks = 5 * kSize_gigaByte / 4096;
    calls.Fail(FaultySystemCalls::kStatFs, 1, ENOENT);
    EXPECT_EQ(kFileNotFound, GetMaxFileSize(path, size));
    EXPECT_EQ(77u, size);
    unsigned int sector = 77;
    calls.Fail(FaultySystemCalls::kStatx, 1, EACCES);
    EXPECT_EQ(kAccessDenied, GetEfficientDiskBufferSizeFromPath(path, sector));
    EXPECT_EQ(0u, sector);
}
