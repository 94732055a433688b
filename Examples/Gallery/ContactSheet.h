// Pictures with captions on one sheet.
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

inline constexpr std::size_t kCell = 128;   // the square of a picture
inline constexpr std::size_t kCaption = 24; // below it
inline constexpr std::size_t kTitle = 36;   // above a row
inline constexpr std::size_t kMargin = 16;

Picture DrawSheet(const std::vector<SheetRow>& inRows);
