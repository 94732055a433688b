// Sends orl commands the signals that stop a program, before system calls throughout each run.
#include <OwnUserStore.h>
#include <ProcessRunner.h>
#include <TempFolder.h>
#include <TracedRunLinux.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace ORLTest;

namespace {

namespace fs = std::filesystem;

constexpr int kStopped = 130;
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

class OrlStop : public testing::Test
{
protected:
    OrlStop() { mFolder.MakeFile("clip.mov", std::string(1 << 20, 'c')); }

    std::string Host(const std::string& inName) const { return (mFolder.Host() / inName).string(); }

    // Returns the number of counted calls; negative if processes cannot be traced here.
    int Run(const std::vector<std::string>& inArguments, int inSignalAt = 0, int inSignal = 0)
    {
        std::vector<std::string> arguments = inArguments;
        arguments.insert(arguments.begin(), FolderOfThisProgram() + "orl");
        const int calls = mTraced.Run(arguments, inSignalAt, inSignal);
        return mTraced.ExitCode() == 99 ? -1 : calls;
    }

    std::map<std::string, std::string> Files() const
    {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::directory_iterator(mFolder.Host())) {
            std::ifstream file(entry.path(), std::ios::binary);
            files[entry.path().filename()] =
                std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        }
        return files;
    }

    // Expects that a stopped command leaves the folder as it was, and that any other leaves the complete file.
    void ExpectAllOrNothing(const std::vector<std::string>& inArguments, const std::string& inFile)
    {
        constexpr int kPoints = 8;
        const auto before = Files();
        const int calls = Run(inArguments);
        if (calls < 0) {
            GTEST_SKIP() << "processes cannot be traced here";
        }
        ASSERT_EQ(0, mTraced.ExitCode());
        const auto after = Files();
        ASSERT_NE(before, after);
        for (const int signal : kSignals) {
            int stops = 0;
            for (int point = 0; point < kPoints; ++point) {
                Restore(before, inFile);
                const int number = 1 + point * calls / kPoints;
                SCOPED_TRACE("signal " + std::to_string(signal) + " before call " + std::to_string(number));
                Run(inArguments, number, signal);
                const bool isStopped = mTraced.ExitCode() == kStopped;
                stops += isStopped ? 1 : 0;
                EXPECT_TRUE(isStopped || mTraced.ExitCode() == 0) << mTraced.ExitCode();
                EXPECT_TRUE((isStopped ? before : after) == Files());
            }
            EXPECT_LE(1, stops) << "signal " << signal;
        }
    }

    // Starts orl and returns its process when it waits in a call that opens a file; 0 if it ends before.
    static pid_t StartUntilItWaitsInOpen(std::vector<std::string> inArguments)
    {
        std::string program = FolderOfThisProgram() + "orl";
        std::vector<char*> arguments{program.data()};
        for (std::string& argument : inArguments) {
            arguments.push_back(argument.data());
        }
        arguments.push_back(nullptr);
        const pid_t child = ::fork();
        if (child == 0) {
            ::execv(program.c_str(), arguments.data());
            ::_exit(99);
        }
        while (!WaitsInOpen(child)) {
            if (::waitpid(child, nullptr, WNOHANG) != 0) {
                return 0;
            }
            ::usleep(1000);
        }
        return child;
    }

    // Returns the word after inKey, or the first word if inKey is empty.
    static std::string WordOf(const std::string& inFile, const std::string& inKey)
    {
        std::ifstream file(inFile);
        std::string word;
        while (!inKey.empty() && file >> word && word != inKey) {
        }
        return file >> word ? word : std::string();
    }

    // A process that sleeps has handled each signal that is not pending.
    static bool WaitsInOpen(pid_t inProcess)
    {
        const std::string folder = "/proc/" + std::to_string(inProcess) + "/";
        return WordOf(folder + "status", "ShdPnd:") == "0000000000000000" && WordOf(folder + "status", "State:") == "S"
               && WordOf(folder + "syscall", "") == std::to_string(SYS_openat);
    }

    // Returns the exit code. Ends a process that goes on waiting, and returns -1.
    static int ExitCodeUnlessItWaits(pid_t inProcess)
    {
        int status = 0;
        while (::waitpid(inProcess, &status, WNOHANG) == 0) {
            if (WaitsInOpen(inProcess)) {
                ::kill(inProcess, SIGKILL);
                ::waitpid(inProcess, &status, 0);
                return -1;
            }
            ::usleep(1000);
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -2;
    }

    void Restore(const std::map<std::string, std::string>& inFiles, const std::string& inFile)
    {
        const auto found = inFiles.find(inFile);
        if (found == inFiles.end()) {
            fs::remove(mFolder.Host() / inFile);
        } else {
            mFolder.MakeFile(inFile, found->second);
        }
    }

    const OwnUserStore mStore;
    TempFolder mFolder;
    TracedRun mTraced{mFolder.Host().string()};
};

} // namespace

