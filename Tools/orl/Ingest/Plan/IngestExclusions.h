// The entries of the source that an ingest leaves out.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace orl {

/// Returns whether a name below the source matches a pattern. "*" matches any characters and "?" one character, neither
/// matches "/"; every other character matches itself. A pattern without "/" is compared with the last component of the
/// name, any other pattern with the whole name. Case-sensitive on every platform, locale and volume.
bool MatchesPattern(const std::string& inName, const std::string& inPattern);

class IngestExclusions
{
public:
    enum class Match {
        kNone,
        kPattern,      // a pattern of the user matches
        kSystemFolder, // a folder of this name is left out, and a file of this name is not
    };

    /// Throws Failure (kExitUsage) if the pattern cannot match any name.
    void Add(const std::string& inPattern);

    /// Leaves out the folders that operating systems keep at the top of a volume, whatever the case of their names.
    void AddSystemFolders() { mHasSystemFolders = true; }

    /// Keeps a folder at the top although it is a system folder. The name is case-insensitive.
    void Keep(const std::string& inFolder);

    /// outPattern receives the first pattern that matches.
    Match Find(const std::string& inName, std::string& outPattern) const;

    const std::vector<std::string>& Patterns() const { return mPatterns; }

    /// Returns the patterns of AddSystemFolders for the help output.
    static std::string SystemFolders();

private:
    std::vector<std::string> mPatterns;
    bool mHasSystemFolders = false;
    std::set<std::string> mKept; // in lower case
};

} // namespace orl
