// Question: is loading a picture fast enough to be done when a host first draws it?
#include <Harness.h>

#include <Images/Premultiply.h>
#include <ORLHostPath.h>
#include <ORLModule.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <png.h>
#include <spng.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::uint32_t kWidth = 1920;
constexpr std::uint32_t kHeight = 1080;
constexpr std::size_t kPixels = std::size_t{kWidth} * kHeight;

using Pixels = std::vector<std::uint32_t>;

// Returns a gradient with noise: smooth overall, different in each pixel, with some transparency.
Pixels PhotoLike()
{
    Pixels pixels(kPixels);
    std::uint32_t random = 1;
    for (std::size_t i = 0; i < kPixels; ++i) {
        random = random * 1664525 + 1013904223;
        const double x = static_cast<double>(i % kWidth) / kWidth;
        const double y = static_cast<double>(i / kWidth) / kHeight;
        const auto channel = [&](double inPhase, unsigned int inShift) {
            const double smooth = 120 + 90 * std::sin(6 * x + inPhase) * std::cos(4 * y - inPhase);
            return static_cast<std::uint32_t>(smooth) + (random >> inShift & 3);
        };
        const std::uint32_t alpha = y > 0.9 ? 128 : 255;
        pixels[i] = alpha << 24 | channel(0, 10) << 16 | channel(1, 15) << 8 | channel(2, 20);
    }
    return pixels;
}

// Returns a picture of solid-colour panels, as in user interfaces.
Pixels Flat()
{
    Pixels pixels(kPixels);
    for (std::size_t i = 0; i < kPixels; ++i) {
        const std::size_t panel = i % kWidth / 320 + i / kWidth / 120 * 6;
        pixels[i] = 0xFF000000 | static_cast<std::uint32_t>(panel * 0x030507);
    }
    return pixels;
}

void AppendBytes(png_structp inPng, png_bytep inBytes, png_size_t inSize)
{
    static_cast<std::string*>(::png_get_io_ptr(inPng))->append(reinterpret_cast<const char*>(inBytes), inSize);
}

