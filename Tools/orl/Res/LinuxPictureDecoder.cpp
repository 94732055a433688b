#include "PictureFile.h"

namespace orl {

// The library decodes pictures by itself.
PictureDecoder::PictureDecoder() = default;
PictureDecoder::~PictureDecoder() = default;

} // namespace orl
