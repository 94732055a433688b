#include <ORLSingletonConstruction.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace ORL;

// Nothing in this program starts the library.
TEST(SingletonConstruction, LockAskedForByManyThreadsBeforeAnyStart_IsOneAndTheSame)
{
    std::vector<CriticalSection*> given(8);
    std::vector<std::thread> threads;
    for (CriticalSection*& each : given) {
        threads.emplace_back([&each] {
            CriticalSection& section = ORLGetGlobalCriticalSectionForSingletonConstruction();
            const CriticalSectionLock lock(section);
            each = &section;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (CriticalSection* each : given) {
        EXPECT_EQ(&ORLGetGlobalCriticalSectionForSingletonConstruction(), each);
    }
}
