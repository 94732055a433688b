// The text of an ingest's progress line.
#pragma once

#include "ProgressLine.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace orl {

/// Returns "[######------]  52 %   1.1 GB of 2.1 GB   640 MB/s   0:02 left   21 of 40 files", shortened to inColumns.
/// inBytesRead and inBytesToRead count each byte twice, once copied and once read back; the line shows bytes of the
/// source.
std::string ProgressText(std::uint64_t inBytesRead, std::uint64_t inBytesToRead, std::size_t inFilesDone,
                         std::size_t inFiles, double inSeconds, std::size_t inColumns);

class IngestProgress
{
public:
    IngestProgress(bool inIsShown, std::uint64_t inBytesToRead, std::size_t inFiles);

    void Show(std::uint64_t inBytesRead, std::size_t inFilesDone);

private:
    ProgressLine mLine;
    const std::uint64_t mBytesToRead;
    const std::size_t mFiles;
    const std::chrono::steady_clock::time_point mStart;
};

} // namespace orl
