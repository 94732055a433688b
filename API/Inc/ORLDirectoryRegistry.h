// Floor: System
// Symbolic directories: names that a module registers once and clients look up.
//
//   DirectoryRegistry::RegisterDirectory(MakeString("C:\\Data"), MakeString("Root"));
//   DirectoryRegistry::RegisterDirectory(MakeString("$(Root)\\Presets"), MakeString("Presets"));
//   DirectoryRegistry::FindDirectory(MakeString("Presets")); // "C:\Data\Presets"
//
// A registered path is a pattern. "$(symbol)" in it refers to another directory and is expanded when a directory is
// looked up, so the order of the registrations does not matter. Leading blanks, tabs, line feeds, carriage returns and
// form feeds of a pattern are skipped. Text between "$" and "(" is dropped if the symbol is registered. A reference
// whose symbol is empty or not registered, and one that is not closed, stays as it was written.
//
// A pattern must not refer to itself, directly or through others. A reference that would start such a cycle, or that is
// more than 64 references deep, is reported by an assertion and stays as it was written.
//
// Not thread-safe: register at start-up, on one thread. Lookups may run on several threads as long as nothing is
// registered meanwhile. The table lives until the process ends, and lookups still work on threads that run then.
#pragma once

#include <ORLConfig.h>
#include <tvxcore/String.h>

namespace ORL {

class ResourceCollection;

namespace DirectoryRegistry {

/// Registers a pattern under a symbol, or replaces the symbol's pattern. Symbols are compared exactly, case included.
/// Neither argument may be empty (input contracts). The pattern is neither checked nor expanded. Throws std::bad_alloc
/// with the table unchanged.
ORL_API void RegisterDirectory(const UTF16String& inFullPathname, const UTF16String& inSymbolicName);

/// Removes a symbol, which must not be empty (input contract). Does nothing if it is not registered.
ORL_API void UnregisterDirectory(const UTF16String& inSymbolicName);

/// Returns the expanded pattern of a symbol, which must not be empty (input contract). Returns an empty string, after an
/// assertion, if the symbol is not registered or if its pattern expands to nothing. Throws std::bad_alloc.
ORL_API UTF16String FindDirectory(const UTF16String& inSymbolicName);

/// Registers every line of a resource of type "ORLDIRECTORYTABLE". The resource is UTF-8 text up to its first zero byte;
/// each line is symbol "=" path and ends in a line feed. Further "=" next to the first are skipped, and text from
/// another "=" on is ignored. Blanks and tabs around symbol and path are removed; a carriage return is not.
/// Does nothing but an assertion if the collection has no such resource. A line without a symbol or a path, an empty
/// one for instance, breaks an input contract; the lines before it stay registered. Throws std::bad_alloc likewise.
ORL_API void RegisterDirectories(const ResourceCollection& inResources, const short& inResourceID);

} // namespace DirectoryRegistry
} // namespace ORL
