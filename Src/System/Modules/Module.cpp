#include <ORLModule.h>

#include <Images/PictureLoader.h>
#include <ORLDebug.h>
#include <ORLDirectoryRegistry.h>
#include <ORLHostSettings.h>
#include <Platform/Modules.h>

#include <new>

namespace ORL {

using namespace Modules::Platform;

namespace {

constexpr unsigned short kNeutral = 0;
constexpr unsigned short kAmericanEnglish = 1033;
constexpr unsigned short kMenuType = 4;
constexpr std::size_t kMaxPath = 260;

// Names for the values of inOwnsModule, which is a bool in the public header.
constexpr bool kOwned = true;
constexpr bool kNotOwned = false;

// Owns the handle until a Module takes ownership.
class ModuleOwner
{
public:
    ModuleOwner(HINSTANCE inModule, bool inOwns) : mModule(inModule), mOwns(inOwns) {}
    ~ModuleOwner()
    {
        if (mOwns && mModule != nullptr) {
            FreeModule_Impl(mModule);
        }
    }
    ModuleOwner(const ModuleOwner&) = delete;
    ModuleOwner& operator=(const ModuleOwner&) = delete;

    void ReleaseOwner() noexcept { mOwns = false; }

private:
    HINSTANCE mModule;
    bool mOwns;
};

// The name of the first resource of a type: a number, or a copied string.
struct FirstName
{
    bool mIsFound = false;
    unsigned short mID = 0;
    UTF16String mText;

    bool IsText() const noexcept { return !mText.empty(); }
    const unsigned short* Get() const noexcept { return IsText() ? mText.c_str() : MakeResourceID(mID); }

