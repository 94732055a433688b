#include "TimecodeReading.h"

#include "Text.h"

#include <cstdlib>
#include <tvxcore/Debug.h>
#include <vector>

namespace orl {

using namespace tvxmediatypes;

namespace {

constexpr std::size_t kNowhere = std::string::npos;
constexpr const char* kTooLarge = "the number is too large";

bool IsDigit(char inCharacter)
{
    return inCharacter >= '0' && inCharacter <= '9';
}

std::size_t SkipSign(const std::string& inText)
{
    return !inText.empty() && (inText[0] == '+' || inText[0] == '-') ? 1 : 0;
}

// Describes the character at inStop. Characters outside ASCII are shown whole.
std::string ParseErrorText(const std::string& inText, std::size_t inStop)
{
    if (inStop >= inText.size()) {
        return "a number is missing";
    }
    std::size_t end = inStop + 1;
    while (end < inText.size() && (static_cast<unsigned char>(inText[end]) & 0xC0) == 0x80) {
        ++end;
    }
    return JsonQuoted(inText.substr(inStop, end - inStop)) + " does not fit here";
}

// Returns all digits of the text joined into one number, an upper bound for each number in the text.
double AllDigits(const std::string& inText)
{
    double number = 0;
    for (const char character : inText) {
        number = IsDigit(character) ? number * 10 + (character - '0') : number;
    }
    return number;
}

// Times are limited to about 414 years on either side of zero.
void CheckCount(double inCount, const FrameRate& inRate, std::size_t inWhere)
{
    if (inCount * static_cast<double>(inRate.GetTicksPerFrame()) > 9.2e18) {
        throw Unreadable(kTooLarge, inWhere);
    }
}

// Rejects numbers with too many digits: the library accepts any number of digits and lets the value wrap around.
void CheckFields(const std::string& inText)
{
    constexpr std::size_t kMaxDigitsOfField = 9;
    constexpr std::size_t kMaxDigitsOfShorthand = 15;
    const bool isLone = inText.find_first_of(":;.", SkipSign(inText)) == kNowhere;
    const std::size_t limit = isLone ? kMaxDigitsOfShorthand : kMaxDigitsOfField;
    std::size_t digits = 0;
    for (std::size_t i = 0; i < inText.size(); ++i) {
        digits = IsDigit(inText[i]) ? digits + 1 : 0;
        if (digits > limit) {
            throw Unreadable(kTooLarge, i);
        }
    }
}

bool IsFeet(TimeDisplay inDisplay)
{
    return inDisplay == kTimeDisplay_16mmFeetFrames || inDisplay == kTimeDisplay_35mmFeetFrames;
}

// Returns whether the text is a number of frames that is not split into fields.
bool IsPlainCount(const std::string& inText, TimeDisplay inDisplay)
{
    const std::size_t begin = SkipSign(inText);
    const std::size_t first = inText.find_first_of(":;.", begin);
    const bool hasLeadAlone = first == begin && inText.find_first_of(":;.", begin + 1) == kNowhere;
    return inDisplay == kTimeDisplay_Frames || hasLeadAlone;
}

void CheckNumbers(const std::string& inText, const TimecodeSettings& inSettings)
{
    const TimeDisplay display = inSettings.mFormat->mDisplay;
    if (IsFeet(display)) {
        constexpr double kFramesPerFoot = 40;
        CheckCount(AllDigits(inText) * kFramesPerFoot, inSettings.mRate, SkipSign(inText));
    } else if (IsPlainCount(inText, display)) {
        CheckCount(AllDigits(inText), inSettings.mRate, SkipSign(inText));
    } else {
        CheckFields(inText);
    }
}

// While an instance exists, failed library checks are recorded, not shown: they mean that the typed text is wrong, not
// that the library is.
class ScopedCheckRecorder
{
public:
    ScopedCheckRecorder()
    {
        sHasFailed = false;
        tvxcore::debug::Dialogs dialogs;
        dialogs.mAssert = &OnAssert;
        mEarlier = tvxcore::debug::InstallDialogs(dialogs);
    }
    ~ScopedCheckRecorder() { tvxcore::debug::InstallDialogs(mEarlier); }
    ScopedCheckRecorder(const ScopedCheckRecorder&) = delete;
    ScopedCheckRecorder& operator=(const ScopedCheckRecorder&) = delete;

