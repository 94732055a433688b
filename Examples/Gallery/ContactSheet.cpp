#include "ContactSheet.h"

#include <algorithm>

namespace {

constexpr Colour kBackground{24, 26, 32};
constexpr Colour kCellColour{44, 48, 58};
constexpr Colour kText{214, 218, 226};
constexpr Colour kTitleText{242, 178, 51};

std::uint8_t Unpremultiplied(std::uint32_t inPixel, unsigned int inShift, std::uint32_t inAlpha)
{
    const std::uint32_t colour = ((inPixel >> inShift & 0xFF) * 255 + inAlpha / 2) / inAlpha;
    return static_cast<std::uint8_t>(std::min<std::uint32_t>(colour, 255));
}

void DrawPixels(Picture& ioSheet, std::size_t inLeft, std::size_t inTop, const BitmapPixels& inPixels)
{
    for (std::size_t i = 0; i < inPixels.mPixels.size(); ++i) {
        const std::uint32_t pixel = inPixels.mPixels[i];
        const std::uint32_t alpha = pixel >> 24;
        if (alpha == 0) {
            continue;
        }
        const Colour colour{Unpremultiplied(pixel, 16, alpha), Unpremultiplied(pixel, 8, alpha),
                            Unpremultiplied(pixel, 0, alpha)};
        ioSheet.Blend(inLeft + i % inPixels.mWidth, inTop + i / inPixels.mWidth, colour, alpha / 255.0);
    }
}

void DrawEntry(Picture& ioSheet, std::size_t inLeft, std::size_t inTop, const SheetRow::Entry& inEntry)
{
    ioSheet.FillRounded({inLeft, inTop, kCell, kCell}, 8, kCellColour);
    const std::size_t width = std::min(inEntry.mPixels.mWidth, kCell);
    const std::size_t height = std::min(inEntry.mPixels.mHeight, kCell);
    DrawPixels(ioSheet, inLeft + (kCell - width) / 2, inTop + (kCell - height) / 2, inEntry.mPixels);
    ioSheet.Write(inLeft + (kCell - std::min(Picture::TextWidth(inEntry.mCaption, 2), kCell)) / 2, inTop + kCell + 6,
                  inEntry.mCaption, 2, kText);
}

} // namespace

Picture DrawSheet(const std::vector<SheetRow>& inRows)
{
    std::size_t columns = 0;
    for (const SheetRow& row : inRows) {
        columns = std::max(columns, row.mEntries.size());
    }
    const std::size_t rowHeight = kTitle + kCell + kCaption;
    Picture sheet(kMargin + columns * (kCell + kMargin), inRows.size() * rowHeight + kMargin, kBackground);
    std::size_t top = 0;
    for (const SheetRow& row : inRows) {
        sheet.Write(kMargin, top + 14, row.mTitle, 2, kTitleText);
        for (std::size_t i = 0; i < row.mEntries.size(); ++i) {
            DrawEntry(sheet, kMargin + i * (kCell + kMargin), top + kTitle, row.mEntries[i]);
        }
        top += rowHeight;
    }
    return sheet;
}
