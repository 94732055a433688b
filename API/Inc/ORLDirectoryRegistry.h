// Floor: System
// Symbolic directories: names that a module registers once and clients look up.
//
//   DirectoryRegistry::RegisterDirectory(MakeString("C:\\Data"), MakeString("Root"));
//   DirectoryRegistry::RegisterDirectory(MakeString("$(Root)\\Presets"), MakeString("Presets"));
//   DirectoryRegistry::FindDirectory(MakeString("Presets")); // "C:\Data\Presets"
//
// A registered path is a pattern. "$(symbol)" in it refers to another directory and is expanded on lookup, so the order
// of registrations does not matter. Leading blanks, tabs, line feeds, carriage returns and form feeds in a pattern are
// skipped. Text between "$" and "(" is removed if the symbol is registered. An unclosed reference, or one whose symbol
// is empty or not registered, is left unexpanded.
//
// A pattern must not refer to itself, directly or indirectly. A reference that would close such a cycle, or that is
// nested more than 64 levels deep, is reported by an assertion and left unexpanded.
//
// Not thread-safe: register at start-up, on one thread. Lookups may run on several threads while no thread registers.
// The table lives until the process exits, so lookups work even on threads that are still running then.
#pragma once

#include <ORLConfig.h>
#include <tvxcore/String.h>

namespace ORL {

class ResourceCollection;

namespace DirectoryRegistry {

/// Registers a pattern under a symbol, or replaces the symbol's pattern. Symbols are case-sensitive. Neither argument
/// may be empty (input contracts). The pattern is neither checked nor expanded. May throw std::bad_alloc; in that case
/// the table is unchanged.
ORL_API void RegisterDirectory(const UTF16String& inFullPathname, const UTF16String& inSymbolicName);

/// Removes a symbol, which must not be empty (input contract). Does nothing if the symbol is not registered.
ORL_API void UnregisterDirectory(const UTF16String& inSymbolicName);

/// Returns the expanded pattern of a symbol, which must not be empty (input contract). Reports an assertion and returns
/// an empty string if the symbol is not registered or its pattern expands to an empty string. Throws std::bad_alloc.
ORL_API UTF16String FindDirectory(const UTF16String& inSymbolicName);

/// Registers every line of a resource of type "ORLDIRECTORYTABLE". The resource is UTF-8 text up to its first zero
/// byte. Each line has the form symbol "=" path and ends in a line feed. All "=" directly after the first are skipped;
/// a later "=" and the text after it are ignored. Blanks and tabs around symbol and path are removed; a carriage return
/// is not. If the collection has no such resource, reports an assertion and registers nothing. A line without a symbol
/// or a path, such as an empty line, fires an input contract. Throws std::bad_alloc. In both cases the earlier lines
/// stay registered.
ORL_API void RegisterDirectories(const ResourceCollection& inResources, const short& inResourceID);

} // namespace DirectoryRegistry
} // namespace ORL
