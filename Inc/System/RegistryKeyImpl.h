// The implementation of RegistryKey.
#pragma once

#include <ORLAtomic.h>
#include <ORLObjectPtr.h>
#include <ORLRegistryKey.h>
#include <System/RegistryHandle.h>

namespace ORL {

struct ORL_LOCAL RegistryKey::PrivateImpl : Impl
{
    PrivateImpl() : mKey(new RegistryHandle) {}

    Result Open(Registry::Platform::KeyHandle inParent, const UTF16String& inPath, unsigned inAccess);
    Result Create(Registry::Platform::KeyHandle inParent, const UTF16String& inPath);

    /// Same as the platform functions, for the open key.
    SystemError Query(const UTF16String& inName, unsigned* outType, void* outData, unsigned* ioSize) const;
    Result Set(const UTF16String& inName, unsigned inType, const void* inData, std::size_t inSize) const;

    ObjectPtr<RegistryHandle, AtomicValue> mKey; // shared by copies, never null
    UTF16String mPath;                           // path of the last Open or Create
};

} // namespace ORL
