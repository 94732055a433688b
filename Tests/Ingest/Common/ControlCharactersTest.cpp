// Tests WithoutControlCharacters: what reaches a terminal stays on one line and contains no control sequence.
#include <Text.h>

#include <gtest/gtest.h>
#include <string>

TEST(WithoutControlCharacters, EachControlCharacter_BecomesAQuestionMark)
{
    for (const char* control : {"\x01", "\x1B", "\n", "\x7F", "\xC2\x80", "\xC2\x9B", "\xC2\x9F", "\xE2\x80\xA8",
                                "\xE2\x80\xA9", "\xE2\x80\xAE", "\xE2\x81\xA6", "\xE2\x81\xA9"}) {
        EXPECT_EQ("a?b", orl::WithoutControlCharacters(std::string("a") + control + "b"));
    }
    EXPECT_EQ("?", orl::WithoutControlCharacters(std::string(1, '\0')));
}

TEST(WithoutControlCharacters, OtherBytes_AreKept)
{
    for (const char* kept : {"", "caf\xC3\xA9", "\xC2\xA0", "\xE2\x80\xA7", "\xE2\x80\xAF", "\xE2\x81\xA5",
                             "\xE2\x81\xAA", "\xC2", "\xE2\x80", "\x9B\xFF", "\xF0\x9F\x8E\xAC"}) {
        EXPECT_EQ(kept, orl::WithoutControlCharacters(kept));
    }
}
