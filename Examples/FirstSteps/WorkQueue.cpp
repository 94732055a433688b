// Adds up numbers on the threads of a queue, and waits for all of them: example_work_queue
#include <ORLFoundation.h>

#include <atomic>
#include <iostream>

namespace {

int SumOnThreads(int inLast)
{
    std::atomic<int> sum{0};
    const auto queue = ORL::MakeInterfaceRef<ORL::ThreadedWorkQueue>();
    queue->Initialize(ORL::ThreadPriorities::kNormal, 2, ORL::ConstString("Add"), ORL::ConstString("Example"));
    for (int number = 1; number <= inLast; ++number) {
        queue->QueueRequest(ORL::MakeFunctionRequest([&sum, number] { sum += number; }));
    }
    queue->Stop(); // runs what is queued, then returns
    return sum;
}

} // namespace

int main()
{
    ORL::Foundation::Initialize();
    const int sum = SumOnThreads(1000);
    std::cout << "1 + 2 + ... + 1000 = " << sum << '\n';
    ORL::Foundation::Terminate();
}
