// Files of /proc whose contents a test chooses.
#pragma once

#include <FaultySystemCallsLinux.h>

#include <cstring>
#include <map>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace ORLTest {

/// While an instance exists, a file passed to Set has the given contents for the library. Other calls go to the
/// kernel. Calls() can add faults. Only one instance may exist at a time.
class FakeProc
{
public:
    FakeProc() { mCalls.Underlying().mOpen = &Open; }
    ~FakeProc() { Files().clear(); }
    FakeProc(const FakeProc&) = delete;
    FakeProc& operator=(const FakeProc&) = delete;

    void Set(const std::string& inPath, const std::string& inContents) { Files()[inPath] = inContents; }
    FaultySystemCalls& Calls() { return mCalls; }

private:
    static std::map<std::string, std::string>& Files()
    {
        static std::map<std::string, std::string> files;
        return files;
    }

    static int Open(const char* inPath, int inFlags, mode_t inMode)
    {
        const auto found = Files().find(inPath);
        if (found == Files().end()) {
            return ORL::Linux::kSystem.mOpen(inPath, inFlags, inMode);
        }
        const int file = ::memfd_create("proc", MFD_CLOEXEC);
        const std::string& contents = found->second;
        if (::write(file, contents.data(), contents.size()) != static_cast<ssize_t>(contents.size())) {
            ::abort();
        }
        return file;
    }

    FaultySystemCalls mCalls;
};

} // namespace ORLTest
