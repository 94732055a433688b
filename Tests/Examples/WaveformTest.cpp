// Runs the waveform renderer as a user does. An independent library decodes the rendered pictures.
#include "PngReader.h"

#include <ProcessRunner.h>
#include <TempFolder.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <string>

using namespace ORLTest;

namespace {

std::string Number(std::uint32_t inNumber, unsigned inBytes)
{
    std::string bytes;
    for (unsigned i = 0; i < inBytes; ++i) {
        bytes += static_cast<char>(inNumber >> 8 * i & 0xFF);
    }
    return bytes;
}

struct Format
{
    unsigned mTag = 1;
    unsigned mBits = 16;
    unsigned mChannels = 1;
};

std::string Wav(const Format& inFormat, const std::string& inSound)
{
    const unsigned frameSize = inFormat.mChannels * inFormat.mBits / 8;
    const std::string format = Number(inFormat.mTag, 2) + Number(inFormat.mChannels, 2) + Number(8000, 4)
                               + Number(8000 * frameSize, 4) + Number(frameSize, 2) + Number(inFormat.mBits, 2);
    const std::string chunks = "fmt " + Number(16, 4) + format + "LIST" + Number(3, 4) + std::string("odd\0", 4)
                               + "data" + Number(static_cast<std::uint32_t>(inSound.size()), 4) + inSound;
    return "RIFF" + Number(static_cast<std::uint32_t>(chunks.size() + 4), 4) + "WAVE" + chunks;
}

std::string Sound16(std::size_t inFrames, const std::function<int(std::size_t)>& inSample)
{
    std::string sound;
    for (std::size_t i = 0; i < inFrames; ++i) {
        sound += Number(static_cast<std::uint32_t>(inSample(i)), 2);
    }
    return sound;
}

int Silence(std::size_t)
{
    return 0;
}

int FullScale(std::size_t inFrame)
{
    return inFrame % 2 == 0 ? 32767 : -32768;
}

class WaveformExample : public testing::Test
{
protected:
    std::string File(const std::string& inName) const { return (mFolder.Host() / inName).u8string(); }

    ProcessResult Run(const std::vector<std::string>& inArguments)
    {
        return RunBesideThisProgram("example_waveform", inArguments);
    }

    // Returns a thumbnail of 120 by 60 pixels.
    DecodedPicture Thumbnail(const std::string& inWav)
    {
        mFolder.MakeFile("in.wav", inWav);
        const ProcessResult result = Run({"--thumbnail", "120x60", File("out.png"), File("in.wav")});
        EXPECT_EQ(0, result.mExitCode) << result.mErrors;
        EXPECT_EQ("", result.mErrors);
        const DecodedPicture picture = ReadPng(File("out.png"));
        EXPECT_EQ(120u, picture.mWidth);
        EXPECT_EQ(60u, picture.mHeight);
        return picture;
    }

    // Expects one line on standard error that names the file, exit code 1, and no picture.
    void ExpectRefusal(const std::string& inContents, const std::string& inReason)
    {
        mFolder.MakeFile("bad.wav", inContents);
        const ProcessResult result = Run({File("bad.png"), File("bad.wav")});
        EXPECT_EQ(1, result.mExitCode) << inReason;
        EXPECT_EQ("example_waveform: bad.wav " + inReason + "\n", result.mErrors);
        EXPECT_EQ("", result.mOutput);
        EXPECT_FALSE(std::filesystem::exists(mFolder.Host() / "bad.png"));
    }

    TempFolder mFolder;
};

// Returns whether the pixel has the background colour.
bool IsPaper(const std::uint8_t* inPixel)
{
    return inPixel[0] == 13 && inPixel[1] == 17 && inPixel[2] == 23;
}

// Returns the rows of a column that differ from the background.
std::vector<std::size_t> InkedRows(const DecodedPicture& inPicture, std::size_t inX)
{
    std::vector<std::size_t> rows;
    for (std::size_t y = 0; y < inPicture.mHeight; ++y) {
        if (!IsPaper(inPicture.At(inX, y))) {
            rows.push_back(y);
        }
    }
    return rows;
}

void ExpectInk(const DecodedPicture& inPicture, std::size_t inFirstColumn, std::size_t inEndColumn, std::size_t inTop,
               std::size_t inBottom)
{
    for (std::size_t x = inFirstColumn; x < inEndColumn; ++x) {
        const std::vector<std::size_t> rows = InkedRows(inPicture, x);
        ASSERT_FALSE(rows.empty()) << "column " << x;
        ASSERT_EQ(inTop, rows.front()) << "column " << x;
        ASSERT_EQ(inBottom, rows.back()) << "column " << x;
        ASSERT_EQ(inBottom - inTop + 1, rows.size()) << "column " << x << " has a hole";
    }
}

} // namespace

