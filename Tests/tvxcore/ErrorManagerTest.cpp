#include <tvxcore/ErrorManager.h>

#include <tvxcore/Localizer.h>
#include <tvxcore/Text.h>

#include <AllocationFaults.h>

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace tvxcore::config;

namespace {

class CountingManager : public ErrorManager
{
public:
    bool OnAllocationFailure(std::size_t inBytes) override
    {
        mBytes = inBytes;
        return true;
    }

    void ThrowError(ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID, bool inFlag,
                    const ReplacementValue& inFirst, const ReplacementValue& inSecond, const ReplacementValue& inThird,
                    const ReplacementValue& inFourth) const override
    {
        ++mErrors;
        EXPECT_EQ(kErrorLevel_Warning, inLevel);
        EXPECT_STREQ("$$$/key=text", inZString);
        EXPECT_EQ(105u, inPackage);
        EXPECT_EQ(25, inErrorID);
        EXPECT_TRUE(inFlag);
        EXPECT_EQ(sValues + 0, &inFirst);
        EXPECT_EQ(sValues + 1, &inSecond);
        EXPECT_EQ(sValues + 2, &inThird);
        EXPECT_EQ(sValues + 3, &inFourth);
    }

    static const ReplacementValue sValues[4];
    mutable std::atomic<int> mErrors{0};
    std::size_t mBytes = 0;
};

const ReplacementValue CountingManager::sValues[4];

void Raise()
{
    const ReplacementValue* const values = CountingManager::sValues;
    ThrowError(kErrorLevel_Warning, "$$$/key=text", 105, 25, true, values[0], values[1], values[2], values[3]);
}

/// A host's catalogue that translates, throws or raises an error, as the test selects.
class Catalogue : public Localizer
{
public:
    Catalogue() : mBefore(InstallLocalizer(this)) {}
    ~Catalogue() override { InstallLocalizer(mBefore); }

    UTF16String Localize(const char* inZString) override
    {
        ++mCalls;
        EXPECT_STREQ("$$$/key=text", inZString);
        if (mThrows) {
            throw std::runtime_error("the catalogue is unreadable");
        }
        if (mRaises) {
            Raise();
        }
        return UTF16String(1, 0x5B57) + tvxcore::utility::AsciiToUTF16(" translated");
    }

    bool mThrows = false;
    bool mRaises = false;
    std::atomic<int> mCalls{0};

private:
    Localizer* const mBefore;
};

class ErrorManagerTest : public testing::Test
{
protected:
    ~ErrorManagerTest() override { InstallErrorManager(mBefore); }

    ErrorManager* const mBefore = InstallErrorManager(nullptr);
};

} // namespace

TEST_F(ErrorManagerTest, NoneInstalled_TheBuiltInOneIsGivenOnlyWhenAllowed)
{
    EXPECT_EQ(nullptr, ErrorManager::Get(false));
    ErrorManager* const builtIn = ErrorManager::Get(true);
    ASSERT_NE(nullptr, builtIn);
    EXPECT_EQ(builtIn, ErrorManager::Get(true));
    EXPECT_FALSE(builtIn->OnAllocationFailure(100)) << "nothing was freed, so a second try is no use";
}

TEST_F(ErrorManagerTest, BuiltInOne_WritesOneLineAndReturns)
{
    testing::internal::CaptureStderr();
    Raise();
    EXPECT_EQ("Error 25 of package 105, level 1: text\n", testing::internal::GetCapturedStderr());
}

TEST_F(ErrorManagerTest, BuiltInOne_WritesATextThatIsNotAZStringAsItIs)
{
    const ReplacementValue value;
    testing::internal::CaptureStderr();
    ThrowError(kErrorLevel_Error, "plain = text", 1, -2, false, value, value, value, value);
    ThrowError(kErrorLevel_Error, "$$$/key=", 1, 3, false, value, value, value, value);
    EXPECT_EQ("Error -2 of package 1, level 0: plain = text\nError 3 of package 1, level 0: \n",
              testing::internal::GetCapturedStderr());
}

