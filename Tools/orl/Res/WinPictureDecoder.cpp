// Starts GDI+, as the library expects its host to do.
#include "PictureFile.h"

#include <algorithm>

#include <windows.h>

#include <objidl.h>

namespace Gdiplus { // the headers of GDI+ need min and max
using std::max;
using std::min;
} // namespace Gdiplus
#include <gdiplus.h>

namespace orl {

PictureDecoder::PictureDecoder()
{
    const Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    Gdiplus::GdiplusStartup(&token, &input, nullptr);
    mToken = token;
}

PictureDecoder::~PictureDecoder()
{
    Gdiplus::GdiplusShutdown(mToken);
}

} // namespace orl
