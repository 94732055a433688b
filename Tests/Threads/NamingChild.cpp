// Names one thread and tells by its exit code that this came to an end.
#include <ORLThreadManager.h>

int main()
{
    ORL::ThreadManager::RegisterMainThread();
    ORL::ConstString thread("Decoder");
    ORL::ConstString module("Player");
    ORL::ThreadManager::RegisterThread(thread, module);
    ORL::ThreadManager::UnregisterThread();
    return 17;
}
