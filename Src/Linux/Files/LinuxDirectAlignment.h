// What direct I/O must be aligned to. One answer for volumes, unbuffered files and asynchronous readers.
#pragma once

#include <Platform/SystemErrors.h>

#include <cstdint>
#include <string>

namespace ORL {
namespace Linux {

constexpr std::uint32_t kSmallestSector = 512;
constexpr std::uint32_t kLargestSector = 4096;

/// Returns the alignment of positions, sizes and addresses for a file that is open for direct I/O, kSmallestSector at
/// least, or 0 if the file takes no direct I/O after all. The kernel's own answer counts; without one the sector of the
/// device is tried out, then kLargestSector. A file that may not be read cannot be tried out.
std::uint32_t FindDirectAlignment(int inFile, bool inMayRead) noexcept;

/// Sets outSize to the same for what stands at a host path; kSmallestSector if direct I/O is not possible. A folder has
/// the sector of its device, since file systems tell their alignment for files alone. Returns the failure to find the
/// path.
SystemError FindSectorSize(const std::string& inHostPath, unsigned int& outSize);

} // namespace Linux
} // namespace ORL