TEST_F(WaveformExample, Silence_IsAFlatLineInTheMiddle)
{
    const DecodedPicture picture = Thumbnail(Wav(Format(), Sound16(8000, Silence)));
    ExpectInk(picture, 0, 120, 29, 30); // the line is one pixel high and covers half of each of the two rows
}

TEST_F(WaveformExample, FullScale_ReachesTheFirstAndTheLastRow)
{
    const DecodedPicture picture = Thumbnail(Wav(Format(), Sound16(8000, FullScale)));
    ExpectInk(picture, 0, 120, 0, 59);
}

TEST_F(WaveformExample, SoundThatBeginsHalfWay_BeginsHalfWayInThePicture)
{
    const DecodedPicture picture =
        Thumbnail(Wav(Format(), Sound16(8000, [](std::size_t i) { return i < 4000 ? 0 : FullScale(i); })));
    ExpectInk(picture, 0, 59, 29, 30);
    ExpectInk(picture, 60, 120, 0, 59);
}

TEST_F(WaveformExample, HalfScale_FillsTheMiddleHalf)
{
    const DecodedPicture picture =
        Thumbnail(Wav(Format(), Sound16(8000, [](std::size_t i) { return i % 2 == 0 ? 16384 : -16384; })));
    ExpectInk(picture, 0, 120, 15, 44);
}

TEST_F(WaveformExample, FewerFramesThanColumns_LeaveNoColumnEmpty)
{
    const DecodedPicture picture = Thumbnail(Wav(Format(), Sound16(2, Silence)));
    ExpectInk(picture, 0, 120, 29, 30);
}

TEST_F(WaveformExample, SoundLargerThanABuffer_IsReadToItsEnd)
{
    constexpr std::size_t frames = 5000000;
    const DecodedPicture picture =
        Thumbnail(Wav(Format(), Sound16(frames, [](std::size_t i) { return i + 2 < frames ? 0 : FullScale(i); })));
    ExpectInk(picture, 0, 119, 29, 30);
    ExpectInk(picture, 119, 120, 0, 59);
}

TEST_F(WaveformExample, EachCoding_ShowsFullScale)
{
    const std::string loud8("\xFF\x00", 2);
    const std::string loud24("\xFF\xFF\x7F\x00\x00\x80", 6);
    const std::string loud32("\xFF\xFF\xFF\x7F\x00\x00\x00\x80", 8);
    const std::string loudFloat("\x00\x00\x80\x3F\x00\x00\x80\xBF", 8);
    const struct
    {
        Format mFormat;
        std::string mTwoFrames;
    } codings[] = {{{1, 8, 1}, loud8}, {{1, 24, 1}, loud24}, {{1, 32, 1}, loud32}, {{3, 32, 1}, loudFloat}};
    for (const auto& coding : codings) {
        std::string sound;
        for (int i = 0; i < 400; ++i) {
            sound += coding.mTwoFrames;
        }
        SCOPED_TRACE(std::to_string(coding.mFormat.mBits) + " bits of coding " + std::to_string(coding.mFormat.mTag));
        ExpectInk(Thumbnail(Wav(coding.mFormat, sound)), 0, 120, 0, 59);
    }
}

TEST_F(WaveformExample, TwoChannels_HaveALaneEach)
{
    std::string sound;
    for (std::size_t i = 0; i < 8000; ++i) {
        sound += Number(static_cast<std::uint32_t>(FullScale(i)), 2) + Number(0, 2);
    }
    const DecodedPicture picture = Thumbnail(Wav({1, 16, 2}, sound));
    for (std::size_t x = 0; x < 120; ++x) {
        const std::vector<std::size_t> rows = InkedRows(picture, x);
        ASSERT_EQ(32u, rows.size()) << "30 rows of full scale and a line on two";
        ASSERT_EQ(29u, rows[29]);
        ASSERT_EQ(44u, rows[30]);
        ASSERT_EQ(45u, rows[31]);
    }
}

