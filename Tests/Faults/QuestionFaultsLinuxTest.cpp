// Fails each system call in the path, directory and volume queries with several errors. Each query must
// return the true result or its result for a failure, and leave no descriptor open.
#include <FaultySystemCallsLinux.h>
#include <SystemProbes.h>
#include <TempFolder.h>
#include <TextHelpers.h>

#include <ORLDirectory.h>
#include <ORLDiskUtils.h>
#include <ORLHostPath.h>
#include <ORLPathUtils.h>
#include <ORLResult.h>

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

using namespace ORL;
using namespace ORLTest;

namespace {

using Faults = FaultySystemCalls;

constexpr int kErrors[] = {EIO,    EACCES, ENOMEM, EMFILE, ENFILE, ELOOP, ENOTDIR,
                           ENOENT, EINTR,  EROFS,  ENOSPC, EINVAL, ESTALE};

struct Query
{
    const char* mName;
    std::string (*mAsk)(const TempFolder&); // returns the result of the query as a string
    std::string mTrue;
    std::string mRefused; // the result for a failed call, also accepted
};

std::string Text(bool inAnswer)
{
    return inAnswer ? "yes" : "no";
}

const Query kQueries[] = {
    {"ExistsOnDisk", [](const TempFolder& f) { return Text(PathUtils::ExistsOnDisk(f.Path(u"file"))); }, "yes", "no"},
    {"ExistsOnDiskMissing", [](const TempFolder& f) { return Text(PathUtils::ExistsOnDisk(f.Path(u"none"))); }, "no",
     "no"},
    {"ExistsByPattern", [](const TempFolder& f) { return Text(PathUtils::ExistsOnDisk(f.Path(u"fi*"))); }, "yes", "no"},
    {"IsDirectory", [](const TempFolder& f) { return Text(PathUtils::IsDirectory(f.Path(u"empty"))); }, "yes", "no"},
    {"IsDirectoryEmpty", [](const TempFolder& f) { return Text(PathUtils::IsDirectoryEmpty(f.Path(u"empty"))); }, "yes",
     "no"},
    {"IsDirectoryEmptyFull", [](const TempFolder& f) { return Text(PathUtils::IsDirectoryEmpty(f.Path(u"full"))); },
     "no", "no"},
    {"IsHidden", [](const TempFolder& f) { return Text(PathUtils::IsHidden(f.Path(u"file"))); }, "no", "yes"},
    {"IsReadOnlyFile", [](const TempFolder& f) { return Text(PathUtils::IsReadOnly(f.Path(u"file"))); }, "no", "yes"},
    {"IsReadOnlyFolder", [](const TempFolder& f) { return Text(PathUtils::IsReadOnly(f.Path(u"empty"))); }, "no",
     "yes"},
    {"PreparePathForWrite",
     [](const TempFolder& f) { return Text(PathUtils::PreparePathForWrite(f.Path(u"new\\er\\"))); }, "yes", "no"},
    {"CreateOnDisk",
     [](const TempFolder& f) { return Text(Directory::CreateOnDisk(f.Path(u"new\\er"), true) == kSuccess); }, "yes",
     "no"},
    {"Delete", [](const TempFolder& f) { return Text(Directory::Delete(f.Path(u"empty")) == kSuccess); }, "yes", "no"},
    {"IsDirectoryWriteable",
     [](const TempFolder& f) {
         try {
             return Text(Directory::ConstructDirectory(f.Path(u"empty")).IsDirectoryWriteable());
         } catch (const eNotADirectoryPath&) {
             return Text(false);
         }
     },
     "yes", "no"},
    {"GetFreeDriveSpace", [](const TempFolder& f) { return Text(PathUtils::GetFreeDriveSpace(f.Path(u"file")) != 0); },
     "yes", "no"},
    {"GetEfficientDiskBufferSizeFromPath",
     [](const TempFolder& f) {
         unsigned int size = 77;
         const Result result = DiskUtils::GetEfficientDiskBufferSizeFromPath(f.Path(u"file"), size);
         EXPECT_EQ(result == kSuccess, size >= 512) << size;
         EXPECT_NE(77u, size) << "it is written in any case";
         return Text(result == kSuccess);
     },
     "yes", "no"},
    {"GetMaxFileSize",
     [](const TempFolder& f) {
         unsigned __int64 size = 77;
         const Result result = DiskUtils::GetMaxFileSize(f.Path(u"file"), size);
         EXPECT_EQ(result == kSuccess, size != 77) << size;
         return Text(result == kSuccess);
     },
     "yes", "no"},
    {"GetFileSystemName",
     [](const TempFolder& f) {
         UTF16String name;
         const Result result = DiskUtils::GetFileSystemName(f.Path(u"file"), name);
         EXPECT_EQ(result == kSuccess, !name.empty());
         return Text(result == kSuccess);
     },
     "yes", "no"},
    {"ToHostPath",
     [](const TempFolder& f) {
         std::string host;
         return Text(PathUtils::ToHostPath(f.Path(u"file"), host) == kSuccess);
     },
     "yes", "no"},
    {"MakeUniqueFilename",
     [](const TempFolder& f) { return Text(PathUtils::MakeUniqueFilename(f.Path(u"file")) == f.Path(u"file_1")); },
     "yes", "no"},
};

void Prepare(const TempFolder& inFolder)
{
    for (const auto& entry : std::filesystem::directory_iterator(inFolder.Host())) {
        std::filesystem::remove_all(entry.path());
    }
    inFolder.MakeFolder("empty");
    inFolder.MakeFolder("full/sub");
    inFolder.MakeFile("file", "contents");
}

class QuestionFaults : public testing::TestWithParam<Query>
{
};

} // namespace

TEST_P(QuestionFaults, EachCallThatFails_GivesTheTrueAnswerOrNone)
{
    const Query& query = GetParam();
    const TempFolder folder;
    unsigned counts[Faults::kCallCount] = {};
    Prepare(folder);
    {
        Faults calls;
        EXPECT_EQ(query.mTrue, query.mAsk(folder));
        for (int call = 0; call < Faults::kCallCount; ++call) {
            counts[call] = calls.Count(static_cast<Faults::Call>(call));
        }
    }
    for (int call = 0; call < Faults::kCallCount; ++call) {
        for (const int error : kErrors) {
            for (unsigned number = 1; counts[call] != 0; ++number) {
                SCOPED_TRACE("call " + std::to_string(call) + " number " + std::to_string(number) + " error "
                             + std::to_string(error));
                Prepare(folder);
                const unsigned handles = OpenHandles();
                bool isMet = false;
                std::string answer;
                {
                    Faults calls;
                    calls.Fail(static_cast<Faults::Call>(call), number, error);
                    answer = query.mAsk(folder);
                    isMet = calls.Count(static_cast<Faults::Call>(call)) >= number;
                }
                EXPECT_TRUE(answer == query.mTrue || (isMet && answer == query.mRefused)) << answer;
                EXPECT_EQ(handles, OpenHandles());
                if (!isMet || HasFailure()) {
                    break;
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Questions, QuestionFaults, testing::ValuesIn(kQueries),
                         [](const testing::TestParamInfo<Query>& inInfo) { return std::string(inInfo.param.mName); });
