#include "FileOperationsLinux.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

using namespace ORL;

namespace ORLTest {

namespace {

// A copy's ignored closes: only a failure of the first close, that of the new file, must be reported.
const IgnoredFailure kOtherCloses[] = {{Faults::kClose, 2}, {Faults::kClose, 3}};

bool KeepGoing(float, void*)
{
    return true;
}

void MakeOldAndNew(const TempFolder& inFolder)
{
    inFolder.MakeFile("f", Big('o'));
    inFolder.MakeFile("n", Big('n'));
}

// If the lock on the new file is refused, another process has opened the file, so it stays empty and is not deleted.
void ExpectCopyOrNothing(const TempFolder& inFolder, const char* inName, Result inResult,
                         Result inRefusal = kSharingViolation)
{
    const std::string contents = ContentsOf(inFolder, inName);
    const bool mayBeAnothers = inResult == inRefusal && contents.empty();
    EXPECT_TRUE(mayBeAnothers || contents == (ResultSucceeded(inResult) ? Big('o') : "<none>")) << contents.size();
}

// A copy with progress reports most failures as a full disk.
Result MapCopyError(Faults::Call, SystemError inError)
{
    using namespace SystemErrors;
    return inError == kErrorFileNotFound || inError == kErrorAccessDenied ? Files::ResultOf(inError) : kDiskFull;
}

} // namespace

std::vector<FileOperation> TransferOperations()
{
    return {
        {"CopyToNew",
         &MakeOld,
         [](const TempFolder& folder) { return File::Copy(folder.Path(u"f"), folder.Path(u"c")); },
         [](const TempFolder& folder, Result result) {
             ExpectUntouched(folder, result);
             ExpectCopyOrNothing(folder, "c", result);
         },
         {1, 3},
         {kInterruptedOpen, kOtherCloses[0]}},
        {"CopyOver",
         &MakeOldAndNew,
         [](const TempFolder& folder) { return File::Copy(folder.Path(u"f"), folder.Path(u"n")); },
         [](const TempFolder& folder, Result result) {
             const bool succeeded = ResultSucceeded(result);
             ExpectUntouched(folder, result);
             const std::string copy = ContentsOf(folder, "n");
             EXPECT_TRUE(succeeded ? copy == Big('o') : copy == Big('n') || copy == "<none>");
         },
         {1, 3},
         {kInterruptedOpen, {Faults::kOpen, 3, {EACCES, ENOENT}}, kOtherCloses[0]}},
        {"CopyWithProgress",
         &MakeOld,
         [](const TempFolder& folder) {
             return File::CopyWithProgress(folder.Path(u"f"), folder.Path(u"c"), &KeepGoing, nullptr);
         },
         [](const TempFolder& folder, Result result) {
             ExpectUntouched(folder, result);
             ExpectCopyOrNothing(folder, "c", result, kDiskFull);
         },
         {1, 3},
         {kInterruptedOpen, kOtherCloses[0]},
         &MapCopyError},
        {"Move",
         &MakeOld,
         [](const TempFolder& folder) { return File::Move(folder.Path(u"f"), folder.Path(u"m")); },
         [](const TempFolder& folder, Result result) {
             const bool succeeded = ResultSucceeded(result);
             EXPECT_TRUE((succeeded ? "<none>" : Big('o')) == ContentsOf(folder, "f"));
             ExpectCopyOrNothing(folder, "m", result);
         },
         {1},
         {{Faults::kOpen}, kEveryClose}},
        {"MoveToAnotherVolume",
         &MakeOld,
         [](const TempFolder& folder) { return File::Move(folder.Path(u"f"), folder.Path(u"m")); },
         [](const TempFolder& folder, Result result) {
             const bool succeeded = ResultSucceeded(result);
             const std::string source = ContentsOf(folder, "f");
             EXPECT_TRUE(source == Big('o') || (succeeded && source == "<none>"));
             ExpectCopyOrNothing(folder, "m", result);
         },
         {1, 3, 6},
         {{Faults::kOpen, 1},
          {Faults::kOpen, 2, {EACCES, EPERM}},
          {Faults::kFSync, 2, {EINVAL}},
          kInterruptedOpen,
          kOtherCloses[0],
          kOtherCloses[1],
          {Faults::kClose, 4},
          {Faults::kUnlink}},
         &MapDirectly,
         {},
         true},
        {"MoveALinkToAnotherVolume",
         [](const TempFolder& folder) {
             MakeOld(folder);
             std::filesystem::create_symlink("f", folder.Host() / "link");
         },
         [](const TempFolder& folder) { return File::Move(folder.Path(u"link"), folder.Path(u"m")); },
         [](const TempFolder& folder, Result result) {
             const bool succeeded = ResultSucceeded(result);
             ExpectUntouched(folder, result);
             EXPECT_EQ(succeeded, std::filesystem::is_symlink(folder.Host() / "m"));
             EXPECT_TRUE(succeeded || std::filesystem::is_symlink(folder.Host() / "link"));
         },
         {},
         {{Faults::kOpen, 0, {EACCES, EPERM}},
          {Faults::kFSync, 1, {EINVAL}},
          kInterruptedOpen,
          kEveryClose,
          {Faults::kUnlink}},
         &MapDirectly,
         {},
         true},
        {"SwapTempFile",
         &MakeOldAndNew,
         [](const TempFolder& folder) { return File::SwapTempFile(folder.Path(u"n"), folder.Path(u"f")); },
         [](const TempFolder& folder, Result result) {
             const bool succeeded = ResultSucceeded(result);
             const std::string real = ContentsOf(folder, "f");
             const std::string temp = ContentsOf(folder, "n");
             EXPECT_TRUE(real == Big('n') || real == Big('o')) << "the real file is whole";
             EXPECT_TRUE((temp == Big('n')) == (real == Big('o'))) << "the temporary name stands until it is done";
             EXPECT_TRUE(!succeeded || real == Big('n'));
             const auto names = std::distance(std::filesystem::directory_iterator(folder.Host()), {});
             EXPECT_TRUE(real == Big('n') || names == 2) << "what failed before the swap leaves no second name";
         },
         // Ignored: the first statx calls, which look for a free name; the unlink of the backup; the open of the
         // folder, whose volume is synced instead.
         {1, 3},
         {kInterruptedOpen,
          {Faults::kOpen, 3, {EACCES, EPERM}},
          kEveryClose,
          {Faults::kStatx, 1},
          {Faults::kStatx, 2},
          {Faults::kUnlink},
          {Faults::kFSync, 2, {EINVAL}}}},
    };
}

} // namespace ORLTest
