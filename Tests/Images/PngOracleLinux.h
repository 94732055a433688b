// Writes PNG files of every kind with libpng, and reads their pixels with libpng.
#pragma once

#include <csetjmp>
#include <cstdint>
#include <cstring>
#include <png.h>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace ORLTest {

struct PngKind
{
    int mColour;
    int mDepth;
    int mFilters;
    bool mIsInterlaced;
    bool mHasTransparency; // has a tRNS chunk
    unsigned int mWidth;
    unsigned int mHeight;
};

inline void ThrowPngError(png_structp, png_const_charp inWhy)
{
    throw std::runtime_error(inWhy);
}

inline void IgnorePngWarning(png_structp, png_const_charp)
{
}

inline void AppendPng(png_structp inPng, png_bytep inBytes, png_size_t inSize)
{
    static_cast<std::string*>(png_get_io_ptr(inPng))->append(reinterpret_cast<const char*>(inBytes), inSize);
}

/// Writes a file of random pixels in smooth runs, so that every filter has an effect.
inline std::string WritePng(const PngKind& inKind, unsigned int inSeed)
{
    std::mt19937 random(inSeed);
    std::string file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, ThrowPngError, IgnorePngWarning);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &file, AppendPng, nullptr);
    png_set_IHDR(png, info, inKind.mWidth, inKind.mHeight, inKind.mDepth, inKind.mColour,
                 inKind.mIsInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_set_filter(png, 0, inKind.mFilters);
    if (inKind.mColour == PNG_COLOR_TYPE_PALETTE) {
        png_color colours[256];
        for (png_color& colour : colours) {
            colour = {static_cast<png_byte>(random()), static_cast<png_byte>(random()),
                      static_cast<png_byte>(random())};
        }
        png_set_PLTE(png, info, colours, 1 << inKind.mDepth);
    }
    if (inKind.mHasTransparency) {
        png_byte alphas[256];
        for (png_byte& alpha : alphas) {
            alpha = static_cast<png_byte>(random());
        }
        const png_uint_16 top = static_cast<png_uint_16>((1u << inKind.mDepth) - 1);
        png_color_16 key{0, static_cast<png_uint_16>(3 & top), static_cast<png_uint_16>(3 & top),
                         static_cast<png_uint_16>(3 & top), static_cast<png_uint_16>(3 & top)};
        png_set_tRNS(png, info, alphas, 1 << (inKind.mDepth < 8 ? inKind.mDepth : 7), &key);
    }
    png_write_info(png, info);
    const std::size_t rowSize = png_get_rowbytes(png, info);
    std::vector<std::vector<png_byte>> rows(inKind.mHeight, std::vector<png_byte>(rowSize));
    for (auto& row : rows) {
        std::uint_fast32_t value = random();
        for (png_byte& byte : row) {
            value = random() % 16 == 0 ? random() : value + random() % 3;
            byte = static_cast<png_byte>(random() % 8 == 0 ? 3 : value);
        }
    }
    std::vector<png_bytep> pointers;
    for (auto& row : rows) {
        pointers.push_back(row.data());
    }
    png_write_image(png, pointers.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return file;
}

struct PngSource
{
    const std::string* mFile;
    std::size_t mPlace;
};

inline void ReadPngBytes(png_structp inPng, png_bytep outBytes, png_size_t inSize)
{
    PngSource& source = *static_cast<PngSource*>(png_get_io_ptr(inPng));
    if (inSize > source.mFile->size() - source.mPlace) {
        png_error(inPng, "the end");
    }
    std::memcpy(outBytes, source.mFile->data() + source.mPlace, inSize);
    source.mPlace += inSize;
}

/// Returns blue, green, red and alpha of each pixel. 16-bit channels are reduced to their upper bytes.
inline std::vector<unsigned char> ReadPng(const std::string& inFile)
{
    PngSource source{&inFile, 0};
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, ThrowPngError, IgnorePngWarning);
    png_infop info = png_create_info_struct(png);
    png_set_read_fn(png, &source, ReadPngBytes);
    png_read_info(png, info);
    png_set_expand(png);
    png_set_strip_16(png);
    png_set_gray_to_rgb(png);
    png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
    png_set_bgr(png);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    const std::size_t rowSize = png_get_rowbytes(png, info);
    const std::size_t height = png_get_image_height(png, info);
    std::vector<unsigned char> pixels(rowSize * height);
    std::vector<png_bytep> pointers;
    for (std::size_t y = 0; y < height; ++y) {
        pointers.push_back(pixels.data() + y * rowSize);
    }
    png_read_image(png, pointers.data());
    png_read_end(png, nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
    return pixels;
}

} // namespace ORLTest
