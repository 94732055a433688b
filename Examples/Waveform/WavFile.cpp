#include "WavFile.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace {

constexpr unsigned kPCM = 1;
constexpr unsigned kFloat = 3;
constexpr unsigned kExtensible = 0xFFFE; // the encoding is in the first two bytes of the GUID in the extension
constexpr unsigned kMaxChannels = 16;

std::uint32_t Number(const unsigned char* inBytes, unsigned inCount)
{
    std::uint32_t number = 0;
    for (unsigned i = inCount; i-- > 0;) {
        number = number << 8 | inBytes[i];
    }
    return number;
}

bool IsNamed(const unsigned char* inBytes, const char* inName)
{
    return std::memcmp(inBytes, inName, 4) == 0;
}

// Returns the number of bytes that could be read.
std::size_t ReadAt(std::ifstream& ioFile, std::uint64_t inPlace, unsigned char* outBytes, std::size_t inCount)
{
    ioFile.clear();
    ioFile.seekg(static_cast<std::streamoff>(inPlace));
    ioFile.read(reinterpret_cast<char*>(outBytes), static_cast<std::streamsize>(inCount));
    return static_cast<std::size_t>(ioFile.gcount());
}

WavFormat::Coding FindCoding(unsigned inTag, unsigned inBits)
{
    if (inTag == kPCM && inBits == 8) {
        return WavFormat::Coding::kUnsigned8;
    }
    if (inTag == kPCM && inBits == 16) {
        return WavFormat::Coding::kSigned16;
    }
    if (inTag == kPCM && inBits == 24) {
        return WavFormat::Coding::kSigned24;
    }
    if (inTag == kPCM && inBits == 32) {
        return WavFormat::Coding::kSigned32;
    }
    if (inTag == kFloat && inBits == 32) {
        return WavFormat::Coding::kFloat32;
    }
    throw std::runtime_error("its sound is coded as " + std::to_string(inTag) + " with " + std::to_string(inBits)
                             + " bits, which this program does not read");
}

void TakeFormat(const unsigned char* inChunk, std::size_t inSize, WavFormat& outFormat)
{
    if (inSize < 16) {
        throw std::runtime_error("its format chunk is too short");
    }
    unsigned tag = Number(inChunk, 2);
    if (tag == kExtensible && inSize >= 26) {
        tag = Number(inChunk + 24, 2);
    }
    const unsigned bits = Number(inChunk + 14, 2);
    outFormat.mCoding = FindCoding(tag, bits);
    outFormat.mChannels = Number(inChunk + 2, 2);
    outFormat.mFramesPerSecond = Number(inChunk + 4, 4);
    outFormat.mBytesPerFrame = outFormat.mChannels * bits / 8;
    if (outFormat.mChannels == 0 || outFormat.mChannels > kMaxChannels || outFormat.mFramesPerSecond == 0) {
        throw std::runtime_error("its format makes no sense");
    }
}

} // namespace

WavFormat ReadWavFormat(const std::string& inPath)
{
    std::ifstream file(inPath, std::ios::binary | std::ios::ate);
    if (!file) {
        throw std::runtime_error("cannot be opened");
    }
    const std::uint64_t fileSize = static_cast<std::uint64_t>(std::max<std::streamoff>(file.tellg(), 0));
    unsigned char head[12];
    if (ReadAt(file, 0, head, 12) != 12 || !IsNamed(head, "RIFF") || !IsNamed(head + 8, "WAVE")) {
        throw std::runtime_error("is no WAV file");
    }
    WavFormat format;
    for (std::uint64_t place = 12; ReadAt(file, place, head, 8) == 8;) {
        const std::uint64_t start = place + 8;
        const std::uint64_t size = Number(head + 4, 4);
        if (IsNamed(head, "fmt ")) {
            unsigned char chunk[26] = {};
            TakeFormat(chunk, ReadAt(file, start, chunk, std::min<std::uint64_t>(size, sizeof(chunk))), format);
        } else if (IsNamed(head, "data") && format.mChannels != 0) {
            format.mDataStart = start;
            format.mFrames = std::min(size, fileSize - start) / format.mBytesPerFrame;
            break;
        }
        place = start + size + size % 2;
    }
    if (format.mFrames == 0) {
        throw std::runtime_error("holds no sound");
    }
    return format;
}

float DecodeSample(WavFormat::Coding inCoding, const unsigned char* inBytes)
{
    switch (inCoding) {
    case WavFormat::Coding::kUnsigned8: return (static_cast<float>(inBytes[0]) - 128.0f) / 128.0f;
    case WavFormat::Coding::kSigned16:
        return static_cast<float>(static_cast<std::int16_t>(Number(inBytes, 2))) / 32768.0f;
    case WavFormat::Coding::kSigned24:
        return static_cast<float>(static_cast<std::int32_t>(Number(inBytes, 3) << 8)) / 2147483648.0f;
    case WavFormat::Coding::kSigned32:
        return static_cast<float>(static_cast<std::int32_t>(Number(inBytes, 4))) / 2147483648.0f;
    default: {
        const std::uint32_t bits = Number(inBytes, 4);
        float sample;
        std::memcpy(&sample, &bits, sizeof(sample));
        return std::isfinite(sample) ? std::clamp(sample, -1.0f, 1.0f) : 0.0f;
    }
    }
}
