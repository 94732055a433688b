#include <Platform/Modules.h>

#include "../Calls/WinText.h"

#include <windows.h>

namespace ORL {
namespace Modules {
namespace Platform {

namespace {

using ORL::Win::AsUnits;
using ORL::Win::AsWide;

HRSRC AsNative(Resource inResource) noexcept
{
    return static_cast<HRSRC>(const_cast<void*>(inResource));
}

struct FirstName
{
    void (*mFound)(void*, const unsigned short*);
    void* mContext;
};

BOOL CALLBACK OnName(HMODULE, LPCWSTR, LPWSTR inName, LONG_PTR inThis)
{
    const FirstName& name = *reinterpret_cast<const FirstName*>(inThis);
    name.mFound(name.mContext, AsUnits(inName));
    return FALSE;
}

} // namespace

SystemError LoadModule_Impl(const UTF16String& inPath, HINSTANCE& outModule)
{
    const HINSTANCE module = ::LoadLibraryW(AsWide(inPath.c_str()));
    if (module == nullptr) {
        return ::GetLastError();
    }
    outModule = module;
    return SystemErrors::kNoError;
}

void FreeModule_Impl(HINSTANCE inModule)
{
    ::FreeLibrary(inModule);
}

void GetModuleFileName_Impl(HINSTANCE inModule, unsigned short* outBuffer, std::size_t inSize)
{
    ::GetModuleFileNameW(inModule, AsWide(outBuffer), static_cast<DWORD>(inSize));
    outBuffer[inSize - 1] = 0; // older versions of Windows do not terminate a truncated path
}

int (*GetProcAddress_Impl(HINSTANCE inModule, const char* inName))()
{
    return reinterpret_cast<int (*)()>(reinterpret_cast<void*>(::GetProcAddress(inModule, inName)));
}

ResourceStore* OpenResources_Impl(HINSTANCE)
{
    return nullptr;
}

void CloseResources_Impl(ResourceStore*)
{
}

Resource FindResourceEx_Impl(const Source& inSource, const unsigned short* inType, const unsigned short* inName,
                             unsigned short inLanguage)
{
    return ::FindResourceExW(inSource.mModule, AsWide(inType), AsWide(inName), inLanguage);
}

Resource FindResource_Impl(const Source& inSource, const unsigned short* inName, const unsigned short* inType)
{
    return ::FindResourceW(inSource.mModule, AsWide(inName), AsWide(inType));
}

void* LoadResource_Impl(const Source& inSource, Resource inResource, int& outSize)
{
    const HRSRC resource = AsNative(inResource);
    const HGLOBAL data = ::LoadResource(inSource.mModule, resource);
    if (data == nullptr) {
        return nullptr;
    }
    outSize = static_cast<int>(::SizeofResource(inSource.mModule, resource));
    return ::LockResource(data);
}

void EnumFirstResourceName_Impl(const Source& inSource, const unsigned short* inType,
                                void (*inFound)(void* inContext, const unsigned short* inName), void* inContext)
{
    FirstName name{inFound, inContext};
    ::EnumResourceNamesW(inSource.mModule, AsWide(inType), &OnName, reinterpret_cast<LONG_PTR>(&name));
}

void* LoadCursor_Impl(const Source& inSource, unsigned short inID)
{
    return ::LoadCursorW(inSource.mModule, MAKEINTRESOURCEW(inID));
}

HBITMAP LoadBitmap_Impl(const Source& inSource, unsigned short inID)
{
    return ::LoadBitmapW(inSource.mModule, MAKEINTRESOURCEW(inID));
}

HMENU LoadMenuIndirect_Impl(const void* inTemplate, std::size_t)
{
    return ::LoadMenuIndirectW(inTemplate);
}

} // namespace Platform
} // namespace Modules
} // namespace ORL
