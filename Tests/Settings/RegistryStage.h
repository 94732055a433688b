// The keys and calls that a table of registry situations is made of. Each answer is a text: the status, and what else
// the call stores.
#pragma once

#include "RegistryPlace.h"

#include <Platform/Registry.h>
#include <SystemProbes.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace ORLTest {

/// A key of its own for one situation.
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

    /// "status". The key is closed again.
    std::string Open(const std::u16string& inPath, unsigned inAccess = kAll) const;
    static std::string OpenIn(KeyHandle inParent, const unsigned short* inPath, unsigned inAccess = kAll);

    /// "status disposition", or the status alone if it is not 0.
    std::string Create(const std::u16string& inPath) const;
    static std::string CreateIn(KeyHandle inParent, const unsigned short* inPath);

    /// A handle that the stage closes at its end.
    KeyHandle Make(const std::u16string& inPath, unsigned inAccess = kAll);

    std::string Delete(const std::u16string& inPath) const;

    /// "status"
    std::string Set(const std::u16string& inName, unsigned inType, const void* inData, unsigned inSize) const;

    /// "status type=T size=N bytes=XX...; size query status N", or the status alone if it is not 0.
    std::string Query(const std::u16string& inName) const;

    /// Sets and queries.
    std::string SetAndQuery(unsigned inType, const void* inData, unsigned inSize) const;

    /// The names of all subkeys and the status at their end.
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
    std::set<std::string> mHome;
    std::function<std::string(RegistryStage&)> mRun;
    std::set<std::string> mEmulator = {}; // what Wine 8 answers, where it differs
};

/// Runs each row on a stage of its own below inPath.
void ExpectRegistrySituations(const UTF16String& inPath, const std::vector<RegistrySituation>& inRows);

inline const unsigned short* AsUnits(const std::u16string& inText)
{
    return reinterpret_cast<const unsigned short*>(inText.c_str());
}

} // namespace ORLTest
