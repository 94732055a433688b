// Copies the contents of one open file into another.
#pragma once

#include <Platform/File.h>

#include <cstdint>

namespace ORL {
namespace Linux {

/// Copies all bytes, from the beginning, into an empty file. The kernel copies them, and clones them if the volume can,
/// in steps small enough to report progress. Files of up to 16 KiB, and files that the kernel cannot copy, are copied
/// through a buffer. inTotal is the size that the system reports, which may be 0 for a file with contents. Returns 0 or
/// an errno; ECANCELED if inProgress stopped the copy.
int CopyBytes(int inFrom, int inTo, std::uint64_t inTotal, Files::Platform::CopyProgress inProgress = nullptr,
              void* inData = nullptr);

/// What happens to attributes that the destination already has.
enum class ExistingAttributes { kNone, kReplace, kKeep };

/// Copies the extended attributes user.*, which correspond to named streams on Windows. kReplace first removes those
/// of the destination; kKeep keeps their values if the destination has them. Reports no error: a file system
/// without attributes, or without space for them, does not make a copy fail.
void CopyUserAttributes(int inFrom, int inTo, ExistingAttributes inExisting);

} // namespace Linux
} // namespace ORL
