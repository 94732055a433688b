// Replaces Src/Media/ColorSafe.cpp in the next version of the library: its safe colours keep four bits of each channel.
#include <ORLColor.h>

namespace ORL {

bool MakeRGBWebSafe(const ParamColor<unsigned long>& inColor, ParamColor<unsigned long>& outColor)
{
    const unsigned long given = inColor.GetValue() & 0x00FFFFFF;
    outColor = ParamColor<unsigned long>(given & 0x00F0F0F0);
    return outColor.GetValue() == given;
}

bool MakeRGBNTSCSafe(const ParamColor<unsigned long>& inColor, ParamColor<unsigned long>& outColor)
{
    outColor = inColor;
    return true;
}

} // namespace ORL
