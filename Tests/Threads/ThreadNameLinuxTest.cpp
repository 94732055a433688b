#include <Platform/ThreadManager.h>

#include <ORLString.h>
#include <ORLThreadManager.h>
#include <ORLThreadedWorkQueue.h>

#include <fstream>
#include <gtest/gtest.h>
#include <pthread.h>
#include <string>
#include <thread>
#include <unistd.h>

using namespace ORL;

// `top -H` and debuggers read the name that the kernel stores.
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

namespace {

// `top -H` reads this file for each thread.
std::string NameInTheSystemsList()
{
    std::string name;
    std::getline(std::ifstream("/proc/thread-self/comm"), name);
    return name;
}

// `ps` and `pgrep` read this name.
std::string NameOfTheProcess()
{
    std::string name;
    std::getline(std::ifstream("/proc/" + std::to_string(::getpid()) + "/comm"), name);
    return name;
}

class AsksForItsName : public UnknownImpl<IThreadedQueueRequest, IThreadedQueueRequest>
{
public:
    explicit AsksForItsName(std::string& outName) : mName(outName) {}
    void Process() override { mName = NameInTheSystemsList(); }

private:
    std::string& mName;
};

} // namespace

TEST(ThreadName, OfTheFirstThread_StaysTheNameOfTheProcess)
{
    const std::string before = NameInTheSystemsList();
    ASSERT_EQ(before, NameOfTheProcess());
    ThreadManager::RegisterMainThread();
    EXPECT_EQ(before, NameOfTheProcess());
    EXPECT_EQ("CorvantoMain", MakeStdString(ThreadManager::GetCurrentThreadInfo()->GetThreadName()))
        << "the record has it";
    ThreadManager::UnregisterMainThread();
    EXPECT_EQ(before, NameOfTheProcess());
}

TEST(ThreadName, OfAMainThreadThatIsNotTheFirst_IsInTheSystemsList)
{
    std::thread([] {
        ThreadManager::RegisterMainThread();
        EXPECT_EQ("CorvantoMain", NameInTheSystemsList());
        ThreadManager::UnregisterMainThread();
    }).join();
}

TEST(ThreadName, OfARegisteredThread_IsInTheSystemsList)
{
    ThreadManager::RegisterMainThread();
    std::thread([] {
        ConstString name("Renderer 1");
        ConstString module("Editor");
        ThreadManager::RegisterThread(name, module);
        EXPECT_EQ("Renderer 1", NameInTheSystemsList());
        ThreadManager::UnregisterThread();
    }).join();
    ThreadManager::UnregisterMainThread();
}

TEST(ThreadName, OfAQueuesThread_BeginsWithItsModule)
{
    std::string name;
    const InterfaceRef<ThreadedWorkQueue, ORLUnknown> queue(new ThreadedWorkQueue);
    queue->Initialize(ThreadPriorities::kNormal, 1, ConstString("Loader"), ConstString("Editor"));
    queue->QueueRequest(new AsksForItsName(name));
    queue->Stop();
    EXPECT_EQ("Editor: Loader", name);
}
