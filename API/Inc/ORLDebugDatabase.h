// Floor: Diagnostics
// Named text settings for debugging, kept in the registry.
//
//   const bool drawsOutlines = ORL::DebugDatabase::Instance().GetEntry("DrawOutlines", "false") == "true";
//
// The settings are string values of the key "DebugCache" below GetRegistryBaseKey() of the user's root
// (ORLHostSettings.h). Reading one with a default writes the default there, so that every setting that was ever asked
// for can be found and edited. Each is read from the registry once and from memory after that.
#pragma once

#include <ORLConfig.h>
#include <ORLConstString.h>

#include <map>
#include <string>

namespace ORL {

void ReleaseDebugDatabase();

/// Not thread-safe: one thread at a time, Instance included. Names and values are UTF-8; a name ends at its first zero
/// byte in the registry. A registry that cannot be used is never reported. Throws std::bad_alloc.
class ORL_API DebugDatabase
{
public:
    /// Returns the database of the process and makes it first if there is none. Foundation::Terminate destroys it, and
    /// a later call makes an empty one; what the registry holds stays.
    static DebugDatabase& Instance();

    ~DebugDatabase();
    DebugDatabase(const DebugDatabase&) = delete;
    DebugDatabase& operator=(const DebugDatabase&) = delete;

    /// Returns the setting. If it has not been read yet and the registry has none, or cannot be read, inDefault is
    /// written to the registry and is the setting from now on.
    std::string GetEntry(const std::string& inKey, const std::string& inDefault);

    /// Writes the setting to the registry. If that fails the setting stays as it was.
    void SetEntry(const std::string& inKey, const std::string& inValue);

    /// Returns whether the setting was read or set since the database was made. The registry is not asked.
    bool HasEntry(const std::string& inKey) const;

    /// Forgets all settings, and deletes them from the registry.
    void Clear();

private:
    friend void ReleaseDebugDatabase();

    DebugDatabase();

    static const std::string sFalseText; // "false"

    std::map<StdConstString, std::string> mCache;
};

} // namespace ORL
