#pragma once

#include "Touch.h"

#include <ORLFoundation.h>
#include <ORLRegistryKey.h>
#include <ORLRegistryStore.h>

#include <string>
#include <vector>

namespace Consumer {

// Functions that change a registry are only linked, not called.
inline void TouchRegistry()
{
    using namespace ORL;
    RegistryKey key;
    RegistryKey copy(key);
    copy = key;
    copy.Swap(key);
    Touch(key.GetParentKeyPath(), &RegistryKey::EnumerateSubKeys, &RegistryKey::DeleteValue, &RegistryKey::DeleteSubKey,
          &RegistryKey::SetUInt32Value, &RegistryKey::SetUInt64Value, &RegistryKey::GetUInt32Value,
          &RegistryKey::GetUInt64Value, &RegistryKey::GetParentKeyPathLastPart);
    if (IsWanted()) {
        const UTF16String text = MakeString("text");
        UTF16String wide;
        std::string narrow;
        std::vector<char> bytes(3);
        unsigned __int64 size = 0;
        key.Open(RegistryRootKeys::kUser, text, RegistryKeyAccess::kRead | RegistryKeyAccess::kWrite);
        key.Open(copy, text);
        key.Create(RegistryRootKeys::kUser, text);
        key.Create(copy, text);
        key.SetStringValue(text, text);
        key.SetStringValue(text, narrow);
        key.GetStringValue(text, wide);
        key.GetStringValue(text, narrow);
        key.SetBinaryValue(text, bytes);
        key.SetBinaryValue(text, bytes.data(), bytes.size());
        key.GetBinaryValue(text, bytes);
        key.GetBinaryValue(text, bytes.data(), &size);
    }
}

inline void TouchRegistryStore()
{
    using namespace ORL;
    const RegistryEdit edit;
    const RegistryValue value;
    const RegistryStoreState::SetAside setAside{};
    Touch(edit, value, setAside, RegistryValueTypes::kNone, &RegistryStore::ListSubKeys, &RegistryStore::ListValues,
          &RegistryStore::GetValue, &RegistryStore::Apply, &RegistryStore::Check, &RegistryStore::GetState);
}

inline void TouchResourceFiles()
{
    using namespace ORL;
    Resources::ResourceFile file;
    Touch(file.Open(MakeString("C:\\a file that is not there")), file.GetFormat(), file.IsDamaged(), file.GetEntries(),
          &Resources::ResourceFile::FindLocalized, &Resources::ResourceFile::FindString);
    const Resources::FileEntry entry{Resources::FileName{false, 6, UTF16String()}, {}, 0, nullptr, 0};
    std::vector<UTF16String> texts;
    Touch(Resources::ReadStringBlock(entry, texts), Resources::IsWellFormed(entry));
}

class HostsApplication : public ORL::Application
{
public:
    using Application::Application;
    int Run() override { return 0; }
};

inline void TouchModules()
{
    using namespace ORL;
    ObjectPtr<Module, AtomicValue> module;
    Touch(Module::Load(MakeString("C:\\a module that is not there"), module), &Module::Create, &Module::GetNativeModule,
          &Module::GetPath, &Module::GetProcAddress, GetLibraryModule(), &GetResourceModule, &SetResourceModule,
          &GetResourceCollection, MakeResourceID(17));
    DirectoryRegistry::RegisterDirectory(MakeString("C:\\Data"), MakeString("Consumer"));
    Touch(DirectoryRegistry::FindDirectory(MakeString("Consumer")), &DirectoryRegistry::RegisterDirectories);
    DirectoryRegistry::UnregisterDirectory(MakeString("Consumer"));
    HostsApplication application(module, module, UTF16String(), 0);
    application.Idle();
    Cursor::SetArrowCursor();
    const Resources::FilePicture picture;
    Touch(picture, &Resources::ResourceFile::FindPicture);
    OSImageHandle noImage;
    OSImageHandle image(nullptr);
    image.Swap(noImage);
    Touch(image.IsValid(), noImage.GetHBITMAP(), noImage.StealHBITMAP(), &Cursor::SetIBeamCursor,
          &Cursor::SetWaitCursor, &Cursor::SetSizeCursor, &Module::LoadBitmapW, &Module::LoadBitmapWTL,
          &Module::LoadBitmapFromFile);
    Touch(Application::Instance(), &Application::GetApplicationFilePath);
    if (IsWanted()) {
        const ResourceCollection& resources = GetResourceCollection();
        UTF16String text;
        std::string narrow;
        int size = 0;
        Touch(LoadStringW(resources, 1), LoadStringW(resources, 1, text), LoadStdString(resources, 1),
              LoadStdString(resources, 1, narrow), resources.LoadResource(1, text, size), resources.LoadMenuW(1));
        resources.ReleaseResource(resources.LoadCursorW(1));
    }
}

// Touches functions that the library provides on Linux and the OS on Windows.
inline void TouchWhatWindowsHas()
{
#if !defined(_WIN32)
    using namespace ORL;
    const Resources::Linux::MenuItem item{};
    const Resources::Linux::CursorPicture picture{};
    const Images::Linux::BitmapInfo info{};
    const _EXCEPTION_RECORD record{};
    Touch(info, &Images::Linux::CreateBitmap, &Images::Linux::GetBitmapInfo, &Images::Linux::DeleteBitmap,
          &Cursors::Linux::SetShapeSetter, &Cursors::Linux::SetX11Window, Cursors::Linux::GetLastShape());
    Touch(item, picture, ReportStructuredExceptionRecordInformation(&record), &Linux::MakeExceptionRecord,
          &Resources::Linux::ModuleOfAddress, &Resources::Linux::GetMenuItemCount, &Resources::Linux::GetMenuItem,
          &Resources::Linux::DestroyMenu, &Resources::Linux::GetCursorPicture);
#endif
}

inline void TouchMachine()
{
    using namespace ORL;
    Touch(&Process::IsProcessRunning, &Process::FocusProcess, SystemInfo::GetCPUCount(),
          SystemInfo::GetTotalPhysicalMemory(), SystemInfo::GetAvailablePhysicalMemory(),
          SystemInfo::GetTotalVirtualMemory(), &SystemInfo::GetSystemLoad, SystemInfo::ProcessorSupportsSSE2());
    AutomationDataCollector& collector = *AutomationDataCollector::Instance();
    Touch(collector.GetCollection(), collector.SpecifyPerformanceTest(), AutomationDataCollector::kResultsTag,
          &AutomationDataCollector::AddResult, &AutomationDataCollector::AddResults, &AutomationDataCollector::Clear,
          &WriteAutomationResults);
}

inline void TouchHostSettings()
{
    using namespace ORL;
    Touch(&GetLanguageID, &GetPrimaryLanguageID, &SetLanguageID, &SetLanguageString, &GetLanguageString,
          &GetConversionCodePage, GetRegistryBaseKey(), GetRegistrySettingsKey(), GetRegistryHelpKey(),
          GetRegistryCurrentVersionKey());
    DebugDatabase& database = DebugDatabase::Instance();
    Touch(database.HasEntry("none"), &DebugDatabase::GetEntry, &DebugDatabase::SetEntry, &DebugDatabase::Clear);
}

inline void TouchCodePages()
{
    using namespace ORL;
    const std::string bytes("a");
    const UTF16String units(1, 'a');
    Touch(StringUtils::ToUnicode(bytes), StringUtils::ToUnicode(units), StringUtils::ToMultiByte(units),
          StringUtils::ToMultiByte(bytes), StringUtils::CodePageMultiByteToUnicode16(bytes),
          StringUtils::Unicode16ToCodePageMultiByte(units), StringUtils::TrimTrailingZeros(units),
          StringUtils::GetDefaultCodePage());
#if !defined(_WIN32)
    Touch(&StringUtils::Linux::SetDefaultCodePage);
#endif
}

inline void TouchSystem()
{
    TouchHostSettings();
    TouchCodePages();
    TouchMachine();
    TouchModules();
    TouchResourceFiles();
    TouchWhatWindowsHas();
    TouchRegistry();
    TouchRegistryStore();
}

} // namespace Consumer
