#include "PictureFile.h"

namespace orl {

// The library's decoder needs no start.
PictureDecoder::PictureDecoder() = default;
PictureDecoder::~PictureDecoder() = default;

} // namespace orl
