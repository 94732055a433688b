// Adds up numbers on the threads of a queue, and waits for all of them: example_work_queue
#include <ORLFoundation.h>

#include <atomic>
#include <iostream>

namespace {

class Add : public ORL::UnknownImpl<ORL::IThreadedQueueRequest, ORL::IThreadedQueueRequest>
{
public:
    Add(std::atomic<int>& ioSum, int inNumber) : mSum(ioSum), mNumber(inNumber) {}

    void Process() override { mSum += mNumber; }

private:
    std::atomic<int>& mSum;
    const int mNumber;
};

int SumOnThreads(int inLast)
{
    std::atomic<int> sum{0};
    const ORL::InterfaceRef<ORL::ThreadedWorkQueue, ORL::ORLUnknown> queue(new ORL::ThreadedWorkQueue);
    queue->Initialize(ORL::ThreadPriorities::kNormal, 2, ORL::ConstString("Add"), ORL::ConstString("Example"));
    for (int number = 1; number <= inLast; ++number) {
        queue->QueueRequest(ORL::ThreadedWorkQueue::Request(new Add(sum, number)));
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
