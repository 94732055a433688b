// Floor: Diagnostics
// Named string settings for debugging, stored in the registry.
//
//   const bool drawsOutlines = ORL::DebugDatabase::Instance().GetEntry("DrawOutlines", "false") == "true";
//
// The settings are string values of the key "DebugCache" below GetRegistryBaseKey() in the user's root
// (ORLHostSettings.h). Reading a setting that does not exist writes its default there, so that every setting ever read
// can be found and edited. Each setting is read from the registry once, then from memory.
#pragma once

#include <ORLConfig.h>
#include <ORLConstString.h>

#include <map>
#include <string>

namespace ORL {

void ReleaseDebugDatabase(); ///< called when the library stops; hosts do not call it

/// A cache of the named settings in the registry. Names and values are UTF-8; in the registry a name ends at its first
/// zero byte.
///
/// Owner:    the library owns the instance.
/// Threads:  not thread-safe: one thread at a time, Instance included.
/// Failure:  throws std::bad_alloc. Registry failures are not reported.
class ORL_API DebugDatabase
{
public:
    /// Returns the process's database; creates it if there is none. Foundation::Terminate destroys it, and a later
    /// call creates an empty one. The values stay in the registry.
    static DebugDatabase& Instance();

    ~DebugDatabase();
    DebugDatabase(const DebugDatabase&) = delete;
    DebugDatabase& operator=(const DebugDatabase&) = delete;

    /// Returns the setting. If the setting has not been read yet and cannot be read from the registry, writes inDefault
    /// to the registry and uses it from then on.
    std::string GetEntry(const std::string& inKey, const std::string& inDefault);

    /// Writes the setting to the registry. If the write fails, the setting is unchanged.
    void SetEntry(const std::string& inKey, const std::string& inValue);

    /// Returns whether the setting was read or set since the database was created. Does not query the registry.
    bool HasEntry(const std::string& inKey) const;

    /// Removes all settings from memory and from the registry.
    void Clear();

private:
    friend void ReleaseDebugDatabase();

    DebugDatabase();

    static const std::string sFalseText; // "false"

    std::map<StdConstString, std::string> mCache;
};

} // namespace ORL
