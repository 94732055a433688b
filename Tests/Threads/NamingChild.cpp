// Names one thread; the exit code confirms that the program survived.
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
