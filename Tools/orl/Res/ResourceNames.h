// Text forms of resource types, names and languages.
#pragma once

#include <ORLResourceFile.h>

#include <string>

namespace orl {

/// Returns "STRING", "#200", or a type's name, in double quotes if it could be taken for another type.
std::string NameOfType(const ORL::Resources::FileName& inType);

/// Returns "100" for a number, or the name.
std::string NameOfResource(const ORL::Resources::FileName& inName);

/// Returns "de_DE", "neutral", or the hexadecimal identifier of another language: "0x0c07".
std::string NameOfLanguage(unsigned short inLanguage);

/// Parses a result of NameOfLanguage or a plain number. Throws CLI::ValidationError.
unsigned short ReadLanguage(const std::string& inText);

/// Convert a type or name to the form that lookups expect: a string, or "#" and a number. ReadType also accepts the
/// names of NameOfType.
UTF16String ReadType(const std::string& inText);
UTF16String ReadName(const std::string& inText);

} // namespace orl
