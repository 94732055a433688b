#include <ORLStream.h>

#include <TextHelpers.h>

#include <tvxcore/StringStream.h>

#include <gtest/gtest.h>

#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>

using namespace ORL;
using ORLTest::Show;
using ORLTest::Units;

namespace {

int sEraseCalls = 0;

void CountErase(std::ios_base::event inEvent, std::ios_base&, int)
{
    sEraseCalls += inEvent == std::ios_base::erase_event ? 1 : 0;
}

} // namespace

TEST(StandardStreams, AreTheProcessOnes)
{
    EXPECT_EQ(&std::cin, &In);
    EXPECT_EQ(&std::cout, &Out);
    EXPECT_EQ(&std::clog, &Log);
    EXPECT_EQ(&std::cerr, &Err);
}

TEST(SetStreamBuffer, ReturnsTheOldBuffer_AndWritesToTheNewOneWithDefaultFormatting)
{
    std::stringbuf first;
    std::stringbuf second;
    std::ostream stream(&first);
    stream << std::hex << std::showbase << std::setprecision(2) << std::setfill('*') << 255;
    EXPECT_EQ(&first, SetStreamBuffer(stream, &second));
    EXPECT_EQ(&second, stream.rdbuf());
    stream << 255 << ' ' << 3.14159 << std::setw(4) << 1;
    EXPECT_EQ("0xff", first.str());
    EXPECT_EQ("255 3.14159   1", second.str());
}

TEST(SetStreamBuffer, ErrorStateTieExceptionsAndCallbacks_AreGone)
{
    std::stringbuf buffer;
    std::ostream stream(nullptr);
    stream.tie(&std::cout);
    stream.register_callback(CountErase, 0);
    const int word = std::ios_base::xalloc();
    stream.iword(word) = 5;
    try {
        stream.exceptions(std::ios_base::badbit);
        ADD_FAILURE() << "a stream without buffer is bad";
    } catch (const std::ios_base::failure&) {
    }
    sEraseCalls = 0;
    EXPECT_EQ(nullptr, SetStreamBuffer(stream, &buffer));
    EXPECT_TRUE(stream.good());
    EXPECT_EQ(nullptr, stream.tie());
    EXPECT_EQ(std::ios_base::goodbit, stream.exceptions());
    EXPECT_EQ(0, stream.iword(word));
    EXPECT_EQ(1, sEraseCalls);
}

TEST(SetStreamBuffer, NullBuffer_LeavesABadStreamThatThrowsNothing)
{
    std::stringbuf buffer;
    std::ostream stream(&buffer);
    stream.exceptions(std::ios_base::badbit);
    EXPECT_EQ(&buffer, SetStreamBuffer(stream, nullptr));
    EXPECT_TRUE(stream.bad());
}

TEST(SetStreamBuffer, StringStreamIsRebound_AndItsOwnTextStaysWhole)
{
    std::ostringstream stream;
    stream << "before";
    std::stringbuf other;
    std::streambuf* const own = SetStreamBuffer(stream, &other);
    stream << "elsewhere";
    EXPECT_EQ("before", stream.str());
    EXPECT_EQ("elsewhere", other.str());
    EXPECT_EQ(&other, SetStreamBuffer(stream, own));
    stream << " and after";
    EXPECT_EQ("before and after", stream.str());
}

TEST(SetStreamBuffer, SixteenBitStream_KeepsWritingNumbers)
{
    tvxcore::oUTF16StringStream first;
    tvxcore::oUTF16StringStream second;
    first << std::hex << 255 << std::setfill(static_cast<unsigned short>('*'));
    std::basic_streambuf<unsigned short>* const own = first.rdbuf();
    EXPECT_EQ(own, SetStreamBuffer(first, second.rdbuf()));
    first << std::setw(5) << 255;
    EXPECT_EQ("ff", Show(first.str()));
    EXPECT_EQ("  255", Show(second.str()));
}

TEST(SetStreamBuffer, LocaleOfTheNewBuffer_StaysTheCallers)
{
    class Grouping : public std::numpunct<char>
    {
        char do_thousands_sep() const override { return '\''; }
    };
    const std::locale own(std::locale::classic(), new Grouping);
    std::stringbuf buffer;
    buffer.pubimbue(own);
    std::ostream stream(nullptr);
    SetStreamBuffer(stream, &buffer);
    EXPECT_EQ(own, buffer.getloc());
    EXPECT_EQ(std::locale(), stream.getloc());

    std::basic_stringbuf<unsigned short> wideBuffer;
    wideBuffer.pubimbue(own);
    tvxcore::oUTF16StringStream wideStream;
    SetStreamBuffer(wideStream, &wideBuffer);
    EXPECT_EQ(own, wideBuffer.getloc());
}

TEST(SetStreamBuffer, SixteenBitStreamThatKnewNoUnits_WritesThem)
{
    std::basic_stringbuf<unsigned short> first;
    std::basic_stringbuf<unsigned short> second;
    std::basic_ostream<unsigned short> stream(&first);
    const std::locale own = first.getloc();
    EXPECT_EQ(&first, SetStreamBuffer(stream, &second));
    stream << std::setw(3) << 17;
    EXPECT_EQ(Units(u" 17"), UTF16String(second.str().c_str()));
    EXPECT_EQ(own, first.getloc());
}

TEST(SixteenBitStream, NarrowText_IsDecodedAsUTF8)
{
    tvxcore::oUTF16StringStream stream;
    stream << "a\xC3\xA9" << std::string("\xE2\x82\xAC\0dropped", 11) << "\xF0\x9F\x98\x80";
    EXPECT_EQ("a<00e9><20ac><d83d><de00>", Show(stream.str()));
}

TEST(SixteenBitStream, NarrowText_HonoursWidthCountedInUnits)
{
    tvxcore::oUTF16StringStream stream;
    stream << std::setw(4) << "\xC3\xA9"
           << "|" << std::left << std::setw(4) << std::string("ab") << "|";
    EXPECT_EQ("   <00e9>|ab  |", Show(stream.str()));
}

TEST(SixteenBitStream, NarrowTextAmongNumbers_KeepsItsPlace)
{
    tvxcore::oUTF16StringStream stream;
    stream << "line " << 12 << ", " << std::hex << 255u << "\r\n";
    EXPECT_EQ(Units(u"line 12, ff\r\n"), stream.str());
}