std::string PngOf(const Pixels& inPixels)
{
    std::string file;
    png_structp png = ::png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = ::png_create_info_struct(png);
    ::png_set_write_fn(png, &file, &AppendBytes, nullptr);
    ::png_set_IHDR(png, info, kWidth, kHeight, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                   PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    ::png_write_info(png, info);
    ::png_set_bgr(png);
    for (std::uint32_t y = 0; y < kHeight; ++y) {
        ::png_write_row(png, reinterpret_cast<png_const_bytep>(inPixels.data() + std::size_t{y} * kWidth));
    }
    ::png_write_end(png, info);
    ::png_destroy_write_struct(&png, &info);
    return file;
}

template <class Number>
void Put(std::string& ioBytes, Number inNumber)
{
    ioBytes.append(reinterpret_cast<const char*>(&inNumber), sizeof(inNumber));
}

// Loads a compiled resource file with one PNG picture: number 1, neutral language.
ORL::ObjectPtr<ORL::Module> ModuleOf(const std::string& inPng)
{
    std::string file;
    for (const std::uint32_t word : {0x00u, 0x20u, 0xFFFFu, 0xFFFFu, 0u, 0u, 0u, 0u}) { // the empty first entry
        Put(file, word);
    }
    Put(file, static_cast<std::uint32_t>(inPng.size()));
    Put(file, std::uint32_t{36}); // the size of this header
    for (const char16_t unit : {u'P', u'N', u'G', u'\0', u'\xFFFF', u'\x1'}) {
        Put(file, unit);
    }
    file.append(16, '\0');
    file += inPng;
    const std::string path =
        std::filesystem::temp_directory_path() / ("orl-bench-" + std::to_string(::getpid()) + ".res");
    std::ofstream(path, std::ios::binary) << file;
    ORL::ObjectPtr<ORL::Module> module;
    const ORL::Result loaded = ORL::Module::Load(ORL::PathUtils::FromHostPath(path), module);
    std::filesystem::remove(path);
    if (!ORL::ResultSucceeded(loaded)) {
        std::fprintf(stderr, "cannot load %s\n", path.c_str());
        std::exit(1);
    }
    return module;
}

// Premultiplies with plain arithmetic, but returns early for the most frequent values of alpha, 0 and 255.
std::uint32_t PlainPremultiplied(std::uint32_t inPixel)
{
    const std::uint32_t alpha = inPixel >> 24;
    if (alpha == 255) {
        return inPixel;
    }
    if (alpha == 0) {
        return 0;
    }
    std::uint32_t result = alpha << 24;
    for (unsigned int shift = 0; shift < 24; shift += 8) {
        const std::uint32_t t = (inPixel >> shift & 0xFF) * alpha + 128;
        result |= (t + (t >> 8)) >> 8 << shift;
    }
    return result;
}

void DecodeWithSpng(const std::string& inFile)
{
    spng_ctx* const context = ::spng_ctx_new(0);
    ::spng_set_png_buffer(context, inFile.data(), inFile.size());
    std::size_t size = 0;
    ::spng_decoded_image_size(context, SPNG_FMT_RGBA8, &size);
    const std::unique_ptr<std::uint32_t[]> pixels(new std::uint32_t[size / 4]);
    if (::spng_decode_image(context, pixels.get(), size, SPNG_FMT_RGBA8, SPNG_DECODE_TRNS) != 0) {
        std::fprintf(stderr, "libspng cannot decode the picture\n");
        std::exit(1);
    }
    for (std::size_t i = 0; i < size / 4; ++i) {
        pixels[i] = PlainPremultiplied(pixels[i]);
    }
    Bench::DoNotOptimize(pixels[0]);
    ::spng_ctx_free(context);
}

void CompareDecoding(const char* inTitle, const Pixels& inPixels, double inGoal)
{
    const std::string file = PngOf(inPixels);
    const ORL::ObjectPtr<ORL::Module> module = ModuleOf(file);
    Bench::Group(inTitle)
        .Ours("LoadBitmapWTL", Bench::AtMost(inGoal, "libspng, plain loop"),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      const ORL::OSImageHandle bitmap(module->LoadBitmapWTL(1, false));
                      if (!bitmap.IsValid()) {
                          std::fprintf(stderr, "the picture cannot be decoded\n");
                          std::exit(1);
                      }
                  }
              })
        .Peer("libspng, plain loop",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      DecodeWithSpng(file);
                  }
              })
        .Run();
}

void ComparePremultiply(const char* inTitle, const Pixels& inPixels)
{
    Pixels result(kPixels);
    Bench::Group(inTitle)
        .Ours("Premultiply", Bench::AtMost(1.9, "memcpy"),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      ORL::Images::Premultiply(inPixels.data(), result.data(), kPixels);
                      Bench::DoNotOptimize(result[0]);
                  }
              })
        .Peer("memcpy",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      std::memcpy(result.data(), inPixels.data(), kPixels * 4);
                      Bench::DoNotOptimize(result[0]);
                  }
              })
        .Peer("plain loop with tests",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      for (std::size_t i = 0; i < kPixels; ++i) {
                          result[i] = PlainPremultiplied(inPixels[i]);
                      }
                      Bench::DoNotOptimize(result[0]);
                  }
              })
        .Run();
}

Pixels AlphaRamp()
{
    Pixels pixels(kPixels);
    for (std::size_t i = 0; i < kPixels; ++i) {
        pixels[i] =
            static_cast<std::uint32_t>(i % 256) << 24 | static_cast<std::uint32_t>(i * 2654435761u >> 8 & 0xFFFFFF);
    }
    return pixels;
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    CompareDecoding("decode and premultiply a PNG of 1920 x 1080, photo-like", PhotoLike(), 0.75);
    CompareDecoding("decode and premultiply a PNG of 1920 x 1080, flat", Flat(), 0.6);
    ComparePremultiply("premultiply 1920 x 1080 pixels, alpha ramp", AlphaRamp());
    ComparePremultiply("premultiply 1920 x 1080 pixels, alpha mostly 255", PhotoLike());
    return Bench::Finish();
}
