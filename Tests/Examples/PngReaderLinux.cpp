#include "PngReader.h"

#include <png.h>

namespace ORLTest {

DecodedPicture ReadPng(const std::string& inPath)
{
    DecodedPicture picture;
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, inPath.c_str()) == 0) {
        return picture;
    }
    image.format = PNG_FORMAT_RGB;
    picture.mPixels.resize(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, picture.mPixels.data(), 0, nullptr) != 0
        && PNG_IMAGE_FAILED(image) == 0) {
        picture.mWidth = image.width;
        picture.mHeight = image.height;
    }
    png_image_free(&image);
    return picture;
}

} // namespace ORLTest
