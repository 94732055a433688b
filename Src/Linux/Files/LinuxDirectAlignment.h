// Finds the alignment that direct I/O requires on a volume or for an open file.
#pragma once

#include <Platform/SystemErrors.h>

#include <cstdint>
#include <string>

namespace ORL {
namespace Linux {

constexpr std::uint32_t kSmallestSector = 512;
constexpr std::uint32_t kLargestSector = 4096;

/// Whether FindDirectAlignment may do test reads, for which the file must be open for reading.
enum class TestRead { kAllowed, kForbidden };

/// Returns the alignment of positions, sizes and addresses for a file that is open for direct I/O, at least
/// kSmallestSector, or 0 if the file turns out not to support direct I/O. Uses the alignment that the kernel reports.
/// Otherwise returns the sector size of the device or kLargestSector: the first of the two with which a test read
/// succeeds. With kForbidden returns kLargestSector untested.
std::uint32_t FindDirectAlignment(int inFile, TestRead inTestRead) noexcept;

/// Sets outSize to that alignment for the entry at a host path, or to kSmallestSector if direct I/O is not possible. A
/// folder has the sector size of its device, because file systems report an alignment only for files. Returns an error
/// if the path cannot be queried.
SystemError FindSectorSize(const std::string& inHostPath, unsigned int& outSize);

} // namespace Linux
} // namespace ORL
