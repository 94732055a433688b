// Question: is a handle to a constant string as cheap as a counted pointer, and do hashes make comparing different
// strings cheap?
#include <ORLConstString.h>
#include <ORLString.h>

#include <Harness.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <atomic>
#include <memory>
#include <string>

namespace {

using ORL::ConstString;
using ORL::StdConstString;

struct Counted
{
    std::atomic<int> mCount{0};
    std::string mText;
};

void intrusive_ptr_add_ref(Counted* inCounted)
{
    inCounted->mCount.fetch_add(1, std::memory_order_relaxed);
}

void intrusive_ptr_release(Counted* inCounted)
{
    if (inCounted->mCount.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete inCounted;
    }
}

// Copies the handle and uses the copy.
template <class Handle>
__attribute__((noinline)) void Take(Handle inHandle)
{
    Bench::DoNotOptimize(&inHandle);
}

template <class Handle>
void CopyMany(const Handle& inHandle, std::uint64_t inCount)
{
    while (inCount-- != 0) {
        Take<Handle>(inHandle);
    }
}

void CopyAndDestroy(unsigned inThreads)
{
    const ConstString text("a queue's name, 24 units");
    const StdConstString narrow("a queue's name, 24 units");
    const boost::intrusive_ptr<Counted> counted(new Counted);
    Bench::Group("copy and destroy, threads: " + std::to_string(inThreads))
        .Threads(inThreads)
        .Ours("ConstString", Bench::AtMost(1.2), [&](std::uint64_t count) { CopyMany(text, count); })
        .Ours("StdConstString", Bench::AtMost(1.2), [&](std::uint64_t count) { CopyMany(narrow, count); })
        .Peer("boost::intrusive_ptr", [&](std::uint64_t count) { CopyMany(counted, count); })
        .Run();
}

template <class String>
void CompareMany(const String& inLeft, const String& inRight, std::uint64_t inCount)
{
    const String* left = &inLeft;
    const String* right = &inRight;
    while (inCount-- != 0) {
        // Hides the pointers from the optimiser in each iteration.
        __asm__ volatile("" : "+r"(left), "+r"(right) : : "memory");
        Bench::DoNotOptimize(*left == *right);
    }
}

// Names with a common prefix, like those of threads and queues.
void Equality(const char* inTitle, const std::u16string& inLeft, const std::u16string& inRight)
{
    const ConstString left(UTF16String(inLeft.begin(), inLeft.end()));
    const ConstString right(UTF16String(inRight.begin(), inRight.end()));
    Bench::Group(inTitle)
        .Ours("ConstString", Bench::AtMost(inLeft == inRight ? 0 : 0.5),
              [&](std::uint64_t count) { CompareMany(left, right, count); })
        .Peer("std::u16string", [&](std::uint64_t count) { CompareMany(inLeft, inRight, count); })
        .Run();
}

void Make()
{
    const char* const text = "a queue's name, 24 units";
    const std::string string(text);
    const UTF16String units = ORL::MakeString(text);
    Bench::Group("make of 24 characters and destroy")
        .Ours("StdConstString", Bench::AtMost(0),
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      Take<const StdConstString&>(StdConstString(text));
                  }
              })
        .Ours("ConstString of 16-bit text", Bench::AtMost(0),
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      Take<const ConstString&>(ConstString(units));
                  }
              })
        .Ours("ConstString of UTF-8", Bench::AtMost(0),
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      Take<const ConstString&>(ConstString(text));
                  }
              })
        .Ours("StdConstString, adopted", Bench::AtMost(0),
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      Take<const StdConstString&>(StdConstString::Adoptor::Adopt(text));
                  }
              })
        .Peer("std::make_shared<const string>",
              [&](std::uint64_t count) {
                  while (count-- != 0) {
                      Take<const std::shared_ptr<const std::string>&>(std::make_shared<const std::string>(text));
                  }
              })
        .Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    CopyAndDestroy(1);
    CopyAndDestroy(2);
    Equality("equality of two different texts of 24 units", u"a queue's name, number 12", u"a queue's name, number 13");
    Equality("equality of two different texts, the first unit differs", u"queue's name, number 12",
             u"Queue's name, number 12");
    Equality("equality of two equal texts", u"a queue's name, number 12", u"a queue's name, number 12");
    Make();
    return Bench::Finish();
}
