#pragma once

#include "Touch.h"

#include <ORLFoundation.h>

#include <tvxcore/StringStream.h>

#include <chrono>
#include <functional>
#include <sstream>

namespace Consumer {

inline void TouchTimecode()
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
    const TickTime sum = code.GetTime() + TickTime(std::chrono::milliseconds(40)) * 2 - TickTime(1.0) / 3;
    Touch(sum % TickTime(0.5), sum.GetSeconds(), sum.ToDuration<std::chrono::microseconds>(), copy == code,
          std::hash<Timecode>()(copy));
    std::ostringstream text;
    text << copy << copy.GetString();
    Touch(text.str());
    Touch(&Timecode::IncrementFeetFrames, &Timecode::StringToTime, &Timecode::FindUnreadable, Timecode());
}

inline void TouchColours()
{
    using namespace ORL;
    ParamColor<unsigned long> colour(1, 2, 3);
    unsigned char luma = 0;
    char first = 0;
    char second = 0;
    ColorRGBtoYUV(colour, luma, first, second);
    Touch(colour.GetValue(), colour.GetRed(), ColorYUVtoRGB(luma, first, second, colour), &ColorYUVtoRGBf,
          &ColorRGBToYPbPr, &ColorYPbPrToRGB, &ColorYPbPrToYIQ, &ColorPbPrToHue, &ColorYPbPrToHSL, &ColorRGBToIRE,
          &ColorRGBToMV, &ColorYPbPrToIRE, &ColorYPbPrToMV, &NormalizedRGBtoHSV, &NormalizedRGBtoHSL,
          &NormalizedHSVtoRGB, &NormalizedHSLtoRGB, &ColorRGBtoHSV, &ColorRGBtoHSL, &ColorHSVtoRGB, &ColorHSLtoRGB,
          &ColorHSLtoHSV, &ColorHSVtoHSL, &ColorHSLtoYUV, &ColorHSVtoYUV, &ColorYUVtoHSL, &ColorYUVtoHSV,
          &MakeRGBWebSafe, &MakeRGBNTSCSafe);
}

inline void TouchShapesHashesAndTimes()
{
    using namespace ORL;
    ParamPoint<CPoint> point(1, 2);
    HashValue hash(1, 2, 3);
    MixHash::Mix(hash, "text", 4);
    tvxcore::oUTF16StringStream stream;
    stream << hash;
    tvxcore::iUTF16StringStream input(stream.str());
    input >> hash;
    const CRCHashValue checksum;
    TimeStamp now;
    TimeStamp start = TimeStamp::GetStartTime();
    now.Swap(start);
    Touch(Geometry::PointToLineSegmentDistance2D(point, point, point), &Geometry::SolveNaturalCubicSpline2D,
          &Geometry::InterpolateNaturalCubicSpline2D, hash.GetWord(0), checksum, now.GetElapsedValue(),
          now.GetMilliSeconds(), now.GetSeconds(), now.GetMicroSeconds(), now.GetSecondsPart(),
          now.GetMilliSecondsPart(), now.GetMicroSecondsPart());
}

inline void TouchMedia()
{
    TouchTimecode();
    TouchColours();
    TouchShapesHashesAndTimes();
}

} // namespace Consumer
