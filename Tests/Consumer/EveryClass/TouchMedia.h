#pragma once

#include "Touch.h"

#include <ORLFoundation.h>

namespace Consumer {

inline void TouchMedia()
{
    using namespace ORL;
    using tvxmediatypes::FrameRate;
    using tvxmediatypes::TickTime;
    Timecode code(TickTime(100, kFrameRate_VideoPAL), kFrameRate_VideoPAL, tvxmediatypes::kTimeDisplay_25Timecode);
    Timecode::Style style = code.GetStyle();
    style.mShowSign = true;
    Timecode copy(code);
    copy = Timecode(code.GetTime(), code.GetFrameRate(), code.GetFormat(), style);
    copy.SetStyle(style);
    copy.SetTime(TickTime(2.0));
    copy.SetTime(copy.GetString());
    copy.SetFormat(tvxmediatypes::kTimeDisplay_30Timecode, kFrameRate_Video30);
    copy.IncrementHMSF(0, 0, 1, 0);
    Touch(&Timecode::IncrementFeetFrames, &Timecode::StringToTime, &Timecode::FindUnreadable, Timecode());
}

} // namespace Consumer
