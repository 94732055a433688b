#include "PictureFile.h"

#include "Failure.h"

#include <zlib.h>

#include <algorithm>

namespace orl {

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

// Returns the colour channel at inShift with its premultiplication undone, rounded.
char Unpremultiplied(std::uint32_t inPixel, unsigned int inShift, std::uint32_t inAlpha)
{
    const std::uint32_t colour = ((inPixel >> inShift & 0xFF) * 255 + inAlpha / 2) / inAlpha;
    return static_cast<char>(std::min<std::uint32_t>(colour, 255));
}

void AppendPixel(Bytes& ioRows, std::uint32_t inPixel)
{
    const std::uint32_t alpha = inPixel >> 24;
    if (alpha == 0) {
        ioRows.append(4, '\0');
        return;
    }
    ioRows += {Unpremultiplied(inPixel, 16, alpha), Unpremultiplied(inPixel, 8, alpha),
               Unpremultiplied(inPixel, 0, alpha), static_cast<char>(alpha)};
}

Bytes RowsOf(const ORL::Resources::FilePicture& inPicture)
{
    Bytes rows;
    rows.reserve((std::size_t{inPicture.mWidth} * 4 + 1) * inPicture.mHeight);
    for (std::size_t i = 0; i < inPicture.mPixels.size(); ++i) {
        if (i % inPicture.mWidth == 0) {
            rows += '\0'; // no filter
        }
        AppendPixel(rows, inPicture.mPixels[i]);
    }
    return rows;
}

Bytes Compress(const Bytes& inBytes)
{
    uLongf size = ::compressBound(static_cast<uLong>(inBytes.size()));
    Bytes compressed(size, '\0');
    if (::compress2(reinterpret_cast<Bytef*>(compressed.data()), &size, reinterpret_cast<const Bytef*>(inBytes.data()),
                    static_cast<uLong>(inBytes.size()), Z_BEST_COMPRESSION)
        != Z_OK) {
        throw Failure("res picture: the picture cannot be compressed");
    }
    compressed.resize(size);
    return compressed;
}

} // namespace

std::string ToPng(const ORL::Resources::FilePicture& inPicture)
{
    Bytes header;
    Append(header, inPicture.mWidth);
    Append(header, inPicture.mHeight);
    header += Bytes("\x08\x06\x00\x00\x00", 5); // 8 bits a channel, true colour with alpha
    Bytes png("\x89PNG\r\n\x1a\n", 8);
    AppendChunk(png, "IHDR", header);
    AppendChunk(png, "IDAT", Compress(RowsOf(inPicture)));
    AppendChunk(png, "IEND", Bytes());
    return png;
}

} // namespace orl
