// Makes the tests of this program run for a user whose language is American English, as their tables expect, regardless
// of the machine's locale.
#include <Linux/Modules/LinuxUserLanguage.h>

#include <cstdlib>
#include <gtest/gtest.h>

namespace {

// Set before main: the library reads the user's language once.
const int sFailure = ::setenv("LC_ALL", "en_US.UTF-8", 1);

} // namespace

TEST(EnglishUser, HasTheLanguageThatTheTablesExpect)
{
    ASSERT_EQ(0, sFailure);
    EXPECT_EQ(1033, ORL::Linux::UserLanguage());
}
