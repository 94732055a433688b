#include "LinuxDirectAlignment.h"

#include "../Calls/LinuxErrors.h"
#include "../Calls/SystemCalls.h"
#include "LinuxDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace ORL {
namespace Linux {

namespace {

bool IsReported(const struct statx& inStatus) noexcept
{
    return (inStatus.stx_mask & STATX_DIOALIGN) != 0;
}

// Returns 0 if the kernel reports that the file does not support direct I/O.
std::uint32_t ReportedAlignment(const struct statx& inStatus) noexcept
{
    return inStatus.stx_dio_offset_align == 0
               ? 0
               : std::max({kSmallestSector, inStatus.stx_dio_offset_align, inStatus.stx_dio_mem_align});
}

// Returns 0 if the file does not contain a valid sector size.
std::uint32_t ReadSectorFile(const char* inPath) noexcept
{
    const Descriptor file = OpenByPath(inPath, O_RDONLY);
    char text[16] = {};
    if (!file || System().mPRead(file.Get(), text, sizeof(text) - 1, 0) <= 0) {
        return 0;
    }
    char* end = text;
    const unsigned long size = std::strtoul(text, &end, 10);
    const bool isSector = size >= kSmallestSector && size <= kLargestSector && (size & (size - 1)) == 0;
    return isSector && *end == '\n' ? static_cast<std::uint32_t>(size) : 0;
}

// Returns the sector size of the device below a file system. For a partition, reads the queue attributes of the
// whole disk. Skips virtual devices, such as those of in-memory file systems; their major number is 0.
std::uint32_t SectorOfDevice(const struct statx& inStatus) noexcept
{
    const bool isDevice = S_ISBLK(inStatus.stx_mode);
    const unsigned major = isDevice ? inStatus.stx_rdev_major : inStatus.stx_dev_major;
    const unsigned minor = isDevice ? inStatus.stx_rdev_minor : inStatus.stx_dev_minor;
    std::uint32_t sector = 0;
    for (const char* const queue : {"queue", "../queue"}) {
        char path[80];
        std::snprintf(path, sizeof(path), "/sys/dev/block/%u:%u/%s/logical_block_size", major, minor, queue);
        sector = major != 0 && sector == 0 ? ReadSectorFile(path) : sector;
    }
    return sector != 0 ? sector : kSmallestSector;
}

// Returns true if the kernel accepts a direct read with exactly this alignment.
bool AcceptsAlignment(int inFile, std::uint32_t inAlignment) noexcept
{
    alignas(kLargestSector) char bytes[2 * kLargestSector];
    char* const buffer = bytes + inAlignment;
    return System().mPRead(inFile, buffer, inAlignment, static_cast<off_t>(inAlignment)) >= 0 || errno != EINVAL;
}

} // namespace

std::uint32_t FindDirectAlignment(int inFile, TestRead inTestRead) noexcept
{
    struct statx status = {};
    const bool isAsked = System().mStatx(inFile, "", AT_EMPTY_PATH, STATX_TYPE | STATX_DIOALIGN, &status) == 0;
    if (isAsked && IsReported(status)) {
        return ReportedAlignment(status);
    }
    if (inTestRead == TestRead::kForbidden) {
        return kLargestSector;
    }
    const std::uint32_t sector = isAsked ? SectorOfDevice(status) : kSmallestSector;
    return AcceptsAlignment(inFile, sector) ? sector : AcceptsAlignment(inFile, kLargestSector) ? kLargestSector : 0;
}

SystemError FindSectorSize(const std::string& inHostPath, unsigned int& outSize)
{
    struct statx status = {};
    if (System().mStatx(AT_FDCWD, inHostPath.c_str(), 0, STATX_TYPE | STATX_DIOALIGN, &status) != 0) {
        return SystemErrorFromErrno(errno, inHostPath);
    }
    if (IsReported(status)) {
        outSize = std::max(ReportedAlignment(status), kSmallestSector);
        return SystemErrors::kNoError;
    }
    outSize = SectorOfDevice(status);
    if (!S_ISREG(status.stx_mode) && !S_ISBLK(status.stx_mode)) {
        return SystemErrors::kNoError;
    }
    const Descriptor file = OpenByPath(inHostPath.c_str(), O_RDONLY | O_DIRECT | O_NOCTTY | O_NONBLOCK);
    if (file) {
        outSize = std::max(FindDirectAlignment(file.Get(), TestRead::kAllowed), kSmallestSector);
    } else if (errno == EINVAL) {
        outSize = kSmallestSector; // the file system does not support direct I/O
    }
    return SystemErrors::kNoError;
}

} // namespace Linux
} // namespace ORL
