// Checks results recorded on Windows (cf34 and so on) for opens that depend on the file name: its case, its length, a
// leading dot. Uses the platform functions.
#include "SystemProbes.h"
#include <FileSupport.h>

#include <Platform/File.h>

#include <gtest/gtest.h>

using namespace ORL;
using namespace ORL::Files::Platform;
using namespace ORLTest;

namespace {

SystemError Try(const UTF16String& inPath, std::uint32_t inAccess, std::uint32_t inDisposition)
{
    Handle file = nullptr;
    const SystemError error = CreateFile_Impl(inPath, inAccess, 7, inDisposition, kAttributeNormal, file);
    if (error == 0) {
        CloseFile_Impl(file);
    }
    return error;
}

UTF16String Extended(const UTF16String& inPath)
{
    return Units(u"\\\\?\\") + inPath;
}

} // namespace

// cf34, cf35. Names are matched by the rules of the volume: Windows is case-insensitive, ext4 is not.
TEST(FileSituationNames, AnotherCase_IsTheSameFileWhereTheVolumeSaysSo)
{
    const TempFolder folder;
    folder.MakeFile("f.txt", "x");
    const bool isSame = ContentsOf(folder, "F.TXT") == "x";
    EXPECT_EQ(isSame ? 0u : 2u, Try(Extended(folder.Path(u"F.TXT")), kGenericRead, kOpenExisting)) << "cf34";
    EXPECT_EQ(isSame ? 80u : 0u, Try(Extended(folder.Path(u"F.TXT")), kGenericWrite, kCreateNew)) << "cf35";
}

// cf47, cf48. Windows opens a plain path of 260 units if the process enables long paths, else it fails with 3. On Linux
// plain paths have no such limit; this difference is intended.
TEST(FileSituationNames, ALongPath_IsTakenExtendedAndPlainWhereThePlainFormMayBeLong)
{
    const TempFolder folder;
    const UTF16String path = folder.Path(std::u16string(250, u'n'));
    ASSERT_LE(260u, path.size());
    EXPECT_EQ(0u, Try(Extended(path), kGenericWrite, kCreateAlways)) << "cf47";
    EXPECT_EQ(SystemAcceptsLongPlainPaths() ? 0u : 3u, Try(path, kGenericRead, kOpenExisting)) << "cf48";
    EXPECT_EQ(0u, DeleteFile_Impl(Extended(path)));
}

// cf58 and cf59 concern files that were opened with the hidden attribute: a later open that recreates such a file must
// request the attribute again. File never requests it; only the probe for a writeable folder does, and that file is
// deleted at its close. On Linux a leading dot hides a file, but is not an attribute, and the owner can recreate the
// file. Both differences are intended.
TEST(FileSituationNames, AFileWhoseNameBeginsWithADot_IsMadeAgain)
{
    const TempFolder folder;
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(0u, Try(Extended(folder.Path(u".settings")), kGenericWrite, kCreateAlways));
    }
}

// ch1. The platform's close function returns nothing and must be called only once for each handle. A second
// File::Close does nothing.
TEST(FileSituationNames, AFileThatIsClosedTwice_IsClosedOnce)
{
    const TempFolder folder;
    folder.MakeFile("f");
    Opened first(folder.Path(u"f"), kRead);
    first.mFile.Close();
    Opened second(folder.Path(u"f"), kRead, kShareNone);
    first.mFile.Close();
    EXPECT_EQ(kSuccess, second.mResult);
    EXPECT_EQ("x", ReadText(second.mFile, 1)) << "the second file may have the first one's handle by now";
    EXPECT_EQ(kSharingViolation, Opened(folder.Path(u"f"), kRead).mResult);
}
