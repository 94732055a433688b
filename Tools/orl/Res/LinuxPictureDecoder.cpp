#include "PictureFile.h"

namespace orl {

// The library's decoder on Linux needs no initialisation.
PictureDecoder::PictureDecoder() = default;
PictureDecoder::~PictureDecoder() = default;

} // namespace orl
