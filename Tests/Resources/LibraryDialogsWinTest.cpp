// Tests that the resource functions of Windows find the library's icon and dialogs.
#include "LibraryDialogs.h"
#include "PlugIns.h"

#include <windows.h>

using namespace ORLTest;

namespace {

class LibraryDialogsOfTheSystem : public testing::Test
{
protected:
    LibraryDialogsOfTheSystem()
        : mLibrary(::LoadLibraryExA(FileBeside(ORL_LIBRARY_FILE).c_str(), nullptr,
                                    LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE))
    {
        EXPECT_NE(nullptr, mLibrary) << ::GetLastError();
    }
    ~LibraryDialogsOfTheSystem() override { ::FreeLibrary(mLibrary); }

    ORL::Resources::Bytes Find(const wchar_t* inType, unsigned short inName, unsigned short inLanguage)
    {
        ORL::Resources::Bytes bytes;
        const HRSRC resource = ::FindResourceExW(mLibrary, inType, MAKEINTRESOURCEW(inName), inLanguage);
        EXPECT_NE(nullptr, resource) << inName << " " << inLanguage;
        if (resource != nullptr) {
            bytes.mData = static_cast<const unsigned char*>(::LockResource(::LoadResource(mLibrary, resource)));
            bytes.mSize = ::SizeofResource(mLibrary, resource);
        }
        return bytes;
    }

    HMODULE Library() const { return mLibrary; }

private:
    const HMODULE mLibrary;
};

} // namespace

TEST_F(LibraryDialogsOfTheSystem, FiveLanguages_AreFound)
{
    for (const DialogTexts& texts : kDialogTexts) {
        SCOPED_TRACE(texts.mLanguage);
        ExpectEventDialog(Find(RT_DIALOG, 14400, texts.mLanguage), texts);
        ExpectErrorDialog(Find(RT_DIALOG, 14401, texts.mLanguage), texts);
        EXPECT_NE(0u, Find(RT_GROUP_ICON, 14000, texts.mLanguage).mSize);
    }
}

TEST_F(LibraryDialogsOfTheSystem, TheIcon_IsLoaded)
{
    const HICON icon = ::LoadIconW(Library(), MAKEINTRESOURCEW(14000));
    ASSERT_NE(nullptr, icon);
    ICONINFO info{};
    ASSERT_TRUE(::GetIconInfo(icon, &info));
    EXPECT_TRUE(info.fIcon);
    ::DeleteObject(info.hbmColor);
    ::DeleteObject(info.hbmMask);
}
