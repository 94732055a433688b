// A picture of 24-bit pixels, with the few drawing operations that a waveform needs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct Colour
{
    std::uint8_t mRed = 0;
    std::uint8_t mGreen = 0;
    std::uint8_t mBlue = 0;
};

/// Returns a mix of both colours; inPart ranges from 0 (the first colour) to 1.
Colour Mix(Colour inFirst, Colour inSecond, double inPart);

struct Rectangle
{
    std::size_t mLeft;
    std::size_t mTop;
    std::size_t mWidth;
    std::size_t mHeight;
};

class Picture
{
public:
    Picture(std::size_t inWidth, std::size_t inHeight, Colour inBackground);

    std::size_t Width() const { return mWidth; }
    std::size_t Height() const { return mHeight; }

    /// inPart is the coverage, from 0 to 1. Pixels outside the picture are ignored.
    void Blend(std::size_t inX, std::size_t inY, Colour inColour, double inPart);
    void Fill(const Rectangle& inArea, Colour inColour, double inPart = 1);
    void FillRounded(const Rectangle& inArea, double inRadius, Colour inColour);

    /// Draws letters of 5 by 7 points; a point is inPoint pixels wide. Each character outside ASCII becomes a question
    /// mark.
    void Write(std::size_t inX, std::size_t inY, const std::string& inText, std::size_t inPoint, Colour inColour);
    static std::size_t TextWidth(const std::string& inText, std::size_t inPoint);

    /// Writes a PNG file. Throws std::runtime_error with the reason.
    void Save(const std::string& inPath) const;

private:
    std::size_t mWidth;
    std::size_t mHeight;
    std::vector<Colour> mPixels;
};
