#include <tvxmediatypes/Constants.h>

namespace tvxmediatypes {

namespace {

// The constants are defined in the header, so that compilers see their values. Taking their addresses also emits them
// into this library, for hosts that link to the symbols.
__attribute__((used)) const TickTime* const sTimes[] = {&kTime_Zero, &kTime_Max, &kTime_Min, &kTime_Invalid};

__attribute__((used)) const FrameRate* const sRates[] = {
    &kFrameRate_Zero,       &kFrameRate_Video10,    &kFrameRate_Video12,     &kFrameRate_Video12_5,
    &kFrameRate_Video15,    &kFrameRate_23976,      &kFrameRate_Film24,      &kFrameRate_VideoPAL,
    &kFrameRate_VideoNTSC,  &kFrameRate_Video30,    &kFrameRate_VideoPAL_HD, &kFrameRate_VideoNTSC_HD,
    &kFrameRate_Video60,    &kFrameRate_Video100,   &kFrameRate_Video1000,   &kFrameRate_Audio8000,
    &kFrameRate_Audio11025, &kFrameRate_Audio22050, &kFrameRate_Audio32000,  &kFrameRate_Audio44100,
    &kFrameRate_Audio48000, &kFrameRate_Audio88200, &kFrameRate_Audio96000,  &kFrameRate_Audio192000,
};

} // namespace

} // namespace tvxmediatypes
