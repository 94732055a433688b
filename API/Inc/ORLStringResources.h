// Floor: System
// Strings from the string tables of a module.
//
// A string is looked up in the current language, then in the neutral language, then in American English. An empty
// string counts as missing. A lookup fires an assertion, which can be ignored, if it does not find the string table
// resource that should contain the string. Thread-safe. Throws std::bad_alloc.
#pragma once

#include <ORLConfig.h>
#include <ORLResourceCollection.h>
#include <tvxcore/String.h>

#include <string>

namespace ORL {

/// Loads a string. Returns false, with outString unchanged, if the string does not exist.
ORL_API bool LoadStringW(const ResourceCollection& inCollection, unsigned int inID, UTF16String& outString);

/// Returns the string, or an empty string if it does not exist.
ORL_API UTF16String LoadStringW(const ResourceCollection& inCollection, unsigned int inID);

/// Same as LoadStringW, but as UTF-8, up to the first zero unit of the string.
ORL_API bool LoadStdString(const ResourceCollection& inCollection, unsigned int inID, std::string& outString);
ORL_API std::string LoadStdString(const ResourceCollection& inCollection, unsigned int inID);

} // namespace ORL
