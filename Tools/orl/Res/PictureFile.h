// Writes pictures as PNG files, and starts the picture decoder.
#pragma once

#include <ORLResourceFile.h>

#include <cstdint>
#include <string>

namespace orl {

/// Returns a PNG file. The pixels of inPicture are premultiplied, those of PNG are not; a loader that premultiplies
/// them restores the same pixels.
std::string ToPng(const ORL::Resources::FilePicture& inPicture);

/// Pictures can be decoded while an instance exists. On Linux the class does nothing.
class PictureDecoder
{
public:
    PictureDecoder();
    ~PictureDecoder();
    PictureDecoder(const PictureDecoder&) = delete;
    PictureDecoder& operator=(const PictureDecoder&) = delete;

private:
    [[maybe_unused]] std::uintptr_t mToken = 0; // from GDI+
};

} // namespace orl
