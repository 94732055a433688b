// What a RIFF WAVE file says of itself, and how its samples become numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// Where the sound of a file stands and what it is made of.
struct WavFormat
{
    enum class Coding { kUnsigned8, kSigned16, kSigned24, kSigned32, kFloat32 };

    Coding mCoding = Coding::kSigned16;
    unsigned mChannels = 0;
    unsigned mFramesPerSecond = 0;
    unsigned mBytesPerFrame = 0;
    std::uint64_t mDataStart = 0; ///< in bytes from the start of the file
    std::uint64_t mFrames = 0;

    double Seconds() const { return static_cast<double>(mFrames) / mFramesPerSecond; }
};

/// Reads the head of a file: PCM of 8 to 32 bits and floats, up to 16 channels. Where the file ends before its sound should,
/// the frames that are there count. Throws std::runtime_error with the reason, without the file's name.
WavFormat ReadWavFormat(const std::string& inPath);

/// One sample at its place in memory, -1 to 1. What is no number is silence.
float DecodeSample(WavFormat::Coding inCoding, const unsigned char* inBytes);
