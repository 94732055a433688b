// Checks directories, listings, volumes and the shell's operations against recorded results of Windows, through the
// platform functions, on both platforms. Each row starts with its record number. The last set of a row, if not
// empty, holds the results of Wine 8.
//
// Not covered: md1 to md3 (a system call that creates one level) and pw8 (a path that is not created), because no
// platform function does this; ff20, because the order of a listing is unspecified. vo3, vo6, vo9 and vo10 query
// volumes by a path that is not a root; the platform functions use roots only, because on Linux a folder stands for the
// file system that contains it.
#include "SystemProbes.h"
#include <FileSupport.h>

#include <ORLDirectory.h>
#include <Platform/Directory.h>
#include <Platform/Disks.h>
#include <Platform/File.h>
#include <Platform/Paths.h>

#include <functional>
#include <gtest/gtest.h>
#include <set>

using namespace ORL;
using namespace ORL::Directories::Platform;
using namespace ORL::PathUtils::Platform;
using namespace ORLTest;

namespace {

class Folder
{
public:
    Folder()
    {
        mFolder.MakeFile("f.txt");
        mFolder.MakeFolder("empty");
        mFolder.MakeFolder("dir/sub");
        mFolder.MakeFile("dir/a.txt", "A");
        mFolder.MakeFile("dir/noext", "N");
        mFolder.MakeFile("dir/sub/b.txt", "B");
        mFolder.MakeFolder("into");
        mFolder.MakeFolder("hidden");
        mFolder.MakeFile("hidden/.h");
        mFolder.MakeFolder("nested/empty");
    }

    UTF16String Plain(const char16_t* inName) const { return mFolder.Path(inName); }
    UTF16String Extended(const char16_t* inName) const { return Units(u"\\\\?\\") + mFolder.Path(inName); }
    std::string Contents(const std::string& inName) const { return ContentsOf(mFolder, inName); }
    bool Has(const std::string& inName) const { return std::filesystem::exists(mFolder.Host() / inName); }
    std::filesystem::path Host(const std::string& inName) const { return mFolder.Host() / inName; }

