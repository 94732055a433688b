// Sends Ctrl-Break to an ingest; unlike Ctrl-C it can be sent to a single program in a console.
#include "IngestTestSupport.h"
#include <ProcessRunner.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <windows.h>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

constexpr DWORD kStopped = 130;
constexpr char kLine[] = "orl: ingest: stopped by the user; files in place are complete and are kept\r\n";

class InterruptedIngestOnWindows : public testing::Test
{
protected:
    InterruptedIngestOnWindows()
    {
        mFolder.MakeFolder("card");
        for (const char* name : {"card/a", "card/b"}) {
            mFolder.MakeFile(name, std::string(std::size_t{48} << 20, name[5]));
        }
    }

    fs::path Disk() const { return mFolder.Host() / "disk"; }

    bool HasUnfinishedFile() const
    {
        std::error_code ignored;
        for (fs::directory_iterator entry(Disk(), ignored), end; entry != end; entry.increment(ignored)) {
            if (entry->path().extension() == ".part") {
                return true;
            }
        }
        return false;
    }

    HANDLE OpenForChild(const char* inName) const
    {
        SECURITY_ATTRIBUTES inheritable{sizeof(inheritable), nullptr, TRUE};
        return ::CreateFileW((mFolder.Host() / inName).c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inheritable,
                             CREATE_ALWAYS, 0, nullptr);
    }

    /// Starts an ingest in a separate process group.
    bool Start()
    {
        const std::wstring program = fs::u8path(FolderOfThisProgram()).wstring() + L"orl.exe";
        std::wstring line = L"\"" + program + L"\" ingest \"" + (mFolder.Host() / "card").wstring() + L"\" \""
                            + Disk().wstring() + L"\"";
        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = OpenForChild("output");
        startup.hStdError = OpenForChild("errors");
        const bool isStarted = ::CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE,
                                                CREATE_NEW_PROCESS_GROUP, nullptr, nullptr, &startup, &mProcess)
                               != FALSE;
        ::CloseHandle(startup.hStdOutput);
        ::CloseHandle(startup.hStdError);
        return isStarted;
    }

    bool IsRunning() const { return ::WaitForSingleObject(mProcess.hProcess, 0) == WAIT_TIMEOUT; }

    DWORD Wait() const
    {
        DWORD exitCode = 0;
        ::WaitForSingleObject(mProcess.hProcess, INFINITE);
        ::GetExitCodeProcess(mProcess.hProcess, &exitCode);
        ::CloseHandle(mProcess.hThread);
        ::CloseHandle(mProcess.hProcess);
        return exitCode;
    }

    /// Expects complete files with their final names and their lines in the manifest, and nothing else.
    void ExpectOnlyCompleteFiles() const
    {
        const auto manifest =
            fs::exists(Disk() / kManifest) ? ReadManifest(Disk() / kManifest) : std::map<std::string, std::string>();
        std::size_t files = 0;
        for (const auto& entry : fs::directory_iterator(Disk())) {
            const std::string name = entry.path().filename().u8string();
            if (name != kManifest) {
                ++files;
                EXPECT_EQ(1u, manifest.count(name)) << name;
                EXPECT_TRUE(ReadFile(entry.path()) == ReadFile(mFolder.Host() / "card" / name)) << name;
            }
        }
        EXPECT_EQ(files, manifest.size());
    }

    TempFolder mFolder;
    PROCESS_INFORMATION mProcess{};
};

} // namespace

TEST_F(InterruptedIngestOnWindows, InTheMiddleOfAFile_LeavesNothingHalfAndASecondRunCompletes)
{
    ASSERT_TRUE(Start());
    while (IsRunning() && !HasUnfinishedFile()) {
        ::Sleep(1);
    }
    const bool isSent = ::GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, mProcess.dwProcessId) != FALSE;
    const DWORD exitCode = Wait();
    if (!isSent) {
        EXPECT_EQ(0u, exitCode);
        ExpectOnlyCompleteFiles();
        GTEST_SKIP() << "this system (Wine 8.0) sends no Ctrl-Break to a program";
    }
    EXPECT_EQ(kStopped, exitCode);
    EXPECT_EQ(kLine, ReadFile(mFolder.Host() / "errors"));
    ExpectOnlyCompleteFiles();
    const ProcessResult again =
        RunBesideThisProgram("orl", {"ingest", (mFolder.Host() / "card").u8string(), Disk().u8string()});
    EXPECT_EQ(0, again.mExitCode) << again.mErrors;
    ExpectOnlyCompleteFiles();
    EXPECT_EQ(2u, ReadManifest(Disk() / kManifest).size());
}
