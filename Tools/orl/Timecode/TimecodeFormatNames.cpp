#include "TimecodeFormatNames.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace orl {

using namespace tvxmediatypes;

namespace {

struct FractionalRate
{
    FrameRate mRate;
    const char* mShort;
    const char* mFull;
};

const FractionalRate kFractionalRates[] = {
    {kFrameRate_23976, "23.976", "24000/1001"},
    {kFrameRate_VideoNTSC, "29.97", "30000/1001"},
    {kFrameRate_VideoNTSC_HD, "59.94", "60000/1001"},
};

// Returns only the letters and digits, in lower case.
std::string WithoutPunctuation(const std::string& inName)
{
    std::string bare;
    for (const char character : inName) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80 && std::isalnum(byte) != 0) {
            bare += static_cast<char>(std::tolower(byte));
        }
    }
    return bare;
}

// Parses a plain positive number; returns 0 for any other text.
double ReadNumber(const std::string& inText)
{
    double number = 0;
    const char* const end = inText.data() + inText.size();
    const std::from_chars_result result = std::from_chars(inText.data(), end, number, std::chars_format::fixed);
    const bool isWhole = result.ec == std::errc() && result.ptr == end;
    return isWhole && number > 0 && number < 1e9 ? number : 0;
}

std::string FormatShortest(double inNumber)
{
    char text[32];
    const std::to_chars_result result = std::to_chars(text, text + sizeof(text), inNumber);
    return std::string(text, result.ptr);
}

} // namespace

const std::vector<TimecodeFormat>& AllTimecodeFormats()
{
    static const std::vector<TimecodeFormat> formats = {
        {"24", kTimeDisplay_24Timecode, kFrameRate_Film24, true, "frames", "film"},
        {"25", kTimeDisplay_25Timecode, kFrameRate_VideoPAL, true, "frames", "PAL"},
        {"2997drop", kTimeDisplay_2997DropTimecode, kFrameRate_VideoNTSC, true, "frames",
         "NTSC drop-frame, 2 labels skipped a minute"},
        {"2997nondrop", kTimeDisplay_2997NonDropTimecode, kFrameRate_VideoNTSC, true, "frames",
         "NTSC, counts 30 a second"},
        {"30", kTimeDisplay_30Timecode, kFrameRate_Video30, true, "frames", ""},
        {"50", kTimeDisplay_50Timecode, kFrameRate_VideoPAL_HD, true, "frames", "PAL HD"},
        {"5994drop", kTimeDisplay_5994DropTimecode, kFrameRate_VideoNTSC_HD, true, "frames",
         "NTSC HD drop-frame, 4 labels skipped a minute"},
        {"5994nondrop", kTimeDisplay_5994NonDropTimecode, kFrameRate_VideoNTSC_HD, true, "frames",
         "NTSC HD, counts 60 a second"},
        {"60", kTimeDisplay_60Timecode, kFrameRate_Video60, true, "frames", ""},
        {"frames", kTimeDisplay_Frames, kFrameRate_VideoNTSC, false, "frames", "a plain count"},
        {"23976", kTimeDisplay_23976Timecode, kFrameRate_23976, true, "frames",
         "film at NTSC speed, counts 24 a second"},
        {"16mm", kTimeDisplay_16mmFeetFrames, kFrameRate_Film24, false, "frames", "feet and frames, 40 a foot"},
        {"35mm", kTimeDisplay_35mmFeetFrames, kFrameRate_Film24, false, "frames", "feet and frames, 16 a foot"},
        {"samples", kTimeDisplay_AudioSamplesTimecode, kFrameRate_Audio48000, false, "samples", "audio"},
        {"ms", kTimeDisplay_AudioMsTimecode, kFrameRate_Video1000, true, "milliseconds", "audio"},
    };
    return formats;
}

const TimecodeFormat* FindTimecodeFormat(const std::string& inName)
{
    const std::string name = WithoutPunctuation(inName);
    for (const TimecodeFormat& format : AllTimecodeFormats()) {
        if (name == format.mName) {
            return &format;
        }
    }
    return nullptr;
}

FrameRate ReadRate(const std::string& inText)
{
    for (const FractionalRate& rate : kFractionalRates) {
        if (inText == rate.mShort || inText == rate.mFull || (inText == "23.98" && rate.mRate == kFrameRate_23976)) {
            return rate.mRate;
        }
    }
    const std::size_t slash = inText.find('/');
    const double number = ReadNumber(inText.substr(0, slash));
    const double divisor = slash != std::string::npos ? ReadNumber(inText.substr(slash + 1)) : 1;
    return divisor > 0 ? FrameRate(number / divisor) : kFrameRate_Zero;
}

std::string RateInShort(const FrameRate& inRate)
{
    for (const FractionalRate& rate : kFractionalRates) {
        if (inRate == rate.mRate) {
            return rate.mShort;
        }
    }
    return FormatShortest(inRate.GetValue());
}

std::string RateInFull(const FrameRate& inRate)
{
    for (const FractionalRate& rate : kFractionalRates) {
        if (inRate == rate.mRate) {
            return rate.mFull;
        }
    }
    return FormatShortest(inRate.GetValue());
}

std::string RateError(const TimecodeFormat& inFormat, const FrameRate& inRate)
{
    const bool isAudio = inFormat.mDisplay >= kTimeDisplay_AudioSamplesTimecode;
    const FrameRate slowest = isAudio ? kFrameRate_Video1000 : FrameRate(1.0);
    const FrameRate fastest = isAudio ? kFrameRate_Audio192000 : kFrameRate_Video1000;
    if (inRate >= slowest && inRate <= fastest) {
        return std::string();
    }
    return "the rate of format " + std::string(inFormat.mName) + " must be from " + RateInShort(slowest) + " to "
           + RateInShort(fastest);
}

} // namespace orl
