// Tests reading the length from a WAV header, for formats that count samples and for formats that count blocks.
#include "IngestTestSupport.h"

#include <WavHeader.h>

#include <gtest/gtest.h>
#include <optional>
#include <string>

using namespace ORLTest;

namespace {

std::string Number(std::uint64_t inNumber, int inSize)
{
    std::string bytes;
    for (int i = 0; i < inSize; ++i) {
        bytes += static_cast<char>(inNumber >> (8 * i));
    }
    return bytes;
}

std::string Chunk(const std::string& inTag, const std::string& inBody)
{
    return inTag + Number(inBody.size(), 4) + inBody + std::string(inBody.size() % 2, '\0');
}

std::string Format(unsigned inTag, unsigned inRate, unsigned inBytesPerBlock, const std::string& inMore = std::string())
{
    return Chunk("fmt ", Number(inTag, 2) + Number(1, 2) + Number(inRate, 4) + Number(inRate, 4)
                             + Number(inBytesPerBlock, 2) + Number(4, 2) + inMore);
}

// Returns the bytes after the 16 bytes common to all formats: the extension size 22, the valid bits, the channel mask
// and the identifier of the format.
std::string Extensible(const std::string& inIdentifier)
{
    return Number(22, 2) + Number(16, 2) + Number(3, 4) + inIdentifier;
}

const std::string kOfTag("\x00\x00\x00\x00\x10\x00\x80\x00\x00\xAA\x00\x38\x9B\x71", 14);

std::string Riff(const std::string& inChunks, const std::string& inForm = "RIFF")
{
    return inForm + Number(4 + inChunks.size(), 4) + "WAVE" + inChunks;
}

/// Returns the number of samples, or -1 if the file has no length.
std::int64_t Samples(const std::string& inContents)
{
    const TempFolder folder;
    folder.MakeFile("f.wav", inContents);
    const std::optional<orl::WavLength> length = orl::ReadWavLength(folder.Path(u"f.wav"));
    return length ? static_cast<std::int64_t>(length->mSamples) : -1;
}

const std::string kData = Chunk("data", std::string(1024, 'd'));
const std::string kBlocks = Number(2, 2) + Number(505, 2); // the fields of IMA ADPCM: extension size, samples per block

} // namespace

TEST(WavHeader, FormatsOfOneSampleABlock_CountTheData)
{
    EXPECT_EQ(512, Samples(Riff(Format(1, 48000, 2) + kData))) << "whole numbers";
    EXPECT_EQ(256, Samples(Riff(Format(3, 48000, 4) + kData))) << "floating point";
    EXPECT_EQ(1024, Samples(Riff(Format(6, 8000, 1) + kData))) << "A-law";
    EXPECT_EQ(1024, Samples(Riff(Format(7, 8000, 1) + kData))) << "mu-law";
    EXPECT_EQ(512, Samples(Riff(Format(1, 48000, 2) + Chunk("fact", Number(7, 4)) + kData)))
        << "the data are what counts";
}

TEST(WavHeader, PackedFormats_HaveTheLengthOfTheFactChunk)
{
    for (const unsigned tag : {0x0002u, 0x0011u, 0x0031u, 0x0055u, 0x1234u}) {
        EXPECT_EQ(1010, Samples(Riff(Format(tag, 22050, 256, kBlocks) + Chunk("fact", Number(1010, 4)) + kData)))
            << tag;
        EXPECT_EQ(1010, Samples(Riff(Format(tag, 22050, 256, kBlocks) + kData + Chunk("fact", Number(1010, 4)))))
            << "behind the data as well";
        EXPECT_EQ(-1, Samples(Riff(Format(tag, 22050, 256, kBlocks) + kData))) << tag << ": nothing tells";
        EXPECT_EQ(-1, Samples(Riff(Format(tag, 22050, 256, kBlocks) + Chunk("fact", Number(0, 4)) + kData))) << tag;
    }
}

TEST(WavHeader, PackedFilesThatAreCut_HaveNoLength)
{
    const std::string whole = Riff(Format(0x11, 22050, 256, kBlocks) + Chunk("fact", Number(1010, 4)) + kData);
    EXPECT_EQ(1010, Samples(whole));
    EXPECT_EQ(-1, Samples(whole.substr(0, whole.size() - 1)));
}

TEST(WavHeader, AnExtensibleFormat_IsWhatItsIdentifierSays)
{
    const std::string fact = Chunk("fact", Number(99, 4));
    EXPECT_EQ(512, Samples(Riff(Format(0xFFFE, 48000, 2, Extensible(Number(1, 2) + kOfTag)) + kData)));
    EXPECT_EQ(256, Samples(Riff(Format(0xFFFE, 48000, 4, Extensible(Number(3, 2) + kOfTag)) + fact + kData)));
    EXPECT_EQ(-1, Samples(Riff(Format(0xFFFE, 48000, 2, Extensible(Number(0x11, 2) + kOfTag)) + kData)));
    EXPECT_EQ(99, Samples(Riff(Format(0xFFFE, 48000, 2, Extensible(Number(0x11, 2) + kOfTag)) + fact + kData)));
    EXPECT_EQ(-1, Samples(Riff(Format(0xFFFE, 48000, 2, Extensible(Number(1, 2) + std::string(14, 'x'))) + kData)))
        << "an identifier of another kind";
    EXPECT_EQ(-1, Samples(Riff(Format(0xFFFE, 48000, 2) + kData))) << "a header without it";
}

TEST(WavHeader, LongFiles_HaveTheirNumbersInAChunkOfTheirOwn)
{
    const std::string sizes = Chunk("ds64", Number(5000000000, 8) + Number(1024, 8) + Number(77, 8) + Number(0, 4));
    const std::string data = "data" + Number(0xFFFFFFFF, 4) + std::string(1024, 'd');
    EXPECT_EQ(512, Samples(Riff(sizes + Format(1, 48000, 2) + data, "RF64")));
    EXPECT_EQ(77,
              Samples(Riff(sizes + Format(0x11, 48000, 256) + Chunk("fact", Number(0xFFFFFFFF, 4)) + data, "BW64")));
}

TEST(WavHeader, WholeCutAndBrokenFiles)
{
    const std::string wav = MakeWav(44100, 1000);
    EXPECT_EQ(1000, Samples(wav));
    EXPECT_EQ(900, Samples(wav.substr(0, wav.size() - 400))) << "only what is there";
    const std::size_t data = wav.find("data") + 8;
    for (std::size_t size = 0; size < data; ++size) {
        EXPECT_EQ(-1, Samples(wav.substr(0, size))) << size;
    }
    EXPECT_EQ(-1, Samples("RIFFxxxxAVI "));
    EXPECT_EQ(-1, Samples(std::string(1000, 'R')));
    EXPECT_EQ(-1, Samples(Riff(Format(1, 0, 2) + kData))) << "no rate";
    EXPECT_EQ(-1, Samples(Riff(Format(1, 48000, 0) + kData))) << "no size of a block";
    EXPECT_EQ(-1, Samples(Riff(kData))) << "no format";
}
