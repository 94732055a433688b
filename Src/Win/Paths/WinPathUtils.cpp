#include <Platform/Paths.h>

#include "../Calls/WinText.h"

#include <Files/WindowsPathText.h>
#include <shlobj.h>
#include <shlwapi.h>
#include <windows.h>

#include <stdlib.h>
#include <utility>

namespace ORL {
namespace PathUtils {
namespace Platform {

namespace {

using ORL::Win::AsUnits;
using ORL::Win::AsWide;

// The status of a failed call to the shell, and the function that returned it.
struct ShellFailure
{
    HRESULT mStatus;
    const char* mFunction;
};

void Check(HRESULT inStatus, const char* inFunction)
{
    if (FAILED(inStatus)) {
        throw ShellFailure{inStatus, inFunction};
    }
}

class ComScope
{
public:
    ComScope() { Check(::CoInitialize(nullptr), "CoInitialize"); }
    ~ComScope() { ::CoUninitialize(); }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;
};

template <class Interface>
class ComPointer
{
public:
    ComPointer() = default;
    ~ComPointer()
    {
        if (mPointer != nullptr) {
            mPointer->Release();
        }
    }
    ComPointer(const ComPointer&) = delete;
    ComPointer& operator=(const ComPointer&) = delete;

    Interface** Out() noexcept { return &mPointer; }
    Interface* operator->() const noexcept { return mPointer; }

private:
    Interface* mPointer = nullptr;
};

class ItemList
{
public:
    explicit ItemList(const ComPointer<IMalloc>& inMalloc) : mMalloc(inMalloc) {}
    ~ItemList() { mMalloc->Free(mList); }
    ItemList(const ItemList&) = delete;
    ItemList& operator=(const ItemList&) = delete;

    LPITEMIDLIST* Out() noexcept { return &mList; }

    LPCITEMIDLIST Last() const noexcept
    {
        LPCITEMIDLIST last = mList;
        for (LPCITEMIDLIST item = mList; item->mkid.cb != 0; item = Next(item)) {
            last = item;
        }
        return last;
    }

private:
    static LPCITEMIDLIST Next(LPCITEMIDLIST inItem) noexcept
    {
        return reinterpret_cast<LPCITEMIDLIST>(reinterpret_cast<const BYTE*>(inItem) + inItem->mkid.cb);
    }

    const ComPointer<IMalloc>& mMalloc;
    LPITEMIDLIST mList = nullptr;
};

UTF16String QueryShellName(const UTF16String& inPath)
{
    const ComScope com;
    ComPointer<IMalloc> malloc;
    Check(::SHGetMalloc(malloc.Out()), "SHGetMalloc");
    ComPointer<IShellFolder> desktop;
    Check(::SHGetDesktopFolder(desktop.Out()), "SHGetDesktopFolder");
    ItemList items(malloc);
    UTF16String path = inPath;
    Check(desktop->ParseDisplayName(nullptr, nullptr, AsWide(path.data()), nullptr, items.Out(), nullptr),
          "ParseDisplayName");
    STRRET record;
    Check(desktop->GetDisplayNameOf(items.Last(), SHGDN_INFOLDER, &record), "GetDisplayNameOf");
    LPWSTR text = nullptr;
    Check(::StrRetToStrW(&record, items.Last(), &text), "StrRetToStr");
    UTF16String name(AsUnits(text));
    ::CoTaskMemFree(text);
    return name;
}

} // namespace

UTF16String MakePath_Impl(const UTF16String& inDrive, const UTF16String& inDirectory, const UTF16String& inFile,
                          const UTF16String& inExtension)
{
    UTF16String path(inDrive.size() + inDirectory.size() + inFile.size() + inExtension.size() + 5, 0);
    ::_wmakepath(AsWide(path.data()), AsWide(inDrive.c_str()), AsWide(inDirectory.c_str()), AsWide(inFile.c_str()),
                 AsWide(inExtension.c_str()));
    return UTF16String(path.c_str());
}

// Needs no check before FindClose, which also accepts INVALID_HANDLE_VALUE.
bool FindEntry_Impl(const UTF16String& inPath)
{
    WIN32_FIND_DATAW data;
    const HANDLE handle = ::FindFirstFileW(AsWide(inPath.c_str()), &data);
    ::FindClose(handle);
    return handle != INVALID_HANDLE_VALUE;
}

bool IsDirectory_Impl(const UTF16String& inPath)
{
    return ::PathIsDirectoryW(AsWide(inPath.c_str())) != FALSE;
}

bool IsDirectoryEmpty_Impl(const UTF16String& inPath)
{
    return ::PathIsDirectoryEmptyW(AsWide(inPath.c_str())) != FALSE;
}

unsigned long GetFileAttributes_Impl(const UTF16String& inPath)
{
    return ::GetFileAttributesW(AsWide(inPath.c_str()));
}

bool PreparePathForWrite_Impl(const UTF16String& inPath)
{
    return ::SHPathPrepareForWriteW(nullptr, nullptr, AsWide(inPath.c_str()), SHPPFW_DIRCREATE) == S_OK;
}

const unsigned short* FindNextComponent_Impl(const unsigned short* inPath)
{
    return AsUnits(::PathFindNextComponentW(AsWide(inPath)));
}

bool RelativePathTo_Impl(const UTF16String& inFrom, const UTF16String& inTo, UTF16String& outRelative)
{
    // The system silently truncates a path of this length.
    if (inFrom.size() >= kMaxPath || inTo.size() >= kMaxPath) {
        return WindowsText::RelativePathTo(inFrom, inTo, outRelative);
    }
    // The system does not check the size of the buffer, which has space for three units for every two of the first
    // path, plus the whole second path.
    unsigned short relative[3 * kMaxPath] = {};
    if (!::PathRelativePathToW(AsWide(relative), AsWide(inFrom.c_str()), FILE_ATTRIBUTE_DIRECTORY, AsWide(inTo.c_str()),
                               FILE_ATTRIBUTE_DIRECTORY)) {
        return false;
    }
    UTF16String text(relative);
    if (text.size() >= kMaxPath) {
        return false;
    }
    outRelative = std::move(text);
    return true;
}

bool CombinePaths_Impl(const UTF16String& inBase, const UTF16String& inMore, UTF16String& outPath)
{
    unsigned short path[kMaxPath] = {};
    if (::PathCombineW(AsWide(path), AsWide(inBase.c_str()), AsWide(inMore.c_str())) == nullptr) {
        return false;
    }
    outPath = path;
    return true;
}

unsigned long GetTempPath_Impl(unsigned long inSize, unsigned short* outBuffer)
{
    return ::GetTempPathW(inSize, AsWide(outBuffer));
}

bool GetShellName_Impl(const UTF16String& inPath, UTF16String& outName)
{
    try {
        outName = QueryShellName(inPath);
        return true;
    } catch (const ShellFailure&) {
        return false;
    }
}

} // namespace Platform
} // namespace PathUtils
} // namespace ORL
