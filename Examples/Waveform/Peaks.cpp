#include "Peaks.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <stdexcept>

namespace {

constexpr unsigned kBufferSize = 64 * 1024; // one size for all, so that the recycler can reuse them

struct Sums
{
    float mLowest = 1;
    float mHighest = -1;
    double mSquares = 0;
};

void Count(const WavFormat& inFormat, const unsigned char* inFrames, std::size_t inCount, std::vector<Sums>& ioSums)
{
    const unsigned sampleSize = inFormat.mBytesPerFrame / inFormat.mChannels;
    for (std::size_t i = 0; i < inCount; ++i) {
        for (Sums& channel : ioSums) {
            const float sample = DecodeSample(inFormat.mCoding, inFrames);
            channel.mLowest = std::min(channel.mLowest, sample);
            channel.mHighest = std::max(channel.mHighest, sample);
            channel.mSquares += static_cast<double>(sample) * static_cast<double>(sample);
            inFrames += sampleSize;
        }
    }
}

} // namespace

FindPeaks::FindPeaks(Sound& ioSound, std::size_t inFirstColumn, std::size_t inEndColumn)
    : mSound(ioSound), mFirstColumn(inFirstColumn), mEndColumn(inEndColumn), mName(ioSound.mName)
{
}

void FindPeaks::Process()
{
    try {
        FindAll();
    } catch (const std::exception& failure) {
        mFailure = reinterpret_cast<const char*>(mName.c_str()) + std::string(" ") + failure.what();
    }
}

void FindPeaks::FindAll()
{
    std::ifstream file(mSound.mPath, std::ios::binary);
    ORL::MemoryBufferWrapper buffer(kBufferSize);
    for (std::size_t column = mFirstColumn; column < mEndColumn; ++column) {
        ReadColumn(file, buffer, column);
    }
}

// A column includes the first frame of the next one, so that the line has no gaps.
void FindPeaks::ReadColumn(std::ifstream& ioFile, ORL::MemoryBufferWrapper& ioBuffer, std::size_t inColumn)
{
    const WavFormat& format = mSound.mFormat;
    const std::uint64_t columns = mSound.mPeaks[0].size();
    const std::uint64_t first = inColumn * format.mFrames / columns;
    const std::uint64_t end = std::min((inColumn + 1) * format.mFrames / columns + 1, format.mFrames);
    std::vector<Sums> sums(format.mChannels);
    unsigned char* const bytes = static_cast<unsigned char*>(ioBuffer.GetBuffer());
    const std::uint64_t atOnce = kBufferSize / format.mBytesPerFrame;
    for (std::uint64_t frame = first; frame < end; frame += atOnce) {
        const std::uint64_t count = std::min(atOnce, end - frame);
        const std::streamsize size = static_cast<std::streamsize>(count * format.mBytesPerFrame);
        ioFile.seekg(static_cast<std::streamoff>(format.mDataStart + frame * format.mBytesPerFrame));
        if (!ioFile.read(reinterpret_cast<char*>(bytes), size)) {
            throw std::runtime_error("cannot be read");
        }
        Count(format, bytes, static_cast<std::size_t>(count), sums);
    }
    for (std::size_t channel = 0; channel < sums.size(); ++channel) {
        const double mean = sums[channel].mSquares / static_cast<double>(end - first);
        mSound.mPeaks[channel][inColumn] = {sums[channel].mLowest, sums[channel].mHighest,
                                            static_cast<float>(std::sqrt(mean))};
    }
}
