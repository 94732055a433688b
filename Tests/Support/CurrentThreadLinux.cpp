#include <CurrentThread.h>

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

namespace ORLTest {

const std::size_t kKeptNameBytes = 15;

std::string SystemNameOfThisThread()
{
    char name[16] = {};
    ::pthread_getname_np(::pthread_self(), name, sizeof(name));
    return name;
}

int PriorityOfThisThread()
{
    const int own = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()));
    const int process = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::getpid()));
    const int steps = process - own;
    return steps % 5 == 0 && steps >= -15 && steps <= 10 ? 3 + steps / 5 : -1;
}

} // namespace ORLTest
