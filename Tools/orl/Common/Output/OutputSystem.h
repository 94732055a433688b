// How the system opens files for writing.
#pragma once

#include <cstdio>
#include <filesystem>

namespace orl {

/// Creates a file and opens it for writing bytes. Returns null and sets errno if that fails, or if the name is taken,
/// even by a link. The caller closes the file.
std::FILE* CreateNewFile(const std::filesystem::path& inPath);

/// Opens a file, a pipe or a device for writing bytes; creates a missing file and truncates an existing one. Returns
/// null and sets errno on failure. The caller closes the file.
std::FILE* OpenForWriting(const std::filesystem::path& inPath);

/// Opens an existing file for writing, and closes it unchanged. Returns false and sets errno on failure.
bool CanWrite(const std::filesystem::path& inPath);

/// On Windows, returns the path in the form that is exempt from the 260-unit limit; on Linux, the path unchanged.
std::filesystem::path WithoutLimit(const std::filesystem::path& inPath);

} // namespace orl
