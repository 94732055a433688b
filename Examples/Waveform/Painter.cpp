#include "Painter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr Colour kPaper{13, 17, 23};
constexpr Colour kCard{22, 27, 36};
constexpr Colour kLane{17, 21, 29};
constexpr Colour kGrid{52, 60, 76};
constexpr Colour kTimes{82, 93, 114};
constexpr Colour kTitle{230, 237, 243};
constexpr Colour kFacts{125, 137, 158};
constexpr Colour kQuiet{45, 212, 191}; // colour at the middle of a lane
constexpr Colour kLoud{139, 92, 246};  // colour at full scale
constexpr Colour kClipped{255, 99, 120};

constexpr std::size_t kMargin = 24;
constexpr std::size_t kInset = 18;
constexpr std::size_t kHeader = 46;
constexpr std::size_t kLaneHeight = 112;
constexpr std::size_t kLaneGap = 8;

constexpr float kFullScale = 0.999f;

// Returns the fraction of the pixel row that lies between two heights, from 0 to 1.
double Covered(std::size_t inRow, double inTop, double inBottom)
{
    const double row = static_cast<double>(inRow);
    return std::clamp(std::min(inBottom, row + 1) - std::max(inTop, row), 0.0, 1.0);
}

void PaintBar(Picture& ioPicture, const Rectangle& inLane, std::size_t inColumn, double inTop, double inBottom,
              double inLight)
{
    const double height = static_cast<double>(inLane.mHeight);
    const std::size_t first = static_cast<std::size_t>(std::max(inTop, 0.0));
    const std::size_t end = std::min(static_cast<std::size_t>(std::ceil(inBottom)), inLane.mHeight);
    for (std::size_t row = first; row < end; ++row) {
        const double reach = std::sqrt(std::abs((static_cast<double>(row) + 0.5) * 2 / height - 1));
        const Colour tone = Mix(Mix(kQuiet, kLoud, reach), kTitle, inLight);
        ioPicture.Blend(inLane.mLeft + inColumn, inLane.mTop + row, tone, Covered(row, inTop, inBottom));
    }
}

void PaintPeak(Picture& ioPicture, const Rectangle& inLane, std::size_t inColumn, const Peak& inPeak)
{
    const double middle = static_cast<double>(inLane.mHeight) / 2;
    double top = middle - static_cast<double>(inPeak.mHighest) * middle;
    double bottom = middle - static_cast<double>(inPeak.mLowest) * middle;
    const double missing = std::max(1 - (bottom - top), 0.0); // the thinnest line is one pixel high
    top -= missing / 2;
    bottom += missing / 2;
    PaintBar(ioPicture, inLane, inColumn, top, bottom, 0);
    const double loudness = static_cast<double>(inPeak.mLoudness) * middle;
    PaintBar(ioPicture, inLane, inColumn, std::max(middle - loudness, top), std::min(middle + loudness, bottom), 0.35);
}

void MarkClipping(Picture& ioPicture, const Rectangle& inLane, std::size_t inColumn, const Peak& inPeak)
{
    if (inPeak.mHighest >= kFullScale) {
        ioPicture.Fill({inLane.mLeft + inColumn, inLane.mTop, 1, 2}, kClipped);
    }
    if (inPeak.mLowest <= -kFullScale) {
        ioPicture.Fill({inLane.mLeft + inColumn, inLane.mTop + inLane.mHeight - 2, 1, 2}, kClipped);
    }
}

void PaintWave(Picture& ioPicture, const Rectangle& inLane, const std::vector<Peak>& inPeaks)
{
    for (std::size_t column = 0; column < inPeaks.size(); ++column) {
        PaintPeak(ioPicture, inLane, column, inPeaks[column]);
    }
}

// Returns the seconds between two grid lines, which are at least 80 pixels apart.
double GridStep(double inSeconds, std::size_t inColumns)
{
    const double least = inSeconds * 80 / static_cast<double>(inColumns);
    double step = std::pow(10.0, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0, 10.0}) {
        if (step * factor >= least) {
            return step * factor;
        }
    }
    return step * 10;
}

