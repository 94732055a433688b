#include "IngestExclusions.h"

#include "Failure.h"

#include <algorithm>
#include <iterator>

namespace orl {

namespace {

// In lower case.
constexpr const char* kSystemFolders[] = {
    "lost+found",
    ".trash",
    ".trash-*",
    ".trashes",
    ".spotlight-v100",
    ".fseventsd",
    ".temporaryitems",
    ".documentrevisions-v100",
    "$recycle.bin",
    "recycler",
    "system volume information",
};

// Converts ASCII letters only, in any locale: the names of system folders contain no other letters.
std::string InLowerCase(std::string inText)
{
    std::transform(inText.begin(), inText.end(), inText.begin(), [](char inCharacter) {
        return static_cast<char>(inCharacter >= 'A' && inCharacter <= 'Z' ? inCharacter | 0x20 : inCharacter);
    });
    return inText;
}

// Returns the bytes of the UTF-8 character at a position. A byte that does not begin one counts as a character.
std::size_t CharacterLength(const std::string& inText, std::size_t inAt)
{
    const auto lead = static_cast<unsigned char>(inText[inAt]);
    const std::size_t length = lead >= 0xf0 && lead < 0xf8 ? 4 : lead >= 0xe0 ? 3 : lead >= 0xc0 ? 2 : 1;
    for (std::size_t i = 1; i < length; ++i) {
        if (inAt + i >= inText.size() || (static_cast<unsigned char>(inText[inAt + i]) & 0xc0) != 0x80) {
            return 1;
        }
    }
    return lead >= 0xf8 ? 1 : length;
}

// Matches one part of a name. Only the last "*" is ever retried, so the time is at most the product of the lengths.
bool MatchesPart(const std::string& inPart, const std::string& inPattern)
{
    std::size_t at = 0;
    std::size_t rule = 0;
    std::size_t star = std::string::npos; // position after the last "*"
    std::size_t retry = 0;                // where the characters after it are tried next
    while (at < inPart.size()) {
        if (rule < inPattern.size() && inPattern[rule] == '*') {
            star = ++rule;
            retry = at;
        } else if (rule < inPattern.size() && inPattern[rule] == '?') {
            ++rule;
            at += CharacterLength(inPart, at);
        } else if (rule < inPattern.size() && inPattern[rule] == inPart[at]) {
            ++rule;
            ++at;
        } else if (star != std::string::npos) {
            retry += CharacterLength(inPart, retry);
            at = retry;
            rule = star;
        } else {
            return false;
        }
    }
    return inPattern.find_first_not_of('*', rule) == std::string::npos;
}

std::string NextPart(const std::string& inText, std::size_t& ioAt)
{
    const std::size_t end = std::min(inText.find('/', ioAt), inText.size());
    const std::string part = inText.substr(ioAt, end - ioAt);
    ioAt = end + 1;
    return part;
}

bool HasPartThatNoNameHas(const std::string& inPattern)
{
    for (std::size_t at = inPattern[0] == '/' ? 1 : 0; at <= inPattern.size();) {
        const std::string part = NextPart(inPattern, at);
        if (part.empty() || part == "." || part == "..") {
            return true;
        }
    }
    return false;
}

} // namespace

bool MatchesPattern(const std::string& inName, const std::string& inPattern)
{
    if (inPattern.find('/') == std::string::npos) {
        return MatchesPart(inName.substr(inName.rfind('/') + 1), inPattern);
    }
    std::size_t ruleAt = inPattern[0] == '/' ? 1 : 0;
    std::size_t at = 0;
    while (at <= inName.size() && ruleAt <= inPattern.size()) {
        const std::string rule = NextPart(inPattern, ruleAt);
        if (!MatchesPart(NextPart(inName, at), rule)) {
            return false;
        }
    }
    return at > inName.size() && ruleAt > inPattern.size();
}

void IngestExclusions::Add(const std::string& inPattern)
{
    if (inPattern.empty() || HasPartThatNoNameHas(inPattern)) {
        throw Failure("ingest: --exclude \"" + inPattern
                          + "\" matches no name: write a name, or a path below SOURCE without \".\", \"..\" and \"/\" "
                            "at the end",
                      kExitUsage);
    }
    if (std::find(mPatterns.begin(), mPatterns.end(), inPattern) == mPatterns.end()) {
        mPatterns.push_back(inPattern);
    }
}

void IngestExclusions::Keep(const std::string& inFolder)
{
    mKept.insert(InLowerCase(inFolder));
}

IngestExclusions::Match IngestExclusions::Find(const std::string& inName, std::string& outPattern) const
{
    const auto matches = [&inName](const std::string& inPattern) { return MatchesPattern(inName, inPattern); };
    const auto found = std::find_if(mPatterns.begin(), mPatterns.end(), matches);
    if (found != mPatterns.end()) {
        outPattern = *found;
        return Match::kPattern;
    }
    if (!mHasSystemFolders || inName.find('/') != std::string::npos) {
        return Match::kNone;
    }
    const std::string name = InLowerCase(inName);
    const auto isSystem = [&name](const char* inPattern) { return MatchesPart(name, inPattern); };
    return mKept.count(name) == 0 && std::any_of(std::begin(kSystemFolders), std::end(kSystemFolders), isSystem)
               ? Match::kSystemFolder
               : Match::kNone;
}

std::string IngestExclusions::SystemFolders()
{
    std::string names;
    for (const char* const name : kSystemFolders) {
        names += (names.empty() ? "" : ", ") + std::string(name);
    }
    return names;
}

} // namespace orl
