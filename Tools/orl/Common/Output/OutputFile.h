// A file that appears under its name only when it is complete.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>

namespace orl {

/// Writes a file under a random temporary name in the same folder, and renames it at the end. An existing file keeps
/// its contents until then; its permissions are preserved, and a link to a file stays a link. Anything else that
/// exists, such as a pipe or a device, is written directly, and so is an existing file in a folder that accepts no new
/// files.
class OutputFile
{
public:
    /// inCommand names the command in messages. inArgument is a host path or a library path. Throws Failure if the file
    /// cannot be created, or exists and must not be written. If there is a temporary file, the stop signals from
    /// now on only set a flag; otherwise they end the program.
    OutputFile(const std::string& inCommand, const std::string& inArgument);

    /// Deletes the temporary file unless Finish has renamed it.
    ~OutputFile();

    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Throws Failure if the bytes cannot be written or if the user has stopped the program.
    void Write(const void* inBytes, std::size_t inCount);
    void Write(const std::string& inBytes) { Write(inBytes.data(), inBytes.size()); }

    /// Renames the file to its final name. Throws like Write.
    void Finish();

private:
    [[noreturn]] void Fail(const std::string& inReason) const;
    [[noreturn]] void FailWith(int inError) const;
    void CheckStop() const;
    void OpenFile(const std::filesystem::file_status& inEarlier);
    void OpenDirectly();

    const std::string mCommand;
    const std::string mArgument;
    std::filesystem::path mPath; // the final name
    std::filesystem::path mPart; // the temporary name; empty if the file is written directly
    std::FILE* mFile = nullptr;
};

} // namespace orl
