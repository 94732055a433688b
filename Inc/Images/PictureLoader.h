// Floor: System
// PNG resources and picture files as premultiplied native bitmaps.
#pragma once

#include <Images/BitmapReader.h>
#include <ORLNativeHandles.h>
#include <ORLResourceCollection.h>
#include <tvxcore/String.h>

namespace ORL {
namespace Images {

/// Creates a bitmap from the resource of type "PNG" with that number, flipped
/// vertically. Finds the resource with FindLocalizedResource if inLocalized is true, else with LoadResource. Returns
/// null if the resource does not exist or cannot be decoded.
HBITMAP LoadGDIPlusBitmap(const ResourceCollection& inResources, short inID, bool inLocalized);

/// Same as LoadGDIPlusBitmap, but does not flip the picture. A failure to lock the pixels is not detected: the bitmap
/// is then transparent.
HBITMAP LoadGDIPlusBitmapWTL(const ResourceCollection& inResources, short inID, bool inLocalized);

/// Creates a bitmap from a picture file, flipped vertically. Returns null if the file cannot be read or
/// decoded.
HBITMAP LoadBitmapOfFile(const UTF16String& inPath);

/// Decodes a PNG file to premultiplied pixels, top row first. Returns false, with outPicture untouched, if the file
/// cannot be decoded. Throws std::bad_alloc.
bool DecodePicture(const Resources::Bytes& inFile, PixelPicture& outPicture);

} // namespace Images
} // namespace ORL
