// Colour conversions compared with straightforward code for the same formulas in double, on a million values.
//
// Question: is a host that converts a palette or a swatch slower if it calls the library? The library keeps the
// precision that the formulas define for each step, and each call crosses a library boundary; for a fair comparison the
// plain formulas are noinline functions too. No widely used library offers these operations on single values.
#include "Harness.h"

#include <ORLColor.h>

#include <cmath>
#include <random>

namespace {

constexpr std::size_t kCount = 1000000;

using Color = ORL::ParamColor<unsigned long>;

struct Material
{
    Material()
    {
        std::mt19937 random(8);
        for (std::size_t i = 0; i < kCount; ++i) {
            mColors.emplace_back(random() & 0xFFFFFFul);
            mPolar.push_back({static_cast<unsigned>(random() % 361), static_cast<unsigned>(random() % 101),
                              static_cast<unsigned>(random() % 101)});
        }
    }

    struct Polar
    {
        unsigned h, s, l;
    };

    std::vector<Color> mColors;
    std::vector<Polar> mPolar;
};

#define ORL_CALLED __attribute__((noinline))

int Clamp(double inValue)
{
    return inValue < 0 ? 0 : inValue > 255 ? 255 : static_cast<int>(inValue);
}

ORL_CALLED void PlainRgbToYuv(unsigned long inColor, unsigned char& outY, char& outU, char& outV)
{
    const double r = static_cast<double>(inColor & 0xFF);
    const double g = static_cast<double>((inColor >> 8) & 0xFF);
    const double b = static_cast<double>((inColor >> 16) & 0xFF);
    outY = static_cast<unsigned char>(Clamp(0.257 * r + 0.504 * g + 0.098 * b + 16));
    outU = static_cast<char>(Clamp(-0.148 * r - 0.291 * g + 0.439 * b + 128) - 128);
    outV = static_cast<char>(Clamp(0.439 * r - 0.368 * g - 0.071 * b + 128) - 128);
}

ORL_CALLED void PlainRgbToHsv(unsigned long inColor, unsigned& outH, unsigned& outS, unsigned& outV)
{
    const double r = static_cast<double>(inColor & 0xFF) / 255;
    const double g = static_cast<double>((inColor >> 8) & 0xFF) / 255;
    const double b = static_cast<double>((inColor >> 16) & 0xFF) / 255;
    const double most = std::max(r, std::max(g, b));
    const double spread = most - std::min(r, std::min(g, b));
    outV = static_cast<unsigned>(most * 100 + 0.5);
    outS = most == 0 ? 0 : static_cast<unsigned>(spread / most * 100 + 0.5);
    double hue = 0;
    if (spread != 0) {
        hue = most == r ? (g - b) / spread : most == g ? (b - r) / spread + 2 : (r - g) / spread + 4;
        hue = (hue < 0 ? hue + 6 : hue) / 6;
    }
    outH = static_cast<unsigned>(hue * 360 + 0.5);
}

unsigned long Byte(double inChannel)
{
    return static_cast<unsigned long>(inChannel * 255 + 0.5);
}

ORL_CALLED unsigned long PlainHslToRgb(unsigned inH, unsigned inS, unsigned inL)
{
    const double h = inH / 360.0;
    const double s = inS / 100.0;
    const double l = inL / 100.0;
    const double v = l <= 0.5 ? l * (1 + s) : l + s - l * s;
    if (v <= 0) {
        return 0;
    }
    const double m = 2 * l - v;
    const int sector = static_cast<int>(6 * h);
    const double w = (v - m) * (6 * h - sector);
    double r = 0;
    double g = 0;
    double b = 0;
    switch (sector) {
    case 0:
        r = v;
        g = m + w;
        b = m;
        break;
    case 1:
        r = v - w;
        g = v;
        b = m;
        break;
    case 2:
        r = m;
        g = v;
        b = m + w;
        break;
    case 3:
        r = m;
        g = v - w;
        b = v;
        break;
    case 4:
        r = m + w;
        g = m;
        b = v;
        break;
    case 5:
        r = v;
        g = m;
        b = v - w;
        break;
    default: break;
    }
    return Byte(r) | Byte(g) << 8 | Byte(b) << 16;
}

void RgbToYuv(const Material& inMaterial)
{
    unsigned char y = 0;
    char u = 0;
    char v = 0;
    Bench::Group("ColorRGBtoYUV, 10^6 colours")
        .Step(kCount)
        .Ours("ColorRGBtoYUV", Bench::AtMost(1.0),
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      ORL::ColorRGBtoYUV(inMaterial.mColors[i % kCount], y, u, v);
                      Bench::DoNotOptimize(y);
                  }
              })
        .Peer("plain formulas in double",
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      PlainRgbToYuv(inMaterial.mColors[i % kCount].GetValue(), y, u, v);
                      Bench::DoNotOptimize(y);
                  }
              })
        .Run();
}

void RgbToHsv(const Material& inMaterial)
{
    unsigned h = 0;
    unsigned s = 0;
    unsigned v = 0;
    Bench::Group("ColorRGBtoHSV, 10^6 colours")
        .Step(kCount)
        .Ours("ColorRGBtoHSV", Bench::AtMost(1.0),
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      ORL::ColorRGBtoHSV(inMaterial.mColors[i % kCount], h, s, v, nullptr, nullptr);
                      Bench::DoNotOptimize(h);
                  }
              })
        .Peer("plain formulas in double",
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      PlainRgbToHsv(inMaterial.mColors[i % kCount].GetValue(), h, s, v);
                      Bench::DoNotOptimize(h);
                  }
              })
        .Run();
}

void HslToRgb(const Material& inMaterial)
{
    Bench::Group("ColorHSLtoRGB, 10^6 colours")
        .Step(kCount)
        .Ours("ColorHSLtoRGB", Bench::AtMost(1.0),
              [&](std::uint64_t n) {
                  Color color;
                  for (std::uint64_t i = 0; i < n; ++i) {
                      const Material::Polar& polar = inMaterial.mPolar[i % kCount];
                      ORL::ColorHSLtoRGB(polar.h, polar.s, polar.l, color);
                      Bench::DoNotOptimize(color);
                  }
              })
        .Peer("plain formulas in double",
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      const Material::Polar& polar = inMaterial.mPolar[i % kCount];
                      const unsigned long color = PlainHslToRgb(polar.h, polar.s, polar.l);
                      Bench::DoNotOptimize(color);
                  }
              })
        .Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    const Material material;
    RgbToYuv(material);
    RgbToHsv(material);
    HslToRgb(material);
    return Bench::Finish();
}
