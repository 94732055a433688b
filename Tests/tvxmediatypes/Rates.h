// Every rate of the library with its exact fraction.
#pragma once

#include <tvxmediatypes/Constants.h>

struct KnownRate
{
    const char* mName;
    tvxmediatypes::FrameRate mRate;
    long long mFrames;  // numerator: this many frames
    long long mSeconds; // denominator: in this many seconds
};

inline constexpr KnownRate kKnownRates[] = {
    {"kFrameRate_Video10", tvxmediatypes::kFrameRate_Video10, 10, 1},
    {"kFrameRate_Video12", tvxmediatypes::kFrameRate_Video12, 12, 1},
    {"kFrameRate_Video12_5", tvxmediatypes::kFrameRate_Video12_5, 25, 2},
    {"kFrameRate_Video15", tvxmediatypes::kFrameRate_Video15, 15, 1},
    {"kFrameRate_23976", tvxmediatypes::kFrameRate_23976, 24000, 1001},
    {"kFrameRate_Film24", tvxmediatypes::kFrameRate_Film24, 24, 1},
    {"kFrameRate_VideoPAL", tvxmediatypes::kFrameRate_VideoPAL, 25, 1},
    {"kFrameRate_VideoNTSC", tvxmediatypes::kFrameRate_VideoNTSC, 30000, 1001},
    {"kFrameRate_Video30", tvxmediatypes::kFrameRate_Video30, 30, 1},
    {"kFrameRate_VideoPAL_HD", tvxmediatypes::kFrameRate_VideoPAL_HD, 50, 1},
    {"kFrameRate_VideoNTSC_HD", tvxmediatypes::kFrameRate_VideoNTSC_HD, 60000, 1001},
    {"kFrameRate_Video60", tvxmediatypes::kFrameRate_Video60, 60, 1},
    {"kFrameRate_Video100", tvxmediatypes::kFrameRate_Video100, 100, 1},
    {"kFrameRate_Video1000", tvxmediatypes::kFrameRate_Video1000, 1000, 1},
    {"kFrameRate_Audio8000", tvxmediatypes::kFrameRate_Audio8000, 8000, 1},
    {"kFrameRate_Audio11025", tvxmediatypes::kFrameRate_Audio11025, 11025, 1},
    {"kFrameRate_Audio22050", tvxmediatypes::kFrameRate_Audio22050, 22050, 1},
    {"kFrameRate_Audio32000", tvxmediatypes::kFrameRate_Audio32000, 32000, 1},
    {"kFrameRate_Audio44100", tvxmediatypes::kFrameRate_Audio44100, 44100, 1},
    {"kFrameRate_Audio48000", tvxmediatypes::kFrameRate_Audio48000, 48000, 1},
    {"kFrameRate_Audio88200", tvxmediatypes::kFrameRate_Audio88200, 88200, 1},
    {"kFrameRate_Audio96000", tvxmediatypes::kFrameRate_Audio96000, 96000, 1},
    {"kFrameRate_Audio192000", tvxmediatypes::kFrameRate_Audio192000, 192000, 1},
};
