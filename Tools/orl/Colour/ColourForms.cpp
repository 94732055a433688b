#include "ColourForms.h"

#include "Failure.h"
#include "Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace orl {

namespace {

using Colour = ORL::ParamColor<unsigned long>;

struct Range
{
    double mMin;
    double mMax;
};

struct Form
{
    const char* mName;
    std::vector<std::string> mNumbers;
    std::vector<Range> mRanges; // the valid ranges; empty if the form is output-only
};

const Form& Of(ColourForm inForm)
{
    static const Form forms[] = {
        {"rgb", {"r", "g", "b"}, {{0, 255}, {0, 255}, {0, 255}}},
        {"hsl", {"h", "s", "l"}, {{0, 360}, {0, 100}, {0, 100}}},
        {"hsv", {"h", "s", "v"}, {{0, 360}, {0, 100}, {0, 100}}},
        {"yuv", {"y", "u", "v"}, {{0, 255}, {-128, 127}, {-128, 127}}},
        {"ypbpr", {"y", "pb", "pr"}, {{0, 1}, {-0.5, 0.5}, {-0.5, 0.5}}},
        {"yiq", {"y", "i", "q"}, {}},
        {"ire", {"luma", "chroma", "lumaMillivolts", "chromaMillivolts"}, {}},
    };
    return forms[static_cast<std::size_t>(inForm)];
}

Failure CannotRead(const std::string& inText, const std::string& inReason)
{
    return Failure("colour: cannot read \"" + WithoutControlCharacters(inText) + "\": " + inReason, kExitUsage);
}

std::vector<std::string> SplitAtCommas(const std::string& inText)
{
    std::vector<std::string> parts(1);
    for (const char character : inText) {
        if (character == ',') {
            parts.emplace_back();
        } else {
            parts.back() += character;
        }
    }
    return parts;
}

std::string ShownNumber(double inNumber)
{
    std::ostringstream text;
    text << inNumber;
    return text.str();
}

bool TakesWholeNumbers(ColourForm inForm)
{
    return inForm != ColourForm::kYPbPr;
}

double NumberOf(const std::string& inText, const std::string& inPart, const std::string& inName, const Range& inRange,
                bool inIsWhole)
{
    double number = 0;
    const char* const end = inPart.data() + inPart.size();
    const auto [at, error] = std::from_chars(inPart.data(), end, number, std::chars_format::fixed);
    if (error != std::errc() || at != end || !std::isfinite(number)) {
        throw CannotRead(inText, inName + " is not a number");
    }
    if (number < inRange.mMin || number > inRange.mMax || (inIsWhole && number != std::floor(number))) {
        throw CannotRead(inText, inName + " is " + (inIsWhole ? "a whole number " : "") + "from "
                                     + ShownNumber(inRange.mMin) + " to " + ShownNumber(inRange.mMax));
    }
    return number;
}

std::vector<double> NumbersOf(const std::string& inText, ColourForm inForm)
{
    const Form& form = Of(inForm);
    const std::vector<std::string> parts = SplitAtCommas(inText);
    if (parts.size() != form.mRanges.size()) {
        throw CannotRead(inText, std::string(form.mName) + " is three numbers, separated by commas"
                                     + (inForm == ColourForm::kRGB ? ", or # and six hexadecimal digits" : ""));
    }
    std::vector<double> numbers;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        numbers.push_back(NumberOf(inText, parts[i], form.mNumbers[i], form.mRanges[i], TakesWholeNumbers(inForm)));
    }
    return numbers;
}

Colour ColourFromHexadecimal(const std::string& inText)
{
    unsigned long value = 0;
    const char* const begin = inText.data() + 1;
    const char* const end = inText.data() + inText.size();
    const auto [at, error] = std::from_chars(begin, end, value, 16);
    if (error != std::errc() || at != end || inText.size() != 7) {
        throw CannotRead(inText, "# and six hexadecimal digits are needed");
    }
    return Colour(static_cast<unsigned char>(value >> 16), static_cast<unsigned char>(value >> 8),
                  static_cast<unsigned char>(value));
}

unsigned char AsByte(float inChannel)
{
    return static_cast<unsigned char>(std::lround(std::min(1.0f, std::max(0.0f, inChannel)) * 255));
}

Colour ColourFromNumbers(const std::vector<double>& inNumbers, ColourForm inForm)
{
    const auto whole = [&](std::size_t inAt) { return static_cast<unsigned>(inNumbers[inAt]); };
    const auto single = [&](std::size_t inAt) { return static_cast<float>(inNumbers[inAt]); };
    const auto signedByte = [&](std::size_t inAt) {
        return static_cast<char>(static_cast<signed char>(inNumbers[inAt]));
    };
    Colour colour;
    switch (inForm) {
    case ColourForm::kHSL: ORL::ColorHSLtoRGB(whole(0), whole(1), whole(2), colour); break;
    case ColourForm::kHSV: ORL::ColorHSVtoRGB(whole(0), whole(1), whole(2), colour); break;
    case ColourForm::kYUV:
        ORL::ColorYUVtoRGB(static_cast<unsigned char>(whole(0)), signedByte(1), signedByte(2), colour);
        break;
    case ColourForm::kYPbPr: {
        float rgb[3] = {};
        ORL::ColorYPbPrToRGB(single(0), single(1), single(2), rgb[0], rgb[1], rgb[2]);
        colour = Colour(AsByte(rgb[0]), AsByte(rgb[1]), AsByte(rgb[2]));
        break;
    }
    default:
        colour = Colour(static_cast<unsigned char>(whole(0)), static_cast<unsigned char>(whole(1)),
                        static_cast<unsigned char>(whole(2)));
    }
    return colour;
}

