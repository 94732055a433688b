// Common times and rates. All are compile-time constants, so they are valid before any code runs.
#pragma once

#include <tvxmediatypes/Config.h>
#include <tvxmediatypes/FrameRate.h>
#include <tvxmediatypes/TickTime.h>

namespace tvxmediatypes {

TVXMEDIATYPES_API inline constexpr TickTime kTime_Zero = TickTime();

/// The latest and the earliest time. Each is the negation of the other.
TVXMEDIATYPES_API inline constexpr TickTime kTime_Max = TickTime::FromTicks(0x7FFFFFFFFFFFFFFF);
TVXMEDIATYPES_API inline constexpr TickTime kTime_Min = TickTime::FromTicks(-0x7FFFFFFFFFFFFFFF);

/// Not a time: the result of parsing a string without a time. kTime_Invalid is below kTime_Min, and its own negation.
TVXMEDIATYPES_API inline constexpr TickTime kTime_Invalid = TickTime::FromTicks(-0x7FFFFFFFFFFFFFFF - 1);

TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Zero = FrameRate();

TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Video10 = FrameRate(10.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Video12 = FrameRate(12.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Video12_5 = FrameRate(12.5);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Video15 = FrameRate(15.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_23976 = FrameRate(24000.0 / 1001.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Film24 = FrameRate(24.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_VideoPAL = FrameRate(25.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_VideoNTSC = FrameRate(30000.0 / 1001.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Video30 = FrameRate(30.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_VideoPAL_HD = FrameRate(50.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_VideoNTSC_HD = FrameRate(60000.0 / 1001.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Video60 = FrameRate(60.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Video100 = FrameRate(100.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Video1000 = FrameRate(1000.0);

TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Audio8000 = FrameRate(8000.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Audio11025 = FrameRate(11025.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Audio22050 = FrameRate(22050.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Audio32000 = FrameRate(32000.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Audio44100 = FrameRate(44100.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Audio48000 = FrameRate(48000.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Audio88200 = FrameRate(88200.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Audio96000 = FrameRate(96000.0);
TVXMEDIATYPES_API inline constexpr FrameRate kFrameRate_Audio192000 = FrameRate(192000.0);

} // namespace tvxmediatypes
