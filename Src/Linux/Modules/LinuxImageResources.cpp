#include "LinuxImageResources.h"

#include <link.h>

namespace ORL {
namespace Linux {

namespace {

struct Image
{
    const void* mDynamicSection; // identifies the module; null for the program, which the loader lists first
    ElfW(Addr) mBase = 0;
    const ElfW(Phdr) * mSegments = nullptr;
    std::size_t mCount = 0;
};

const unsigned char* AddressIn(ElfW(Addr) inBase, ElfW(Addr) inOffset) noexcept
{
    return reinterpret_cast<const unsigned char*>(inBase + inOffset);
}

// Runs under the loader's lock, so it must not allocate or call the loader.
int MatchImage(struct dl_phdr_info* inInfo, std::size_t, void* ioImage)
{
    Image& image = *static_cast<Image*>(ioImage);
    bool isIt = image.mDynamicSection == nullptr;
    for (std::size_t i = 0; i < inInfo->dlpi_phnum && !isIt; ++i) {
        const ElfW(Phdr)& segment = inInfo->dlpi_phdr[i];
        isIt = segment.p_type == PT_DYNAMIC && AddressIn(inInfo->dlpi_addr, segment.p_vaddr) == image.mDynamicSection;
    }
    if (isIt) {
        image.mBase = inInfo->dlpi_addr;
        image.mSegments = inInfo->dlpi_phdr;
        image.mCount = inInfo->dlpi_phnum;
    }
    return isIt ? 1 : 0;
}

bool IsMapped(const Image& inImage, std::uintptr_t inAddress, std::uint64_t inSize) noexcept
{
    for (std::size_t i = 0; i < inImage.mCount; ++i) {
        const ElfW(Phdr)& segment = inImage.mSegments[i];
        const std::uintptr_t start = inImage.mBase + segment.p_vaddr;
        if (segment.p_type == PT_LOAD && inAddress >= start && inAddress - start <= segment.p_memsz
            && inSize <= segment.p_memsz - (inAddress - start)) {
            return true;
        }
    }
    return false;
}

void AddFilesOf(const Image& inImage, const Resources::Bytes& inNotes, std::vector<Resources::Bytes>& ioFiles)
{
    for (const Resources::ResourceNote& note : Resources::FindResourceNotes(inNotes)) {
        const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(inNotes.mData + note.mOffset)
                                       + static_cast<std::uintptr_t>(note.mDistance);
        if (IsMapped(inImage, address, note.mSize)) {
            Resources::Bytes file;
            file.mData = reinterpret_cast<const unsigned char*>(address);
            file.mSize = static_cast<std::size_t>(note.mSize);
            ioFiles.push_back(file);
        }
    }
}

} // namespace

std::vector<Resources::Bytes> FindImageResources(HINSTANCE inModule)
{
    Image image{};
    if (inModule != nullptr) {
        image.mDynamicSection = reinterpret_cast<const struct link_map*>(inModule)->l_ld;
    }
    ::dl_iterate_phdr(&MatchImage, &image);
    std::vector<Resources::Bytes> files;
    for (std::size_t i = 0; i < image.mCount; ++i) {
        const ElfW(Phdr)& segment = image.mSegments[i];
        Resources::Bytes notes;
        notes.mData = AddressIn(image.mBase, segment.p_vaddr);
        notes.mSize = segment.p_memsz;
        if (segment.p_type == PT_NOTE && IsMapped(image, image.mBase + segment.p_vaddr, segment.p_memsz)) {
            AddFilesOf(image, notes, files);
        }
    }
    return files;
}

} // namespace Linux
} // namespace ORL
