#include <ORLResult.h>

#include <gtest/gtest.h>

using namespace ORL;

TEST(SystemErrorToORLResult, EachListedError_HasItsCode)
{
    struct Row
    {
        int mLine;
        unsigned long mError;
        Result mResult;
    };
    const Row rows[] = {
        {__LINE__, 2, kFileNotFound},   {__LINE__, 3, kPathNotFound}, {__LINE__, 5, kAccessDenied},
        {__LINE__, 32, kSharingViolation}, {__LINE__, 39, kDiskFull},    {__LINE__, 112, kDiskFull},
        {__LINE__, 183, kAlreadyExists},
        // no code of their own
        {__LINE__, 0, kGeneralFailure}, {__LINE__, 1, kGeneralFailure}, {__LINE__, 4, kGeneralFailure},
        {__LINE__, 38, kGeneralFailure}, {__LINE__, 80, kGeneralFailure}, {__LINE__, 184, kGeneralFailure},
        {__LINE__, 997, kGeneralFailure}, {__LINE__, 1235, kGeneralFailure}, {__LINE__, 0xFFFFFFFFul, kGeneralFailure},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mResult, Win::SystemErrorToORLResult(row.mError)) << "row at line " << row.mLine;
    }
}

TEST(ResultSucceeded, InformationalCodes_CountAsSuccess)
{
    EXPECT_TRUE(ResultSucceeded(kSuccess));
    EXPECT_TRUE(ResultSucceeded(kWaitTimeout));
    EXPECT_TRUE(ResultSucceeded(kRegistryKeyExisted));
}

TEST(ResultSucceeded, FailureCodesAndBareMinusOne_Fail)
{
    EXPECT_FALSE(ResultSucceeded(-1));
    for (const Result failure : {kNoSuchInterface, kClassNotRegistered, kCategoryNotRegistered,
                                 kCategoryIndexOutOfRange, kGeneralFailure, kDiskFull, kFileNotFound, kPathNotFound,
                                 kAccessDenied, kOperationAborted, kRegistryFailure, kSharingViolation,
                                 kAlreadyExists, kWaitFailed}) {
        EXPECT_FALSE(ResultSucceeded(failure));
        EXPECT_NE(0, failure & 0x20000000) << "bit 29 is set in every code of the library";
    }
}
