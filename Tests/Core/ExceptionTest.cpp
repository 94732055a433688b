#include <ORLException.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

using namespace ORL;

namespace {

// Throws a copy of a Class, catches it as ORL::Exception, and returns its what().
template <class Class, class... Arguments>
std::string CaughtAsBase(Arguments... inArguments)
{
    try {
        const Class original(inArguments...);
        throw Class(original);
    } catch (const Exception& caught) {
        const std::exception& root = caught;
        return root.what();
    }
}

} // namespace

TEST(Exception, EachClass_KeepsItsTextWhenThrownByValueAndCaughtAsBase)
{
    struct Row
    {
        int mLine;
        std::string mCaught;
        const char* mText;
    };
    const Row rows[] = {
        {__LINE__, CaughtAsBase<Exception>(), "class ORL::Exception"},
        {__LINE__, CaughtAsBase<exClassNotFound>(), "Class not found."},
        {__LINE__, CaughtAsBase<eNotADirectoryPath>(), "Directory object cannot construct with this path."},
        {__LINE__, CaughtAsBase<eDirectoryNoLongerValid>(), "Directory no longer exists."},
        {__LINE__, CaughtAsBase<eDirectoryNotListed>(), "Directory could not be listed whole."},
        {__LINE__, CaughtAsBase<StartupException>(kDiskFull), "StartupException"},
        {__LINE__, CaughtAsBase<NullInterfaceException>(), "A NULL interface pointer has been dereferenced."},
        {__LINE__, CaughtAsBase<EventFailure>(), "ORL::EventFailure exception"},
        {__LINE__, CaughtAsBase<SuiteCallFailed>(), "A suite function failed!"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mText, row.mCaught) << "row at line " << row.mLine;
    }
}

TEST(Exception, AnyOfThem_IsAStandardException)
{
    EXPECT_TRUE((std::is_base_of_v<std::exception, Exception>));
    EXPECT_TRUE((std::is_base_of_v<Exception, exClassNotFound>));
    EXPECT_TRUE((std::is_base_of_v<Exception, EventFailure>));
}

TEST(StartupException, Result_IsGivenBackFromACopy)
{
    const StartupException original(kAccessDenied);
    const StartupException copy = original;
    EXPECT_EQ(kAccessDenied, copy.GetResult());
}

TEST(Exception, InitializeAndTerminate_MayBeCalledInAnyNumber)
{
    EXPECT_NO_THROW({
        Exception::Terminate();
        Exception::Initialize();
        Exception::Initialize();
        Exception::Terminate();
    });
}
