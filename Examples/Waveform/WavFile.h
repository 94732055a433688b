// Reads the header of a RIFF WAVE file, and decodes its samples.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// The position and format of a file's sound.
struct WavFormat
{
    enum class Coding { kUnsigned8, kSigned16, kSigned24, kSigned32, kFloat32 };

    Coding mCoding = Coding::kSigned16;
    unsigned mChannels = 0;
    unsigned mFramesPerSecond = 0;
    unsigned mBytesPerFrame = 0;
    std::uint64_t mDataStart = 0; ///< offset in bytes from the start of the file
    std::uint64_t mFrames = 0;

    double Seconds() const { return static_cast<double>(mFrames) / mFramesPerSecond; }
};

/// Reads the header of a file: PCM of 8 to 32 bits and floats, up to 16 channels. If the file is truncated, only its
/// existing frames count. Throws std::runtime_error with the reason, without the file's name.
WavFormat ReadWavFormat(const std::string& inPath);

/// Decodes one sample to -1 to 1. Not a number (NaN) becomes silence.
float DecodeSample(WavFormat::Coding inCoding, const unsigned char* inBytes);
