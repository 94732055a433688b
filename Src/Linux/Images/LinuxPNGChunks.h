// Floor: System
// Reads the chunks of a PNG file.
#pragma once

#include <Resources/ResourceReaders.h>

#include <cstdint>
#include <cstring>
#include <libdeflate.h>

namespace ORL {
namespace Linux {

inline constexpr unsigned char kPNGSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
inline constexpr std::size_t kChunkOverhead = 12; // length, name, checksum

inline std::uint32_t BigEndianAt(const unsigned char* inBytes) noexcept
{
    std::uint32_t number;
    std::memcpy(&number, inBytes, sizeof(number));
    return __builtin_bswap32(number);
}

struct Chunk
{
    const unsigned char* mName = nullptr;
    Resources::Bytes mContents;

    bool Is(const char (&inName)[5]) const noexcept { return std::memcmp(mName, inName, 4) == 0; }
};

// Reads chunks one by one. Fails at a chunk with a wrong checksum.
class ChunkReader
{
public:
    explicit ChunkReader(const Resources::Bytes& inFile) : mNext(inFile.mData), mEnd(inFile.mData + inFile.mSize) {}

    bool ReadSignature() noexcept
    {
        if (Left() < sizeof(kPNGSignature) || std::memcmp(mNext, kPNGSignature, sizeof(kPNGSignature)) != 0) {
            return false;
        }
        mNext += sizeof(kPNGSignature);
        return true;
    }

    bool Read(Chunk& outChunk) noexcept
    {
        if (Left() < kChunkOverhead) {
            return false;
        }
        const std::size_t size = BigEndianAt(mNext);
        if (size > Left() - kChunkOverhead) {
            return false;
        }
        outChunk.mName = mNext + 4;
        outChunk.mContents.mData = mNext + 8;
        outChunk.mContents.mSize = size;
        mNext += kChunkOverhead + size;
        return ::libdeflate_crc32(0, outChunk.mName, size + 4) == BigEndianAt(mNext - 4);
    }

private:
    std::size_t Left() const noexcept { return static_cast<std::size_t>(mEnd - mNext); }

    const unsigned char* mNext;
    const unsigned char* const mEnd;
};

/// Returns whether all chunks up to IEND are complete and have correct checksums.
inline bool AreChunksComplete(const Resources::Bytes& inFile) noexcept
{
    ChunkReader reader(inFile);
    Chunk chunk;
    if (!reader.ReadSignature()) {
        return false;
    }
    while (reader.Read(chunk)) {
        if (chunk.Is("IEND")) {
            return true;
        }
    }
    return false;
}

} // namespace Linux
} // namespace ORL
