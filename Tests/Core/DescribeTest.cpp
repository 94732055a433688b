#include <ORLResult.h>

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>

using namespace ORL;

static_assert(*Describe(kSuccess) == 'k', "a code can be described at compile time");

TEST(Describe, EachCode_HasItsNameAndASentenceOfItsOwn)
{
    struct Row
    {
        int mLine;
        Result mResult;
        const char* mName;
    };
    const Row rows[] = {
        {__LINE__, kSuccess, "kSuccess"},
        {__LINE__, kRegistryKeyExisted, "kRegistryKeyExisted"},
        {__LINE__, kWaitTimeout, "kWaitTimeout"},
        {__LINE__, kNoSuchInterface, "kNoSuchInterface"},
        {__LINE__, kClassNotRegistered, "kClassNotRegistered"},
        {__LINE__, kCategoryNotRegistered, "kCategoryNotRegistered"},
        {__LINE__, kCategoryIndexOutOfRange, "kCategoryIndexOutOfRange"},
        {__LINE__, kGeneralFailure, "kGeneralFailure"},
        {__LINE__, kDiskFull, "kDiskFull"},
        {__LINE__, kFileNotFound, "kFileNotFound"},
        {__LINE__, kPathNotFound, "kPathNotFound"},
        {__LINE__, kAccessDenied, "kAccessDenied"},
        {__LINE__, kOperationAborted, "kOperationAborted"},
        {__LINE__, kRegistryFailure, "kRegistryFailure"},
        {__LINE__, kSharingViolation, "kSharingViolation"},
        {__LINE__, kAlreadyExists, "kAlreadyExists"},
        {__LINE__, kWaitFailed, "kWaitFailed"},
        {__LINE__, -1, "-1"},
    };
    std::set<std::string> sentences;
    for (const Row& row : rows) {
        const std::string text = Describe(row.mResult);
        const std::string start = std::string(row.mName) + ": ";
        EXPECT_EQ(start, text.substr(0, start.size())) << "row at line " << row.mLine;
        EXPECT_EQ('.', text.back()) << "row at line " << row.mLine;
        EXPECT_TRUE(sentences.insert(text.substr(start.size())).second) << "row at line " << row.mLine;
    }
}

TEST(Describe, NumberThatIsNoCode_IsUnknownByItsSign)
{
    const Result unassigned = static_cast<Result>(0xA00F0006u);
    EXPECT_STREQ("(unknown failure)", Describe(unassigned));
    EXPECT_STREQ("(unknown failure)", Describe(-2));
    EXPECT_STREQ("(unknown failure)", Describe(std::numeric_limits<Result>::min()));
    EXPECT_STREQ("(unknown success)", Describe(1));
    EXPECT_STREQ("(unknown success)", Describe(std::numeric_limits<Result>::max()));
}
