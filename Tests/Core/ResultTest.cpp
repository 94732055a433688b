#include <ORLResult.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

using namespace ORL;

// Hosts store and compare the numbers of result codes, so the numbers must not change.
TEST(Result, EachCode_HasItsNumber)
{
    struct Row
    {
        int mLine;
        Result mResult;
        std::uint32_t mNumber;
    };
    const Row rows[] = {
        {__LINE__, kSuccess, 0x00000000},
        {__LINE__, kRegistryKeyExisted, 0x200F0001},
        {__LINE__, kWaitTimeout, 0x200F0002},
        {__LINE__, kNoSuchInterface, 0xA00A0001},
        {__LINE__, kClassNotRegistered, 0xA00A0002},
        {__LINE__, kCategoryNotRegistered, 0xA00A0003},
        {__LINE__, kCategoryIndexOutOfRange, 0xA00A0004},
        {__LINE__, kGeneralFailure, 0xA00F0001},
        {__LINE__, kDiskFull, 0xA00F0002},
        {__LINE__, kFileNotFound, 0xA00F0003},
        {__LINE__, kPathNotFound, 0xA00F0004},
        {__LINE__, kAccessDenied, 0xA00F0005},
        {__LINE__, kOperationAborted, 0xA00F0007},
        {__LINE__, kRegistryFailure, 0xA00F0008},
        {__LINE__, kSharingViolation, 0xA00F0009},
        {__LINE__, kAlreadyExists, 0xA00F000A},
        {__LINE__, kWaitFailed, 0xA00F000B},
    };
    static_assert(sizeof(Result) == 4 && std::is_signed_v<Result>);
    for (const Row& row : rows) {
        EXPECT_EQ(row.mNumber, static_cast<std::uint32_t>(row.mResult)) << "row at line " << row.mLine;
    }
}

TEST(SystemErrorToORLResult, EachListedError_HasItsCode)
{
    struct Row
    {
        int mLine;
        unsigned long mError;
        Result mResult;
    };
    const Row rows[] = {
        {__LINE__, 2, kFileNotFound},
        {__LINE__, 3, kPathNotFound},
        {__LINE__, 5, kAccessDenied},
        {__LINE__, 32, kSharingViolation},
        {__LINE__, 39, kDiskFull},
        {__LINE__, 112, kDiskFull},
        {__LINE__, 183, kAlreadyExists},
        // error numbers without a result code
        {__LINE__, 0, kGeneralFailure},
        {__LINE__, 1, kGeneralFailure},
        {__LINE__, 4, kGeneralFailure},
        {__LINE__, 38, kGeneralFailure},
        {__LINE__, 80, kGeneralFailure},
        {__LINE__, 184, kGeneralFailure},
        {__LINE__, 997, kGeneralFailure},
        {__LINE__, 1235, kGeneralFailure},
        {__LINE__, 0xFFFFFFFFul, kGeneralFailure},
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
    for (const Result failure :
         {kNoSuchInterface, kClassNotRegistered, kCategoryNotRegistered, kCategoryIndexOutOfRange, kGeneralFailure,
          kDiskFull, kFileNotFound, kPathNotFound, kAccessDenied, kOperationAborted, kRegistryFailure,
          kSharingViolation, kAlreadyExists, kWaitFailed}) {
        EXPECT_FALSE(ResultSucceeded(failure));
        EXPECT_NE(0, failure & 0x20000000) << "bit 29 is set in every code of the library";
    }
}
