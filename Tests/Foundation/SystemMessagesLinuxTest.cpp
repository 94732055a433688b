// Tests the library's own table of system error messages.
#include <ORLFailureReport.h>
#include <ORLString.h>

#include <gtest/gtest.h>
#include <string>

// A binary search finds the entries, so an entry out of order would be missed.
TEST(SystemErrorMessageOnLinux, EveryEntryOfTheTable_IsFound)
{
    constexpr int kEntries = 167;
    int found = 0;
    for (unsigned int error = 0; error < 16384; ++error) {
        const std::string message = ORL::MakeStdString(ORL::Win32ErrorCodeToMessage(error));
        found += message.size() > 2 && message.compare(message.size() - 2, 2, "\r\n") == 0 ? 1 : 0;
    }
    EXPECT_EQ(kEntries, found);
}

// Wine has no message for this error, so only Linux tests it.
TEST(SystemErrorMessageOnLinux, FileThatIsTooLarge_HasASentence)
{
    EXPECT_EQ("The file is larger than the limit allows.\r\n", ORL::MakeStdString(ORL::Win32ErrorCodeToMessage(223)));
}