    static void OnFound(void* inThis, const unsigned short* inName)
    {
        FirstName& name = *static_cast<FirstName*>(inThis);
        name.mIsFound = true;
        const std::uintptr_t value = reinterpret_cast<std::uintptr_t>(inName);
        if (value <= 0xFFFF) {
            name.mID = static_cast<unsigned short>(value);
        } else {
            name.mText = inName;
        }
    }
};

// Converts a type to a string. A number becomes "#" and its digits, which the lookups parse.
UTF16String TextOfType(const unsigned short* inType)
{
    const std::uintptr_t value = reinterpret_cast<std::uintptr_t>(inType);
    if (value > 0xFFFF) {
        return UTF16String(inType);
    }
    const std::string text = "#" + std::to_string(value);
    return UTF16String(text.begin(), text.end());
}

} // namespace

ResourceCollection::~ResourceCollection() = default;

// The wrapper takes ownership of the handle after the last step that can fail.
void Module::Wrap(HINSTANCE inModule, bool inOwnsModule, ObjectPtr<Module, AtomicValue>& outModule)
{
    ModuleOwner handle(inModule, inOwnsModule);
    std::unique_ptr<Module> module(new Module(inModule, kNotOwned));
    module->mResources = OpenResources_Impl(inModule);
    ObjectPtr<Module, AtomicValue> shared(module.release());
    shared.GetPtr()->mOwnsModule = inOwnsModule;
    handle.ReleaseOwner();
    outModule.Swap(shared);
}

int Module::Load(const UTF16String& inModulePath, ObjectPtr<Module, AtomicValue>& outModule)
{
    ORL_INPUT_CONTRACT_AT(!inModulePath.empty(), "WinModule", 615);
    HINSTANCE module = nullptr;
    const SystemError error = LoadModule_Impl(inModulePath, module);
    if (error != SystemErrors::kNoError) {
        return Win::SystemErrorToORLResult(error);
    }
    Wrap(module, kOwned, outModule);
    return kSuccess;
}

int Module::Create(HINSTANCE inModule, ObjectPtr<Module, AtomicValue>& outModule)
{
    Wrap(inModule, kNotOwned, outModule);
    return kSuccess;
}

Module::Module(HINSTANCE inModule, bool inOwnsModule)
    : mNativeModule(inModule), mOwnsModule(inOwnsModule), mResources(nullptr)
{
}

Module::~Module()
{
    CloseResources_Impl(mResources);
    if (mOwnsModule && mNativeModule != nullptr) {
        FreeModule_Impl(mNativeModule);
    }
}

void* Module::FindLocalizedResource(const unsigned short* inName, const unsigned short* inType, int& outSize) const
{
    const Source source{mNativeModule, mResources};
    const unsigned short language = GetLanguageID();
    Resource resource = FindResourceEx_Impl(source, inType, inName, language);
    if (resource == nullptr && language != kNeutral) {
        resource = FindResourceEx_Impl(source, inType, inName, kNeutral);
    }
    if (resource == nullptr) {
        ORL_ASSERT_AT(false, "WinModule", 739, "ORL::Module::FindLocalizedResource");
        return nullptr;
    }
    void* const data = LoadResource_Impl(source, resource, outSize);
    if (data == nullptr) {
        ORL_ASSERT_AT(false, "WinModule", 746, "ORL::Module::FindLocalizedResource");
    }
    return data;
}

void* Module::FindNonLocalizedResource(const unsigned short* inName, const unsigned short* inType, int& outSize) const
{
    const Source source{mNativeModule, mResources};
    const Resource rsrc = FindResourceEx_Impl(source, inType, inName, kAmericanEnglish);
    ORL_ASSERT_MESSAGE_AT(rsrc != nullptr, "rsrc != NULL", "", "WinModule", 765,
                          "ORL::Module::FindNonLocalizedResource");
    if (rsrc == nullptr) {
        return nullptr;
    }
    void* const data = LoadResource_Impl(source, rsrc, outSize);
    ORL_ASSERT_MESSAGE_AT(data != nullptr, "hGlobal != NULL", "", "WinModule", 772,
                          "ORL::Module::FindNonLocalizedResource");
    return data;
}

void* Module::LoadResource(const unsigned short* inName, const unsigned short* inType, int& outSize) const
{
    const Source source{mNativeModule, mResources};
    const Resource resource = FindResource_Impl(source, inName, inType);
    return resource != nullptr ? LoadResource_Impl(source, resource, outSize) : nullptr;
}

void* Module::LoadResource(short inID, const UTF16String& inType, int& outSize) const
{
    const ResourceCollection& self = *this;
    return self.LoadResource(MakeResourceID(static_cast<unsigned short>(inID)), inType.c_str(), outSize);
}

void* Module::LoadFirstResourceOfType(const unsigned short* inType, int& outSize) const
{
    outSize = 0;
    FirstName name;
    EnumFirstResourceName_Impl(Source{mNativeModule, mResources}, inType, &FirstName::OnFound, &name);
    if (!name.mIsFound) {
        return nullptr;
    }
    const ResourceCollection& self = *this;
    if (void* const data = self.FindLocalizedResource(name.Get(), inType, outSize)) {
        return data;
    }
    return name.IsText() ? self.LoadResource(name.Get(), inType, outSize)
                         : self.LoadResource(static_cast<short>(name.mID), TextOfType(inType), outSize);
}

void Module::ReleaseResource(void*) const
{
}

OSImageHandle Module::LoadBitmapW(short inID, bool inLocalized)
{
    HBITMAP bitmap = Images::LoadGDIPlusBitmap(*this, inID, inLocalized);
    if (bitmap == nullptr) {
        bitmap = LoadBitmap_Impl(Source{mNativeModule, mResources}, static_cast<unsigned short>(inID));
    }
    return OSImageHandle(bitmap);
}

OSImageHandle Module::LoadBitmapFromFile(UTF16String inPath, bool)
{
    const UTF16String path = DirectoryRegistry::FindDirectory(TVX_UTF16("application")) + TVX_UTF16("PNG/") + inPath;
    return OSImageHandle(Images::LoadBitmapOfFile(path));
}

OSImageHandle Module::LoadBitmapWTL(short inID, bool inLocalized)
{
    HBITMAP bitmap = Images::LoadGDIPlusBitmapWTL(*this, inID, inLocalized);
    if (bitmap == nullptr) {
        bitmap = LoadBitmap_Impl(Source{mNativeModule, mResources}, static_cast<unsigned short>(inID));
    }
    return OSImageHandle(bitmap);
}

void* Module::LoadCursorW(short inID) const
{
    return LoadCursor_Impl(Source{mNativeModule, mResources}, static_cast<unsigned short>(inID));
}

HMENU Module::LoadMenuW(short inID) const
{
    int size = 0;
    void* const menuResource =
        FindLocalizedResource(MakeResourceID(static_cast<unsigned short>(inID)), MakeResourceID(kMenuType), size);
    ORL_ASSERT_MESSAGE_AT(menuResource != nullptr, "menuResource != NULL", "", "WinModule", 936,
                          "ORL::Module::LoadMenuW");
    return menuResource != nullptr ? LoadMenuIndirect_Impl(menuResource, static_cast<unsigned int>(size)) : nullptr;
}

HINSTANCE Module::GetNativeModule() const
{
    return mNativeModule;
}

void Module::GetPath(UTF16String& outPath) const
{
    if (mPath.empty()) {
        unsigned short buffer[kMaxPath] = {};
        GetModuleFileName_Impl(mNativeModule, buffer, kMaxPath);
        mPath = buffer;
    }
    outPath = mPath;
}

int (*Module::GetProcAddress(const std::string& inProcName) const)()
{
    ORL_INPUT_CONTRACT_AT(!inProcName.empty(), "WinModule", 707);
    ORL_ASSERT_MESSAGE_AT(mNativeModule != nullptr, "mNativeModule != NULL", "", "WinModule", 708,
                          "ORL::Module::GetProcAddress");
    return GetProcAddress_Impl(mNativeModule, inProcName.c_str());
}

} // namespace ORL