void PaintGrid(Picture& ioPicture, const Rectangle& inLane, double inSeconds)
{
    const double step = GridStep(inSeconds, inLane.mWidth);
    for (int line = 1; line * step < inSeconds; ++line) {
        const double x = line * step / inSeconds * static_cast<double>(inLane.mWidth);
        const std::size_t left = inLane.mLeft + static_cast<std::size_t>(x);
        ioPicture.Fill({left, inLane.mTop, 1, inLane.mHeight}, kGrid, 0.45);
        char time[24];
        std::snprintf(time, sizeof(time), "%g s", line * step);
        if (left + 4 + Picture::TextWidth(time, 1) < inLane.mLeft + inLane.mWidth) {
            ioPicture.Write(left + 4, inLane.mTop + inLane.mHeight - 11, time, 1, kTimes);
        }
    }
    ioPicture.Fill({inLane.mLeft, inLane.mTop + inLane.mHeight / 2, inLane.mWidth, 1}, kGrid, 0.6);
}

std::string Facts(const WavFormat& inFormat)
{
    char text[80];
    const char* const channels = inFormat.mChannels == 1 ? "mono" : inFormat.mChannels == 2 ? "stereo" : "";
    std::snprintf(text, sizeof(text), "%s   %g kHz   %.2f s", channels, inFormat.mFramesPerSecond / 1000.0,
                  inFormat.Seconds());
    return *channels != '\0' ? text : std::to_string(inFormat.mChannels) + " channels" + text;
}

std::size_t CardHeight(const Sound& inSound)
{
    const std::size_t lanes = inSound.mFormat.mChannels;
    return kHeader + lanes * kLaneHeight + (lanes - 1) * kLaneGap + kInset;
}

void PaintCard(Picture& ioPicture, const Sound& inSound, const Rectangle& inCard)
{
    ioPicture.FillRounded(inCard, 10, kCard);
    const std::string facts = Facts(inSound.mFormat);
    const std::size_t right = inCard.mLeft + inCard.mWidth - kInset;
    ioPicture.Write(inCard.mLeft + kInset, inCard.mTop + 16, reinterpret_cast<const char*>(inSound.mName.c_str()), 2,
                    kTitle);
    ioPicture.Write(right - Picture::TextWidth(facts, 1), inCard.mTop + 22, facts, 1, kFacts);
    Rectangle lane{inCard.mLeft + kInset, inCard.mTop + kHeader, inCard.mWidth - 2 * kInset, kLaneHeight};
    for (const std::vector<Peak>& peaks : inSound.mPeaks) {
        ioPicture.FillRounded(lane, 4, kLane);
        PaintGrid(ioPicture, lane, inSound.mFormat.Seconds());
        PaintWave(ioPicture, lane, peaks);
        for (std::size_t column = 0; column < peaks.size(); ++column) {
            MarkClipping(ioPicture, lane, column, peaks[column]);
        }
        lane.mTop += kLaneHeight + kLaneGap;
    }
}

} // namespace

std::size_t SheetColumns(std::size_t inWidth)
{
    return inWidth - 2 * kMargin - 2 * kInset;
}

Picture PaintSheet(const std::vector<Sound>& inSounds, std::size_t inWidth)
{
    std::size_t height = kMargin;
    for (const Sound& sound : inSounds) {
        height += CardHeight(sound) + kMargin;
    }
    Picture picture(inWidth, height, kPaper);
    std::size_t top = kMargin;
    for (const Sound& sound : inSounds) {
        PaintCard(picture, sound, {kMargin, top, inWidth - 2 * kMargin, CardHeight(sound)});
        top += CardHeight(sound) + kMargin;
    }
    return picture;
}

Picture PaintThumbnail(const Sound& inSound, std::size_t inWidth, std::size_t inHeight)
{
    Picture picture(inWidth, inHeight, kPaper);
    const std::size_t channels = inSound.mPeaks.size();
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const std::size_t top = channel * inHeight / channels;
        const std::size_t end = (channel + 1) * inHeight / channels;
        PaintWave(picture, {0, top, inWidth, end - top}, inSound.mPeaks[channel]);
    }
    return picture;
}
