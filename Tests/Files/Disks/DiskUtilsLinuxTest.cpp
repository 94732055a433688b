// Tests the Linux part of DiskUtils: the values that the OS reports, and those derived from them.
#include <ORLDiskUtils.h>

#include <FaultySystemCallsLinux.h>
#include <Files/AsyncFileReaderImpl.h>
#include <ORLFile.h>
#include <ORLHostPath.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/magic.h>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

using namespace ORL;
using namespace ORL::DiskUtils;
using ORLTest::FaultySystemCalls;
using ORLTest::Show;
using ORLTest::TempFolder;
using ORLTest::Units;

namespace {

long sMagic;
unsigned sAlignment; // alignment that statx reports; 0: none
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
    calls.Underlying().mStatFs = &FakeStatFs;
    sMagic = inMagic;
    UTF16String name;
    EXPECT_EQ(kSuccess, GetFileSystemName(Units(u"C:\\"), name));
    return name;
}

unsigned int SectorSize(unsigned inAlignment)
{
    FaultySystemCalls calls;
    calls.Underlying().mStatx = &FakeStatx;
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
    calls.Underlying().mStatFs = &FakeStatFs;
    calls.Underlying().mStatVfs = &FakeStatVfs;
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

namespace {

constexpr char kAnySector[] = "/sys/dev/block/";
unsigned sReportedAlignment; // alignment that statx reports; 0: none
unsigned sAcceptedAlignment; // alignment that direct reads of the file need
const char* sDeviceSector;   // sector size that the device reports; null: none

int StatxOfBigSectors(int inFolder, const char* inPath, int inFlags, unsigned inMask, struct statx* outStatus)
{
    const int answer = Linux::kSystem.mStatx(inFolder, inPath, inFlags, inMask, outStatus);
    // Only files report an alignment, as on ext4 and xfs.
    const bool reports = sReportedAlignment != 0 && S_ISREG(outStatus->stx_mode);
    outStatus->stx_mask = (outStatus->stx_mask & ~unsigned{STATX_DIOALIGN}) | (reports ? unsigned{STATX_DIOALIGN} : 0u);
    outStatus->stx_dio_offset_align = reports ? sReportedAlignment : 0;
    outStatus->stx_dio_mem_align = reports ? sReportedAlignment : 0;
    return answer;
}

int OpenOfBigSectors(const char* inPath, int inFlags, mode_t inMode)
{
    if (std::strncmp(inPath, kAnySector, sizeof(kAnySector) - 1) != 0) {
        return Linux::kSystem.mOpen(inPath, inFlags, inMode);
    }
    if (sDeviceSector == nullptr) {
        errno = ENOENT;
        return -1;
    }
    const int file = ::memfd_create("sector", MFD_CLOEXEC);
    EXPECT_EQ(static_cast<ssize_t>(std::strlen(sDeviceSector)),
              ::write(file, sDeviceSector, std::strlen(sDeviceSector)));
    return file;
}

ssize_t ReadOfBigSectors(int inFile, void* outBuffer, std::size_t inSize, off_t inPosition)
{
    const bool isDirect = (::fcntl(inFile, F_GETFL) & O_DIRECT) != 0;
    const auto all = reinterpret_cast<std::uintptr_t>(outBuffer) | inSize | static_cast<std::uintptr_t>(inPosition);
    if (isDirect && all % sAcceptedAlignment != 0) {
        errno = EINVAL;
        return -1;
    }
    return Linux::kSystem.mPRead(inFile, outBuffer, inSize, inPosition);
}

} // namespace

// The volume functions, a reader and an unbuffered file use the same sector size for a file, whether or not statx or
// the device reports it. Without a report, a folder gets 512, because only files can be probed with a read.
TEST(SectorSize, IsOneAnswerForTheVolumeTheReaderAndTheFile)
{
    struct Row
    {
        int mLine;
        unsigned mReported;
        unsigned mAccepted;
        const char* mDevice;
        unsigned mOfTheFile;
        unsigned mOfTheFolder;
    };
    const Row rows[] = {
        {__LINE__, 4096, 4096, "4096\n", 4096, 4096},
        {__LINE__, 0, 4096, "4096\n", 4096, 4096},
        {__LINE__, 4096, 4096, nullptr, 4096, 512}, // neither statx nor the device reports one for the folder
        {__LINE__, 0, 4096, nullptr, 4096, 512},
        {__LINE__, 0, 4096, "512\n", 4096, 512},
        {__LINE__, 0, 512, "512\n", 512, 512},
        {__LINE__, 0, 512, nullptr, 512, 512},
        {__LINE__, 512, 512, "512\n", 512, 512},
        {__LINE__, 0, 512, "nonsense\n", 512, 512},
        {__LINE__, 0, 512, "", 512, 512},
        {__LINE__, 0, 512, "1000\n", 512, 512},
        {__LINE__, 0, 512, "99999999999999999999\n", 512, 512},
    };
    const TempFolder folder;
    folder.MakeFile("clip", std::string(65536, 'c'));
    StartupAsyncFileOperations();
    for (const Row& row : rows) {
        SCOPED_TRACE("row at line " + std::to_string(row.mLine));
        sReportedAlignment = row.mReported;
        sAcceptedAlignment = row.mAccepted;
        sDeviceSector = row.mDevice;
        FaultySystemCalls calls;
        calls.Underlying().mStatx = &StatxOfBigSectors;
        calls.Underlying().mOpen = &OpenOfBigSectors;
        calls.Underlying().mPRead = &ReadOfBigSectors;
        unsigned int ofFile = 0;
        unsigned int ofFolder = 0;
        EXPECT_EQ(kSuccess, GetEfficientDiskBufferSizeFromPath(folder.Path(u"clip"), ofFile));
        EXPECT_EQ(kSuccess, GetEfficientDiskBufferSizeFromPath(folder.Path(), ofFolder));
        EXPECT_EQ(row.mOfTheFile, ofFile);
        EXPECT_EQ(row.mOfTheFolder, ofFolder);
        AsyncFileReader reader;
        EXPECT_EQ(kSuccess, AsyncFileReader::Open(folder.Path(u"clip"), reader));
        EXPECT_EQ(ofFile, reader.GetDiskSectorSize());
        File file;
        ASSERT_EQ(kSuccess,
                  file.Create(folder.Path(u"clip"), FileAccessFlags::kFileAccess_Read,
                              FileShareModeFlags::kFileShare_Read, FileCreateDispositionFlags::kFileCreate_OpenExisting,
                              FileAttributesFlags::kFileAttribute_NoBuffering, false));
        alignas(4096) static char bytes[8192];
        for (const unsigned size : {512u, 1024u, 4096u}) {
            unsigned count = 0;
            EXPECT_EQ(size % ofFile == 0, file.Read(bytes, size, count) == kSuccess) << size;
        }
    }
    TerminateAsyncFileOperations();
}

// A drive may contain mount points; queries use the file system that contains the path.
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
    // the drive is still mounted, but its folder no longer exists
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
    calls.Underlying().mStatVfs = &FakeStatVfs;
    sFreeBlocks = 5 * kSize_gigaByte / 4096;
    calls.Fail(FaultySystemCalls::kStatFs, 1, ENOENT);
    EXPECT_EQ(kFileNotFound, GetMaxFileSize(path, size));
    EXPECT_EQ(77u, size);
    unsigned int sector = 77;
    calls.Fail(FaultySystemCalls::kStatx, 1, EACCES);
    EXPECT_EQ(kAccessDenied, GetEfficientDiskBufferSizeFromPath(path, sector));
    EXPECT_EQ(0u, sector);
}
