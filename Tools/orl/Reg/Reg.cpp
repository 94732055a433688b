// orl reg list | get | set | unset | delete | export | import | check
#include "Commands.h"
#include "Failure.h"
#include "Program/ValueTable.h"
#include "RegCheck.h"
#include "RegJson.h"
#include "RegList.h"
#include "RegTransfer.h"
#include "RegTree.h"
#include "RegValueText.h"
#include "Text.h"

#include <tvxcore/Text.h>

#include <iostream>
#include <memory>

namespace orl {

namespace {

struct Options
{
    std::string mKey;
    bool mIsMachine = false;
    std::string mName;
    std::string mValue;
    std::string mType = "string";
    std::string mFile;
    bool mIsRecursive = false;
    bool mAsJson = false;
    bool mIsDryRun = false;
};

RegKeyName KeyOf(const Options& inOptions)
{
    const auto root = inOptions.mIsMachine ? ORL::RegistryRootKeys::kMachine : ORL::RegistryRootKeys::kUser;
    const RegKeyName key = ReadRegKeyName(inOptions.mKey, root);
    if (inOptions.mIsMachine && key.mRoot != ORL::RegistryRootKeys::kMachine) {
        throw Failure("reg: \"" + inOptions.mKey
                          + "\" is below the root of the user, but --machine selects the machine's root",
                      kExitUsage);
    }
    return key;
}

// Throws Failure for a root, because roots belong to the system and cannot be changed.
RegKeyName KeyToChange(const Options& inOptions)
{
    const RegKeyName key = KeyOf(inOptions);
    if (key.mPath.empty()) {
        throw Failure("reg: \"" + inOptions.mKey + "\" is a root; name a key below it", kExitUsage);
    }
    return key;
}

ORL::RegistryEdit EditOf(ORL::RegistryEdit::Kind inKind, const RegKeyName& inKey)
{
    ORL::RegistryEdit edit;
    edit.mKind = inKind;
    edit.mRoot = inKey.mRoot;
    edit.mPath = inKey.mPath;
    return edit;
}

UTF16String ValueNameOf(const Options& inOptions)
{
    const UTF16String name = ToUTF16(inOptions.mName);
    if (name.size() > kMaxValueNameUnits) {
        throw Failure("reg: the name of a value has at most 16383 characters", kExitUsage);
    }
    return name;
}

ORL::RegistryValue ReadValue(const std::string& inCommand, const Options& inOptions, const RegKeyName& inKey)
{
    ORL::RegistryValue value;
    const UTF16String name = ValueNameOf(inOptions);
    const ORL::Result result = ORL::RegistryStore::GetValue(inKey.mRoot, inKey.mPath, name, value);
    if (!ORL::ResultSucceeded(result)) {
        throw Failure(inCommand + ": cannot read " + ShowRegValueName(name) + " of \"" + ShowRegKeyName(inKey)
                      + "\": " + (result == ORL::kFileNotFound ? "no such key or value" : Describe(result)));
    }
    return value;
}

// Returns the name of a value as stored: the system finds values case-insensitively and reports no stored name.
UTF16String StoredNameOf(const std::string& inCommand, const RegKeyName& inKey, const UTF16String& inName)
{
    const UTF16String folded = tvxcore::utility::FoldCase(inName);
    UTF16String stored = inName;
    for (const ORL::RegistryValue& value : ReadRegValues(inCommand, inKey)) {
        if (value.mName == inName) {
            return inName;
        }
        // Full case mappings may change the length of a string; the system's mappings do not.
        if (value.mName.size() == inName.size() && tvxcore::utility::FoldCase(value.mName) == folded) {
            stored = value.mName;
        }
    }
    return stored;
}

void List(const Options& inOptions)
{
    ListRegKey({KeyOf(inOptions), inOptions.mIsRecursive, inOptions.mAsJson});
}

void Get(const Options& inOptions)
{
    const RegKeyName key = KeyOf(inOptions);
    ORL::RegistryValue value = ReadValue("reg get", inOptions, key);
    if (inOptions.mAsJson) {
        value.mName = StoredNameOf("reg get", key, value.mName);
    }
    std::cout << (inOptions.mAsJson ? JsonOfRegValue(value).Line() : PlainRegValue(value)) << '\n';
}

void Set(const Options& inOptions)
{
    const RegKeyName key = KeyToChange(inOptions);
    ORL::RegistryEdit edit = EditOf(ORL::RegistryEdit::kSetValue, key);
    edit.mValue = ReadRegValue(inOptions.mType, inOptions.mValue);
    edit.mValue.mName = ValueNameOf(inOptions);
    ApplyRegEdits("reg set", ShowRegKeyName(key), {edit});
}

void Unset(const Options& inOptions)
{
    const RegKeyName key = KeyToChange(inOptions);
    ORL::RegistryEdit edit = EditOf(ORL::RegistryEdit::kDeleteValue, key);
    edit.mValue.mName = ReadValue("reg unset", inOptions, key).mName;
    ApplyRegEdits("reg unset", ShowRegKeyName(key), {edit});
}

void Delete(const Options& inOptions)
{
    const RegKeyName key = KeyToChange(inOptions);
    const std::size_t below = ReadRegSubKeys("reg delete", key).size();
    if (below != 0 && !inOptions.mIsRecursive) {
        throw Failure("reg delete: \"" + ShowRegKeyName(key) + "\" has keys below it (" + std::to_string(below)
                      + "); --recursive deletes them too");
    }
    ApplyRegEdits("reg delete", ShowRegKeyName(key), {EditOf(ORL::RegistryEdit::kDeleteKey, key)});
}

void Check(const Options& inOptions)
{
    CheckRegStores(inOptions.mAsJson);
}

void Export(const Options& inOptions)
{
    ExportRegKey(KeyOf(inOptions), inOptions.mFile);
}

void Import(const Options& inOptions)
{
    if (!inOptions.mIsDryRun) {
        ImportRegFile(inOptions.mFile);
    } else {
        ShowRegImport(inOptions.mFile, inOptions.mAsJson);
    }
}

using Run = void (*)(const Options&);

struct Command
{
    CLI::App* mApp;
    std::shared_ptr<Options> mOptions;
};

Command Add(CLI::App& ioReg, const std::string& inName, const std::string& inWhat, Run inRun)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const app = ioReg.add_subcommand(inName, inWhat);
    app->callback([options, inRun] { inRun(*options); });
    return {app, options};
}

CLI::Option* AddKey(const Command& inCommand)
{
    inCommand.mApp->add_flag("--machine", inCommand.mOptions->mIsMachine, "use a key of the machine, not of the user");
    return inCommand.mApp->add_option("KEY", inCommand.mOptions->mKey,
                                      "HKCU\\Software\\..., HKLM\\Software\\..., user:Software\\..., "
                                      "machine:Software\\..., or Software\\... for the user's");
}

void AddName(const Command& inCommand)
{
    inCommand.mApp
        ->add_option("NAME", inCommand.mOptions->mName, "name of the value; an empty name is the key's default value")
        ->required();
}

void AddReadCommands(CLI::App& ioReg)
{
    const Command list = Add(ioReg, "list", "Show the values of a key and the keys below it", &List);
    AddKey(list);
    list.mApp->add_flag("--recursive", list.mOptions->mIsRecursive, "show everything below those keys too");
    list.mApp->add_flag("--json", list.mOptions->mAsJson, "write one JSON object");

    const Command get = Add(ioReg, "get", "Show one value: text, a decimal number, or hexadecimal digits", &Get);
    AddKey(get)->required();
    AddName(get);
    get.mApp->add_flag("--json", get.mOptions->mAsJson, "write one JSON object");
}

void AddChangeCommands(CLI::App& ioReg)
{
    const Command set = Add(ioReg, "set", "Set one value; creates the key if it is missing", &Set);
    AddKey(set)->required();
    AddName(set);
    set.mApp
        ->add_option("VALUE", set.mOptions->mValue,
                     "text; a number, decimal or hexadecimal with the prefix 0x; bytes in hexadecimal")
        ->required();
    set.mApp->add_option("--type", set.mOptions->mType, "string (default), expand, u32, u64 or binary")
        ->type_name("KIND")
        ->check(CLI::IsMember(ValueOf("KIND").mWords).description(""));

    const Command unset = Add(ioReg, "unset", "Delete one value", &Unset);
    AddKey(unset)->required();
    AddName(unset);

    const Command remove = Add(ioReg, "delete", "Delete a key with its values", &Delete);
    AddKey(remove)->required();
    remove.mApp->add_flag("--recursive", remove.mOptions->mIsRecursive, "delete the keys below it too");
}

void AddTransferCommands(CLI::App& ioReg)
{
    const Command exports =
        Add(ioReg, "export", "Write a key and everything below it to a registry text file", &Export);
    AddKey(exports)->required();
    exports.mApp->add_option("FILE", exports.mOptions->mFile, "default: standard output");

    const Command imports = Add(ioReg, "import", "Apply the changes in a registry text file", &Import);
    imports.mApp->add_option("FILE", imports.mOptions->mFile, "a registry text file of version 5.00")->required();
    CLI::Option* const dryRun =
        imports.mApp->add_flag("--dry-run", imports.mOptions->mIsDryRun, "only show the changes");
    imports.mApp->add_flag("--json", imports.mOptions->mAsJson, "write the changes as one JSON array; needs --dry-run")
        ->needs(dryRun);
}

} // namespace

void AddReg(CLI::App& ioProgram)
{
    CLI::App* const reg = ioProgram.add_subcommand("reg", "Show, edit, export and import settings");
    reg->require_subcommand(1);
    AddReadCommands(*reg);
    AddChangeCommands(*reg);
    AddTransferCommands(*reg);
    const Command check =
        Add(*reg, "check", "Report whether the stores are intact, and which damaged files were set aside", &Check);
    check.mApp->add_flag("--json", check.mOptions->mAsJson, "write one JSON object");
}

} // namespace orl
