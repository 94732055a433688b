#include "TimecodeTable.h"

#include "Json.h"
#include "Text.h"
#include "TimecodeFormatNames.h"

#include <iomanip>
#include <iostream>
#include <string>

namespace orl {

using namespace tvxmediatypes;

namespace {

// Half a second after 01:02:03. The labels that the formats show for this time differ in the last field, and in the
// seconds if a format's labels drift from real time.
constexpr double kSampleSeconds = 3723.5;

struct Row
{
    const TimecodeFormat& mFormat;
    std::string mRate;
    std::size_t mDigits; // digits of the last field; 0 if the number varies
    std::string mSeparators;
    long long mFramesPerDay;
    std::string mSample;
};

std::string Label(const TimecodeFormat& inFormat, const TickTime& inTime)
{
    return ToUTF8(ORL::Timecode(inTime, inFormat.mRate, inFormat.mDisplay).GetString());
}

std::string SeparatorsIn(const std::string& inLabel)
{
    std::string separators;
    for (const char character : inLabel) {
        if (character < '0' || character > '9') {
            separators += character;
        }
    }
    return separators;
}

// Returns the frames in a day: from 00:00:00:00 to its next occurrence if labels have hours, else in 86400 seconds.
// Doubles the frames of half a day, because the library wraps times beyond one day.
long long CountDay(const TimecodeFormat& inFormat, const std::string& inSeparators)
{
    ORL::Timecode code(kTime_Zero, inFormat.mRate, inFormat.mDisplay);
    if (inSeparators.size() == 3) {
        code.IncrementHMSF(12, 0, 0, 0);
    } else {
        code.SetTime(TickTime(43200.0));
    }
    return 2 * code.GetTime().ToFrame64(inFormat.mRate);
}

Row Describe(const TimecodeFormat& inFormat)
{
    const std::string zero = Label(inFormat, kTime_Zero);
    const std::string separators = SeparatorsIn(zero);
    const std::size_t digits = separators.empty() ? 0 : zero.size() - zero.find_last_of(separators.back()) - 1;
    return Row{inFormat,   RateInShort(inFormat.mRate),    digits,
               separators, CountDay(inFormat, separators), Label(inFormat, TickTime(kSampleSeconds))};
}

void PrintText()
{
    const auto line = [](const std::string& inName, const std::string& inRate, const std::string& inDigits,
                         const std::string& inSeparators, const std::string& inFrames, const std::string& inSample,
                         const std::string& inAbout) {
        std::cout << std::left << std::setw(13) << inName << std::right << std::setw(7) << inRate << std::setw(8)
                  << inDigits << "  " << std::left << std::setw(12) << inSeparators << std::right << std::setw(11)
                  << inFrames << "  " << std::left << std::setw(inAbout.empty() ? 0 : 16) << inSample << inAbout
                  << '\n';
    };
    line("format", "rate", "digits", "separators", "a day", "after 3723.5 s", "");
    for (const TimecodeFormat& format : AllTimecodeFormats()) {
        const Row row = Describe(format);
        line(format.mName, row.mRate + (format.mHasOwnRate ? " " : "*"),
             row.mDigits != 0 ? std::to_string(row.mDigits) : "any", row.mSeparators.empty() ? "none" : row.mSeparators,
             std::to_string(row.mFramesPerDay), row.mSample, format.mAbout);
    }
    std::cout << "* unless --rate selects another\n";
}

void PrintJson()
{
    Json table = Json::Array();
    for (const TimecodeFormat& format : AllTimecodeFormats()) {
        const Row row = Describe(format);
        table.Append({{"format", format.mName},
                      {"value", static_cast<int>(format.mDisplay)},
                      {"rate", RateInFull(format.mRate)},
                      {"ownRate", format.mHasOwnRate},
                      {"digits", row.mDigits != 0 ? Json(row.mDigits) : Json()},
                      {"separators", row.mSeparators},
                      {"framesPerDay", row.mFramesPerDay},
                      {"sampleSeconds", kSampleSeconds},
                      {"sample", row.mSample},
                      {"about", format.mAbout}});
    }
    std::cout << table.Document();
}

} // namespace

void PrintTimecodeTable(bool inAsJson)
{
    if (inAsJson) {
        PrintJson();
    } else {
        PrintText();
    }
}

} // namespace orl