TEST_F(WaveformExample, SoundCutShort_IsShownAsFarAsItGoes)
{
    const std::string whole = Wav(Format(), Sound16(8000, FullScale));
    ExpectInk(Thumbnail(whole.substr(0, whole.size() - 8001)), 0, 120, 0, 59);
}

TEST_F(WaveformExample, SheetOfTwoFiles_HasACardForEach)
{
    mFolder.MakeFile("one.wav", Wav(Format(), Sound16(8000, FullScale)));
    mFolder.MakeFile("two.wav", Wav({1, 16, 2}, Sound16(8000, Silence)));
    const ProcessResult result = Run({File("sheet.png"), File("one.wav"), File("two.wav")});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    const DecodedPicture picture = ReadPng(File("sheet.png"));
    ASSERT_EQ(1200u, picture.mWidth);
    ASSERT_EQ(24 + 176 + 24 + 296 + 24u, picture.mHeight);
    EXPECT_EQ(File("sheet.png") + ": 1200 by 544 pixels\n", result.mOutput);
    EXPECT_TRUE(IsPaper(picture.At(600, 23)));
    EXPECT_FALSE(IsPaper(picture.At(600, 24)));
    EXPECT_FALSE(IsPaper(picture.At(600, 199)));
    EXPECT_TRUE(IsPaper(picture.At(600, 200)));
    EXPECT_TRUE(IsPaper(picture.At(600, 223)));
    EXPECT_FALSE(IsPaper(picture.At(600, 224)));
    const std::uint8_t* const clipped = picture.At(600, 24 + 46);
    EXPECT_GT(clipped[0], 200) << "full scale is marked in red";
}

TEST_F(WaveformExample, BadFiles_AreRefusedInOneLine)
{
    const std::string good = Wav(Format(), Sound16(8, FullScale));
    ExpectRefusal("", "is no WAV file");
    ExpectRefusal("RIFF", "is no WAV file");
    ExpectRefusal(std::string(good).replace(8, 4, "AVI "), "is no WAV file");
    ExpectRefusal(good.substr(0, 12), "holds no sound");
    ExpectRefusal(good.substr(0, 30), "its format chunk is too short");
    ExpectRefusal(Wav(Format(), ""), "holds no sound");
    ExpectRefusal(Wav({85, 16, 1}, "xx"), "its sound is coded as 85 with 16 bits, which this program does not read");
    ExpectRefusal(Wav({1, 16, 17}, "xx"), "its format makes no sense");
}

TEST_F(WaveformExample, MissingFile_IsOneLine)
{
    const ProcessResult result = Run({File("out.png"), File("nobody.wav")});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ("example_waveform: nobody.wav cannot be opened\n", result.mErrors);
}

TEST_F(WaveformExample, PictureThatCannotBeWritten_IsOneLine)
{
    mFolder.MakeFile("in.wav", Wav(Format(), Sound16(8, FullScale)));
    const std::string nowhere = File("no folder") + "/out.png";
    const ProcessResult result = Run({nowhere, File("in.wav")});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ("example_waveform: " + nowhere + " cannot be written\n", result.mErrors);
}

TEST_F(WaveformExample, ArgumentsWithoutSense_ShowTheUsage)
{
    const std::vector<std::vector<std::string>> all = {{},
                                                       {"a.png"},
                                                       {"--thumbnail", "0x5", "a.png", "b.wav"},
                                                       {"--thumbnail", "5x", "a.png", "b.wav"},
                                                       {"--thumbnail", "9x9", "a.png", "b.wav", "c.wav"}};
    for (const std::vector<std::string>& arguments : all) {
        const ProcessResult result = Run(arguments);
        EXPECT_EQ(2, result.mExitCode);
        EXPECT_EQ("usage: example_waveform [--thumbnail WxH] OUT.png FILE.wav ...\n", result.mErrors);
    }
}
