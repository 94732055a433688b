// Floor: System
// Texts from the string tables of a module.
//
// A text is looked up in the current language, then in the neutral one, then in American English; an empty text counts
// as missing. A language without the text fires an assertion that can be ignored. Thread-safe. Throws std::bad_alloc.
#pragma once

#include <ORLConfig.h>
#include <ORLResourceCollection.h>
#include <tvxcore/String.h>

#include <string>

namespace ORL {

/// Loads a text. Returns whether it exists; if not, outString is untouched.
ORL_API bool LoadStringW(const ResourceCollection& inCollection, unsigned int inID, UTF16String& outString);

/// Returns the text, or an empty text if it does not exist.
ORL_API UTF16String LoadStringW(const ResourceCollection& inCollection, unsigned int inID);

/// The same as UTF-8, up to the text's first zero unit.
ORL_API bool LoadStdString(const ResourceCollection& inCollection, unsigned int inID, std::string& outString);
ORL_API std::string LoadStdString(const ResourceCollection& inCollection, unsigned int inID);

} // namespace ORL
