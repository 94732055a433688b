// Names one thread and confirms with its exit code that it survived.
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