TEST_F(ErrorManagerTest, BuiltInOne_WritesTheTextOfTheInstalledLocaliser)
{
    Catalogue catalogue;
    testing::internal::CaptureStderr();
    Raise();
    EXPECT_EQ("Error 25 of package 105, level 1: \xE5\xAD\x97 translated\n", testing::internal::GetCapturedStderr());
    EXPECT_EQ(1, catalogue.mCalls);
}

TEST_F(ErrorManagerTest, LocaliserThatThrows_LeavesTheDefaultText)
{
    Catalogue catalogue;
    catalogue.mThrows = true;
    testing::internal::CaptureStderr();
    Raise();
    catalogue.mThrows = false;
    Raise();
    EXPECT_EQ("Error 25 of package 105, level 1: text\n"
              "Error 25 of package 105, level 1: \xE5\xAD\x97 translated\n",
              testing::internal::GetCapturedStderr());
}

TEST_F(ErrorManagerTest, LocaliserThatRaisesAnError_EndsInsteadOfRecursing)
{
    Catalogue catalogue;
    catalogue.mRaises = true;
    testing::internal::CaptureStderr();
    Raise();
    EXPECT_EQ("Error 25 of package 105, level 1: text\n"
              "Error 25 of package 105, level 1: \xE5\xAD\x97 translated\n",
              testing::internal::GetCapturedStderr());
    EXPECT_EQ(1, catalogue.mCalls);
}

TEST_F(ErrorManagerTest, NoMemoryForTheText_LeavesTheDefaultText)
{
    const char zString[] = "$$$/key=a text that is too long for the buffer inside a string object";
    const ReplacementValue value;
    testing::internal::CaptureStderr();
    {
        tvxcore::utility::AllocationFaults::Plan plan;
        plan.mFailureCount = tvxcore::utility::AllocationFaults::kAllFurther;
        plan.mOfThisThreadOnly = true;
        const tvxcore::utility::AllocationFaults::Scope faults(plan);
        ThrowError(kErrorLevel_Warning, zString, 105, 25, true, value, value, value, value);
        EXPECT_NE(0u, faults.Refused());
    }
    EXPECT_EQ("Error 25 of package 105, level 1: a text that is too long for the buffer inside a string object\n",
              testing::internal::GetCapturedStderr());
}

TEST_F(ErrorManagerTest, BuiltInOne_RunsAFunctionAsItIs)
{
    EXPECT_EQ(17, ErrorManager::Get(true)->ExecuteFunctionWithTopLevelExceptionHandler([] { return 17l; }));
    const boost::function0<long> thrower = []() -> long { throw std::runtime_error("reason"); };
    EXPECT_THROW(ErrorManager::Get(true)->ExecuteFunctionWithTopLevelExceptionHandler(thrower), std::runtime_error);
}

TEST_F(ErrorManagerTest, InstalledOne_IsGivenAndGetsEveryArgument)
{
    CountingManager manager;
    EXPECT_EQ(nullptr, InstallErrorManager(&manager));
    EXPECT_EQ(&manager, ErrorManager::Get(false));
    EXPECT_EQ(&manager, ErrorManager::Get(true));
    Raise();
    EXPECT_EQ(1, manager.mErrors);
    EXPECT_TRUE(ErrorManager::Get(false)->OnAllocationFailure(64));
    EXPECT_EQ(64u, manager.mBytes);
    EXPECT_EQ(&manager, InstallErrorManager(nullptr));
    EXPECT_EQ(nullptr, ErrorManager::Get(false));
}

TEST_F(ErrorManagerTest, ThreadsThatRaiseAndInstallAtOnce_LoseNoError)
{
    CountingManager managers[2];
    InstallErrorManager(&managers[0]);
    constexpr int kThreads = 4;
    constexpr int kRounds = 1000;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&managers] {
            for (int round = 0; round < kRounds; ++round) {
                Raise();
                InstallErrorManager(&managers[round % 2]);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(kThreads * kRounds, managers[0].mErrors + managers[1].mErrors);
}