TEST_F(OrlStop, ReadingCommands_EndWith130AtEachSignal)
{
    const std::vector<std::vector<std::string>> commands = {
        {"stream", Host("clip.mov")},      {"hash", Host("clip.mov")},         {"info", Host("clip.mov")},
        {"res", "list", Host("clip.mov")}, {"res", "check", Host("clip.mov")}, {"reg", "import", Host("clip.mov")}};
    for (const std::vector<std::string>& command : commands) {
        for (const int signal : kSignals) {
            if (Run(command, 1, signal) < 0) {
                GTEST_SKIP() << "processes cannot be traced here";
            }
            EXPECT_EQ(kStopped, mTraced.ExitCode()) << command[0] << ' ' << command[1] << ", signal " << signal;
        }
    }
}

TEST_F(OrlStop, Clip_IsCompleteOrAbsent)
{
    ExpectAllOrNothing({"make-clip", Host("clip.y4m"), "--size", "1"}, "clip.y4m");
}

TEST_F(OrlStop, ExtractedResource_IsCompleteOrTheOldFileStays)
{
    mFolder.MakeFile("resource", "the old file");
    ExpectAllOrNothing(
        {"res", "extract", FolderOfThisProgram() + "resources_lookup.res", "RCDATA", "301", "-o", Host("resource")},
        "resource");
}

TEST_F(OrlStop, Picture_IsCompleteOrAbsent)
{
    ExpectAllOrNothing(
        {"res", "picture", FolderOfThisProgram() + "images_pictures.so", "101", "-o", Host("picture.png")},
        "picture.png");
}

TEST_F(OrlStop, ExportedSettings_AreCompleteOrTheOldFileStays)
{
    ASSERT_EQ(0, RunBesideThisProgram("orl", {"reg", "set", "HKCU\\Software\\Tool", "n", "v"}).mExitCode);
    mFolder.MakeFile("settings.reg", "the old file");
    ExpectAllOrNothing({"reg", "export", "HKCU\\Software\\Tool", Host("settings.reg")}, "settings.reg");
}

// Without a reader, opening a pipe waits forever.
TEST_F(OrlStop, PipeWithoutAReader_EndsWith130AtEachSignal)
{
    ASSERT_EQ(0, RunBesideThisProgram("orl", {"reg", "set", "HKCU\\Software\\Tool", "n", "v"}).mExitCode);
    ASSERT_EQ(0, ::mkfifo(Host("pipe").c_str(), 0600));
    if (Run({"hash", Host("clip.mov")}) < 0 || WordOf("/proc/self/syscall", "").empty()) {
        GTEST_SKIP() << "processes cannot be traced here";
    }
    const std::vector<std::vector<std::string>> commands = {
        {"reg", "export", "HKCU\\Software\\Tool", Host("pipe")},
        {"res", "extract", FolderOfThisProgram() + "resources_lookup.res", "RCDATA", "301", "-o", Host("pipe")},
    };
    for (const std::vector<std::string>& command : commands) {
        for (const int signal : kSignals) {
            const pid_t process = StartUntilItWaitsInOpen(command);
            ASSERT_NE(0, process) << command[0];
            ::kill(process, signal);
            EXPECT_EQ(kStopped, ExitCodeUnlessItWaits(process)) << command[0] << ", signal " << signal;
        }
    }
}

// nohup and shells start programs with some signals ignored; orl must not handle these signals.
TEST_F(OrlStop, IgnoredSignal_StaysIgnored)
{
    const std::string command = "trap '' HUP; exec '" + FolderOfThisProgram() + "orl' hash '" + Host("clip.mov")
                                + "' > '" + Host("words") + "'";
    const int calls = mTraced.Run({"/bin/bash", "-c", command}, 0);
    if (calls < 0 || mTraced.ExitCode() == 99) {
        GTEST_SKIP() << "processes cannot be traced here";
    }
    const auto expected = Files();
    for (const int number : {calls / 2, calls}) {
        fs::remove(Host("words"));
        mTraced.Run({"/bin/bash", "-c", command}, number, SIGHUP);
        EXPECT_EQ(0, mTraced.ExitCode()) << number;
        EXPECT_TRUE(expected == Files()) << number;
    }
}
