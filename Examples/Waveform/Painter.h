// Draws sounds as a picture.
#pragma once

#include "Peaks.h"
#include "Picture.h"

/// Draws a sheet with a card for each sound: name, format, and a lane for each channel.
std::size_t SheetColumns(std::size_t inWidth);
Picture PaintSheet(const std::vector<Sound>& inSounds, std::size_t inWidth);

/// Draws the waveform only, edge to edge: full scale reaches the first and last rows, and silence is a line in the
/// middle.
Picture PaintThumbnail(const Sound& inSound, std::size_t inWidth, std::size_t inHeight);
