#include <CurrentThread.h>

#include <algorithm>
#include <pthread.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace ORLTest {

const std::size_t kMinThreadNameBytes = 15;

std::string SystemNameOfThisThread()
{
    char name[16] = {};
    ::pthread_getname_np(::pthread_self(), name, sizeof(name));
    return name;
}

int LevelOfThisThread()
{
    return ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()));
}

int ExpectedThreadLevel(int inPriority)
{
    const int process = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::getpid()));
    const int wanted = std::clamp(process + 5 * (3 - inPriority), -20, 19);
    bool mayHaveIt = false;
    std::thread([&] { mayHaveIt = ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), wanted) == 0; }).join();
    return mayHaveIt ? wanted : process;
}

} // namespace ORLTest
