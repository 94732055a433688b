#include <ProcessRunner.h>

#include <cstdio>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ORLTest {

namespace {

std::string ReadAll(std::FILE* inFile)
{
    std::string text;
    std::rewind(inFile);
    for (int byte = std::fgetc(inFile); byte != EOF; byte = std::fgetc(inFile)) {
        text += static_cast<char>(byte);
    }
    std::fclose(inFile);
    return text;
}

std::FILE* FileOf(const std::string& inBytes)
{
    std::FILE* const file = std::tmpfile();
    std::fwrite(inBytes.data(), 1, inBytes.size(), file);
    std::rewind(file);
    return file;
}

// Runs between fork and exec: only async-signal-safe calls are allowed.
[[noreturn]] void ExecProgram(const std::string& inProgram, std::vector<char*>& inArguments,
                              const std::string& inFolder, int inInput, int inOutput, int inErrors)
{
    ::dup2(inInput, STDIN_FILENO);
    ::dup2(inOutput, STDOUT_FILENO);
    ::dup2(inErrors, STDERR_FILENO);
    if (inFolder.empty() || ::chdir(inFolder.c_str()) == 0) {
        ::execv(inProgram.c_str(), inArguments.data());
    }
    ::_exit(127);
}

void WaitFor(pid_t inProcess, int inSeconds, ProcessResult& outResult)
{
    const int handle = static_cast<int>(::syscall(SYS_pidfd_open, inProcess, 0));
    pollfd ended{handle, POLLIN, 0};
    outResult.mTimedOut = ::poll(&ended, 1, inSeconds * 1000) == 0;
    ::close(handle);
    if (outResult.mTimedOut) {
        ::kill(inProcess, SIGKILL);
    }
    int status = 0;
    ::waitpid(inProcess, &status, 0);
    outResult.mExitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

std::string FolderOfThisProgram()
{
    char path[4096];
    const ssize_t size = ::readlink("/proc/self/exe", path, sizeof(path));
    const std::string program(path, size > 0 ? static_cast<std::size_t>(size) : 0);
    return program.substr(0, program.rfind('/') + 1);
}

ProcessResult RunBesideThisProgram(const std::string& inName, const std::vector<std::string>& inArguments,
                                   const std::string& inWorkingFolder, int inSeconds, const std::string& inInput)
{
    std::string program = FolderOfThisProgram() + inName;
    std::vector<std::string> words = inArguments;
    std::vector<char*> arguments{program.data()};
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    std::FILE* input = FileOf(inInput);
    std::FILE* output = std::tmpfile();
    std::FILE* errors = std::tmpfile();
    const pid_t process = ::fork();
    if (process == 0) {
        ExecProgram(program, arguments, inWorkingFolder, ::fileno(input), ::fileno(output), ::fileno(errors));
    }
    ProcessResult result;
    WaitFor(process, inSeconds, result);
    std::fclose(input);
    result.mOutput = ReadAll(output);
    result.mErrors = ReadAll(errors);
    return result;
}

} // namespace ORLTest
