#include <Platform/Modules.h>

#include "LinuxDataModule.h"
#include "LinuxImageResources.h"
#include "LinuxResourceStore.h"
#include "LinuxUserLanguage.h"

#include "../Calls/LinuxErrors.h"
#include "../Calls/SystemCalls.h"
#include "../Files/LinuxDescriptor.h"
#include "../Files/LinuxLinkTarget.h"
#include "../Paths/LinuxHostPath.h"
#include "../Paths/LinuxNames.h"

#include <ORLHostPath.h>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <memory>
#include <new>

namespace ORL {
namespace Modules {
namespace Platform {

namespace {

using namespace SystemErrors;
using ORL::Linux::DataModule;
using ORL::Linux::DataModuleOf;
using ORL::Linux::System;

// Returns 126 for a missing module, even if a folder in its path is missing.
SystemError ErrorOfOpen(int inErrno)
{
    switch (inErrno) {
    case ENOENT:
    case ENOTDIR:
    case ELOOP:
    case ENAMETOOLONG:
    case ENXIO: return kErrorModNotFound;
    default: return ORL::Linux::SystemErrorFromErrno(inErrno);
    }
}

bool IsElf(const ElfW(Ehdr) & inHeader) noexcept
{
    return std::memcmp(inHeader.e_ident, ELFMAG, SELFMAG) == 0;
}

bool IsModuleOfThisMachine(const ElfW(Ehdr) & inHeader) noexcept
{
    return inHeader.e_ident[EI_CLASS] == ELFCLASS64 && inHeader.e_ident[EI_DATA] == ELFDATA2LSB
           && inHeader.e_type == ET_DYN && inHeader.e_machine == EM_X86_64;
}

// The loader reports the reason for a failure only as a message. The module's file has already been checked, so a
// dependency must be missing.
SystemError LoadObject(const std::string& inName, HINSTANCE& outModule)
{
    void* const handle = System().mLoadObject(inName.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        return kErrorModNotFound;
    }
    outModule = static_cast<HINSTANCE>(handle);
    return kNoError;
}

SystemError LoadData(int inFile, const std::string& inPath, HINSTANCE& outModule)
{
    auto module = std::make_unique<DataModule>();
    const SystemError error = module->Read(inFile);
    if (error != kNoError) {
        return error;
    }
    if (!Resources::IsResFile(module->Contents()) && !Resources::IsPEFile(module->Contents())) {
        return kErrorBadExeFormat;
    }
    module->mPath = PathUtils::Linux::FromHostPath(inPath);
    outModule = ORL::Linux::HandleOf(module.release());
    return kNoError;
}

SystemError LoadFile(const std::string& inPath, HINSTANCE& outModule)
{
    // Non-blocking, because opening a named pipe without a writer would block.
    const ORL::Linux::Descriptor file = ORL::Linux::OpenByPath(inPath.c_str(), O_RDONLY | O_NONBLOCK);
    if (!file) {
        return ErrorOfOpen(errno);
    }
    struct stat status;
    if (System().mFStat(file.Get(), &status) != 0) {
        return ORL::Linux::SystemErrorFromErrno(errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return S_ISDIR(status.st_mode) ? kErrorAccessDenied : kErrorBadExeFormat;
    }
    ElfW(Ehdr) header{};
    const ssize_t size = System().mPRead(file.Get(), &header, sizeof(header), 0);
    if (size < 0) {
        return ORL::Linux::SystemErrorFromErrno(errno);
    }
    if (!IsElf(header)) {
        return LoadData(file.Get(), inPath, outModule);
    }
    const bool isOurs = static_cast<std::size_t>(size) == sizeof(header) && IsModuleOfThisMachine(header);
    return isOurs ? LoadObject(inPath, outModule) : kErrorBadExeFormat;
}

std::string PathOfProgram()
{
    ORL::Linux::LinkTarget path;
    path.Read(AT_FDCWD, "/proc/self/exe");
    return std::string(path.Text(), path.Size());
}

bool IsBareName(const UTF16String& inPath) noexcept
{
    const unsigned short kSeparators[] = {'\\', '/', ':', 0};
    return inPath.find_first_of(kSeparators) == UTF16String::npos;
}

// Searches the program's folder, then the loader's search path.
SystemError LoadByName(const UTF16String& inName, HINSTANCE& outModule)
{
    if (ORL::Linux::CheckName(inName.data(), inName.size()) != kNoError) {
        return kErrorModNotFound;
    }
    std::string name;
    ORL::Linux::AppendBytesOfName(name, inName.data(), inName.size());
    const std::string program = PathOfProgram();
    const SystemError error = LoadFile(program.substr(0, program.rfind('/') + 1) + name, outModule);
    return error == kErrorModNotFound ? LoadObject(name, outModule) : error;
}

const struct link_map* LinkMapOf(HINSTANCE inModule) noexcept
{
    return reinterpret_cast<const struct link_map*>(inModule);
}

UTF16String PathOf(HINSTANCE inModule)
{
    if (const DataModule* const data = DataModuleOf(inModule)) {
        return data->mPath;
    }
    const bool isProgram = inModule == nullptr || LinkMapOf(inModule)->l_name[0] == '\0';
    return PathUtils::Linux::FromHostPath(isProgram ? PathOfProgram() : LinkMapOf(inModule)->l_name);
}

const Resources::ResourceEntry& EntryOf(Resource inResource) noexcept
{
    return *static_cast<const Resources::ResourceEntry*>(inResource);
}

} // namespace

SystemError LoadModule_Impl(const UTF16String& inPath, HINSTANCE& outModule)
{
    if (inPath.empty()) {
        return kErrorModNotFound;
    }
    if (IsBareName(inPath)) {
        return LoadByName(inPath, outModule);
    }
    ORL::Linux::HostPath path;
    if (ORL::Linux::ResolveHostPath(inPath, path) != kNoError || path.mHasTrailingSeparator) {
        return kErrorModNotFound;
    }
    return LoadFile(path.mPath, outModule);
}

void FreeModule_Impl(HINSTANCE inModule)
{
    if (DataModule* const data = DataModuleOf(inModule)) {
        delete data;
    } else {
        System().mUnloadObject(inModule);
    }
}

void GetModuleFileName_Impl(HINSTANCE inModule, unsigned short* outBuffer, std::size_t inSize)
{
    const UTF16String path = PathOf(inModule);
    const std::size_t count = std::min(path.size(), inSize - 1);
    path.copy(outBuffer, count);
    outBuffer[count] = 0;
}

// dlsym also searches the dependencies of the module; their functions are rejected.
int (*GetProcAddress_Impl(HINSTANCE inModule, const char* inName))()
{
    if (inModule == nullptr || DataModuleOf(inModule) != nullptr) {
        return nullptr;
    }
    void* const address = ::dlsym(inModule, inName);
    if (address == nullptr || Resources::Linux::ModuleOfAddress(address) != inModule) {
        return nullptr;
    }
    int (*function)() = nullptr;
    std::memcpy(&function, &address, sizeof(function));
    return function;
}

ResourceStore* OpenResources_Impl(HINSTANCE inModule)
{
    auto store = std::make_unique<ResourceStore>();
    if (const DataModule* const data = DataModuleOf(inModule)) {
        const Resources::Bytes contents = data->Contents();
        if (Resources::ReadResFile(contents, store->mIndex) == Resources::ReadOutcome::kRefused) {
            Resources::ReadPEFile(contents, store->mIndex);
        }
    } else {
        for (const Resources::Bytes& file : ORL::Linux::FindImageResources(inModule)) {
            Resources::ReadResFile(file, store->mIndex);
        }
    }
    store->mIndex.Finish();
    return store.release();
}

void CloseResources_Impl(ResourceStore* inStore)
{
    delete inStore;
}

Resource FindResourceEx_Impl(const Source& inSource, const unsigned short* inType, const unsigned short* inName,
                             unsigned short inLanguage)
{
    return inSource.mStore->Find(inType, inName, inLanguage);
}

Resource FindResource_Impl(const Source& inSource, const unsigned short* inName, const unsigned short* inType)
{
    return inSource.mStore->Find(inType, inName, 0);
}

void* LoadResource_Impl(const Source&, Resource inResource, int& outSize)
{
    const Resources::ResourceEntry& entry = EntryOf(inResource);
    outSize = static_cast<int>(entry.mSize);
    return const_cast<unsigned char*>(entry.mData);
}

void EnumFirstResourceName_Impl(const Source& inSource, const unsigned short* inType,
                                void (*inFound)(void* inContext, const unsigned short* inName), void* inContext)
{
    const Resources::ResourceIndex& index = inSource.mStore->mIndex;
    Resources::NameView type;
    const Resources::ResourceEntry* const entry =
        Resources::NameView::Parse(inType, type) ? index.FindFirstOfType(type) : nullptr;
    if (entry == nullptr) {
        return;
    }
    if (!entry->mName.mIsText) {
        inFound(inContext, reinterpret_cast<const unsigned short*>(std::uintptr_t{entry->mName.mID}));
        return;
    }
    const UTF16String name(index.Text(entry->mName), entry->mName.mCount);
    inFound(inContext, name.c_str());
}

void* LoadCursor_Impl(const Source& inSource, unsigned short inID)
{
    return const_cast<Resources::Linux::CursorPicture*>(inSource.mStore->FindCursor(inID));
}

HBITMAP LoadBitmap_Impl(const Source& inSource, unsigned short inID)
{
    return inSource.mStore->MakeBitmap(inID);
}

} // namespace Platform
} // namespace Modules

namespace Resources {
namespace Linux {

HINSTANCE ModuleOfAddress(const void* inAddress)
{
    Dl_info info;
    struct link_map* module = nullptr;
    return ::dladdr1(inAddress, &info, reinterpret_cast<void**>(&module), RTLD_DL_LINKMAP) != 0
               ? reinterpret_cast<HINSTANCE>(module)
               : nullptr;
}

} // namespace Linux
} // namespace Resources
} // namespace ORL
