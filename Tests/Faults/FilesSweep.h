// Fails each allocation in file operations. Afterwards no handle and no memory may leak, and each round checks what
// the operation left on disk.
#pragma once

#include "MemoryFaults.h"

#include <SystemProbes.h>
#include <TempFolder.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <string>

namespace ORLTest {

/// Maps each name to the contents of the file, or to "/" for a folder.
using Entries = std::map<std::string, std::string>;

class FilesSweep : public testing::Test
{
protected:
    /// Before every round inPrepare creates the files that inWork needs. After every round inCheck(done) checks the
    /// result; done is false if inWork threw.
    void Sweep(const std::function<void()>& inPrepare, const std::function<void()>& inWork,
               const std::function<void(bool)>& inCheck)
    {
        inPrepare();
        inWork(); // the first run allocates caches that persist
        inCheck(true);
        inPrepare();
        const unsigned handles = OpenHandles();
        bool done = false;
        SweepMemory(
            [&] {
                done = false;
                inWork();
                done = true;
            },
            [&] {
                EXPECT_EQ(handles, OpenHandles());
                inCheck(done);
                inPrepare();
            });
    }

    /// Sweeps inWork, which must change nothing on disk.
    void SweepReadOnly(const std::function<void()>& inWork)
    {
        const Entries before = Read();
        Sweep([] {}, inWork, [&](bool) { EXPECT_EQ(before, Read()); });
    }

    void Empty() const
    {
        for (const auto& entry : std::filesystem::directory_iterator(mFolder.Host())) {
            std::filesystem::remove_all(entry.path());
        }
    }

    Entries Read(const std::string& inBelow = ".") const
    {
        Entries entries;
        const std::filesystem::path top = (mFolder.Host() / inBelow).lexically_normal();
        if (!std::filesystem::exists(top)) {
            return entries;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(top)) {
            std::string what = "/";
            if (!entry.is_directory()) {
                std::ifstream file(entry.path(), std::ios::binary);
                what.assign(std::istreambuf_iterator<char>(file), {});
            }
            entries[entry.path().lexically_relative(top).generic_string()] = what;
        }
        return entries;
    }

    TempFolder mFolder;
};

} // namespace ORLTest
