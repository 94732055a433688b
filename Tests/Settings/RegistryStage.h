// Keys and calls for a table of registry situations. Each call returns a string: the status and the outputs.
#pragma once

#include "TestRegistry.h"

#include <Platform/Registry.h>
#include <SystemProbes.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace ORLTest {

/// The key of one situation.
class RegistryStage
{
public:
    using KeyHandle = ORL::Registry::Platform::KeyHandle;
    static constexpr unsigned kAll = ORL::Registry::Platform::kAccessAll;
    static constexpr unsigned kReading = ORL::Registry::Platform::kAccessRead;
    static constexpr unsigned kWriting = ORL::Registry::Platform::kAccessWrite;

    explicit RegistryStage(const UTF16String& inPath);
    ~RegistryStage();
    RegistryStage(const RegistryStage&) = delete;
    RegistryStage& operator=(const RegistryStage&) = delete;

    /// Returns "status", and closes the key.
    std::string Open(const std::u16string& inPath, unsigned inAccess = kAll) const;
    static std::string OpenIn(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess = kAll);

    /// Returns "status disposition", or only the status if the status is not 0.
    std::string Create(const std::u16string& inPath) const;
    static std::string CreateIn(KeyHandle inParent, const unsigned short* inPath);

    /// Returns a handle that the stage closes in its destructor.
    KeyHandle Make(const std::u16string& inPath, unsigned inAccess = kAll);

    std::string Delete(const std::u16string& inPath) const;

    /// Returns "status".
    std::string Set(const std::u16string& inName, unsigned inType, const void* inData, unsigned inSize) const;

    /// Returns "status type=T size=N bytes=XX...; size query status N", or only the status if the status is not 0.
    std::string Query(const std::u16string& inName) const;

    /// Sets a value, and returns the result of Query, or the status if setting fails.
    std::string SetAndQuery(unsigned inType, const void* inData, unsigned inSize) const;

    /// Returns the names of all subkeys and the status that ends the enumeration.
    std::string List(KeyHandle inKey) const;

    UTF16String mPath;
    KeyHandle mKey = nullptr;

private:
    std::vector<KeyHandle> mMade;
};

struct RegistrySituation
{
    const char* mRecord;
    const char* mText;
    std::set<std::string> mWindowsResults;
    std::function<std::string(RegistryStage&)> mRun;
    std::set<std::string> mWineResults = {}; // the results of Wine 8 where they differ
};

/// Runs each row on its own stage below inPath.
void ExpectRegistrySituations(const UTF16String& inPath, const std::vector<RegistrySituation>& inRows);

inline const unsigned short* AsUnits(const std::u16string& inText)
{
    return reinterpret_cast<const unsigned short*>(inText.c_str());
}

} // namespace ORLTest
