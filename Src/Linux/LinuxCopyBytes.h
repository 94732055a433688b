// Copying what is in one open file into another.
#pragma once

#include <Platform/File.h>

#include <cstdint>

namespace ORL {
namespace Linux {

/// Copies all bytes, from the beginning, into a file that is empty: left to the kernel, which clones where the volume
/// can, in steps small enough to tell of; files of up to 16 KiB, and those that the kernel does not copy by itself, through
/// a buffer. inTotal is the size as the system tells it, which may be 0 for a file that has bytes. 0 or an errno;
/// ECANCELED where inProgress ended it.
int CopyBytes(int inFrom, int inTo, std::uint64_t inTotal, Files::Platform::CopyProgress inProgress = nullptr,
              void* inData = nullptr);

/// What becomes of attributes that the destination has.
enum class AttributesThere { kNone, kAreReplaced, kAreKept };

/// Copies the user's extended attributes, which are to a file here what named streams are at home. kAreReplaced removes
/// all others, kAreKept lets those of the destination win. A file system that keeps none, or has no room for them, is no
/// failure of a copy, so nothing is told.
void CopyUserAttributes(int inFrom, int inTo, AttributesThere inThere);

} // namespace Linux
} // namespace ORL