    bool HasFailed() const { return sHasFailed; }

private:
    static bool OnAssert(bool&, const char*, const unsigned char*, const char*, long, const char*)
    {
        sHasFailed = true;
        return false;
    }

    static bool sHasFailed;
    tvxcore::debug::Dialogs mEarlier;
};

bool ScopedCheckRecorder::sHasFailed = false;

// Returns the fields of text with exactly four fields; an empty vector for any other text.
std::vector<long> FourFields(const std::string& inText)
{
    std::vector<long> fields;
    for (std::size_t at = SkipSign(inText); at < inText.size() && IsDigit(inText[at]);) {
        fields.push_back(std::strtol(inText.c_str() + at, nullptr, 10));
        at = inText.find_first_of(":;.", at);
        at = at == kNowhere ? inText.size() : at + 1;
    }
    return fields.size() == 4 ? fields : std::vector<long>();
}

// Returns how many frame numbers the format skips at the start of each minute not divisible by ten; 0 for non-drop.
long DroppedLabelCount(TimeDisplay inDisplay)
{
    switch (inDisplay) {
    case kTimeDisplay_2997DropTimecode: return 2;
    case kTimeDisplay_5994DropTimecode: return 4;
    default: return 0;
    }
}

bool IsDroppedLabel(const std::string& inText, TimeDisplay inDisplay)
{
    const std::vector<long> fields = FourFields(inText);
    return !fields.empty() && fields[1] % 10 != 0 && fields[2] == 0 && fields[3] < DroppedLabelCount(inDisplay);
}

// Returns whether a label's time is more than two days from zero. The library's wrap-around at the day boundary moves
// some negative times that far.
bool IsBeyondTheDay(const TickTime& inTime)
{
    return inTime > TickTime(172800.0) || inTime < TickTime(-172800.0);
}

} // namespace

Reading ReadCount(const std::string& inText, const TimecodeSettings& inSettings)
{
    const std::size_t begin = SkipSign(inText);
    std::size_t end = begin;
    while (end < inText.size() && IsDigit(inText[end])) {
        ++end;
    }
    if (end != inText.size() || end == begin) {
        throw Unreadable(ParseErrorText(inText, end), end);
    }
    const FrameRate rate = inSettings.CountingRate();
    CheckCount(AllDigits(inText), rate, begin);
    const TickTime time(std::strtoll(inText.c_str() + begin, nullptr, 10), rate);
    return Reading{inText[0] == '-' ? -time : time, std::string()};
}

Reading ReadLabel(const std::string& inText, const TimecodeSettings& inSettings)
{
    const TimeDisplay display = inSettings.mFormat->mDisplay;
    const UTF16String text = ToUTF16(inText);
    const std::size_t stop = ORL::Timecode::FindUnreadable(text, display);
    if (stop != UTF16String::npos) {
        // The text before the stop position is ASCII, so its UTF-16 units, characters and bytes are equally many.
        throw Unreadable(ParseErrorText(inText, stop), stop);
    }
    CheckNumbers(inText, inSettings);
    const ScopedCheckRecorder checks;
    ORL::Timecode code(kTime_Zero, inSettings.mRate, display, inSettings.mStyle);
    code.SetTime(text);
    if (!IsFeet(display) && !IsPlainCount(inText, display) && IsBeyondTheDay(code.GetTime())) {
        throw Unreadable("the time is outside the day", kNowhere);
    }
    if (IsDroppedLabel(inText, display)) {
        return Reading{code.GetTime(), "drop-frame skips this label"};
    }
    return Reading{code.GetTime(), checks.HasFailed() ? "there are more frames than a second has" : ""};
}

Reading ReadDistance(const std::string& inText, const TimecodeSettings& inSettings)
{
    const std::size_t begin = SkipSign(inText);
    const bool isCount = begin < inText.size() && inText.find_first_not_of("0123456789", begin) == kNowhere;
    return isCount ? ReadCount(inText, inSettings) : ReadLabel(inText, inSettings);
}

} // namespace orl
