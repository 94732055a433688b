// Converts colours to web-safe ones, and accepts every colour as NTSC-safe.
#include <ORLColor.h>

namespace ORL {

bool MakeRGBWebSafe(const ParamColor<unsigned long>& inColor, ParamColor<unsigned long>& outColor)
{
    constexpr unsigned long kChannels = 0x00FFFFFF;
    constexpr unsigned long kKeptBits = 0x00E0E0E0;
    const unsigned long given = inColor.GetValue() & kChannels;
    outColor = ParamColor<unsigned long>(given & kKeptBits);
    return outColor.GetValue() == given;
}

bool MakeRGBNTSCSafe(const ParamColor<unsigned long>& inColor, ParamColor<unsigned long>& outColor)
{
    outColor = inColor;
    return true;
}

} // namespace ORL
