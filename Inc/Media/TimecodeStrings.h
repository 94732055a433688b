// Reading and writing times as strings.
#pragma once

#include <tvxcore/String.h>
#include <tvxmediatypes/FrameRate.h>
#include <tvxmediatypes/TickTime.h>
#include <tvxmediatypes/TimeDisplay.h>

#include <cstddef>

namespace ORL {
namespace TimecodeLocal {

/// Return the time in a string, or kTime_Invalid. Timecode::StringToTime documents the rules, except that here an empty
/// string is unreadable.
tvxmediatypes::TickTime SMPTEStringToTime(const UTF16String& inText, const tvxmediatypes::FrameRate& inFrameRate,
                                          tvxmediatypes::TimeDisplay inTimeDisplay, bool inPreviousFrame);
tvxmediatypes::TickTime FeetFramesStringToTime(const UTF16String& inText, const tvxmediatypes::FrameRate& inFrameRate,
                                               tvxmediatypes::TimeDisplay inTimeDisplay, bool inPreviousFrame);

/// Return the index at which the functions above stop reading; see Timecode::FindUnreadable.
std::size_t FindUnreadableInSMPTE(const UTF16String& inText, tvxmediatypes::TimeDisplay inTimeDisplay);
std::size_t FindUnreadableInFeetFrames(const UTF16String& inText);

/// Returns the number that the digits among the units form, modulo 2^64; skips all other units.
constexpr unsigned long long ParseDigits(const unsigned short* inUnits, std::size_t inCount) noexcept
{
    unsigned long long value = 0;
    for (std::size_t i = 0; i < inCount; ++i) {
        const unsigned digit = inUnits[i] - unsigned{'0'};
        if (digit <= 9) {
            value = value * 10 + digit;
        }
    }
    return value;
}

constexpr bool IsDigit(unsigned short inUnit) noexcept
{
    return inUnit >= '0' && inUnit <= '9';
}

/// The separators between fields of every format.
constexpr bool IsSeparator(unsigned short inUnit) noexcept
{
    return inUnit == ':' || inUnit == ';' || inUnit == '.';
}

UTF16String IntToString(int inValue);
UTF16String Int64ToString(long long inValue);

} // namespace TimecodeLocal
} // namespace ORL
