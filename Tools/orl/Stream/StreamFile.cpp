#include "StreamFile.h"

#include "Text.h"

#include <ORLHostPath.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <vector>
#include <zlib.h>

namespace orl {

namespace {

std::filesystem::path HostPathOf(const std::string& inArgument)
{
    std::string hostPath;
    const ORL::Result result = ORL::PathUtils::ToHostPath(PathOfArgument(inArgument), hostPath);
    if (!ORL::ResultSucceeded(result)) {
        throw Failure("stream: cannot find \"" + inArgument + "\": " + Describe(result));
    }
    return std::filesystem::u8path(hostPath);
}

void SummariseLatencies(std::vector<double>& ioLatencies, StreamFigures& outFigures)
{
    if (ioLatencies.empty()) {
        return;
    }
    std::sort(ioLatencies.begin(), ioLatencies.end());
    const auto at = [&](double inShare) {
        return ioLatencies[static_cast<std::size_t>(inShare * static_cast<double>(ioLatencies.size() - 1) + 0.5)];
    };
    outFigures.mMedianLatency = at(0.5);
    outFigures.mPercentile99Latency = at(0.99);
}

} // namespace

StreamFigures StreamFile(const std::string& inArgument, const StreamSettings& inSettings,
                         const StreamProgress& inProgress)
{
    UnbufferedRead read;
    read.mCommand = "stream";
    read.mDisplayName = inArgument;
    read.mPath = PathOfArgument(inArgument);
    read.mBlockSize = inSettings.mBlockSize;
    read.mDepth = inSettings.mDepth;
    read.mTimeoutSeconds = inSettings.mTimeoutSeconds;
    StreamFigures figures;
    std::vector<double> latencies;
    const auto start = std::chrono::steady_clock::now();
    const UnbufferedFigures totals = ReadUnbuffered(
        read, [&](const unsigned char* inBytes, std::size_t inCount, double inLatency, std::uint64_t inSize) {
            latencies.push_back(inLatency);
            figures.mCRC = static_cast<std::uint32_t>(::crc32(figures.mCRC, inBytes, static_cast<uInt>(inCount)));
            figures.mBytes += inCount;
            if (!inProgress(figures.mBytes, inSize)) {
                throw Interrupted("stream: stopped by the user while reading \"" + inArgument + "\"", kExitStopped);
            }
        });
    figures.mSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    figures.mReads = totals.mReads;
    figures.mSectorSize = totals.mSectorSize;
    SummariseLatencies(latencies, figures);
    return figures;
}

std::uint32_t PlainCRC(const std::string& inArgument)
{
    std::ifstream file(HostPathOf(inArgument), std::ios::binary);
    std::vector<char> block(1 << 20);
    uLong crc = 0;
    while (file) {
        file.read(block.data(), static_cast<std::streamsize>(block.size()));
        crc = ::crc32(crc, reinterpret_cast<const Bytef*>(block.data()), static_cast<uInt>(file.gcount()));
    }
    if (!file.eof()) {
        throw Failure("stream: cannot read \"" + inArgument + "\" through the cache");
    }
    return static_cast<std::uint32_t>(crc);
}

} // namespace orl
