// Question: what does a lookup of an interned name cost? The answer decides whether hot code may intern names.
//
// The strings have 8 to 64 bytes and are looked up in one random order shared by all rivals. The peers intern too: an
// ordered set under a mutex with a copy-free lookup, and boost::flyweight with its default counting and locking.
#include <Harness.h>

#include <ORLImmutableString.h>

#include <boost/flyweight.hpp>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

std::vector<std::string> MakeTexts(std::size_t inCount)
{
    std::mt19937 random(1);
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < inCount; ++i) {
        std::string text = std::to_string(i) + ":";
        text.resize(std::max<std::size_t>(8, text.size() + random() % 50), static_cast<char>('a' + random() % 26));
        texts.push_back(std::move(text));
    }
    return texts;
}

std::vector<unsigned> MakeOrder(std::size_t inCount)
{
    std::mt19937 random(2);
    std::vector<unsigned> order(1 << 16);
    for (unsigned& place : order) {
        place = static_cast<unsigned>(random() % inCount);
    }
    return order;
}

class LockedSet
{
public:
    const std::string* Intern(std::string_view inText)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        const auto found = mTexts.find(inText);
        return found != mTexts.end() ? &*found : &*mTexts.emplace(inText).first;
    }

private:
    std::mutex mMutex;
    std::set<std::string, std::less<>> mTexts;
};

void Compare(std::size_t inCount, unsigned inThreads)
{
    using Flyweight = boost::flyweight<std::string>;
    const std::vector<std::string> texts = MakeTexts(inCount);
    std::thread([] {}).join(); // some pointers use atomic operations only after the process has started a thread
    const std::vector<unsigned> order = MakeOrder(inCount);
    std::vector<ORL::ImmutableString> ours;
    std::vector<Flyweight> flyweights;
    LockedSet set;
    for (const std::string& text : texts) {
        ours.push_back(ORL::ImmutableString::CreateDynamic(text));
        flyweights.emplace_back(text);
        set.Intern(text);
    }
    const auto each = [&](std::uint64_t inOperations, unsigned inThread, auto inIntern) {
        for (std::uint64_t i = 0; i < inOperations; ++i) {
            inIntern(texts[order[(i + inThread * 7919u) & 0xFFFF]]);
        }
    };
    const std::string title = "CreateDynamic of a text already present, " + std::to_string(inCount) + " texts, "
                              + std::to_string(inThreads) + (inThreads == 1 ? " thread" : " threads");
    Bench::Group(title)
        .Threads(inThreads)
        .Ours("ImmutableString", Bench::AtMost(0.3, "std::set under std::mutex"),
              [&](std::uint64_t n, unsigned thread) {
                  each(n, thread, [](const std::string& text) {
                      Bench::DoNotOptimize(ORL::ImmutableString::CreateDynamic(text.c_str()));
                  });
              })
        .Ours("ImmutableString (again)", Bench::AtMost(0.5, "boost::flyweight"),
              [&](std::uint64_t n, unsigned thread) {
                  each(n, thread, [](const std::string& text) {
                      Bench::DoNotOptimize(ORL::ImmutableString::CreateDynamic(text.c_str()));
                  });
              })
        .Peer("std::set under std::mutex",
              [&](std::uint64_t n, unsigned thread) {
                  each(n, thread, [&](const std::string& text) { Bench::DoNotOptimize(set.Intern(text)); });
              })
        .Peer("boost::flyweight",
              [&](std::uint64_t n, unsigned thread) {
                  each(n, thread, [](const std::string& text) {
                      const Flyweight name(text);
                      Bench::DoNotOptimize(&name.get());
                  });
              })
        .Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    for (const std::size_t count : {std::size_t{10000}, std::size_t{1000000}}) {
        for (const unsigned threads : {1u, 2u}) {
            Compare(count, threads);
        }
    }
    return Bench::Finish();
}
