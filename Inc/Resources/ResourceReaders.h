// Floor: System
// Readers of compiled resources. The input is untrusted: readers stay within its bytes, and take time and memory
// proportional to its size.
#pragma once

#include <Resources/ResourceIndex.h>

#include <cstddef>
#include <vector>

namespace ORL {
namespace Resources {

struct Bytes
{
    const unsigned char* mData = nullptr;
    std::size_t mSize = 0;
};

enum class ReadOutcome {
    kComplete,
    kPartial, // the data is damaged; what could be read is in the index
    kRefused  // another format; the index is unchanged
};

/// Returns whether the bytes begin with the empty entry of a compiled resource file (.res).
bool IsResFile(const Bytes& inFile) noexcept;

/// Adds the entries of a .res file. Throws std::bad_alloc.
ReadOutcome ReadResFile(const Bytes& inFile, ResourceIndex& ioIndex);

/// Returns whether the bytes are those of a Windows module with complete headers and sections. Throws std::bad_alloc.
bool IsPEFile(const Bytes& inFile);

/// Adds the resources of a Windows module (PE, 32 or 64 bits) from the bytes of its file. Returns kComplete for a
/// module without resources, kRefused if its headers or sections are truncated. Throws std::bad_alloc.
ReadOutcome ReadPEFile(const Bytes& inFile, ResourceIndex& ioIndex);

/// Adds the resources of a shared object (ELF, 64 bits) from the bytes of its file. Throws std::bad_alloc.
ReadOutcome ReadELFFile(const Bytes& inFile, ResourceIndex& ioIndex);

/// The location of a .res file in a shared object. For each .res file there is an ELF note with owner "ORL" that
/// contains the distance from the note's contents to the .res file and the size of the .res file. A reader therefore
/// needs no symbol, neither in the loaded image nor in the file.
struct ResourceNote
{
    std::size_t mOffset;    // offset of the note's contents in the bytes of the notes
    std::int64_t mDistance; // distance from the note's contents to the .res file
    std::uint64_t mSize;
};

/// Returns the notes in a note segment. Stops at the first truncated note.
std::vector<ResourceNote> FindResourceNotes(const Bytes& inNotes);

} // namespace Resources
} // namespace ORL
