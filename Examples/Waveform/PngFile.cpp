// The PNG format: a signature, and chunks of length, type, data and CRC-32, most significant byte first.
#include "Picture.h"

#include <zlib.h>

#include <fstream>
#include <stdexcept>

namespace {

using Bytes = std::string;

void Append(Bytes& ioBytes, std::uint32_t inNumber)
{
    for (int shift = 24; shift >= 0; shift -= 8) {
        ioBytes += static_cast<char>(inNumber >> shift & 0xFF);
    }
}

void AppendChunk(Bytes& ioFile, const Bytes& inName, const Bytes& inContents)
{
    const Bytes named = inName + inContents;
    Append(ioFile, static_cast<std::uint32_t>(inContents.size()));
    ioFile += named;
    Append(ioFile, static_cast<std::uint32_t>(
                       ::crc32(0, reinterpret_cast<const Bytef*>(named.data()), static_cast<uInt>(named.size()))));
}

Bytes Compress(const Bytes& inBytes)
{
    uLongf size = ::compressBound(static_cast<uLong>(inBytes.size()));
    Bytes compressed(size, '\0');
    if (::compress2(reinterpret_cast<Bytef*>(compressed.data()), &size, reinterpret_cast<const Bytef*>(inBytes.data()),
                    static_cast<uLong>(inBytes.size()), Z_BEST_COMPRESSION)
        != Z_OK) {
        throw std::runtime_error("the picture cannot be compressed");
    }
    compressed.resize(size);
    return compressed;
}

} // namespace

void Picture::Save(const std::string& inPath) const
{
    Bytes rows;
    for (std::size_t y = 0; y < mHeight; ++y) {
        rows += '\0'; // no filter
        for (std::size_t x = 0; x < mWidth; ++x) {
            const Colour& pixel = mPixels[y * mWidth + x];
            rows += static_cast<char>(pixel.mRed);
            rows += static_cast<char>(pixel.mGreen);
            rows += static_cast<char>(pixel.mBlue);
        }
    }
    Bytes header;
    Append(header, static_cast<std::uint32_t>(mWidth));
    Append(header, static_cast<std::uint32_t>(mHeight));
    header += Bytes("\x08\x02\x00\x00\x00", 5); // 8 bits per channel, true colour, no interlacing

    Bytes png("\x89PNG\r\n\x1a\n", 8);
    AppendChunk(png, "IHDR", header);
    AppendChunk(png, "IDAT", Compress(rows));
    AppendChunk(png, "IEND", Bytes());
    std::ofstream file(inPath, std::ios::binary);
    file.write(png.data(), static_cast<std::streamsize>(png.size()));
    file.close();
    if (!file) {
        throw std::runtime_error("cannot be written");
    }
}
