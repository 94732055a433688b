#include "Picture.h"

#include "Letters.h"

#include <algorithm>
#include <cmath>

Colour Mix(Colour inFirst, Colour inSecond, double inPart)
{
    const auto mix = [inPart](std::uint8_t inA, std::uint8_t inB) {
        return static_cast<std::uint8_t>(std::lround(inA + (inB - inA) * inPart));
    };
    return {mix(inFirst.mRed, inSecond.mRed), mix(inFirst.mGreen, inSecond.mGreen), mix(inFirst.mBlue, inSecond.mBlue)};
}

Picture::Picture(std::size_t inWidth, std::size_t inHeight, Colour inBackground)
    : mWidth(inWidth), mHeight(inHeight), mPixels(inWidth * inHeight, inBackground)
{
}

void Picture::Blend(std::size_t inX, std::size_t inY, Colour inColour, double inPart)
{
    if (inX < mWidth && inY < mHeight) {
        Colour& pixel = mPixels[inY * mWidth + inX];
        pixel = Mix(pixel, inColour, std::clamp(inPart, 0.0, 1.0));
    }
}

void Picture::Fill(const Rectangle& inArea, Colour inColour, double inPart)
{
    for (std::size_t y = 0; y < inArea.mHeight; ++y) {
        for (std::size_t x = 0; x < inArea.mWidth; ++x) {
            Blend(inArea.mLeft + x, inArea.mTop + y, inColour, inPart);
        }
    }
}

void Picture::FillRounded(const Rectangle& inArea, double inRadius, Colour inColour)
{
    // On one axis, how far a pixel lies inside a corner's square: the radius minus its distance to the side, or 0.
    const auto beyond = [inRadius](std::size_t inPlace, std::size_t inSize) {
        const double middle = static_cast<double>(inPlace) + 0.5;
        const double side = std::min(middle, static_cast<double>(inSize) - middle);
        return std::max(inRadius - side, 0.0);
    };
    for (std::size_t y = 0; y < inArea.mHeight; ++y) {
        for (std::size_t x = 0; x < inArea.mWidth; ++x) {
            const double distance = std::hypot(beyond(x, inArea.mWidth), beyond(y, inArea.mHeight));
            Blend(inArea.mLeft + x, inArea.mTop + y, inColour, inRadius - distance + 0.5);
        }
    }
}

void Picture::Write(std::size_t inX, std::size_t inY, const std::string& inText, std::size_t inPoint, Colour inColour)
{
    std::size_t x = inX;
    for (const char character : inText) {
        if (IsContinuation(character)) {
            continue;
        }
        for (std::size_t column = 0; column < kLetterWidth; ++column) {
            for (std::size_t row = 0; row < kLetterHeight; ++row) {
                if (LetterHasPoint(character, column, row)) {
                    Fill({x + column * inPoint, inY + row * inPoint, inPoint, inPoint}, inColour);
                }
            }
        }
        x += (kLetterWidth + 1) * inPoint;
    }
}

std::size_t Picture::TextWidth(const std::string& inText, std::size_t inPoint)
{
    const auto letters = std::count_if(inText.begin(), inText.end(), [](char inOne) { return !IsContinuation(inOne); });
    return static_cast<std::size_t>(letters) * (kLetterWidth + 1) * inPoint;
}