std::string Rounded(float inNumber, int inDigits)
{
    char text[64];
    std::snprintf(text, sizeof(text), "%.*f", inDigits, static_cast<double>(inNumber));
    // Removes the sign of "-0.0000".
    const bool isZero = std::all_of(text, text + std::char_traits<char>::length(text),
                                    [](char c) { return c == '-' || c == '0' || c == '.'; });
    return isZero && text[0] == '-' ? text + 1 : text;
}

std::vector<std::string> Texts(int inDigits, std::initializer_list<float> inNumbers)
{
    std::vector<std::string> texts;
    for (const float number : inNumbers) {
        texts.push_back(Rounded(number, inDigits));
    }
    return texts;
}

std::vector<std::string> Texts(std::initializer_list<int> inNumbers)
{
    std::vector<std::string> texts;
    for (const int number : inNumbers) {
        texts.push_back(std::to_string(number));
    }
    return texts;
}

// A grey has no hue, and black has no saturation either; both are shown as 0.
std::vector<std::string> PolarNumbers(const Colour& inColour, ColourForm inForm)
{
    unsigned hue = 0;
    unsigned saturation = 0;
    unsigned level = 0;
    const auto convert = inForm == ColourForm::kHSL ? &ORL::ColorRGBtoHSL : &ORL::ColorRGBtoHSV;
    convert(inColour, hue, saturation, level, nullptr, nullptr);
    return Texts({static_cast<int>(hue), static_cast<int>(saturation), static_cast<int>(level)});
}

std::vector<std::string> FloatNumbers(const Colour& inColour, ColourForm inForm)
{
    constexpr int kDigits = 4;
    const float red = inColour.GetRed() / 255.0f;
    const float green = inColour.GetGreen() / 255.0f;
    const float blue = inColour.GetBlue() / 255.0f;
    if (inForm == ColourForm::kIRE) {
        float ire[2] = {};
        float millivolts[2] = {};
        ORL::ColorRGBToIRE(red, green, blue, ire[0], ire[1]);
        ORL::ColorRGBToMV(red, green, blue, millivolts[0], millivolts[1]);
        return Texts(1, {ire[0], ire[1], millivolts[0], millivolts[1]});
    }
    float y = 0;
    float second = 0;
    float third = 0;
    ORL::ColorRGBToYPbPr(red, green, blue, y, second, third);
    if (inForm == ColourForm::kYIQ) {
        ORL::ColorYPbPrToYIQ(y, second, third, y, second, third);
    }
    return Texts(kDigits, {y, second, third});
}

} // namespace

const std::vector<std::string>& ColourFormNames()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> made;
        for (int form = 0; form <= static_cast<int>(ColourForm::kIRE); ++form) {
            made.emplace_back(Of(static_cast<ColourForm>(form)).mName);
        }
        return made;
    }();
    return names;
}

const std::vector<std::string>& ReadableColourFormNames()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> made;
        for (const std::string& name : ColourFormNames()) {
            if (!Of(*ColourFormOf(name)).mRanges.empty()) {
                made.push_back(name);
            }
        }
        return made;
    }();
    return names;
}

std::optional<ColourForm> ColourFormOf(const std::string& inName)
{
    const std::vector<std::string>& names = ColourFormNames();
    const auto found = std::find(names.begin(), names.end(), inName);
    return found == names.end() ? std::nullopt
                                : std::optional<ColourForm>(static_cast<ColourForm>(found - names.begin()));
}

Colour ReadColour(const std::string& inText, ColourForm inForm)
{
    if (inForm == ColourForm::kRGB && inText.compare(0, 1, "#") == 0) {
        return ColourFromHexadecimal(inText);
    }
    return ColourFromNumbers(NumbersOf(inText, inForm), inForm);
}

std::vector<std::string> ColourNumbers(const Colour& inColour, ColourForm inForm)
{
    switch (inForm) {
    case ColourForm::kRGB: return Texts({inColour.GetRed(), inColour.GetGreen(), inColour.GetBlue()});
    case ColourForm::kHSL:
    case ColourForm::kHSV: return PolarNumbers(inColour, inForm);
    case ColourForm::kYUV: {
        unsigned char y = 0;
        char u = 0;
        char v = 0;
        ORL::ColorRGBtoYUV(inColour, y, u, v);
        return Texts({y, static_cast<signed char>(u), static_cast<signed char>(v)});
    }
    default: return FloatNumbers(inColour, inForm);
    }
}

std::vector<std::string> ColourNumberNames(ColourForm inForm)
{
    return Of(inForm).mNumbers;
}

std::string ColourAsHexadecimal(const Colour& inColour)
{
    const unsigned char bytes[] = {inColour.GetRed(), inColour.GetGreen(), inColour.GetBlue()};
    return "#" + Hexadecimal(bytes, sizeof(bytes));
}

} // namespace orl