    /// Removes the directory while a handle to it is open.
    SystemError RemoveBeside(const char16_t* inName, std::uint32_t inShare) const
    {
        using namespace Files::Platform;
        Handle folder = nullptr;
        EXPECT_EQ(
            0u, CreateFile_Impl(Extended(inName), kGenericRead, inShare, kOpenExisting, kFlagBackupSemantics, folder));
        const SystemError error = RemoveDirectory_Impl(Extended(inName));
        CloseFile_Impl(folder);
        return error;
    }

private:
    TempFolder mFolder;
};

struct Situation
{
    const char* mRecord;
    const char* mText;
    std::set<unsigned long> mWindowsResults;
    std::function<unsigned long(const Folder&)> mRun;
    std::set<unsigned long> mWineResults = {};
};

// Returns 1 if the path is a directory, plus 10 if the directory is empty.
unsigned long Kind(const UTF16String& inPath)
{
    return (IsDirectory_Impl(inPath) ? 1u : 0u) + (IsDirectoryEmpty_Impl(inPath) ? 10u : 0u);
}

SystemError List(const UTF16String& inPath)
{
    Listing* listing = nullptr;
    const SystemError error = OpenListing_Impl(inPath, listing);
    EXPECT_EQ(error != 0, listing == nullptr);
    if (listing != nullptr) {
        CloseListing_Impl(listing);
    }
    return error;
}

unsigned long Operate(ShellFunction inFunction, const UTF16String& inFolder, const UTF16String& inTo = UTF16String())
{
    return OperateOnFiles_Impl(inFunction, inFolder + Units(u"\\*.*"), inTo.empty() ? nullptr : &inTo);
}

// Returns the error of one of the three volume queries.
unsigned long Volume(const UTF16String& inRoot, unsigned long inWhich)
{
    const DiskUtils::Platform::Volume volume{inRoot, inRoot};
    unsigned int sector = 0;
    unsigned __int64 bytes = 0;
    UTF16String name;
    switch (inWhich) {
    case 0: {
        const SystemError error = DiskUtils::Platform::GetSectorSize_Impl(volume, sector);
        EXPECT_EQ(error == 0, sector >= 512);
        return error;
    }
    case 1: return DiskUtils::Platform::GetFreeSpace_Impl(volume, bytes);
    default: return DiskUtils::Platform::GetFileSystemName_Impl(volume, name);
    }
}

unsigned long AllOf(const UTF16String& inRoot)
{
    const unsigned long first = Volume(inRoot, 0);
    EXPECT_EQ(first, Volume(inRoot, 1));
    EXPECT_EQ(first, Volume(inRoot, 2));
    return first;
}

// The HRESULT of the path service for "path not found".
constexpr unsigned long kNoWay = 0x80070003;

// clang-format off
const Situation kRemoving[] = {
    {"rd01", "not empty", {145}, [](const Folder& s) { return RemoveDirectory_Impl(s.Extended(u"dir")); }},
    {"rd02", "a file", {267}, [](const Folder& s) { return RemoveDirectory_Impl(s.Extended(u"f.txt")); }},
    {"rd03", "missing", {2}, [](const Folder& s) { return RemoveDirectory_Impl(s.Extended(u"no")); }},
    {"rd04", "in a missing folder", {3}, [](const Folder& s) { return RemoveDirectory_Impl(s.Extended(u"no\\no")); }},
    {"rd05", "separator at the end", {0}, [](const Folder& s) { return RemoveDirectory_Impl(s.Extended(u"empty\\")); }},
    {"rd06", "read-only", {5}, [](const Folder& s) {
         std::filesystem::permissions(s.Host("empty"), std::filesystem::perms(0555));
         return RemoveDirectory_Impl(s.Extended(u"empty"));
     }, {0}},
    {"rd07", "open, sharing all", {0}, [](const Folder& s) { return s.RemoveBeside(u"empty", 7); }},
    {"rd08", "open without share delete", {32}, [](const Folder& s) { return s.RemoveBeside(u"empty", 3); }},
};

const Situation kKinds[] = {
    {"pd1", "empty directory", {11}, [](const Folder& s) { return Kind(s.Plain(u"empty")); }},
    {"pd2", "the same, separator at the end", {11}, [](const Folder& s) { return Kind(s.Plain(u"empty\\")); }},
    {"pd3", "the same, extended", {11}, [](const Folder& s) { return Kind(s.Extended(u"empty")); }},
    {"pd4", "the same, extended, separator at the end", {11}, [](const Folder& s) { return Kind(s.Extended(u"empty\\")); }},
    {"pd5", "with a file", {1}, [](const Folder& s) { return Kind(s.Plain(u"dir")); }},
    {"pd6", "with a hidden file", {1}, [](const Folder& s) { return Kind(s.Plain(u"hidden")); }},
    {"pd7", "with an empty directory", {1}, [](const Folder& s) { return Kind(s.Plain(u"nested")); }},
    {"pd8", "a file", {0}, [](const Folder& s) { return Kind(s.Plain(u"f.txt")); }},
    {"pd9", "missing", {0}, [](const Folder& s) { return Kind(s.Plain(u"no")); }},
    {"pd10", "a drive", {1}, [](const Folder&) { return Kind(Units(u"C:\\")); }},
    {"pd11", "a drive, extended", {1}, [](const Folder&) { return Kind(Units(u"\\\\?\\C:\\")); }},
    {"pd12", "a drive without separator", {1}, [](const Folder&) { return Kind(Units(u"C:")); }},
    {"pd13", "missing drive", {0}, [](const Folder&) { return Kind(Units(u"Q:\\")); }},
    {"pd14", "slashes, extended", {0}, [](const Folder& s) {
         UTF16String path = s.Extended(u"nested\\empty");
         path[path.rfind('\\')] = '/';
         return Kind(path);
     }},
};
// clang-format on

// Each situation returns 1 if the entry is found, or the error number of a listing that cannot be opened.
// clang-format off
const Situation kFinding[] = {
    {"ff01", "missing", {0}, [](const Folder& s) { return FindEntry_Impl(s.Plain(u"no")); }},
    {"ff02", "in a missing folder", {0}, [](const Folder& s) { return FindEntry_Impl(s.Plain(u"no\\no")); }},
    {"ff03", "all of a missing folder", {3}, [](const Folder& s) { return List(s.Plain(u"no")); }},
    {"ff03", "all below a missing folder", {3}, [](const Folder& s) { return List(s.Plain(u"no\\no")); }},
    {"ff04", "a file", {1}, [](const Folder& s) { return FindEntry_Impl(s.Plain(u"f.txt")); }},
    {"ff05", "a file in another case, where the volume takes it for the same", {1}, [](const Folder& s) {
         return FindEntry_Impl(s.Plain(u"F.TXT")) == s.Has("F.TXT");
     }},
    {"ff06", "a directory", {1}, [](const Folder& s) { return FindEntry_Impl(s.Plain(u"dir")); }},
    {"ff07", "a directory, separator at the end", {0}, [](const Folder& s) { return FindEntry_Impl(s.Plain(u"dir\\")); }},
    {"ff08", "all of an empty directory", {0}, [](const Folder& s) { return List(s.Plain(u"empty")); }},
    {"ff09", "a drive", {0}, [](const Folder&) { return FindEntry_Impl(Units(u"C:\\")); }},
    {"ff10", "a drive, extended", {0}, [](const Folder&) { return FindEntry_Impl(Units(u"\\\\?\\C:\\")); }},
    {"ff11", "the same without separator", {0}, [](const Folder&) { return FindEntry_Impl(Units(u"\\\\?\\C:")); }},
    {"ff12", "empty path", {0}, [](const Folder&) { return FindEntry_Impl(UTF16String()); }},
    {"ff13", "a file, extended", {1}, [](const Folder& s) { return FindEntry_Impl(s.Extended(u"f.txt")); }},
    {"ff14", "dot at the end, extended", {0}, [](const Folder& s) { return FindEntry_Impl(s.Extended(u"f.txt.")); }, {1}},
    {"ff15", "dot at the end, plain", {1}, [](const Folder& s) { return FindEntry_Impl(s.Plain(u"f.txt.")); }},
    {"ff16", "all of a file", {3, 267}, [](const Folder& s) { return List(s.Plain(u"f.txt")); }, {123}},
    {"ff17", "a pattern that nothing fits", {0}, [](const Folder& s) { return FindEntry_Impl(s.Plain(u"*.no")); }},
    {"ff18", "all of a missing drive", {3}, [](const Folder&) { return List(Units(u"Q:\\")); }},
    {"ff19", "slash, extended", {0}, [](const Folder& s) {
         UTF16String path = s.Extended(u"dir\\a.txt");
         path[path.rfind('\\')] = '/';
         return FindEntry_Impl(path);
     }, {1}},
};

const Situation kVolumes[] = {
    {"vo1", "a drive", {0}, [](const Folder&) { return AllOf(Units(u"C:\\")); }},
    {"vo2", "a drive, extended", {0}, [](const Folder&) { return AllOf(Units(u"\\\\?\\C:\\")); }},
    {"vo4", "missing drive", {3}, [](const Folder&) { return AllOf(Units(u"Q:\\")); }},
    {"vo5", "missing drive, extended", {3}, [](const Folder&) { return AllOf(Units(u"\\\\?\\Q:\\")); }},
    {"vo7", "server that does not exist", {53}, [](const Folder&) { return Volume(Units(u"\\\\?\\UNC\\nosuch.invalid\\share\\"), 0); }, {3}},
    {"vo8", "empty path", {3}, [](const Folder&) { return AllOf(UTF16String()); }},
};

const Situation kShell[] = {
    {"so01", "copy into a directory", {0}, [](const Folder& s) { return Operate(ShellFunction::kCopy, s.Plain(u"dir"), s.Plain(u"into")); }},
    {"so02", "what is there after it", {0}, [](const Folder& s) {
         Operate(ShellFunction::kCopy, s.Plain(u"dir"), s.Plain(u"into"));
         EXPECT_EQ("A|N|B", s.Contents("into/a.txt") + "|" + s.Contents("into/noext") + "|" + s.Contents("into/sub/b.txt"));
         return 0u;
     }},
    {"so03", "the same again", {0}, [](const Folder& s) {
         Operate(ShellFunction::kCopy, s.Plain(u"dir"), s.Plain(u"into"));
         return Operate(ShellFunction::kCopy, s.Plain(u"dir"), s.Plain(u"into"));
     }},
    {"so04", "copy into what is missing", {0}, [](const Folder& s) { return Operate(ShellFunction::kCopy, s.Plain(u"dir"), s.Plain(u"new\\deep")); }},
    {"so05", "what is there after it", {0}, [](const Folder& s) {
         Operate(ShellFunction::kCopy, s.Plain(u"dir"), s.Plain(u"new\\deep"));
         EXPECT_EQ("A|N|B", s.Contents("new/deep/a.txt") + "|" + s.Contents("new/deep/noext") + "|" + s.Contents("new/deep/sub/b.txt"));
         return 0u;
     }},
    {"so06", "copy of nothing", {2}, [](const Folder& s) { return Operate(ShellFunction::kCopy, s.Plain(u"empty"), s.Plain(u"into")); }, {0}},
    {"so07", "copy of what is missing", {2, 3, 0x7C, 1026}, [](const Folder& s) { return Operate(ShellFunction::kCopy, s.Plain(u"no"), s.Plain(u"into")); }, {0}},
    {"so08", "move into a directory", {0}, [](const Folder& s) { return Operate(ShellFunction::kMove, s.Plain(u"dir"), s.Plain(u"into")); }},
    {"so09", "what is there after it", {0}, [](const Folder& s) {
         Operate(ShellFunction::kMove, s.Plain(u"dir"), s.Plain(u"into"));
         EXPECT_EQ("A|N|B", s.Contents("into/a.txt") + "|" + s.Contents("into/noext") + "|" + s.Contents("into/sub/b.txt"));
         EXPECT_FALSE(s.Has("dir/a.txt") || s.Has("dir/sub"));
         return 0u;
     }},
    {"so10", "move of nothing", {2}, [](const Folder& s) { return Operate(ShellFunction::kMove, s.Plain(u"empty"), s.Plain(u"into")); }, {0}},
    {"so11", "delete", {0}, [](const Folder& s) { return Operate(ShellFunction::kDelete, s.Plain(u"dir")); }},
    {"so12", "what is there after it", {0}, [](const Folder& s) {
         Operate(ShellFunction::kDelete, s.Plain(u"dir"));
         EXPECT_TRUE(s.Has("dir"));
         EXPECT_FALSE(s.Has("dir/a.txt") || s.Has("dir/noext") || s.Has("dir/sub"));
         return 0u;
     }},
    {"so13", "delete nothing", {0}, [](const Folder& s) { return Operate(ShellFunction::kDelete, s.Plain(u"empty")); }},
    {"so14", "delete in what is missing", {2, 0x7C, 1026}, [](const Folder& s) { return Operate(ShellFunction::kDelete, s.Plain(u"no")); }, {0}},
};

const Situation kPreparing[] = {
    {"pw1", "there already", {0}, [](const Folder& s) { return PrepareForWrite_Impl(s.Plain(u"dir\\")); }},
    {"pw2", "new", {0}, [](const Folder& s) { return PrepareForWrite_Impl(s.Plain(u"new\\")) + (s.Has("new") ? 0u : 1u); }},
    {"pw3", "new below new", {0}, [](const Folder& s) { return PrepareForWrite_Impl(s.Plain(u"new\\deep\\")) + (s.Has("new/deep") ? 0u : 1u); }},
    {"pw4", "a file in the way", {kNoWay}, [](const Folder& s) { return PrepareForWrite_Impl(s.Plain(u"f.txt\\")); }},
    {"pw5", "missing drive", {kNoWay}, [](const Folder&) { return PrepareForWrite_Impl(Units(u"Q:\\new\\")); }},
    {"pw6", "there already, extended", {0}, [](const Folder& s) { return PrepareForWrite_Impl(s.Extended(u"dir\\")); }},
    {"pw7", "new below new, extended", {0}, [](const Folder& s) { return PrepareForWrite_Impl(s.Extended(u"new\\deep\\")) + (s.Has("new/deep") ? 0u : 1u); }},
    {"pw9", "new without separator", {0}, [](const Folder& s) { return PrepareForWrite_Impl(s.Plain(u"new")) + (s.Has("new") ? 0u : 1u); }},
};
// clang-format on

template <std::size_t Count>
void Expect(const Situation (&inSituations)[Count])
{
    const bool isEmulator = RunsOnEmulator();
    for (const Situation& situation : inSituations) {
        const Folder stage;
        const unsigned long answer = situation.mRun(stage);
        const auto& expected =
            isEmulator && !situation.mWineResults.empty() ? situation.mWineResults : situation.mWindowsResults;
        EXPECT_EQ(1u, expected.count(answer)) << situation.mRecord << " " << situation.mText << ": " << answer;
    }
}

} // namespace

TEST(DirectorySituations, Removing_AnswersAsAtHome)
{
    Expect(kRemoving);
}
TEST(DirectorySituations, Kinds_AreThoseAtHome)
{
    Expect(kKinds);
}
TEST(DirectorySituations, Finding_AnswersAsAtHome)
{
    Expect(kFinding);
}
TEST(DirectorySituations, Volumes_AnswerAsAtHome)
{
    Expect(kVolumes);
}
TEST(DirectorySituations, TheShell_AnswersAsAtHome)
{
    Expect(kShell);
}
TEST(DirectorySituations, Preparing_AnswersAsAtHome)
{
    Expect(kPreparing);
}
