// Types and languages of resources, as people write them.
#pragma once

#include <ORLResourceFile.h>

#include <string>

namespace orl {

/// "STRING", "#200", or the text of a type that is one, in double quotes if it could be read as another.
std::string NameOfType(const ORL::Resources::FileName& inType);

/// "100", or the text of a name.
std::string NameOfResource(const ORL::Resources::FileName& inName);

/// "de_DE", "neutral", or the identifier in hexadecimal: "0x0c07".
std::string NameOfLanguage(unsigned short inLanguage);

/// Reads what NameOfLanguage writes, and a number. Throws CLI::ValidationError.
unsigned short ReadLanguage(const std::string& inText);

/// A type or name in the form in which the lookups take it: a text, or "#" and a number. Types have names of their own.
UTF16String ReadType(const std::string& inText);
UTF16String ReadName(const std::string& inText);

} // namespace orl
