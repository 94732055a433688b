// Floor: System
// Readers of compiled resources. They take nothing on trust: whatever the bytes say, nothing outside of them is read,
// and time and memory stay in proportion to their number.
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
    kPartial, // something is damaged; what could be read is in the index
    kRefused  // of another format; the index is as it was
};

/// Whether the bytes begin as a compiled resource file (.res) does: with its empty entry.
bool IsResFile(const Bytes& inFile) noexcept;

/// Adds the entries of a .res file. Throws std::bad_alloc.
ReadOutcome ReadResFile(const Bytes& inFile, ResourceIndex& ioIndex);

/// Whether the bytes are those of a Windows module with whole headers and sections. Throws std::bad_alloc.
bool IsPEFile(const Bytes& inFile);

/// Adds the resources of a Windows module (PE, 32 or 64 bits) from the bytes of its file. A module without resources is
/// complete. Refused if its headers or sections are not whole. Throws std::bad_alloc.
ReadOutcome ReadPEFile(const Bytes& inFile, ResourceIndex& ioIndex);

/// Adds the resources of a shared object (ELF, 64 bits) from the bytes of its file. Throws std::bad_alloc.
ReadOutcome ReadELFFile(const Bytes& inFile, ResourceIndex& ioIndex);

/// Where a shared object keeps its .res files. Each has a note of owner "ORL", whose contents say how far behind them
/// the file begins, and its size; so they are found in the loaded image as well as in the file, and need no symbol.
struct ResourceNote
{
    std::size_t mPlace;     // of the note's contents, in the bytes of the notes
    std::int64_t mDistance; // from there to the .res file
    std::uint64_t mSize;
};

/// The notes in a note segment. Stops at the first one that is not whole.
std::vector<ResourceNote> FindResourceNotes(const Bytes& inNotes);

} // namespace Resources
} // namespace ORL
