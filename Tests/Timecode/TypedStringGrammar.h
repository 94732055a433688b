// Generates timecode strings as people type them, correct and incorrect, for random tests and fuzzing seeds.
#pragma once

#include <tvxcore/String.h>
#include <tvxmediatypes/Constants.h>
#include <tvxmediatypes/TimeDisplay.h>

#include <random>

namespace ORLTest {

/// Generates random strings, each with a format, rate and flag for parsing it. A seed produces the same strings on
/// every platform.
class TypedStringGrammar
{
public:
    struct Typed
    {
        UTF16String mText;
        tvxmediatypes::FrameRate mRate;
        tvxmediatypes::TimeDisplay mDisplay;
        bool mPreviousFrame;
    };

    explicit TypedStringGrammar(unsigned long long inSeed) : mRandom(inSeed) {}

    Typed Next()
    {
        Typed typed;
        typed.mDisplay = AnyDisplay();
        typed.mRate = AnyRate(typed.mDisplay);
        typed.mPreviousFrame = OneIn(3);
        mText.clear();
        AppendTyped();
        if (OneIn(12)) {
            Spoil();
        }
        typed.mText = mText;
        return typed;
    }

private:
    std::size_t Below(std::size_t inLimit) { return static_cast<std::size_t>(mRandom() % inLimit); }
    bool OneIn(std::size_t inCount) { return Below(inCount) == 0; }

    template <class T, std::size_t N>
    const T& AnyOf(const T (&inChoices)[N])
    {
        return inChoices[Below(N)];
    }

    tvxmediatypes::TimeDisplay AnyDisplay()
    {
        static constexpr int kDisplays[] = {100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112, 200, 201};
        return static_cast<tvxmediatypes::TimeDisplay>(AnyOf(kDisplays));
    }

    // Returns the rate of the format in most cases, sometimes any other.
    tvxmediatypes::FrameRate AnyRate(tvxmediatypes::TimeDisplay inDisplay)
    {
        using namespace tvxmediatypes;
        static constexpr FrameRate kAudio[] = {kFrameRate_Video1000,   kFrameRate_Audio8000,  kFrameRate_Audio11025,
                                               kFrameRate_Audio44100,  kFrameRate_Audio48000, kFrameRate_Audio96000,
                                               kFrameRate_Audio192000, FrameRate(10000.0),    FrameRate(10001.0)};
        static constexpr FrameRate kVideo[] = {kFrameRate_Video10, kFrameRate_Video12_5,   kFrameRate_23976,
                                               kFrameRate_Film24,  kFrameRate_VideoPAL,    kFrameRate_VideoNTSC,
                                               kFrameRate_Video30, kFrameRate_VideoPAL_HD, kFrameRate_VideoNTSC_HD,
                                               kFrameRate_Video60, kFrameRate_Video100,    kFrameRate_Video1000,
                                               FrameRate(14.985),  FrameRate(0.5),         FrameRate(101.0)};
        const bool isAudio = inDisplay >= kTimeDisplay_AudioSamplesTimecode;
        if (OneIn(4) || isAudio) {
            return isAudio ? AnyOf(kAudio) : AnyOf(kVideo);
        }
        static constexpr FrameRate kOwn[] = {kFrameRate_Film24,       kFrameRate_VideoPAL,     kFrameRate_VideoNTSC,
                                             kFrameRate_VideoNTSC,    kFrameRate_Video30,      kFrameRate_VideoPAL_HD,
                                             kFrameRate_VideoNTSC_HD, kFrameRate_VideoNTSC_HD, kFrameRate_Video60,
                                             kFrameRate_VideoPAL,     kFrameRate_23976,        kFrameRate_Film24,
                                             kFrameRate_23976};
        return kOwn[inDisplay - kTimeDisplay_24Timecode];
    }

    // Appends sign, leading separator, fields and trailing separator; each is optional.
    void AppendTyped()
    {
        AppendSign();
        if (OneIn(6)) {
            AppendSeparator();
        }
        const std::size_t fields = Below(6);
        for (std::size_t i = 0; i < fields; ++i) {
            if (i != 0) {
                AppendSeparator();
            }
            AppendField();
        }
        if (OneIn(8)) {
            AppendSeparator();
        }
    }

    void AppendSign()
    {
        if (OneIn(4)) {
            mText += static_cast<unsigned short>(OneIn(2) ? '-' : '+');
        }
    }

    void AppendSeparator()
    {
        static constexpr char kSeparators[] = {':', ';', '.', ':', ';', '.', ':', ';', '.', '+'};
        mText += static_cast<unsigned short>(AnyOf(kSeparators));
    }

    void AppendField()
    {
        switch (Below(10)) {
        case 0: break;                              // empty
        case 1: AppendDigits(1); break;             // one digit
        case 2: AppendDigits(3 + Below(9)); break;  // shorthand
        case 3: AppendDigits(9 + Below(24)); break; // numbers beyond 32 and 64 bits
        case 4: AppendNumber(4294967290ull + Below(12)); break;
        case 5: AppendNumber(AnyOf(kEdges)); break;
        default: AppendDigits(2); break;
        }
    }

    // Numbers at the limits of fields, rates and folds.
    static constexpr unsigned long long kEdges[] = {0,
                                                    1,
                                                    2,
                                                    3,
                                                    4,
                                                    9,
                                                    10,
                                                    11,
                                                    12,
                                                    13,
                                                    14,
                                                    15,
                                                    23,
                                                    24,
                                                    25,
                                                    28,
                                                    29,
                                                    30,
                                                    31,
                                                    49,
                                                    50,
                                                    51,
                                                    59,
                                                    60,
                                                    61,
                                                    99,
                                                    100,
                                                    101,
                                                    999,
                                                    1000,
                                                    1001,
                                                    7999,
                                                    8000,
                                                    9999,
                                                    10000,
                                                    10001,
                                                    48000,
                                                    48001,
                                                    99999,
                                                    100000,
                                                    100001,
                                                    1799,
                                                    1800,
                                                    3599,
                                                    3600,
                                                    86399,
                                                    86400,
                                                    107892,
                                                    2589408,
                                                    2147483647ull,
                                                    2147483648ull,
                                                    4294967295ull,
                                                    4294967296ull,
                                                    9223372036854775807ull,
                                                    9223372036854775808ull,
                                                    18446744073709551615ull};

    void AppendDigits(std::size_t inCount)
    {
        for (std::size_t i = 0; i < inCount; ++i) {
            mText += static_cast<unsigned short>('0' + Below(10));
        }
    }

    void AppendNumber(unsigned long long inValue)
    {
        for (const char digit : std::to_string(inValue)) {
            mText += static_cast<unsigned short>(digit);
        }
    }

    // Adds an error: a junk unit, a doubled unit or a missing one.
    void Spoil()
    {
        static constexpr unsigned short kJunk[] = {' ',    'a',    '-',    '+',    ',',    '/',    ':',    '\t',
                                                   0x0000, 0x0660, 0xFF10, 0xFF1A, 0xD800, 0xDC00, 0xFFFF, 0x0130};
        const std::size_t at = Below(mText.size() + 1);
        switch (Below(3)) {
        case 0: mText.insert(at, 1, AnyOf(kJunk)); break;
        case 1:
            if (at < mText.size()) {
                mText.insert(at, 1, UTF16String::value_type(mText[at]));
            }
            break;
        default:
            if (at < mText.size()) {
                mText.erase(at, 1);
            }
            break;
        }
    }

    std::mt19937_64 mRandom;
    UTF16String mText;
};

} // namespace ORLTest
