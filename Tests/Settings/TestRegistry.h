// Isolates the registry of one test: on Linux in a store in a temporary folder, on Windows below a key.
#pragma once

#include <ORLRegistryKey.h>

#include <TextHelpers.h>

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace ORLTest {

class TestRegistry
{
public:
    TestRegistry();
    ~TestRegistry();
    TestRegistry(const TestRegistry&) = delete;
    TestRegistry& operator=(const TestRegistry&) = delete;

    /// Returns the folder of the stores on Linux; empty on Windows.
    std::string Folder() const;

    class Impl;

private:
    std::unique_ptr<Impl> mImpl;
};

/// A test with its own key below the user's root, deleted at the end.
class RegistryTest : public testing::Test
{
protected:
    RegistryTest();
    ~RegistryTest() override;

    /// Returns the path of the test's key, or of a key below it.
    UTF16String Path(const std::u16string& inBelow = std::u16string()) const;

    const TestRegistry mTestRegistry;
    const UTF16String mPath;
    ORL::RegistryKey mKey; // open with all access
};

} // namespace ORLTest
