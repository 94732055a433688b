// Compares random registry operations of two processes with a plain map, and runs many threads in two processes.
#include "RegistryModel.h"
#include "TestRegistry.h"

#include <ProcessRunner.h>

#include <ORLRegistryStore.h>
#include <ORLString.h>

#include <algorithm>
#include <thread>

using namespace ORL;
using namespace ORLTest;
using RegistryModelTest = RegistryTest;
using RegistryProcessesTest = RegistryTest;

// 10^5 operations in four turns. Each turn starts with closed handles; after it, another process performs one turn on
// the same keys.
TEST_F(RegistryModelTest, RandomOperations_AnswerAsAPlainMapDoes)
{
    constexpr unsigned kTurns = 4;
    constexpr unsigned kHere = 24000;
    constexpr unsigned kThere = 1000;
    RegistryModel model(mPath);
    std::vector<std::string> history{"model", MakeStdString(mPath)};
    const auto note = [&history](unsigned inSeed, unsigned inCount) {
        history.push_back(std::to_string(inSeed));
        history.push_back(std::to_string(inCount));
    };
    for (unsigned turn = 0; turn < kTurns; ++turn) {
        ASSERT_EQ(0u, model.Run(turn, kHere, false)) << "the operation of that number, turn " << turn;
        note(turn, kHere);
        note(1000 + turn, kThere);
        ASSERT_EQ(0, RunBesideThisProgram("registry_host", history).mExitCode);
        model.Run(1000 + turn, kThere, true); // replays the turn of the other process on the map
        ASSERT_TRUE(model.IsSame()) << "turn " << turn;
    }
}

TEST_F(RegistryProcessesTest, EightThreadsOfTwoProcesses_LoseNothing)
{
    constexpr unsigned kRounds = 100;
    const std::string base = MakeStdString(mPath);
    const std::string rounds = std::to_string(kRounds);
    ProcessResult results[2];
    std::thread first([&] {
        results[0] = RunBesideThisProgram("registry_host", {"mix", base, "0", rounds, "8"}, "", 100);
    });
    results[1] = RunBesideThisProgram("registry_host", {"mix", base, "8", rounds, "8"}, "", 100);
    first.join();
    EXPECT_EQ(0, results[0].mExitCode) << results[0].mErrors;
    EXPECT_EQ(0, results[1].mExitCode) << results[1].mErrors;
    for (unsigned thread = 0; thread < 16; ++thread) {
        const UTF16String name = MakeString("thread" + std::to_string(thread));
        unsigned value = 0;
        EXPECT_EQ(kSuccess, mKey.GetUInt32Value(name, value));
        EXPECT_EQ(kRounds, value);
        RegistryKey own;
        std::string text;
        ASSERT_EQ(kSuccess, own.Open(mKey, name));
        EXPECT_EQ(kSuccess, own.GetStringValue(MakeString("text"), text));
        EXPECT_EQ(rounds, text);
        EXPECT_EQ(kFileNotFound, RegistryKey().Open(own, MakeString("child")));
    }
}

// A write by another process must be visible to the very next read, not only to a later one.
TEST_F(RegistryProcessesTest, WhatAnotherProcessWrites_IsSeenAtTheNextRead)
{
    RegistryKey other;
    ASSERT_EQ(kSuccess, other.Create(mKey, MakeString("tree\\leaf")));
    ASSERT_EQ(kSuccess, mKey.SetUInt32Value(MakeString("v"), 1));
    unsigned value = 0;
    ASSERT_EQ(kSuccess, mKey.GetUInt32Value(MakeString("v"), value));
    const std::string base = MakeStdString(mPath);
    const std::string ledger = FolderOfThisProgram() + "registry-ledger-" + base.substr(base.rfind(' ') + 1);
    for (const char* step : {"set", "create", "delete", "apply"}) {
        EXPECT_EQ(0, RunBesideThisProgram("registry_host", {"step", step, base, ledger}).mExitCode) << step;
        if (std::string(step) == "set") {
            EXPECT_EQ(kSuccess, mKey.GetUInt32Value(MakeString("v"), value));
            EXPECT_EQ(2u, value);
        } else if (std::string(step) == "create") {
            EXPECT_EQ(kSuccess, RegistryKey().Open(mKey, MakeString("made\\deep\\deeper")));
        } else if (std::string(step) == "delete") {
            EXPECT_EQ(kRegistryFailure, other.SetUInt32Value(MakeString("n"), 1));
            EXPECT_EQ(kFileNotFound, RegistryKey().Open(mKey, MakeString("tree")));
        }
    }
    std::vector<char> data;
    EXPECT_EQ(kSuccess, mKey.GetBinaryValue(MakeString("one"), data));
    EXPECT_EQ(100u, data.size());
    std::remove(ledger.c_str());
}
