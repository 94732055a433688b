// Draws pictures with captions on one sheet.
#pragma once

#include "../Waveform/Picture.h"
#include "BitmapPixels.h"

#include <string>
#include <vector>

struct SheetRow
{
    struct Entry
    {
        std::string mCaption;
        BitmapPixels mPixels;
    };

    std::string mTitle;
    std::vector<Entry> mEntries;
};

inline constexpr std::size_t kCell = 128;   // width and height of a picture's square
inline constexpr std::size_t kCaption = 24; // height of the text below a picture
inline constexpr std::size_t kTitle = 36;   // height of the text above a row
inline constexpr std::size_t kMargin = 16;

Picture DrawSheet(const std::vector<SheetRow>& inRows);
