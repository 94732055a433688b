// A second process that works on the registry at the same time as the tests. The host uses only public headers, and
// exits without stopping the library.
//   registry_host model BASE SEED COUNT     random operations, as in RegistryModel
//   registry_host mix BASE FIRST COUNT N    N threads, each with its own values, COUNT rounds each
//   registry_host step NAME BASE LEDGER     one change, and a line in the ledger once it has been acknowledged
//   registry_host fill BASE COUNT VALUE      sets COUNT numbered values
//   registry_host count BASE NAME            increments a value until it is killed; prints acknowledged numbers
#include "RegistryModel.h"

#include <ORLRegistryStore.h>
#include <ORLString.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

using namespace ORL;

namespace {

constexpr auto kUser = RegistryRootKeys::kUser;

// Performs the work of one thread. A thread must read back its last write; the values of other threads may only grow.
bool Mix(const UTF16String& inBase, unsigned inThread, unsigned inCount)
{
    RegistryKey shared;
    RegistryKey own;
    const std::string name = "thread" + std::to_string(inThread);
    if (!ResultSucceeded(shared.Create(kUser, inBase)) || !ResultSucceeded(own.Create(shared, MakeString(name)))) {
        return false;
    }
    std::vector<unsigned> seen(16, 0);
    for (unsigned round = 1; round <= inCount; ++round) {
        unsigned value = 0;
        const std::string other = "thread" + std::to_string(round % 16);
        bool isRight = shared.SetUInt32Value(MakeString(name), round) == kSuccess
                       && shared.GetUInt32Value(MakeString(name), value) == kSuccess && value == round;
        if (shared.GetUInt32Value(MakeString(other), value) == kSuccess) {
            isRight = isRight && value >= seen[round % 16];
            seen[round % 16] = value;
        }
        std::string text;
        isRight = isRight && own.SetStringValue(MakeString("text"), std::to_string(round)) == kSuccess
                  && own.GetStringValue(MakeString("text"), text) == kSuccess && text == std::to_string(round);
        if (round % 10 == 0) {
            RegistryKey child;
            isRight = isRight && child.Create(own, MakeString("child\\deep")) == kSuccess
                      && child.SetUInt32Value(MakeString("n"), round) == kSuccess
                      && own.DeleteSubKey(MakeString("CHILD")) == kSuccess
                      && child.GetUInt32Value(MakeString("n"), value) == kRegistryFailure;
        }
        if (!isRight) {
            std::fprintf(stderr, "thread %u, round %u\n", inThread, round);
            return false;
        }
    }
    return true;
}

int MixOnThreads(const UTF16String& inBase, unsigned inFirst, unsigned inCount, unsigned inThreads)
{
    std::atomic<bool> isRight{true};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < inThreads; ++i) {
        threads.emplace_back([&, i] {
            if (!Mix(inBase, inFirst + i, inCount)) {
                isRight = false;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return isRight ? 0 : 1;
}

RegistryEdit Edit(const UTF16String& inPath, const char* inName, unsigned char inByte)
{
    RegistryEdit edit;
    edit.mKind = RegistryEdit::kSetValue;
    edit.mPath = inPath;
    edit.mValue.mName = MakeString(inName);
    edit.mValue.mType = RegistryValueTypes::kBinary;
    edit.mValue.mData.assign(100, inByte);
    return edit;
}

Result Change(const std::string& inName, const UTF16String& inBase)
{
    RegistryKey base;
    const Result opened = base.Open(kUser, inBase, static_cast<RegistryKeyAccess::Type>(0));
    if (!ResultSucceeded(opened)) {
        return opened;
    }
    if (inName == "set") {
        return base.SetUInt32Value(MakeString("v"), 2);
    }
    if (inName == "create") {
        return RegistryKey().Create(base, MakeString("made\\deep\\deeper"));
    }
    if (inName == "delete") {
        return base.DeleteSubKey(MakeString("tree"));
    }
    return RegistryStore::Apply({Edit(inBase, "one", 1), Edit(inBase + MakeString("\\new"), "two", 2),
                                 Edit(inBase + MakeString("\\new\\newer"), "three", 3)});
}

int Step(const std::string& inName, const UTF16String& inBase, const char* inLedger)
{
    const Result result = Change(inName, inBase);
    if (result != kSuccess) {
        return 2;
    }
    std::FILE* const ledger = std::fopen(inLedger, "ab");
    std::fputs("done\n", ledger);
    std::fclose(ledger);
    return 0;
}

// Sets the numbered values of a key.
int Fill(const UTF16String& inBase, unsigned inCount, unsigned inValue)
{
    RegistryKey base;
    bool isRight = base.Open(kUser, inBase, static_cast<RegistryKeyAccess::Type>(0)) == kSuccess;
    for (unsigned i = 0; i < inCount; ++i) {
        isRight = isRight && base.SetUInt32Value(MakeString("value " + std::to_string(i)), inValue) == kSuccess;
    }
    return isRight ? 0 : 1;
}

// Prints the value, then increments it repeatedly and prints each number after its write has been acknowledged,
// until the process is killed.
int Count(const UTF16String& inBase, const std::string& inName)
{
    RegistryKey base;
    const UTF16String name = MakeString(inName);
    unsigned value = 0;
    if (!ResultSucceeded(base.Create(kUser, inBase))) {
        return 1;
    }
    base.GetUInt32Value(name, value);
    do {
        std::printf("%u\n", value);
        std::fflush(stdout);
    } while (base.SetUInt32Value(name, ++value) == kSuccess);
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> words(argv + 1, argv + argc);
    const auto number = [&](std::size_t inIndex) {
        return static_cast<unsigned>(std::strtoul(words.at(inIndex).c_str(), nullptr, 10));
    };
    if (words.at(0) == "model") {
        ORLTest::RegistryModel model(MakeString(words.at(1)));
        for (std::size_t i = 2; i + 1 < words.size(); i += 2) {
            model.Run(number(i), number(i + 1), i + 3 < words.size()); // only the last turn changes the registry
        }
        return 0;
    }
    if (words.at(0) == "mix") {
        return MixOnThreads(MakeString(words.at(1)), number(2), number(3), number(4));
    }
    if (words.at(0) == "count") {
        return Count(MakeString(words.at(1)), words.at(2));
    }
    if (words.at(0) == "fill") {
        return Fill(MakeString(words.at(1)), number(2), number(3));
    }
    return Step(words.at(1), MakeString(words.at(2)), words.at(3).c_str());
}
