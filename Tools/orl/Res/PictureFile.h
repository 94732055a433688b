// Pictures as PNG files.
#pragma once

#include <ORLResourceFile.h>

#include <cstdint>
#include <string>

namespace orl {

/// A PNG file of a picture with premultiplied pixels. Its colours are not premultiplied, as the format wants; a loader
/// that premultiplies them gets the same pixels again.
std::string ToPng(const ORL::Resources::FilePicture& inPicture);

/// While it lives, pictures can be decoded.
class PictureDecoder
{
public:
    PictureDecoder();
    ~PictureDecoder();
    PictureDecoder(const PictureDecoder&) = delete;
    PictureDecoder& operator=(const PictureDecoder&) = delete;

private:
    std::uintptr_t mToken = 0;
};

} // namespace orl
