// Floor: System
// Texts out of the string tables of a module.
//
// A text is looked up in the current language, then in the neutral one, then in American English; an empty text counts
// as missing. A language without the text fires an ignorable assertion. Thread-safe. Throws std::bad_alloc.
#pragma once

#include <ORLConfig.h>
#include <ORLResourceCollection.h>
#include <tvxcore/String.h>

#include <string>

namespace ORL {

/// Returns whether there is such a text. If not, outString is untouched.
ORL_API bool LoadStringW(const ResourceCollection& inCollection, unsigned int inID, UTF16String& outString);

/// Returns the text, or an empty one.
ORL_API UTF16String LoadStringW(const ResourceCollection& inCollection, unsigned int inID);

/// The same in UTF-8, up to the text's first zero unit.
ORL_API bool LoadStdString(const ResourceCollection& inCollection, unsigned int inID, std::string& outString);
ORL_API std::string LoadStdString(const ResourceCollection& inCollection, unsigned int inID);

} // namespace ORL
