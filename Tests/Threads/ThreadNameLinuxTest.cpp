#include <Platform/ThreadManager.h>

#include <gtest/gtest.h>
#include <pthread.h>
#include <string>
#include <thread>

using namespace ORL;

// What `top -H` and a debugger read is what the system kept.
TEST(ThreadName, TooLongForTheSystem_IsCutAtACharacter)
{
    struct Row
    {
        int mLine;
        const char* mName;
        const char* mKept;
    };
    const Row rows[] = {
        {__LINE__, "short", "short"},
        {__LINE__, "exactly fifteen", "exactly fifteen"},
        {__LINE__, "exactly sixteen!", "exactly sixteen"},
        {__LINE__, "thirteen char\xC3\xA4\xC3\xB6", "thirteen char\xC3\xA4"},
        {__LINE__, "fourteen chars\xC3\xA4", "fourteen chars"},
        {__LINE__, "", ""},
    };
    for (const Row& row : rows) {
        std::thread([&row] {
            ThreadManager::Platform::NameThread_Impl(row.mName);
            char kept[16] = {};
            ASSERT_EQ(0, ::pthread_getname_np(::pthread_self(), kept, sizeof(kept)));
            EXPECT_EQ(std::string(row.mKept), kept) << "row at line " << row.mLine;
        }).join();
    }
}
